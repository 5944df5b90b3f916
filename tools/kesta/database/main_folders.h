// The main folders of the library and which of them each phone takes part in.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "database/database.h"

namespace kesta {

enum class MainFolder { kMusic, kGallery, kDocuments, kContacts, kCalendar, kBookmarks, kMap };

inline constexpr std::array kMainFolders{MainFolder::kMusic,    MainFolder::kGallery,  MainFolder::kDocuments,
                                         MainFolder::kContacts, MainFolder::kCalendar, MainFolder::kBookmarks,
                                         MainFolder::kMap};

/// As in settings and in JSON: "music".
[[nodiscard]] constexpr std::string_view KeyOf(MainFolder folder)
{
    constexpr std::array<std::string_view, kMainFolders.size()> kKeys{"music",    "gallery",   "documents", "contacts",
                                                                      "calendar", "bookmarks", "map"};
    return kKeys[static_cast<size_t>(folder)];
}

/// The main folder that a category of media belongs to.
[[nodiscard]] constexpr MainFolder MainFolderOf(Category category)
{
    constexpr std::array kFolders{MainFolder::kMusic, MainFolder::kGallery, MainFolder::kGallery,
                                  MainFolder::kDocuments};
    return kFolders[static_cast<size_t>(category)];
}

/// What the database holds of one main folder, whichever the phone.
struct MainFolderFigures {
    MainFolder folder = MainFolder::kMusic;
    int32_t items = 0;
    int64_t size = 0;
    std::string setting;
};

class MainFolderRecords {
public:
    explicit MainFolderRecords(Database& /*opened*/) {}

    /// Leaves out folders that this client has no name for.
    [[nodiscard]] std::vector<MainFolderFigures> all();
    /// A folder of which nothing is stored for the phone counts as selected.
    [[nodiscard]] bool isSelected(const std::string& imei, MainFolder folder);
    /// The phone must be known. 0 is success.
    Result select(const std::string& imei, MainFolder folder, bool selected);
};

}  // namespace kesta
