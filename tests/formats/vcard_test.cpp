#include <gmock/gmock.h>

#include "formats/vcard.h"

namespace kesta::formats {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

Card Only(std::string_view lines, std::string_view version = "3.0")
{
    const Cards cards =
        ParseCards("BEGIN:VCARD\r\nVERSION:" + std::string(version) + "\r\n" + std::string(lines) + "END:VCARD\r\n");
    EXPECT_THAT(cards.problems, IsEmpty());
    EXPECT_THAT(cards.cards, SizeIs(1));
    return cards.cards.empty() ? Card{} : cards.cards[0];
}

TEST(Cards, FieldsOfACard)
{
    const Card card = Only(
        "UID: urn:uuid:1 \r\nitem1.FN:Ann\\, the first\r\nN:Lee;Ann;;;\r\nREV:2020-09-13T12:26:40Z\r\n"
        "CATEGORIES:a\\,b,c, \r\nCATEGORIES:d\r\n");
    EXPECT_EQ(card.uid, "urn:uuid:1");
    EXPECT_FALSE(card.uidDerived);
    EXPECT_EQ(card.version, "3.0");
    EXPECT_EQ(card.name, "Ann, the first");
    EXPECT_EQ(card.revised, 1600000000);
    EXPECT_THAT(card.categories, ElementsAre("a,b", "c", "d"));
}

TEST(Cards, Name_FallsBack)
{
    EXPECT_EQ(Only("FN:\r\nN:Public;John;Q.,R.;Dr.;Esq.\r\n").name, "Dr. John Q. R. Public Esq.");
    EXPECT_EQ(Only("N:;;;;\r\nORG:Works;Sales\r\n").name, "Works, Sales");
    EXPECT_EQ(Only("EMAIL:a@b.example\r\n").name, "a@b.example");
    EXPECT_EQ(Only("TEL:1\r\n").name, "");
}

TEST(Cards, Version21_QuotedPrintableFoldingAndAgent)
{
    const Card card = Only(
        "FN;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:J=C3=BC=\r\nrgen\r\nNOTE:a\r\n b\r\nAGENT:\r\nBEGIN:VCARD\r\n"
        "UID:inner\r\nEND:VCARD\r\nUID:a\r\n b\r\n",
        "2.1");
    EXPECT_EQ(card.name, "Jürgen");
    EXPECT_EQ(card.uid, "a b");
}

TEST(Cards, BytesAreKept)
{
    const std::string first = "begin:vcard\nversion:4.0\nfn:A\nX-ODD;;=:\xFF\n\nend:vcard \n";
    const std::string second = "BEGIN:VCARD\r\nFN:B\r\nEND:VCARD";
    const Cards cards = ParseCards("\xEF\xBB\xBF\n" + first + "\n\n" + second);
    EXPECT_THAT(cards.problems, IsEmpty());
    ASSERT_THAT(cards.cards, SizeIs(2));
    EXPECT_EQ(cards.cards[0].bytes, first);
    EXPECT_EQ(cards.cards[0].line, 2U);
    EXPECT_EQ(cards.cards[1].bytes, second);
    EXPECT_EQ(cards.cards[1].version, "");
}

TEST(Cards, DerivedUid_IsTheSameForTheSameContents)
{
    const Card card = Only("FN:Ann Lee\r\nREV:20200101\r\n");
    EXPECT_TRUE(card.uidDerived);
    EXPECT_THAT(card.uid, StartsWith("kesta-"));
    EXPECT_EQ(Only("FN:An\r\n n Lee\r\nREV:20210101\r\n").uid, card.uid);
    EXPECT_NE(Only("FN:Ann Li\r\n").uid, card.uid);
    EXPECT_NE(Only("FN:Ann Li\r\n").digest, card.digest);
    const Cards copies = ParseCards(card.bytes + card.bytes);
    ASSERT_THAT(copies.cards, SizeIs(2));
    EXPECT_EQ(copies.cards[1].uid, card.uid + "-2");
}

TEST(Cards, DamagedFiles_AreReportedAndTheRestIsRead)
{
    const Cards open = ParseCards("BEGIN:VCARD\nFN:A\nBEGIN:VCARD\nFN:B\nEND:VCARD\nBEGIN:VCARD\n");
    ASSERT_THAT(open.cards, SizeIs(1));
    EXPECT_EQ(open.cards[0].name, "B");
    EXPECT_THAT(open.problems, ElementsAre(Problem{1, "the card has no end"}, Problem{6, "the card has no end"}));
    EXPECT_THAT(ParseCards("x\ny\n").problems, ElementsAre(Problem{1, "text outside of any card"}));
    EXPECT_THAT(ParseCards("").problems, ElementsAre(Problem{0, "no card in the file"}));
}

}  // namespace
}  // namespace kesta::formats
