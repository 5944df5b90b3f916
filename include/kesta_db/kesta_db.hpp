/**
 * @file
 * @brief KESTA_DB for C++20: header-only, over the C interface of kesta_db.h.
 *
 *     kesta_db::Database db;                                       // throws when the database cannot be opened
 *     db.phones().announce("356938035643809", "Ann's phone");
 *     kesta_db::Media music = db.media("356938035643809", kesta_db::Category::kMusic);
 *     music.addFolder({.path = "/home/ann/Music"});
 *     for (const kesta_db::File& file : music.files()) std::cout << file.path << '\n';
 *
 * Texts are UTF-8, dates std::optional points of std::chrono's local time, lists are vectors of values that own what
 * they hold. Every failure is a kesta_db::Error with a Code. Where the library would answer an empty list because it
 * could not read it, and success because it does not look, this interface looks again and throws; where that would cost
 * too much, the comment says so. Texts that go into statements as they are (IMEIs, digests, PIM identifiers) are
 * refused unless they are ASCII without apostrophes; what another program has stored under others can be looked up on
 * Linux.
 *
 * The classes hold nothing but an IMEI, may be copied, and may be used by several threads.
 */
#pragma once

#include <kesta_db/cpp/backups.hpp>
#include <kesta_db/cpp/base.hpp>
#include <kesta_db/cpp/bookmarks.hpp>
#include <kesta_db/cpp/media.hpp>
#include <kesta_db/cpp/phones.hpp>
#include <kesta_db/cpp/pim.hpp>
#include <kesta_db/cpp/playlists.hpp>

namespace kesta_db {

/// The open database, and the way to its parts.
class Database {
public:
    /// Opens the database unless loading the library has done so.
    Database() { detail::Require("DB_Open", DB_Open()); }

    [[nodiscard]] Phones phones() const { return {}; }
    [[nodiscard]] Media media(std::string_view imei, Category category) const { return {imei, category}; }
    [[nodiscard]] Playlists playlists(std::string_view imei) const { return Playlists(imei); }
    [[nodiscard]] Bookmarks bookmarks(std::string_view imei) const { return Bookmarks(imei); }
    [[nodiscard]] Backups backups() const { return {}; }
    [[nodiscard]] PimStore pimStore() const { return {}; }
    [[nodiscard]] PimSyncLog pimLog(std::string_view imei, int32_t type) const { return {imei, type}; }

    /// Pictures and videos as one. Some folders may be missing, as DB_GALLERY_GetFolders says; media() has them all.
    [[nodiscard]] std::vector<Folder> gallery(std::string_view imei) const
    {
        auto release = [](FolderList* list) { (void)DB_GALLERY_GetFolders(detail::kUnknown, list); };
        detail::OwnedList<FolderList, decltype(release)> list(release);
        const detail::Utf16 identity = detail::KnownIdentifier(imei);
        detail::ReadCountedList("DB_GALLERY_GetFolders", *list.get(),
                                [&] { return DB_GALLERY_GetFolders(identity.c_str(), list.get()); });
        return list.records(detail::ToFolder);
    }
};

}  // namespace kesta_db
