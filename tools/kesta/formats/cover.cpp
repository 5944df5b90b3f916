#include "formats/cover.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace kesta::formats {
namespace {

/// Numbers and parts of a text that may end anywhere: behind its end everything is 0 or empty.
class Bytes {
public:
    explicit Bytes(std::string_view text) : text_(text) {}

    [[nodiscard]] size_t size() const { return text_.size(); }
    [[nodiscard]] uint8_t at(size_t place) const
    {
        return place < text_.size() ? static_cast<uint8_t>(text_[place]) : 0;
    }
    [[nodiscard]] std::string_view part(size_t place, size_t length) const
    {
        return place < text_.size() ? text_.substr(place, length) : std::string_view();
    }
    [[nodiscard]] size_t big(size_t place, size_t length) const
    {
        size_t number = 0;
        for (size_t i = 0; i < length; ++i) {
            number = number << 8 | at(place + i);
        }
        return number;
    }
    [[nodiscard]] size_t little(size_t place, size_t length) const
    {
        size_t number = 0;
        for (size_t i = length; i > 0; --i) {
            number = number << 8 | at(place + i - 1);
        }
        return number;
    }

private:
    std::string_view text_;
};

/// By its first bytes: what a file says of a picture is not always so.
std::string TypeOf(std::string_view picture)
{
    struct Start {
        std::string_view bytes;
        const char* type;
    };
    using namespace std::string_view_literals;
    constexpr std::array<Start, 4> kStarts{{{"\xFF\xD8\xFF"sv, "image/jpeg"},
                                            {"\x89PNG\r\n\x1A\n"sv, "image/png"},
                                            {"GIF8"sv, "image/gif"},
                                            {"BM"sv, "image/bmp"}}};
    for (const Start& start : kStarts) {
        if (picture.starts_with(start.bytes)) {
            return start.type;
        }
    }
    return picture.starts_with("RIFF") && Bytes(picture).part(8, 4) == "WEBP" ? "image/webp" : "";
}

std::optional<Cover> ToCover(std::string_view picture, size_t mostBytes)
{
    std::string type = TypeOf(picture);
    if (type.empty() || picture.size() > mostBytes) {
        return std::nullopt;
    }
    return Cover{std::move(type), std::string(picture)};
}

/// Seven bits a byte.
size_t SyncSafe(const Bytes& bytes, size_t place)
{
    size_t number = 0;
    for (size_t i = 0; i < 4; ++i) {
        number = number << 7 | (bytes.at(place + i) & 0x7Fu);
    }
    return number;
}

/// Behind the texts of a picture frame: the type of the picture in words, its kind, and its description.
std::string_view PictureOfFrame(std::string_view frame, bool isOld)
{
    const Bytes bytes(frame);
    const uint8_t encoding = bytes.at(0);
    size_t place = isOld ? 4 : frame.find('\0', 1);
    if (place == std::string_view::npos) {
        return {};
    }
    place += isOld ? 1 : 2;
    const bool isWide = encoding == 1 || encoding == 2;
    while (place < frame.size() && (bytes.at(place) != 0 || (isWide && bytes.at(place + 1) != 0))) {
        place += isWide ? 2 : 1;
    }
    return bytes.part(place + (isWide ? 2 : 1), frame.size());
}

std::optional<Cover> FromId3(std::string_view file, size_t mostBytes)
{
    const Bytes bytes(file);
    const unsigned version = bytes.at(3);
    const bool isOld = version == 2;
    const size_t headLength = isOld ? 6 : 10;
    const size_t end = 10 + SyncSafe(bytes, 6);
    constexpr unsigned kExtended = 0x40;
    size_t place = 10;
    if (!isOld && (bytes.at(5) & kExtended) != 0) {
        place += version == 4 ? SyncSafe(bytes, 10) : 4 + bytes.big(10, 4);
    }
    while (place + headLength < end && bytes.at(place) != 0 && place < file.size()) {
        const size_t size = isOld          ? bytes.big(place + 3, 3)
                            : version == 4 ? SyncSafe(bytes, place + 4)
                                           : bytes.big(place + 4, 4);
        const std::string_view name = bytes.part(place, isOld ? 3 : 4);
        const std::string_view frame = bytes.part(place + headLength, size);
        if ((name == "APIC" || name == "PIC") && frame.size() == size) {
            if (auto cover = ToCover(PictureOfFrame(frame, isOld), mostBytes)) {
                return cover;
            }
        }
        place += headLength + size;
    }
    return std::nullopt;
}

std::optional<Cover> FromFlac(std::string_view file, size_t mostBytes)
{
    const Bytes bytes(file);
    constexpr unsigned kPicture = 6, kLast = 0x80;
    for (size_t place = 4; place + 4 < file.size();) {
        const unsigned kind = bytes.at(place);
        const size_t size = bytes.big(place + 1, 3);
        if ((kind & ~kLast) == kPicture) {
            const size_t type = place + 4 + 4;
            const size_t description = type + 4 + bytes.big(type, 4);
            const size_t data = description + 4 + bytes.big(description, 4) + 16;
            const std::string_view picture = bytes.part(data + 4, bytes.big(data, 4));
            if (auto cover = ToCover(picture, mostBytes)) {
                return cover;
            }
        }
        if ((kind & kLast) != 0) {
            break;
        }
        place += 4 + size;
    }
    return std::nullopt;
}

/// What the first box of that name among others holds: cut where the file is, empty if there is none.
std::string_view BoxAmong(std::string_view boxes, std::string_view name)
{
    const Bytes bytes(boxes);
    size_t place = 0;
    while (place + 8 <= boxes.size()) {
        const size_t said = bytes.big(place, 4);
        const size_t head = said == 1 ? 16 : 8;  // 1: the size is too large for its four bytes, and follows
        const size_t rest = boxes.size() - place;
        const size_t size = said == 1 ? bytes.big(place + 8, 8) : said == 0 ? rest : said;
        if (size < head) {
            break;
        }
        if (bytes.part(place + 4, 4) == name) {
            return bytes.part(place + head, size - head);
        }
        if (size > rest) {
            break;
        }
        place += size;
    }
    return {};
}

std::optional<Cover> FromMp4(std::string_view file, size_t mostBytes)
{
    constexpr size_t kFlags = 4, kTypeAndLanguage = 8, kHead = 8;
    const std::string_view meta = BoxAmong(BoxAmong(BoxAmong(file, "moov"), "udta"), "meta");
    const std::string_view tags = BoxAmong(meta.substr(std::min(meta.size(), kFlags)), "ilst");
    const std::string_view covers = BoxAmong(tags, "covr");
    const std::string_view data = BoxAmong(covers, "data");
    if (data.size() < kTypeAndLanguage || data.size() + kHead < Bytes(covers).big(0, 4)) {
        return std::nullopt;
    }
    return ToCover(data.substr(kTypeAndLanguage), mostBytes);
}

/// The thumbnail is what the second directory points to.
std::optional<Cover> FromExif(std::string_view tiff, size_t mostBytes)
{
    const Bytes bytes(tiff);
    const bool isLittle = tiff.starts_with("II");
    const auto number = [&](size_t place, size_t length) {
        return isLittle ? bytes.little(place, length) : bytes.big(place, length);
    };
    constexpr size_t kEntry = 12, kStart = 0x0201, kLength = 0x0202;
    const size_t first = number(4, 4);
    const size_t second = number(first + 2 + kEntry * number(first, 2), 4);
    if (second == 0) {
        return std::nullopt;
    }
    size_t start = 0, length = 0;
    for (size_t i = 0; i < number(second, 2); ++i) {
        const size_t entry = second + 2 + kEntry * i;
        const size_t tag = number(entry, 2);
        start = tag == kStart ? number(entry + 8, 4) : start;
        length = tag == kLength ? number(entry + 8, 4) : length;
    }
    return start == 0 ? std::nullopt : ToCover(bytes.part(start, length), mostBytes);
}

std::optional<Cover> FromJpeg(std::string_view file, size_t mostBytes)
{
    const Bytes bytes(file);
    constexpr unsigned kExif = 0xE1, kScan = 0xDA;
    for (size_t place = 2; bytes.at(place) == 0xFF && bytes.at(place + 1) != kScan;) {
        const size_t size = bytes.big(place + 2, 2);
        const std::string_view segment = bytes.part(place + 4, size < 2 ? 0 : size - 2);
        if (bytes.at(place + 1) == kExif && segment.starts_with(std::string_view("Exif\0\0", 6))) {
            return FromExif(segment.substr(6), mostBytes);
        }
        place += 2 + size;
    }
    return std::nullopt;
}

}  // namespace

std::optional<Cover> FindCover(std::string_view file, size_t mostBytes)
{
    std::optional<Cover> cover;
    if (file.starts_with("ID3")) {
        cover = FromId3(file, mostBytes);
    } else if (file.starts_with("fLaC")) {
        cover = FromFlac(file, mostBytes);
    } else if (file.starts_with("\xFF\xD8")) {
        cover = FromJpeg(file, mostBytes);
    } else if (Bytes(file).part(4, 4) == "ftyp") {
        cover = FromMp4(file, mostBytes);
    }
    // What is as long as was asked for may go on.
    return cover || file.size() >= kCoverBytes ? cover : ToCover(file, mostBytes);
}

std::string Base64(std::string_view bytes)
{
    constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    const Bytes all(bytes);
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (size_t i = 0; i < bytes.size(); i += 3) {
        const size_t group = all.big(i, 3);
        const size_t left = bytes.size() - i;
        text += kDigits[group >> 18];
        text += kDigits[group >> 12 & 63];
        text += left > 1 ? kDigits[group >> 6 & 63] : '=';
        text += left > 2 ? kDigits[group & 63] : '=';
    }
    return text;
}

}  // namespace kesta::formats
