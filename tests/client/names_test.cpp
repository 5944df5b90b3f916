// Names on the phone.
#include "phone/names.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "phone/marker.h"

namespace kesta {
namespace {

TEST(NamesTest, SafeName_LeavesWhatEveryPhoneCanHold)
{
    for (const char* name : {"song.mp3", "O'Brien.mp3", "Gr\u00f6\u00dfe", "\u65e5\u672c\u8a9e", "\U0001F600",
                             " leading", ".hidden", "..a", "COM", "COM12", "console.txt", "a.con", "null", "~"}) {
        EXPECT_EQ(SafeName(name), name);
    }
}

TEST(NamesTest, SafeName_ReplacesWhatFatAndWindowsCannotHold)
{
    const std::pair<const char*, const char*> table[] = {
        {"a<b>c:d\"e|f?g*h\\i", "a_b_c_d_e_f_g_h_i"},
        {"bell\a\x7f\u0085", "bell___"},
        {"dot.", "dot_"},
        {"dots...", "dots___"},
        {"blank ", "blank_"},
        {". . ", "____"},
        {"", "_"},
        {".", "_"},
        {"..", "__"},
        {"CON", "_CON"},
        {"con.txt", "_con.txt"},
        {"nul.tar.gz", "_nul.tar.gz"},
        {"Com1", "_Com1"},
        {"LPT9.x", "_LPT9.x"},
        {"COM\u00b2", "_COM\u00b2"},
        {"aux .txt", "_aux .txt"},
        {"conin$", "_conin$"},
        {".kesta-part", "_.kesta-part"},
        {".KESTA-phone", "_.KESTA-phone"},
        {"bad\xff", "bad_"},
    };
    for (const auto& [name, safe] : table) {
        EXPECT_EQ(SafeName(name), safe) << name;
    }
}

TEST(NamesTest, SafeName_ShortensAtAWholeCharacterAndTellsApart)
{
    std::string one, other;
    for (int i = 0; i < 100; ++i) {
        one += "\u65e5";
    }
    other = one + "2.mp3";
    one += "1.mp3";
    for (const std::string& name : {SafeName(one), SafeName(other)}) {
        EXPECT_LE(name.size(), 255u);
        EXPECT_GT(name.size(), 240u);
        EXPECT_TRUE(name.ends_with(".mp3"));
        EXPECT_EQ(SafeName(name), name);
    }
    EXPECT_NE(SafeName(one), SafeName(other));
    EXPECT_EQ(SafeName(std::string(255, 'n')), std::string(255, 'n'));
    EXPECT_NE(SafeName(std::string(256, 'n')), std::string(256, 'n'));
}

TEST(NamesTest, CaseKey_IsEqualWhereCaseIsIgnored)
{
    EXPECT_EQ(CaseKey("Music/song.MP3"), CaseKey("music/SONG.mp3"));
    EXPECT_EQ(CaseKey("\u00e4\u0436\u03c9"), CaseKey("\u00c4\u0416\u03a9"));
    EXPECT_NE(CaseKey("a"), CaseKey("\u00e4"));
    EXPECT_NE(CaseKey("a/b"), CaseKey("a_b"));
}

TEST(NamesTest, SuffixedName_IsStableAndKeepsTheExtension)
{
    EXPECT_EQ(SuffixedName("song.mp3", "seed", 0), SuffixedName("song.mp3", "seed", 0));
    EXPECT_NE(SuffixedName("song.mp3", "seed", 0), SuffixedName("song.mp3", "seed", 1));
    EXPECT_NE(SuffixedName("song.mp3", "seed", 0), SuffixedName("song.mp3", "other", 0));
    EXPECT_EQ(SuffixedName("song.mp3", "/pc/song.mp3", 0), "song~d5f335.mp3");
    EXPECT_THAT(SuffixedName(".hidden", "seed", 0), testing::StartsWith(".hidden~"));
}

TEST(NamesTest, IsPhonePath_TakesOnlyPlacesBelowTheCategory)
{
    EXPECT_TRUE(IsPhonePath("Music/Rock/a.mp3", Category::kMusic));
    EXPECT_TRUE(IsPhonePath("Pictures/a", Category::kImages));
    for (const char* path :
         {"", "Music", "Music/", "music/a", "/Music/a", "Music//a", "Music/../a", "Music/./a", "a/b", "Pictures/a",
          "Music/a/..", "Music/a\\..\\b", "C:/Music/a", "Music/.kesta-part", "Music/\xff"}) {
        EXPECT_FALSE(IsPhonePath(path, Category::kMusic)) << path;
    }
}

TEST(NamesTest, MakeImei_HasFifteenDigitsAndAValidCheckDigit)
{
    for (const uint64_t seed : {uint64_t{0}, uint64_t{1}, uint64_t{123456789012}, ~uint64_t{0}}) {
        const std::string imei = MakeImei(seed);
        ASSERT_EQ(imei.size(), 15u);
        EXPECT_TRUE(imei.starts_with("00"));
        int sum = 0;
        for (size_t i = 0; i < imei.size(); ++i) {
            const int digit = imei[i] - '0';
            ASSERT_TRUE(digit >= 0 && digit <= 9);
            // From the right, every second digit is doubled and its digits added up.
            const int doubled = (imei.size() - i) % 2 == 0 ? digit * 2 : digit;
            sum += doubled / 10 + doubled % 10;
        }
        EXPECT_EQ(sum % 10, 0) << imei;
    }
    EXPECT_EQ(MakeImei(0), "000000000000000");
    EXPECT_EQ(MakeImei(1), "000000000000018");
}

TEST(NamesTest, ImeiProblem_NamesWhatTheDatabaseCannotTake)
{
    EXPECT_EQ(ImeiProblem("351111"), "");
    EXPECT_EQ(ImeiProblem("35:36"), "");
    EXPECT_THAT(ImeiProblem("3'5"), testing::HasSubstr("apostrophe"));
    EXPECT_NE(ImeiProblem(""), "");
    EXPECT_NE(ImeiProblem("\u00e4"), "");
    EXPECT_NE(ImeiProblem(std::string(101, '1')), "");
}

}  // namespace
}  // namespace kesta
