// The list rule, step by step, on queries that an export never has.
#include "core/list.h"

#include "unit/module_under_test.h"

namespace kesta {

struct Item {
    int32_t value;
    DbChar* text;
};
struct ItemList {
    int32_t Count;
    Item* Items;
};

template <>
struct Element<Item> {
    static void construct(Item& item, const DateValue& /*now*/) { item = {-1, nullptr}; }
    static void destroy(Item& item) { FreeText(item.text); }
};

namespace {

using ::testing::ElementsAre;

class ListRule : public ModuleUnderTest {
protected:
    ~ListRule() override { EmptyList(list); }

    /// Runs the rule with these two statements.
    int32_t read(const char* countSql, const char* rowSql)
    {
        return static_cast<int32_t>(ReadList(Routine(db(), Trail("Test")), list, NarrowSql("%s", Name{countSql}),
                                             NarrowSql("%s", Name{rowSql}), [](const Statement& row, Item& item) {
                                                 item.value = row.int32(0);
                                                 item.text = row.newText(1);
                                             }));
    }

    /// The lines of failures; those of memory are left out.
    static std::vector<std::string> errors()
    {
        std::vector<std::string> found;
        for (const std::string& line : ReplacedServices::take()) {
            if (line.find("Memory") == std::string::npos) {
                found.push_back(line);
            }
        }
        return found;
    }

    /// What the lines about memory name, in their order; other lines are left out.
    static std::vector<std::string> addresses()
    {
        std::vector<std::string> found;
        for (const std::string& line : ReplacedServices::take()) {
            constexpr std::string_view kBefore = "DB TRACE >> Memory ";
            if (line.starts_with(kBefore)) {
                found.push_back(line.substr(kBefore.size(), line.find(' ', kBefore.size()) - kBefore.size()));
            }
        }
        return found;
    }

    ItemList list = {0, nullptr};
};

TEST_F(ListRule, ReadList_AsManyRowsAsCounted_Succeeds)
{
    EXPECT_EQ(read("SELECT 2", "SELECT 7, 'a' UNION ALL SELECT 8, NULL"), 0);
    ASSERT_EQ(list.Count, 2);
    EXPECT_EQ(list.Items[0].value, 7);
    EXPECT_EQ(test::Utf8(list.Items[0].text), "a");
    EXPECT_EQ(list.Items[1].text, nullptr);
    EXPECT_THAT(errors(), ElementsAre());
}

TEST_F(ListRule, ReadList_CountCannotBePrepared_IsPositionOne)
{
    EXPECT_EQ(read("SELECT 2 FROM nowhere", "SELECT 7, 'a'"), 1);
    EXPECT_EQ(list.Items, nullptr);
    EXPECT_THAT(errors(), ElementsAre("DB TRACE >> Error in Test(), position 1.\n"));
}

TEST_F(ListRule, ReadList_CountWithoutRow_IsAnEmptySuccess)
{
    EXPECT_EQ(read("SELECT 2 WHERE 0", "SELECT 7, 'a'"), 0);
    EXPECT_EQ(list.Items, nullptr);
    EXPECT_THAT(errors(), ElementsAre());
}

TEST_F(ListRule, ReadList_CountZero_RunsNoRowQuery)
{
    EXPECT_EQ(read("SELECT 0", "nonsense"), 0);
    EXPECT_EQ(list.Items, nullptr);
    EXPECT_THAT(errors(), ElementsAre());
}

TEST_F(ListRule, ReadList_NegativeCount_IsPositionTwo)
{
    for (const char* count : {"SELECT -1", "SELECT 2147483648"}) {  // the second is negative in 32 bits
        EXPECT_EQ(read(count, "SELECT 7, 'a'"), 1);
        EXPECT_EQ(list.Items, nullptr);
        EXPECT_THAT(errors(), ElementsAre("DB TRACE >> Error in Test(), position 2.\n"));
    }
}

TEST_F(ListRule, ReadList_RowsCannotBePrepared_IsPositionThreeWithTheArrayKept)
{
    EXPECT_EQ(read("SELECT 2", "nonsense"), 1);
    EXPECT_EQ(list.Count, 0);
    ASSERT_NE(list.Items, nullptr);
    EXPECT_EQ(list.Items[1].value, -1);
    EXPECT_THAT(errors(), ElementsAre("DB TRACE >> Error in Test(), position 3.\n"));
}

TEST_F(ListRule, ReadList_FewerRowsThanCounted_CountsWhatCame)
{
    EXPECT_EQ(read("SELECT 3", "SELECT 7, 'a'"), 0);
    EXPECT_EQ(list.Count, 1);
    EXPECT_EQ(list.Items[2].value, -1);
    EmptyList(list);
    EXPECT_EQ(read("SELECT 3", "SELECT 7, 'a' WHERE 0"), 0);
    EXPECT_EQ(list.Count, 0);
    EXPECT_NE(list.Items, nullptr);
}

TEST_F(ListRule, ReadList_OneRowMoreThanCounted_GivesTheRowCode)
{
    EXPECT_EQ(read("SELECT 1", "SELECT 7, 'a' UNION ALL SELECT 8, 'b'"), 100);
    ASSERT_EQ(list.Count, 1);
    EXPECT_EQ(list.Items[0].value, 7);
    EXPECT_THAT(errors(), ElementsAre());
}

TEST_F(ListRule, ReadList_RowFails_GivesItsCode)
{
    EXPECT_EQ(read("SELECT 2", "SELECT 7, 'a' UNION ALL SELECT zeroblob(2000000000), 'b'"), 18);
    EXPECT_EQ(list.Count, 1);
}

TEST_F(ListRule, FillList_NoMemoryInTheMiddleOfARow_CountsTheRowsBefore)
{
    AllocateList(list, 2);
    Statement rows = db().prepare(NarrowSql("SELECT 7 UNION ALL SELECT 8"));
    const auto readRow = [](const Statement& row, Item& item) {
        item.value = row.int32(0);
        if (item.value == 8) {
            throw std::bad_alloc();
        }
    };
    EXPECT_THROW((void)FillList(list, 2, rows, readRow), std::bad_alloc);
    EXPECT_EQ(list.Count, 1);
}

TEST_F(ListRule, EmptyList_FilledList_DeletesTheArrayThenItsTexts)
{
    ReplacedServices::take();
    ASSERT_EQ(read("SELECT 2", "SELECT 7, 'a' UNION ALL SELECT 8, 'b'"), 0);
    const std::vector<std::string> taken = addresses();
    list.Count = 0;
    EmptyList(list);
    EXPECT_EQ(list.Items, nullptr);
    EXPECT_EQ(taken.size(), 3u);
    EXPECT_EQ(addresses(), taken);
    EmptyList(list);
    EXPECT_THAT(ReplacedServices::take(), ElementsAre());
}

TEST_F(ListRule, CallerArray_NewArray_CarriesItsNumberInFront)
{
    AllocateList(list, 5);
    EXPECT_EQ(reinterpret_cast<size_t*>(list.Items)[-1], 5u);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(list.Items) % alignof(Item), 0u);
    EXPECT_EQ(ReplacedServices::take().size(), 1u);
}

TEST_F(ListRule, DuplicateText_AnyText_IsCopiedAndNullStaysNull)
{
    EXPECT_EQ(DuplicateText(nullptr), nullptr);
    for (const char* text : {"", "a", "\xF0\x9F\x8E\xB5"}) {
        DbChar* copy = DuplicateText(test::W(text));
        EXPECT_EQ(test::Utf8(copy), text);
        FreeText(copy);
        EXPECT_EQ(copy, nullptr);
    }
    EXPECT_EQ(ReplacedServices::take().size(), 6u);
    DbChar* none = nullptr;
    FreeText(none);
    EXPECT_THAT(ReplacedServices::take(), ElementsAre());
}

}  // namespace
}  // namespace kesta
