// Covers and thumbnails inside of files.
#include "formats/cover.h"

#include <gmock/gmock.h>

namespace kesta::formats {
namespace {

constexpr size_t kMost = 1000;
const std::string kJpeg = "\xFF\xD8\xFF\xE0 a cover";
const std::string kPng = "\x89PNG\r\n\x1A\n a cover";

std::string Number(size_t number, size_t bytes)
{
    std::string text;
    for (size_t i = bytes; i > 0; --i) {
        text += static_cast<char>(number >> 8 * (i - 1) & 0xFF);
    }
    return text;
}

std::string Box(const std::string& name, const std::string& contents)
{
    return Number(8 + contents.size(), 4) + name + contents;
}

std::string LargeBox(const std::string& name, const std::string& contents)
{
    return Number(1, 4) + name + Number(16 + contents.size(), 8) + contents;
}

std::string Data(const std::string& picture)
{
    return Box("data", Number(13, 4) + Number(0, 4) + picture);
}

std::string Mp4(const std::string& tags)
{
    return Box("ftyp", "M4A ") + Box("free", "xx") +
           Box("moov",
               Box("mvhd", "x") + Box("udta", Box("meta", Number(0, 4) + Box("hdlr", "y") + Box("ilst", tags)))) +
           Box("mdat", "music");
}

std::string CoverIn(const std::string& file, size_t most = kMost)
{
    const auto cover = FindCover(file, most);
    return cover ? cover->type + " " + cover->bytes : "none";
}

TEST(Mp4Cover, AmongOtherTags_IsFound)
{
    EXPECT_EQ(CoverIn(Mp4(Box("\xA9nam", Data("a title")) + Box("covr", Data(kJpeg)))), "image/jpeg " + kJpeg);
    EXPECT_EQ(CoverIn(Mp4(Box("covr", Data(kPng) + Data(kJpeg)))), "image/png " + kPng);
}

TEST(Mp4Cover, SizesThatAreLongOrLeftOut_AreRead)
{
    const std::string moov = LargeBox("udta", Box("meta", Number(0, 4) + Box("ilst", Box("covr", Data(kJpeg)))));
    EXPECT_EQ(CoverIn(Box("ftyp", "M4A ") + LargeBox("mdat", "music") + LargeBox("moov", moov)), "image/jpeg " + kJpeg);
    EXPECT_EQ(CoverIn(Box("ftyp", "M4A ") + Number(0, 4) + "moov" + moov), "image/jpeg " + kJpeg);
}

TEST(Mp4Cover, NoneOrNoneOfUse_IsNone)
{
    EXPECT_EQ(CoverIn(Mp4("")), "none");
    EXPECT_EQ(CoverIn(Mp4(Box("covr", ""))), "none");
    EXPECT_EQ(CoverIn(Mp4(Box("covr", Data("no picture")))), "none");
    EXPECT_EQ(CoverIn(Mp4(Box("covr", Data(kJpeg))), kJpeg.size() - 1), "none");
    EXPECT_EQ(CoverIn(Box("ftyp", "M4A ") + Number(3, 4) + "moov"), "none");
    EXPECT_EQ(CoverIn(Box("ftyp", "M4A ") + Number(1, 4) + "moov" + Number(5, 8)), "none");
}

TEST(Mp4Cover, FileCutAnywhere_IsWholeOrNone)
{
    const std::string file = Mp4(Box("covr", Data(kJpeg)));
    for (size_t length = 0; length <= file.size(); ++length) {
        const std::string found = CoverIn(file.substr(0, length));
        EXPECT_TRUE(found == "none" || found == "image/jpeg " + kJpeg) << length << ": " << found;
    }
    EXPECT_NE(CoverIn(file), "none");
}

}  // namespace
}  // namespace kesta::formats
