// The main folders of the library: what the user calls them, and what belongs to them.
#pragma once

#include <kesta_db/cpp/phones.hpp>

#include <array>
#include <string_view>

#include "database/category.h"

namespace kesta {

using kesta_db::MainFolder;

inline constexpr std::array kMainFolders{MainFolder::kMusic,    MainFolder::kGallery,  MainFolder::kDocuments,
                                         MainFolder::kContacts, MainFolder::kCalendar, MainFolder::kBookmarks,
                                         MainFolder::kMap};

/// As in settings and in JSON: "music". Empty for a folder that this client has no name for.
[[nodiscard]] constexpr std::string_view KeyOf(MainFolder folder)
{
    switch (folder) {
        case MainFolder::kMusic:
            return "music";
        case MainFolder::kGallery:
            return "gallery";
        case MainFolder::kDocuments:
            return "documents";
        case MainFolder::kContacts:
            return "contacts";
        case MainFolder::kCalendar:
            return "calendar";
        case MainFolder::kBookmarks:
            return "bookmarks";
        case MainFolder::kMap:
            return "map";
    }
    return {};
}

/// The main folder that a category of media belongs to.
[[nodiscard]] constexpr MainFolder MainFolderOf(Category category)
{
    constexpr std::array kFolders{MainFolder::kMusic, MainFolder::kGallery, MainFolder::kGallery,
                                  MainFolder::kDocuments};
    return kFolders[static_cast<size_t>(category)];
}

}  // namespace kesta
