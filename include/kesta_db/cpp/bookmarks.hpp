/**
 * @file
 * @brief C++: the web bookmarks synced to a phone.
 */
#pragma once

#include <kesta_db/cpp/media.hpp>

namespace kesta_db {

/// One bookmark.
struct Bookmark {
    std::string title{};
    std::string url{};
    std::string idOnPhone{};
    int32_t id = 0;  ///< the caller's own number; Bookmarks::all leaves it 0
    int32_t flag = 0;
};

/// The bookmarks of one phone, which must be known, of its present bookmark type.
class Bookmarks {
public:
    explicit Bookmarks(std::string_view imei) : imei_(detail::KnownIdentifier(imei)) {}

    /// An empty answer is a true one.
    [[nodiscard]] std::vector<Bookmark> all()
    {
        auto release = [](BookmarkList* list) { (void)DB_BOOKMARK_GetSyncedMarks(detail::kUnknown, list); };
        detail::OwnedList<BookmarkList, decltype(release)> list(release);
        detail::ReadCountedList("DB_BOOKMARK_GetSyncedMarks", *list.get(),
                                [&] { return DB_BOOKMARK_GetSyncedMarks(imei_.c_str(), list.get()); });
        return list.records([](const BookmarkRecord& record) {
            return Bookmark{detail::Utf8(record.Title), detail::Utf8(record.Path), detail::Utf8(record.PhoneMID),
                            record.Id, record.Flag};
        });
    }
    /// False when the URL is recorded already; its bookmark is then left as it was.
    bool add(const Bookmark& bookmark)
    {
        return detail::Added("DB_BOOKMARK_SetAddedMark",
                             DB_BOOKMARK_SetAddedMark(imei_.c_str(), Argument(bookmark).get()));
    }
    /// Title, idOnPhone and flag of the bookmark with that URL.
    void update(const Bookmark& bookmark)
    {
        detail::Require("DB_BOOKMARK_SetUpdatedMark",
                        DB_BOOKMARK_SetUpdatedMark(imei_.c_str(), Argument(bookmark).get()));
    }
    void remove(std::string_view url)
    {
        detail::Require("DB_BOOKMARK_SetDeletedMark",
                        DB_BOOKMARK_SetDeletedMark(imei_.c_str(), detail::Text(url).c_str()));
    }
    /// Those of every bookmark type.
    void removeAll() { detail::Require("DB_BOOKMARK_ClearAll", DB_BOOKMARK_ClearAll(imei_.c_str())); }

private:
    class Argument {
    public:
        explicit Argument(const Bookmark& bookmark)
            : title_(detail::Text(bookmark.title)),
              url_(detail::Text(bookmark.url)),
              idOnPhone_(detail::Text(bookmark.idOnPhone))
        {
            record_ = {title_.data(), url_.data(), idOnPhone_.data(), bookmark.id, bookmark.flag, 0};
        }
        Argument(const Argument&) = delete;
        Argument& operator=(const Argument&) = delete;
        [[nodiscard]] const BookmarkRecord* get() const { return &record_; }

    private:
        detail::Utf16 title_;
        detail::Utf16 url_;
        detail::Utf16 idOnPhone_;
        BookmarkRecord record_{};
    };

    detail::Utf16 imei_;
};

}  // namespace kesta_db
