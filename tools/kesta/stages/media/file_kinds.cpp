#include "stages/media/file_kinds.h"

#include <algorithm>
#include <span>

#include "formats/ascii.h"

namespace kesta {
namespace {

using Endings = std::span<const std::string_view>;

constexpr std::string_view kMusicEndings[] = {
    "3ga", "aa",  "aac", "aax", "ac3",  "aif",  "aifc", "aiff", "alac", "amr",  "ape", "au",  "awb",
    "caf", "dff", "dsf", "dts", "eac3", "flac", "it",   "m4a",  "m4b",  "m4p",  "m4r", "mid", "midi",
    "mka", "mod", "mp1", "mp2", "mp3",  "mpc",  "mpga", "oga",  "ogg",  "opus", "ra",  "s3m", "shn",
    "spx", "tak", "tta", "voc", "wav",  "wave", "weba", "wma",  "wv",   "xm"};

constexpr std::string_view kImageEndings[] = {
    "3fr", "arw",  "avif", "bmp", "cr2",  "cr3", "crw", "dng", "erf", "gif",  "heic", "heif", "ico",
    "j2k", "jfif", "jp2",  "jpe", "jpeg", "jpg", "jxl", "kdc", "mrw", "nef",  "nrw",  "orf",  "pef",
    "png", "raf",  "raw",  "rw2", "sr2",  "srw", "svg", "tga", "tif", "tiff", "webp", "x3f"};

constexpr std::string_view kVideoEndings[] = {"3g2", "3gp", "asf",  "avi",  "divx", "dv",    "f4v",  "flv",
                                              "m1v", "m2t", "m2ts", "m2v",  "m4v",  "mjpeg", "mkv",  "mov",
                                              "mp4", "mpe", "mpeg", "mpg",  "mpv",  "mts",   "mxf",  "ogm",
                                              "ogv", "qt",  "rm",   "rmvb", "ts",   "vob",   "webm", "wmv"};

Endings EndingsOf(Category category)
{
    switch (category) {
        case Category::kMusic:
            return kMusicEndings;
        case Category::kImages:
            return kImageEndings;
        case Category::kVideos:
            return kVideoEndings;
        default:
            return {};
    }
}

// Empty where what follows the last dot is part of a name: "Symphony No. 5", "Mr. Somebody".
std::string_view EndingOf(std::string_view name)
{
    constexpr size_t kLongest = 10;
    const size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0 || name.size() - dot - 1 > kLongest) {
        return {};
    }
    const std::string_view ending = name.substr(dot + 1);
    const auto isAny = [&](auto&& is) { return std::any_of(ending.begin(), ending.end(), is); };
    const auto isPlain = [](char c) { return formats::IsLetter(c) || formats::IsDigit(c); };
    const bool isEnding = isAny(formats::IsLetter) && !isAny([&](char c) { return !isPlain(c); });
    return isEnding ? ending : std::string_view();
}

}  // namespace

bool IsKindOf(Category category, std::string_view name)
{
    const Endings endings = EndingsOf(category);
    const std::string_view ending = EndingOf(name);
    return endings.empty() || ending.empty() || std::any_of(endings.begin(), endings.end(), [&](std::string_view own) {
               return formats::EqualsIgnoringCase(own, ending);
           });
}

}  // namespace kesta
