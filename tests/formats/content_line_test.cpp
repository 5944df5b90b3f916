#include <gmock/gmock.h>

#include "formats/charset.h"
#include "formats/content_line.h"
#include "formats/digest.h"
#include "formats/timestamp.h"

namespace kesta::formats {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

ContentLine First(std::string_view text, Folding folding = Folding::kDropBlank)
{
    return ContentLineReader(text, folding).next().value_or(ContentLine{});
}

TEST(ContentLine, GroupNameParametersValue)
{
    const ContentLine line = First("item1.email;TYPE=\"a,b;c:d\",home;X-y=^'q^^^n;PREF:x:y;z\r\n");
    EXPECT_EQ(line.group, "ITEM1");
    EXPECT_EQ(line.name, "EMAIL");
    EXPECT_EQ(line.value, "x:y;z");
    ASSERT_THAT(line.parameters, SizeIs(3));
    EXPECT_THAT(FindParameter(line, "TYPE")->values, ElementsAre("a,b;c:d", "home"));
    EXPECT_THAT(FindParameter(line, "X-Y")->values, ElementsAre("\"q^\n"));
    EXPECT_EQ(line.parameters[2].name, "");
    EXPECT_EQ(FindParameter(line, "CHARSET"), nullptr);
}

TEST(ContentLine, Folding)
{
    EXPECT_EQ(First("NOTE:ab\r\n cd\r\n\te\r\nX:1").value, "abcde");
    EXPECT_EQ(First("NOTE:ab\n  cd\n").value, "ab cd");
    EXPECT_EQ(First("NOTE:ab\r\n cd\r\n", Folding::kKeepBlank).value, "ab cd");
    EXPECT_EQ(First("NO\r\n TE:\xC3\r\n \x84\r\n").value, "Ä");
    EXPECT_EQ(First("VERSION\n\n :2.0\nX:1").value, "2.0");
}

TEST(ContentLine, QuotedPrintable)
{
    EXPECT_EQ(DecodedValue(First("N;ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8:M=C3=\r\n=BCller\r\nX:1")), "Müller");
    EXPECT_EQ(DecodedValue(First("N;QUOTED-PRINTABLE;CHARSET=ISO-8859-1:M=FC=3D=zz\r\n")), "Mü==zz");
    EXPECT_EQ(DecodedValue(First("N;quoted-printable:a=\r\nEND:VCARD\r\n")), "a");
    EXPECT_EQ(DecodedValue(First("N;ENCODING=8BIT:a=\r\nb")), "a=");
    EXPECT_EQ(DecodedValue(First("N;QUOTED-PRINTABLE:a=00b")), "a b");
    EXPECT_EQ(DecodedValue(First("N;CHARSET=ISO-8859-2:Ji\xF8\xED")), "Jiří");
    EXPECT_EQ(DecodedValue(First("N;CHARSET=Shift_JIS:\x91\xBE\x98\x59")), "太郎");
    EXPECT_EQ(DecodedValue(First("N;CHARSET=windows-1251:\xC8\xE2\xE0\xED")), "Иван");
    const std::string cut = DecodedValue(First("N;CHARSET=SHIFT-JIS:a\x91"));  // in the middle of a character
    EXPECT_TRUE(cut.starts_with('a') && IsUtf8(cut)) << cut;
    EXPECT_EQ(DecodedValue(First("N;CHARSET=X-ODD:\xFC")), "ü");
}

TEST(ContentLine, PlacesAndLineNumbers)
{
    ContentLineReader reader("A:1\r\n\r\nB:2\n 3\nno content line\nC:4");
    EXPECT_EQ(reader.next()->end, 5U);
    const ContentLine b = *reader.next();
    EXPECT_EQ(b.begin, 7U);
    EXPECT_EQ(b.number, 3U);
    const ContentLine odd = *reader.next();
    EXPECT_EQ(odd.name, "");
    EXPECT_EQ(odd.number, 5U);
    EXPECT_EQ(reader.next()->name, "C");
    EXPECT_FALSE(reader.next().has_value());
}

TEST(ContentLine, Escapes)
{
    EXPECT_EQ(Unescaped("a\\nb\\Nc\\,d\\;e\\\\f\\"), "a\nb\nc,d;e\\f\\");
    EXPECT_THAT(SplitUnescaped("a\\;b;c;;d\\", ';'), ElementsAre("a\\;b", "c", "", "d\\"));
}

TEST(Timestamp, Forms)
{
    const std::pair<const char*, std::optional<int64_t>> cases[] = {{"19700102T000000Z", 86400},
                                                                    {"2020-09-13T12:26:40Z", 1600000000},
                                                                    {"20200913T142640+0200", 1600000000},
                                                                    {"2020-09-13T07:26:40.75-05", 1600000000},
                                                                    {"2020-09-13 12:26:40", 1600000000},
                                                                    {"20200913", 1599955200},
                                                                    {"2020-09-13T1226Z", 1599999960},
                                                                    {" 1969-12-31T23:59:59Z ", -1},
                                                                    {"20200230", {}},
                                                                    {"20200913T250000Z", {}},
                                                                    {"20200913T1226Zjunk", {}},
                                                                    {"--0412", {}},
                                                                    {"", {}}};
    for (const auto& [text, seconds] : cases) {
        EXPECT_EQ(ParseTimestamp(text), seconds) << text;
    }
}

TEST(Digest, IsFixedAndTellsContentsApart)
{
    EXPECT_EQ(Digest(""), "99aa06d3014798d86001c324468d497f");
    EXPECT_EQ(Digest("abc"), "06b05ab6733a618578af5f94892f3950");
    EXPECT_NE(Digest("a"), Digest("b"));
}

TEST(Charset, Latin1)
{
    EXPECT_EQ(FromLatin1("\x80\x81\x9F\xA0\xFF"), "\u20AC\u0081\u0178\u00A0\u00FF");
    EXPECT_EQ(FromUtf8OrLatin1("\xC3\x84"), "Ä");
    EXPECT_EQ(WithoutByteOrderMark("\xEF\xBB\xBFx"), "x");
}

}  // namespace
}  // namespace kesta::formats
