// The four kinds of media: what the user calls them, and where they go on the phone.
#pragma once

#include <kesta_db/cpp/media.hpp>

#include <array>
#include <optional>
#include <string_view>

namespace kesta {

using kesta_db::Category;

inline constexpr std::array kCategories{Category::kMusic, Category::kImages, Category::kVideos, Category::kDocuments};

/// As in options and in JSON: "music".
[[nodiscard]] constexpr std::string_view KeyOf(Category category)
{
    constexpr std::array<std::string_view, 4> kKeys{"music", "images", "videos", "documents"};
    return kKeys[static_cast<size_t>(category)];
}

/// For headings: "Music".
[[nodiscard]] constexpr std::string_view TitleOf(Category category)
{
    constexpr std::array<std::string_view, 4> kTitles{"Music", "Images", "Videos", "Documents"};
    return kTitles[static_cast<size_t>(category)];
}

/// The folder in the phone's root.
[[nodiscard]] constexpr std::string_view PhoneFolderOf(Category category)
{
    constexpr std::array<std::string_view, 4> kFolders{"Music", "Pictures", "Videos", "Documents"};
    return kFolders[static_cast<size_t>(category)];
}

[[nodiscard]] constexpr std::optional<Category> CategoryOfKey(std::string_view key)
{
    for (const Category category : kCategories) {
        if (KeyOf(category) == key) {
            return category;
        }
    }
    return std::nullopt;
}

}  // namespace kesta
