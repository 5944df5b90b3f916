#include "platform/code_page.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace kesta::platform {
namespace {

struct Conversion {
    const char* name;
    std::vector<unsigned> units;
    std::string utf8;
};

/// Googletest would print the bytes, and those between the fields are nobody's.
[[maybe_unused]] void PrintTo(const Conversion& conversion, std::ostream* out)
{
    *out << conversion.name;
}

std::string NameOf(const ::testing::TestParamInfo<Conversion>& table)
{
    return table.param.name;
}

class Utf8Table : public ::testing::TestWithParam<Conversion> {
protected:
    void SetUp() override
    {
        for (const unsigned unit : GetParam().units) {
            text.push_back(static_cast<DbChar>(unit));
        }
    }

    std::vector<DbChar> text;
};

TEST_P(Utf8Table, ExactFit_ConvertsWithoutTerminator)
{
    const std::string& expected = GetParam().utf8;
    std::string out(expected.size() + 1, '#');
    EXPECT_EQ(Utf8FromWide(text.data(), text.size(), out.data(), expected.size()), expected.size());
    EXPECT_EQ(out, expected + '#');
}

TEST_P(Utf8Table, OneByteTooFew_DoesNotFit)
{
    const size_t size = GetParam().utf8.size();
    std::string out(size, '#');
    EXPECT_EQ(Utf8FromWide(text.data(), text.size(), out.data(), size - 1), kDoesNotFit);
    EXPECT_EQ(out.back(), '#');
}

INSTANTIATE_TEST_SUITE_P(
    Texts, Utf8Table,
    ::testing::Values(
        Conversion{"OneByte", {0x41}, "A"}, Conversion{"LastOfOneByte", {0x7F}, "\x7F"},
        Conversion{"FirstOfTwo", {0x80}, "\xC2\x80"}, Conversion{"LastOfTwo", {0x7FF}, "\xDF\xBF"},
        Conversion{"FirstOfThree", {0x800}, "\xE0\xA0\x80"}, Conversion{"LastOfThree", {0xFFFF}, "\xEF\xBF\xBF"},
        Conversion{"FirstPair", {0xD800, 0xDC00}, "\xF0\x90\x80\x80"},
        Conversion{"Emoji", {0xD83D, 0xDE00}, "\xF0\x9F\x98\x80"},
        Conversion{"LastPair", {0xDBFF, 0xDFFF}, "\xF4\x8F\xBF\xBF"},
        Conversion{"Mixed", {0x5A, 0xEB, 0x4E2D, 0xD83D, 0xDE00, 0x21}, "Z\xC3\xAB\xE4\xB8\xAD\xF0\x9F\x98\x80!"},
        Conversion{"ZeroInside", {0x41, 0x0, 0x42}, std::string("A\0B", 3)},
        Conversion{"LoneLeadAtEnd", {0x41, 0xD83D}, "A\xEF\xBF\xBD"},
        Conversion{"LoneLeadBeforeLetter",
                   {0xD83D, 0x41},
                   "\xEF\xBF\xBD"
                   "A"},
        Conversion{"LoneTrail",
                   {0xDE00, 0x41},
                   "\xEF\xBF\xBD"
                   "A"},
        Conversion{"TwoLeads", {0xD83D, 0xD83D, 0xDE00}, "\xEF\xBF\xBD\xF0\x9F\x98\x80"},
        Conversion{"WrongOrder", {0xDE00, 0xD83D}, "\xEF\xBF\xBD\xEF\xBF\xBD"}),
    &NameOf);

TEST(Utf8FromWide, EmptyText_FitsIntoNothing)
{
    const DbChar text[] = {0};
    char out = '#';
    EXPECT_EQ(Utf8FromWide(text, 0, &out, 0), 0u);
    EXPECT_EQ(Utf8FromWide(text, 0, &out, 1), 0u);
    EXPECT_EQ(out, '#');
}

TEST(Utf8FromWide, HalfAPairAtTheEnd_DoesNotTakeWhatFollowsTheText)
{
    const std::array<DbChar, 2> pair = {0xD83D, 0xDE00};
    std::array<char, 8> out = {};
    EXPECT_EQ(Utf8FromWide(pair.data(), 1, out.data(), out.size()), 3u);
    EXPECT_STREQ(out.data(), "\uFFFD");
}

TEST(Utf8FromWide, LongText_ConvertsWhole)
{
    const std::vector<DbChar> text(40960, static_cast<DbChar>(0x4E2D));
    std::string out(text.size() * 3, '#');
    EXPECT_EQ(Utf8FromWide(text.data(), text.size(), out.data(), out.size()), out.size());
    EXPECT_EQ(out.substr(out.size() - 3), "\xE4\xB8\xAD");
}

TEST(AnsiFromWide, PlainLetters_StayAsTheyAre)
{
    const DbChar text[] = {'3', '5', '1', 'a', '\''};
    std::string out(6, '#');
    EXPECT_EQ(AnsiFromWide(text, 5, out.data(), 5), 5u);
    EXPECT_EQ(out, "351a'#");
    EXPECT_EQ(AnsiFromWide(text, 5, out.data(), 4), kDoesNotFit);
    EXPECT_EQ(AnsiFromWide(text, 0, out.data(), 0), 0u);
}

}  // namespace
}  // namespace kesta::platform
