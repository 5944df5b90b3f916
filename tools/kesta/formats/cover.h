// The small picture that a file carries: a song's cover, a photograph's thumbnail.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace kesta::formats {

struct Cover {
    std::string type;  // "image/jpeg"
    std::string bytes;
};

/// So much of a file's beginning is enough to find one.
inline constexpr size_t kCoverBytes = size_t{2} << 20;

/// From the beginning of a file: ID3v2 tags, FLAC, MP4, and the EXIF data of JPEG; a picture that is small stands for
/// itself. std::nullopt if there is none, or one larger than mostBytes.
[[nodiscard]] std::optional<Cover> FindCover(std::string_view file, size_t mostBytes);

/// For a page that holds its pictures itself.
[[nodiscard]] std::string Base64(std::string_view bytes);

}  // namespace kesta::formats
