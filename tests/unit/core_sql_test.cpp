// Making the text of a statement.
#include "core/sql_text.h"

#include "core/text.h"
#include "unit/module_under_test.h"

namespace kesta {
namespace {

using test::Text;
using test::W;

constexpr char kReplacement[] = "\xEF\xBF\xBD";

class StatementText : public ModuleUnderTest {
protected:
    static std::string made(const Sql& sql)
    {
        SqlText text(db().textBuffer());
        text.append(sql);
        return text.tooLong() ? "too long" : std::string(text.text());
    }
    static bool fits(const Sql& sql) { return made(sql) != "too long"; }
    static std::string escaped(const DbChar* text) { return made(WideSql("%s", Escaped{text})); }
    static std::string plain(const DbChar* text) { return made(WideSql("%s", Plain{text})); }
    static std::string ansi(const DbChar* text) { return made(NarrowSql("%s", Ansi{text})); }
};

TEST_F(StatementText, Escaped_Apostrophes_AreDoubledWhereverTheyStand)
{
    EXPECT_EQ(escaped(W("")), "");
    EXPECT_EQ(escaped(W("plain")), "plain");
    EXPECT_EQ(escaped(W("O'Brien's")), "O''Brien''s");
    EXPECT_EQ(escaped(W("'")), "''");
    EXPECT_EQ(escaped(W("''")), "''''");
    EXPECT_EQ(escaped(W("'a")), "''a");
    EXPECT_EQ(escaped(W("a'")), "a''");
    EXPECT_EQ(escaped(nullptr), "");
}

/// Every place of a text is tried, since it is copied in blocks.
TEST_F(StatementText, Escaped_OneApostropheAmongOtherLetters_IsDoubledAtEveryPlace)
{
    for (size_t length = 1; length < 40; ++length) {
        for (size_t place = 0; place < length; ++place) {
            std::string text(length, 'x');
            text[place] = '\'';
            std::string expected = text;
            expected.insert(place, "'");
            EXPECT_EQ(escaped(W(text)), expected);
            EXPECT_EQ(plain(W(text)), text);
            EXPECT_EQ(ansi(W(text)), text);
        }
    }
}

TEST_F(StatementText, AnyKind_OneLongCharacterAmongOtherLetters_IsConvertedAtEveryPlace)
{
    for (const std::string character : {"\xC2\x80", "\xC3\xA9", "\xDF\xBF", "\xE0\xA0\x80", "\xE6\x97\xA5",
                                        "\xEF\xBF\xBD", "\xF0\x90\x80\x80", "\xF0\x9F\x8E\xB5", "\xF4\x8F\xBF\xBF"}) {
        for (size_t length = 0; length < 20; ++length) {
            for (size_t place = 0; place <= length; ++place) {
                std::string text(length, 'x');
                text.insert(place, character);
                EXPECT_EQ(escaped(W(text)), text);
                EXPECT_EQ(plain(W(text)), text);
            }
        }
    }
}

TEST_F(StatementText, AnyKind_LoneSurrogates_BecomeTheReplacementCharacter)
{
    struct Case {
        Text text;
        std::string expected;
    };
    const std::string r = kReplacement;
    const Case cases[] = {{Text::ofUnits({0xD800}), r},
                          {Text::ofUnits({0xDFFF}), r},
                          {Text::ofUnits({'a', 0xD83D, 'b'}), "a" + r + "b"},
                          {Text::ofUnits({0xDC00, 0xD800}), r + r},
                          {Text::ofUnits({0xD83D, 0xD83D, 0xDE00}), r + "\xF0\x9F\x98\x80"},
                          {Text::ofUnits({0xD83D, 0xDE00, 0xDE00}), "\xF0\x9F\x98\x80" + r},
                          {Text::ofUnits({0xD83D, '\'', 0xDE00}), r + "'" + r}};
    for (const Case& each : cases) {
        EXPECT_EQ(plain(each.text), each.expected);
    }
    EXPECT_EQ(escaped(cases[6].text), r + "''" + r);
}

TEST_F(StatementText, Escaped_EndCharacter_EndsTheText)
{
    const auto until = [](const DbChar* text) {
        return made(WideSql("<%s>", Escaped{text, static_cast<DbChar>(':')}));
    };
    EXPECT_EQ(until(W("35:11:22")), "<35>");
    EXPECT_EQ(until(W(":35")), "<>");
    EXPECT_EQ(until(W("it's\xC3\xA9:x")), "<it''s\xC3\xA9>");
    EXPECT_EQ(until(W("351111")), "<351111>");
    EXPECT_EQ(until(nullptr), "<>");
    for (size_t length = 0; length < 30; ++length) {
        EXPECT_EQ(until(W(std::string(length, 'x') + ":y")), "<" + std::string(length, 'x') + ">");
    }
}

TEST_F(StatementText, PlainAndAnsi_Null_IsTheTextNull)
{
    EXPECT_EQ(plain(nullptr), "(null)");
    EXPECT_EQ(ansi(nullptr), "(null)");
    EXPECT_EQ(ansi(W("a'b")), "a'b");
}

TEST_F(StatementText, Numbers_Extremes_AreWrittenInDecimal)
{
    EXPECT_EQ(
        made(NarrowSql("%d %d %I64d %I64d", int32_t{INT32_MIN}, int32_t{-1}, int64_t{INT64_MIN}, int64_t{INT64_MAX})),
        "-2147483648 -1 -9223372036854775808 9223372036854775807");
}

TEST_F(StatementText, Append_Pieces_FollowEachOther)
{
    SqlText text(db().textBuffer());
    text.append(WideSql("UPDATE %s SET", Name{"t"}));
    text.append(WideSql(" [A] = %d", int32_t{5}));
    text.append(WideSql(", [B] = '%s'", Escaped{W("it's")}));
    EXPECT_EQ(text.text(), "UPDATE t SET [A] = 5, [B] = 'it''s'");
    EXPECT_FALSE(text.tooLong());
}

/// What fills the rest of a statement, and how many bytes it takes.
TEST_F(StatementText, Limit_LastCharacter_FitsToTheByteAndNotOneMore)
{
    struct Case {
        std::string text;
        size_t bytes;  // escaped
    };
    for (const Case& each : {Case{"x", 1}, Case{"'", 2}, Case{"\xC3\xA9", 2}, Case{"\xE6\x97\xA5", 3},
                             Case{"\xF0\x9F\x8E\xB5", 4}, Case{"'\xF0\x9F\x8E\xB5'", 8}}) {
        const std::string room(kStatementBytes - each.bytes, 'r');
        EXPECT_EQ(made(WideSql("%s%s", Escaped{W(room)}, Escaped{W(each.text)})).size(), kStatementBytes) << each.text;
        EXPECT_FALSE(fits(WideSql("%s%s", Escaped{W(room + "r")}, Escaped{W(each.text)}))) << each.text;
    }
}

TEST_F(StatementText, Limit_LiteralNumberAndName_AreCountedToo)
{
    const std::string room(kStatementBytes - 3, 'r');
    EXPECT_TRUE(fits(WideSql("%sabc", Escaped{W(room)})));
    EXPECT_FALSE(fits(WideSql("%sabcd", Escaped{W(room)})));
    EXPECT_TRUE(fits(WideSql("%s%d", Escaped{W(room)}, int32_t{-12})));
    EXPECT_FALSE(fits(WideSql("%s%d", Escaped{W(room)}, int32_t{-123})));
    EXPECT_TRUE(fits(WideSql("%s%s", Escaped{W(room)}, Name{"tab"})));
    EXPECT_FALSE(fits(WideSql("%s%s", Escaped{W(room)}, Name{"tabl"})));
    EXPECT_FALSE(fits(WideSql("%s%s", Escaped{W(room)}, Plain{nullptr})));
    EXPECT_TRUE(fits(WideSql("%s%s", Escaped{W(room)}, Escaped{nullptr})));
    EXPECT_TRUE(fits(NarrowSql("%s%s", Ansi{W(room)}, Ansi{W("abc")})));
    EXPECT_FALSE(fits(NarrowSql("%s%s", Ansi{W(room)}, Ansi{W("abcd")})));
}

TEST_F(StatementText, Limit_OnceExceeded_StaysExceeded)
{
    const std::string letters(kStatementBytes + 1, 'x');
    SqlText text(db().textBuffer());
    text.append(WideSql("%s", Escaped{W(letters)}));
    EXPECT_TRUE(text.tooLong());
    text.append(WideSql(""));
    text.append(WideSql("%s", Escaped{W("")}));
    EXPECT_TRUE(text.tooLong());
    EXPECT_EQ(db().exec(text), SqliteCode::kTooBig);
    EXPECT_EQ(db().exec(WideSql("%s", Escaped{W(letters)})), SqliteCode::kTooBig);
    const Statement none = db().prepare(WideSql("%s", Escaped{W(letters)}));
    EXPECT_FALSE(none.prepared());
    EXPECT_EQ(none.last(), SqliteCode::kTooBig);
}

TEST_F(StatementText, EscapeSqlText_LongText_StopsAtItsLimit)
{
    const auto length = [](const std::string& text) {
        size_t units = 0;
        EscapeSqlText(W(text), 0, [&](const DbChar*, size_t run) { units += run; });
        return units;
    };
    EXPECT_EQ(length(std::string(40957, 'x')), 40957u);
    EXPECT_EQ(length(std::string(40958, 'x')), 40958u);
    EXPECT_EQ(length(std::string(40959, 'x')), 40958u);
    EXPECT_EQ(length(std::string(30000, '\'')), 40958u);
    EXPECT_EQ(length(std::string(40956, 'x') + "'x"), 40958u);
    EXPECT_EQ(length(std::string(40957, 'x') + "'x"), 40958u);  // the pair does not fit whole
    EXPECT_EQ(length(std::string(40958, 'x') + "'x"), 40958u);
    EXPECT_EQ(length(std::string(40956, 'x') + "''"), 40958u);
    EXPECT_EQ(length("it's"), 5u);
    const auto escapedUntilColon = [](const char* text) {
        std::basic_string<DbChar> escaped;
        EscapeSqlText(W(text), static_cast<DbChar>(':'),
                      [&](const DbChar* run, size_t units) { escaped.append(run, units); });
        return test::Utf8(escaped.c_str());
    };
    EXPECT_EQ(escapedUntilColon("it's:'more"), "it''s");
    EXPECT_EQ(escapedUntilColon("it':more"), "it''");
    EXPECT_EQ(escapedUntilColon(":more"), "");
    size_t runs = 0;
    EscapeSqlText(nullptr, 0, [&](const DbChar*, size_t) { ++runs; });
    EXPECT_EQ(runs, 0u);
}

TEST_F(StatementText, LengthOf_CountsCodeUnits)
{
    EXPECT_EQ(LengthOf(W("")), 0u);
    EXPECT_EQ(LengthOf(W("a\xF0\x9F\x8E\xB5")), 3u);
    EXPECT_TRUE(IsEmpty(nullptr));
    EXPECT_TRUE(IsEmpty(W("")));
    EXPECT_FALSE(IsEmpty(W(" ")));
}

}  // namespace
}  // namespace kesta
