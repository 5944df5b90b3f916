// The tables of a category share a letter: tMFolder, tMFile, vMFolder, vMFile. One name is derived from another by that
// shape, so a name handed to the engine must have it.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "core/format.h"

namespace kesta {

class TableName {
public:
    /// The first `letters` letters of `start`, then `rest`.
    constexpr TableName(std::string_view start, size_t letters, std::string_view rest)
    {
        size_t length = start.copy(text_.data(), letters);
        length += rest.copy(text_.data() + length, text_.size() - 1 - length);
        text_[length] = '\0';
    }
    // NOLINTNEXTLINE(google-explicit-constructor): it is a name like any other.
    constexpr operator Name() const { return {text_.data()}; }

private:
    std::array<char, 16> text_ = {};
};

/// tMFile gives tMFolder.
constexpr TableName FolderTableOf(Name fileTable)
{
    return {fileTable.text, 2, "Folder"};
}

/// tMFolder gives tMFile.
constexpr TableName FileTableOf(Name folderTable)
{
    return {folderTable.text, 2, "File"};
}

/// tMFolder gives vMFolder.
constexpr TableName ViewOf(Name table)
{
    return {"v", 1, std::string_view(table.text).substr(1)};
}

}  // namespace kesta
