// The diff that all families share.
#include "sync/compare.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kesta {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Row {
    std::string name;
    int version = 0;
    bool isSeen = true;  // otherwise nothing tells whether it is gone
};

struct File {
    std::string name;
    int version = 0;
};

class Rules : public CompareRules {
public:
    explicit Rules(size_t most = 100) : most_(most) {}
    static std::string_view key(const Row& row) { return row.name; }
    static std::string_view key(const File& file) { return file.name; }
    static bool isSame(const Row& row, const File& file) { return row.version == file.version; }
    static bool isGone(const Row& row) { return row.isSeen; }
    bool defers(size_t removals) const
    {
        asked.push_back(removals);
        return removals > most_;
    }

    mutable std::vector<size_t> asked;

private:
    size_t most_;
};

std::vector<std::string> Names(const std::vector<const Row*>& rows)
{
    std::vector<std::string> names;
    for (const Row* row : rows) {
        names.push_back(row->name);
    }
    return names;
}

std::vector<std::string> Items(const Diff<Row, File>& diff)
{
    std::vector<std::string> items;
    for (const auto& item : diff.items) {
        const char* state = item.state == Comparison::kNew       ? "added "
                            : item.state == Comparison::kChanged ? "updated "
                                                                 : "unchanged ";
        items.push_back(state + item.wanted->name + (item.recorded != nullptr ? " " + item.recorded->name : ""));
    }
    return items;
}

TEST(Compare, WhatIsWanted_ComesInItsOrderWithItsRecord)
{
    const std::vector<Row> recorded{{"a", 1}, {"b", 1}, {"c", 1}};
    const std::vector<File> wanted{{"d", 1}, {"c", 2}, {"a", 1}};
    const auto diff = Compare(recorded, wanted, Rules());
    EXPECT_THAT(Items(diff), ElementsAre("added d", "updated c c", "unchanged a a"));
    EXPECT_THAT(Names(diff.removed), ElementsAre("b"));
    EXPECT_THAT(diff.deferred, IsEmpty());
    EXPECT_THAT(diff.kept, IsEmpty());
}

TEST(Compare, WhatIsNotKnownToBeGone_IsKept)
{
    const std::vector<Row> recorded{{"a", 1, false}, {"b", 1}, {"c", 1, false}};
    const std::vector<File> wanted{{"c", 1}};
    const auto diff = Compare(recorded, wanted, Rules());
    EXPECT_THAT(Names(diff.kept), ElementsAre("a"));
    EXPECT_THAT(Names(diff.removed), ElementsAre("b"));
    EXPECT_THAT(Items(diff), ElementsAre("unchanged c c"));
}

TEST(Compare, Guard_IsAskedOnceWithWhatWouldGo)
{
    const std::vector<Row> recorded{{"a", 1}, {"b", 1}, {"c", 1}, {"d", 1, false}};
    const std::vector<File> wanted{{"a", 1}};
    for (const size_t most : {1u, 2u}) {
        const Rules rules(most);
        const auto diff = Compare(recorded, wanted, rules);
        EXPECT_THAT(rules.asked, ElementsAre(2u));
        EXPECT_EQ(Names(diff.deferred), most == 1 ? (std::vector<std::string>{"b", "c"}) : std::vector<std::string>{});
        EXPECT_EQ(Names(diff.removed), most == 1 ? std::vector<std::string>{} : (std::vector<std::string>{"b", "c"}));
        EXPECT_THAT(Items(diff), ElementsAre("unchanged a a"));
    }
}

TEST(Compare, SecondRecordOfAKey_IsNeitherComparedNorRemoved)
{
    const std::vector<Row> recorded{{"a", 1}, {"a", 2}};
    const std::vector<File> wanted{{"a", 2}};
    const auto diff = Compare(recorded, wanted, Rules());
    EXPECT_THAT(Items(diff), ElementsAre("updated a a"));
    EXPECT_EQ(diff.items[0].recorded, &recorded[0]);
    EXPECT_THAT(diff.removed, IsEmpty());
}

}  // namespace
}  // namespace kesta
