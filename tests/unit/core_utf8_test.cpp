// The loops through which texts go: blocks of ASCII, and UTF-8 to code units.
#include "core/utf8.h"

#include <algorithm>
#include <random>

#include "core/ascii.h"
#include "core/caller_memory.h"
#include "unit/module_under_test.h"

namespace kesta {
namespace {

// Three of the larger blocks and a little more.
constexpr size_t kLengths = 3 * kWidenedBlock + 3;
constexpr DbChar kUntouched = 0xBEEF;

/// Letters of which no two neighbours are the same, the first and the last of ASCII among them.
std::string Letters(size_t length)
{
    constexpr std::string_view kLetters = "\x01 ab~!\x7F(0Z9@[`{}";
    std::string letters;
    for (size_t i = 0; i < length; ++i) {
        letters += kLetters[i % kLetters.size()];
    }
    return letters;
}

std::vector<DbChar> UnitsOf(std::string_view ascii)
{
    return {ascii.begin(), ascii.end()};
}

TEST(IsAscii, EveryLength_OneOtherByteAtEveryPlace_IsFound)
{
    for (size_t length = 0; length < kLengths; ++length) {
        const std::string letters = Letters(length);
        EXPECT_TRUE(IsAscii(letters)) << length;
        for (size_t place = 0; place < length; ++place) {
            for (const char other : {'\x80', '\xC3', '\xFF'}) {
                std::string text = letters;
                text[place] = other;
                ASSERT_FALSE(IsAscii(text)) << length << ", " << place;
            }
        }
    }
}

TEST(WidenAscii, EveryLength_IsWidenedAndNoUnitMore)
{
    for (size_t length = 0; length < kLengths; ++length) {
        const std::string letters = Letters(length);
        std::vector<DbChar> expected = UnitsOf(letters);
        expected.push_back(kUntouched);
        std::vector<DbChar> out(length + 1, kUntouched);
        WidenAscii(letters, out.data());
        EXPECT_EQ(out, expected) << length;
    }
}

/// Behind the unit there is another one that counts as well: it must not be taken for the first.
TEST(NarrowAsciiBlock, EveryUnitAtEveryPlace_StopsIfItStopsOrIsNoAscii)
{
    constexpr DbChar kStop = '\'';
    constexpr DbChar kUntil = ',';
    for (size_t place = 0; place < kNarrowedBlock; ++place) {
        for (const std::string_view letters : {"abcdefgh", "((((((((", "--------", "''''''''"}) {
            std::vector<DbChar> block = UnitsOf("abcdefgh");
            std::copy(letters.begin() + static_cast<ptrdiff_t>(place), letters.begin() + kNarrowedBlock,
                      block.begin() + static_cast<ptrdiff_t>(place));
            for (unsigned unit = 1; unit <= 0xFFFF; ++unit) {
                block[place] = static_cast<DbChar>(unit);
                const bool plain = unit < 0x80 && unit != kStop && unit != kUntil;
                const size_t next = letters[0] == '\'' ? place + 1 : kNarrowedBlock;
                char out[kNarrowedBlock];
                ASSERT_EQ(NarrowAsciiBlock(block.data(), kStop, kUntil, out), plain ? next : place)
                    << unit << " at " << place;
                const size_t ascii = unit < 0x80 ? kNarrowedBlock : place;
                ASSERT_EQ(NarrowAsciiBlock(block.data(), 0, 0, out), ascii) << unit << " at " << place;
                for (size_t i = 0; i < ascii; ++i) {
                    ASSERT_EQ(static_cast<DbChar>(out[i]), block[i]);
                }
            }
        }
    }
}

/// Copies into a buffer of its own and checks that nothing was written behind it.
std::string Copied(const std::vector<DbChar>& text, size_t length, DbChar stop, DbChar until)
{
    std::string out(length + 1, '#');
    const size_t copied = CopyAscii(text.data(), length, stop, until, out.data());
    EXPECT_LE(copied, length);
    EXPECT_EQ(out[length], '#');
    return out.substr(0, copied);
}

TEST(CopyAscii, EveryLength_StopsBeforeTheFirstUnitThatIsNotToBeCopied)
{
    for (size_t length = 0; length < kLengths; ++length) {
        const std::string letters = Letters(length);
        const std::vector<DbChar> text = UnitsOf(letters);
        EXPECT_EQ(Copied(text, length, '\'', ','), letters);
        EXPECT_EQ(Copied(text, length / 2, '\'', ','), letters.substr(0, length / 2));
        for (size_t place = 0; place < length; ++place) {
            for (const unsigned other : {0x27u, 0x2Cu, 0x80u, 0xE9u, 0x0141u, 0x2741u, 0x8041u, 0xFFFFu}) {
                std::vector<DbChar> stopped = text;
                stopped[place] = static_cast<DbChar>(other);
                ASSERT_EQ(Copied(stopped, length, '\'', ','), letters.substr(0, place)) << length << ", " << other;
            }
        }
    }
}

/// None for a text that is not valid. The buffer has room for as many units as the text has bytes, and no more.
std::optional<std::vector<DbChar>> Widened(std::string_view text)
{
    // Copies of their own size, so that memory checkers see one byte too many.
    const std::vector<char> bytes(text.begin(), text.end());
    std::vector<DbChar> units(text.size());
    const std::optional<size_t> length = WidenUtf8({bytes.data(), bytes.size()}, units.data());
    if (!length.has_value()) {
        return std::nullopt;
    }
    EXPECT_LE(*length, units.size());
    units.resize(*length);
    return units;
}

void AppendUnits(std::vector<DbChar>& units, char32_t character)
{
    if (character < 0x10000) {
        units.push_back(static_cast<DbChar>(character));
    } else {
        units.push_back(static_cast<DbChar>(0xD7C0 + character / 0x400));
        units.push_back(static_cast<DbChar>(0xDC00 + character % 0x400));
    }
}

/// By the tests' own conversion.
std::string Utf8Of(std::vector<DbChar> units)
{
    units.push_back(0);
    return test::Utf8(units.data());
}

bool IsSurrogate(char32_t character)
{
    return character >= 0xD800 && character < 0xE000;
}

TEST(WidenUtf8, EveryCharacter_IsConverted)
{
    for (char32_t first = 0; first <= 0x10FFFF; first += 0x100) {
        if (IsSurrogate(first)) {
            continue;
        }
        std::vector<DbChar> units;
        for (char32_t character = std::max(first, char32_t{1}); character < first + 0x100; ++character) {
            if (character != 0xFFFE && character != 0xFFFF) {
                AppendUnits(units, character);
            }
        }
        ASSERT_EQ(Widened(Utf8Of(units)), units) << static_cast<uint32_t>(first);
    }
    EXPECT_EQ(Widened(std::string(1, '\0')), std::vector<DbChar>{0});
    EXPECT_EQ(Widened(""), std::vector<DbChar>{});
    EXPECT_FALSE(Widened("\xEF\xBF\xBE").has_value());
    EXPECT_FALSE(Widened("\xEF\xBF\xBF").has_value());
}

TEST(WidenUtf8, EveryCharacter_CutShort_IsInvalid)
{
    for (const char32_t character :
         {U'\x80', U'\x7FF', U'\x800', U'\xD7FF', U'\xE000', U'\xFFFF', U'\x10000', U'\x3FFFF', U'\x10FFFF'}) {
        std::vector<DbChar> wide;
        AppendUnits(wide, character);
        const std::string whole = Utf8Of(wide);
        for (size_t length = 1; length < whole.size(); ++length) {
            const std::string cut = whole.substr(0, length);
            EXPECT_FALSE(Widened(cut).has_value()) << static_cast<uint32_t>(character);
            EXPECT_FALSE(Widened(Letters(20) + cut).has_value()) << static_cast<uint32_t>(character);
            EXPECT_FALSE(Widened(cut + "a").has_value()) << static_cast<uint32_t>(character);
            EXPECT_FALSE(Widened(cut + whole).has_value()) << static_cast<uint32_t>(character);
            // What would make it whole lies behind its end.
            DbChar units[4];
            EXPECT_FALSE(WidenUtf8(std::string_view(whole).substr(0, length), units).has_value());
        }
    }
}

TEST(WidenUtf8, EveryKindOfInvalidBytes_IsRefusedWhereverItStands)
{
    struct Kind {
        const char* name;
        std::vector<std::string> bytes;
    };
    const Kind kinds[] = {
        {"stray continuation", {"\x80", "\xBF", "\x80\xBF", "\xC3\xA9\xA9", "\xE6\x97\xA5\xA5"}},
        {"overlong, two bytes", {"\xC0\x80", "\xC0\xAF", "\xC1\xBF"}},
        {"overlong, three bytes", {"\xE0\x80\x80", "\xE0\x80\xAF", "\xE0\x9F\xBF"}},
        {"overlong, four bytes", {"\xF0\x80\x80\x80", "\xF0\x80\x80\xAF", "\xF0\x8F\xBF\xBF"}},
        {"surrogate", {"\xED\xA0\x80", "\xED\xAF\xBF", "\xED\xB0\x80", "\xED\xBF\xBF", "\xED\xA0\xBD\xED\xB8\x80"}},
        {"above U+10FFFF", {"\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xF7\xBF\xBF\xBF"}},
        {"longer than four bytes", {"\xF8\x88\x80\x80\x80", "\xFB\xBF\xBF\xBF\xBF", "\xFC\x84\x80\x80\x80\x80"}},
        {"no lead byte", {"\xFE", "\xFF", "\xFE\xFE\xFF\xFF"}},
    };
    for (const Kind& kind : kinds) {
        for (const std::string& bytes : kind.bytes) {
            EXPECT_FALSE(Widened(bytes).has_value()) << kind.name;
            EXPECT_FALSE(Widened("a" + bytes).has_value()) << kind.name;
            EXPECT_FALSE(Widened(bytes + "a").has_value()) << kind.name;
            EXPECT_FALSE(Widened("\xF0\x9F\x8E\xB5" + bytes + Letters(20)).has_value()) << kind.name;
        }
    }
}

/// The table of well-formed byte sequences in the Unicode standard: the second byte's range hangs on the first. Without
/// the two that are left to SQLite.
bool IsWellFormed(const std::string& character)
{
    const auto within = [&](size_t i, int low, int high) {
        const int byte = static_cast<unsigned char>(character[i]);
        return byte >= low && byte <= high;
    };
    const auto ends = [&](size_t length) {
        if (character.size() != length) {
            return false;
        }
        for (size_t i = 2; i < length; ++i) {
            if (!within(i, 0x80, 0xBF)) {
                return false;
            }
        }
        return true;
    };
    if (character == "\xEF\xBF\xBE" || character == "\xEF\xBF\xBF") {
        return false;
    }
    if (within(0, 0x00, 0x7F)) {
        return ends(1);
    }
    if (within(0, 0xC2, 0xDF)) {
        return ends(2) && within(1, 0x80, 0xBF);
    }
    if (within(0, 0xE0, 0xE0)) {
        return ends(3) && within(1, 0xA0, 0xBF);
    }
    if (within(0, 0xED, 0xED)) {
        return ends(3) && within(1, 0x80, 0x9F);
    }
    if (within(0, 0xE1, 0xEF)) {
        return ends(3) && within(1, 0x80, 0xBF);
    }
    if (within(0, 0xF0, 0xF0)) {
        return ends(4) && within(1, 0x90, 0xBF);
    }
    if (within(0, 0xF1, 0xF3)) {
        return ends(4) && within(1, 0x80, 0xBF);
    }
    if (within(0, 0xF4, 0xF4)) {
        return ends(4) && within(1, 0x80, 0x8F);
    }
    return false;
}

/// Every first and every second byte, with third and fourth ones on either side of each border.
TEST(WidenUtf8, EveryBeginning_IsValidWhenTheStandardSaysSo)
{
    constexpr std::string_view kBorders("\x00\x7F\x80\xBF\xC0\xFF", 6);
    for (int lead = 0x80; lead <= 0xFF; ++lead) {
        for (int second = 0; second <= 0xFF; ++second) {
            const std::string two = {static_cast<char>(lead), static_cast<char>(second)};
            // Followed by an ASCII letter it is what it is alone.
            ASSERT_EQ(Widened(two).has_value(), IsWellFormed(two) && second >= 0x80) << lead << ", " << second;
            for (const char third : kBorders) {
                const std::string three = two + third;
                const bool restIsText = IsWellFormed(two) && static_cast<unsigned char>(third) < 0x80;
                ASSERT_EQ(Widened(three).has_value(), IsWellFormed(three) || restIsText) << lead << ", " << second;
                if (lead < 0xE0) {
                    continue;
                }
                for (const char fourth : kBorders) {
                    const std::string four = three + fourth;
                    const bool letterFollows = IsWellFormed(three) && static_cast<unsigned char>(fourth) < 0x80;
                    ASSERT_EQ(Widened(four).has_value(), IsWellFormed(four) || letterFollows) << lead << ", " << second;
                }
            }
        }
    }
}

class TextColumn : public ModuleUnderTest {
protected:
    /// Units of 1, 2, 3 and 4 bytes by turns of random length, as texts in several scripts have them.
    std::vector<DbChar> randomText(size_t atLeast)
    {
        constexpr std::pair<char32_t, char32_t> kRanges[] = {
            {0x01, 0x7F}, {0x80, 0x7FF}, {0x800, 0xD7FF}, {0xE000, 0xFFFD}, {0x10000, 0x10FFFF}};
        std::vector<DbChar> units;
        while (units.size() < atLeast) {
            const auto& range = kRanges[random_() % std::size(kRanges)];
            for (size_t run = random_() % 20; run > 0; --run) {
                const auto character =
                    static_cast<char32_t>(range.first + random_() % (range.second - range.first + 1));
                if ((character & 0xFFFE) != 0xFFFE) {
                    AppendUnits(units, character);
                }
            }
        }
        return units;
    }

private:
    std::mt19937 random_{20260321};  // NOLINT: the same texts in every run
};

TEST_F(TextColumn, ValidTexts_AreConvertedAsSqliteConvertsThem)
{
    constexpr char kHex[] = "0123456789ABCDEF";
    for (size_t i = 0; i < 2000; ++i) {
        const std::vector<DbChar> units = randomText(1 + i % 600);
        const std::string utf8 = Utf8Of(units);
        std::string expression = "CAST(x'";
        for (const char c : utf8) {
            const auto byte = static_cast<unsigned char>(c);
            expression += {kHex[byte / 16], kHex[byte % 16]};
        }
        expression += "' AS TEXT)";
        Statement rows = db().prepare(NarrowSql("SELECT %s", Name{expression.c_str()}));
        ASSERT_TRUE(rows.step());
        DbChar* read = rows.newText(0);
        ASSERT_NE(read, nullptr);
        const std::vector<DbChar> ours(read, read + units.size() + 1);
        FreeText(read);
        const DbChar* const theirs = rows.wideText(0);
        ASSERT_EQ(ours, std::vector<DbChar>(theirs, theirs + units.size() + 1)) << utf8;
        ASSERT_EQ(Widened(utf8), units) << utf8;
    }
}

}  // namespace
}  // namespace kesta
