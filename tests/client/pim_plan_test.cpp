// What a sync of contacts and calendars does to the store and to the phone, without either.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

#include "formats/vcard.h"
#include "os/local_time.h"
#include "pim_samples.h"
#include "pim_sources.h"
#include "stages/pim/pim_phone_plan.h"
#include "stages/pim/pim_source.h"
#include "stages/pim/pim_store_plan.h"

namespace kesta::test {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

/// The store and one phone, to which plans are applied as a run that succeeds would.
class World : public Phone {
public:
    explicit World(PimKind kind) : kind_(kind) {}

    [[nodiscard]] PhoneFile find(const std::string& phonePath) const override
    {
        const auto file = files.find(phonePath);
        if (file == files.end()) {
            return {};
        }
        return {PhoneEntry::kFile, file->second.size(), times.at(phonePath)};
    }
    [[nodiscard]] std::vector<std::string> names(const std::string& folder) const override
    {
        std::vector<std::string> names;
        for (const auto& [path, contents] : files) {
            if (path.starts_with(folder + "/")) {
                names.push_back(path.substr(folder.size() + 1));
            }
        }
        return names;
    }
    [[nodiscard]] bool holds(const std::string& phonePath, const std::string& text) const override
    {
        return files.at(phonePath) == text;
    }
    [[nodiscard]] bool holdsFile(const std::string& phonePath, const std::string& pcPath) const override
    {
        ADD_FAILURE() << "no file of the PC is compared with " << phonePath << ": " << pcPath;
        return false;
    }

    void givenFile(const std::string& path, const std::string& contents)
    {
        files[path] = contents;
        times[path] = 1'700'000'000;
    }

    void plan(const std::vector<PimSource>& given, bool force = false)
    {
        sources = given;
        DeletionGuard guard(force);
        store = PlanPimStore({kind_, sources, stored, guard});
        PhoneChanges changes(left, force, {}, {});
        phone = PlanPimPhone({kind_, sources, store, log, owned, guard, changes}, *this);
    }

    void apply()
    {
        for (const PimStorePlan& plan : store.folders) {
            std::erase_if(stored, [&](const StoredPimFolder& folder) { return folder.folder.id == plan.folder.id; });
            if (!plan.isObsolete) {
                StoredPimFolder& folder = stored.emplace_back();
                folder.folder = plan.folder;
                for (const PlannedPimEntry& planned : plan.entries) {
                    folder.entries.push_back(planned.entry);
                }
            }
        }
        log = phone.others;
        for (PimPhonePlan& plan : phone.files) {
            if (plan.action == PimFileAction::kRemove) {
                files.erase(plan.phonePath);
            }
            if (plan.action == PimFileAction::kWrite) {
                files[plan.phonePath] = plan.text;
                times[plan.phonePath] = ++now;
            }
            for (PimLogRow& row : plan.rows) {
                if (!row.phoneTime) {
                    row.phoneTime = os::ToLocalTime(times.at(plan.phonePath));
                }
                log.push_back(row);
            }
        }
    }

    void sync(const std::vector<PimSource>& given, bool force = false)
    {
        plan(given, force);
        apply();
    }

    /// "added updated removed unchanged" of all files, and what is deferred.
    [[nodiscard]] std::string counts() const
    {
        size_t added = 0, updated = 0, removed = 0, unchanged = 0, deferred = 0;
        for (const PimPhonePlan& plan : phone.files) {
            added += plan.added;
            updated += plan.updated;
            removed += plan.removed;
            unchanged += plan.unchanged;
            deferred += plan.deferred;
        }
        for (const PimStorePlan& plan : store.folders) {
            deferred += plan.deferred;
        }
        return std::to_string(added) + " " + std::to_string(updated) + " " + std::to_string(removed) + " " +
               std::to_string(unchanged) + ", " + std::to_string(deferred);
    }
    [[nodiscard]] std::vector<PimFileAction> actions() const
    {
        std::vector<PimFileAction> actions;
        for (const PimPhonePlan& plan : phone.files) {
            actions.push_back(plan.action);
        }
        return actions;
    }

    std::vector<PimSource> sources;
    std::vector<StoredPimFolder> stored;
    PimStorePlans store;
    PimPhonePlans phone;
    std::vector<PimLogRow> log;
    std::set<std::string> owned;
    LeftFiles left;
    std::map<std::string, std::string> files;
    std::map<std::string, int64_t> times;  // in UTC seconds
    int64_t now = 1'750'000'000;

private:
    PimKind kind_;
};

TEST(PimPlan, NewChangedGoneAndUnchanged)
{
    World world(PimKind::kContacts);
    world.sync({Contacts(CardsText({{"1", "Ann"}, {"2", "Bob"}, {"3", "Cay"}}))});
    EXPECT_EQ(world.counts(), "3 0 0 0, 0");
    EXPECT_EQ(world.files.at("Contacts/friends.vcf"), CardsText({{"1", "Ann"}, {"2", "Bob"}, {"3", "Cay"}}));
    world.plan({Contacts(CardsText({{"1", "Ann"}, {"2", "Bob"}, {"3", "Cay"}}))});
    EXPECT_EQ(world.counts(), "0 0 0 3, 0");
    EXPECT_THAT(world.actions(), ElementsAre(PimFileAction::kKeep));
    EXPECT_EQ(world.store.folders.at(0).changes(), 0u);

    world.sync({Contacts(CardsText({{"1", "Ann"}, {"2", "Bobby"}, {"4", "Dan"}}))});
    EXPECT_EQ(world.counts(), "1 1 1 1, 0");
    EXPECT_EQ(world.files.at("Contacts/friends.vcf"), CardsText({{"1", "Ann"}, {"2", "Bobby"}, {"4", "Dan"}}));
    EXPECT_THAT(world.log, SizeIs(3));
}

TEST(PimPlan, UnchangedRows_KeepTheirTimes)
{
    World world(PimKind::kContacts);
    world.sync({Contacts(CardsText({{"1", "Ann"}, {"2", "Bob"}}))});
    const auto first = world.log.at(0).phoneTime;
    world.now += 1000;
    world.sync({Contacts(CardsText({{"1", "Ann"}, {"2", "Bob"}, {"3", "Cay"}}))});
    EXPECT_EQ(world.log.at(0).phoneTime, first);
    EXPECT_NE(world.log.at(2).phoneTime, first);
    world.plan({Contacts(CardsText({{"1", "Ann"}, {"2", "Bob"}, {"3", "Cay"}}))});
    EXPECT_THAT(world.actions(), ElementsAre(PimFileAction::kKeep));
    world.now += 1000;
    world.sync({Contacts(CardsText({{"1", "Ann"}, {"2", "Bob"}}))});
    EXPECT_NE(world.log.at(0).phoneTime, first) << "the file's time has to be in the log";
    world.plan({Contacts(CardsText({{"1", "Ann"}, {"2", "Bob"}}))});
    EXPECT_THAT(world.actions(), ElementsAre(PimFileAction::kKeep));
}

TEST(PimPlan, OneUidTwice_IsKeptTwice)
{
    World world(PimKind::kContacts);
    world.sync({Contacts(CardText("1", "Ann") + CardText("1", "Ann at work"))});
    EXPECT_EQ(world.counts(), "2 0 0 0, 0");
    world.plan({Contacts(CardText("1", "Ann") + CardText("1", "Ann at work"))});
    EXPECT_EQ(world.counts(), "0 0 0 2, 0");
}

TEST(PimPlan, MoreThanHalf_NeedsForce)
{
    World world(PimKind::kContacts);
    world.sync({Contacts(CardsText({{"1", "Ann"}, {"2", "Bob"}, {"3", "Cay"}, {"4", "Dan"}}))});
    world.plan({Contacts(CardsText({{"1", "Ann"}, {"2", "Bob"}}))});
    EXPECT_EQ(world.counts(), "0 0 2 2, 0") << "half is not more than half";
    world.sync({Contacts(CardsText({{"1", "Anne"}, {"5", "Eve"}}))});
    EXPECT_EQ(world.counts(), "1 1 0 0, 3");
    EXPECT_THAT(formats::ParseCards(world.files.at("Contacts/friends.vcf")).cards, SizeIs(5));
    world.sync({Contacts("")});
    EXPECT_EQ(world.counts(), "0 0 0 0, 5");
    world.sync({Contacts("")}, true);
    EXPECT_EQ(world.counts(), "0 0 5 0, 0");
    EXPECT_THAT(world.files, IsEmpty());
    EXPECT_THAT(world.log, IsEmpty());
    EXPECT_THAT(world.stored, IsEmpty());
}

TEST(PimPlan, FileWithProblems_AddsAndUpdatesButRemovesNothing)
{
    World world(PimKind::kContacts);
    world.sync({Contacts(CardsText({{"1", "Ann"}, {"2", "Bob"}, {"3", "Cay"}}))});
    world.sync({Contacts(CardsText({{"1", "Anne"}, {"4", "Dan"}}) + "BEGIN:VCARD\r\nUID:2\r\n")}, true);
    EXPECT_EQ(world.counts(), "1 1 0 2, 0");
    EXPECT_THAT(world.log, SizeIs(4));
    PimSource missing = Contacts("");
    missing.readable = missing.complete = false;
    world.sync({missing}, true);
    EXPECT_THAT(world.phone.files, IsEmpty());
    EXPECT_THAT(world.log, SizeIs(4));
}

TEST(PimPlan, CalendarsOfOneFile_AreFoldersOfTheirOwn)
{
    World world(PimKind::kCalendar);
    const std::string work = CalendarText("Work", {{"1", "a"}, {"2", "b"}}), home = CalendarText("Home", {{"1", "c"}});
    world.sync({Calendars(work + home + CalendarText("", {{"5", "d"}}))});
    EXPECT_THAT(world.names("Calendar"), ElementsAre("Home.ics", "Work.ics", "cal.ics"));
    world.sync({Calendars(work + CalendarText("", {{"5", "d"}}))});
    EXPECT_EQ(world.counts(), "0 0 0 3, 1") << "the whole of a calendar is more than half";
    world.sync({Calendars(work + CalendarText("", {{"5", "d"}}))}, true);
    EXPECT_EQ(world.counts(), "0 0 1 3, 0");
    EXPECT_THAT(world.names("Calendar"), ElementsAre("Work.ics", "cal.ics"));
    EXPECT_THAT(world.stored, SizeIs(2));
}

TEST(PimPlan, EqualNames_GetSuffixes)
{
    World world(PimKind::kContacts);
    const std::vector<PimSource> sources{Contacts(CardText("1", "Ann"), "/a/Friends.vcf"),
                                         Contacts(CardText("1", "Bob"), "/b/friends.vcf"),
                                         Contacts(CardText("1", "Cay"), "/c/con.vcf")};
    world.sync(sources);
    EXPECT_THAT(world.names("Contacts"), ElementsAre("Friends.vcf", "_con.vcf", StartsWith("friends~")));
    world.plan(sources);
    EXPECT_EQ(world.counts(), "0 0 0 3, 0");
}

TEST(PimPlan, FilesThatAreNotGiven_AreLeftAlone)
{
    World world(PimKind::kContacts);
    world.sync({Contacts(CardText("1", "Ann"), "/a/one.vcf"), Contacts(CardText("2", "Bob"), "/a/two.vcf")});
    world.sync({Contacts(CardText("2", "Bobby"), "/a/two.vcf")}, true);
    EXPECT_EQ(world.counts(), "0 1 0 0, 0");
    EXPECT_THAT(world.names("Contacts"), ElementsAre("one.vcf", "two.vcf"));
    EXPECT_THAT(world.log, SizeIs(2));
    EXPECT_THAT(world.stored, SizeIs(2));
}

TEST(PimPlan, WhatIsWrongOnThePhone_IsWrittenAgain)
{
    World world(PimKind::kContacts);
    const PimSource source = Contacts(CardsText({{"1", "Ann"}, {"2", "Bob"}}));
    world.sync({source});
    const std::string text = world.files.at("Contacts/friends.vcf");
    for (const char* wrong : {"missing", "other size", "other contents"}) {
        SCOPED_TRACE(wrong);
        if (wrong == std::string("missing")) {
            world.files.clear();
        } else {
            world.files["Contacts/friends.vcf"] =
                wrong == std::string("other size") ? "x" : std::string(text.size(), 'x');
        }
        world.times["Contacts/friends.vcf"] -= 100;
        world.sync({source});
        EXPECT_EQ(world.counts(), "0 2 0 0, 0");
        EXPECT_EQ(world.files.at("Contacts/friends.vcf"), text);
    }
    world.times["Contacts/friends.vcf"] -= 100;
    world.sync({source});
    EXPECT_EQ(world.counts(), "0 0 0 2, 0") << "only the time is another one";
    EXPECT_THAT(world.actions(), ElementsAre(PimFileAction::kRecord));
    world.plan({source});
    EXPECT_THAT(world.actions(), ElementsAre(PimFileAction::kKeep));
}

TEST(PimPlan, ForeignFileInThePlace_StaysUnlessItIsTheSame)
{
    World world(PimKind::kContacts);
    world.givenFile("Contacts/friends.vcf", CardText("9", "Somebody else"));
    world.sync({Contacts(CardText("1", "Ann"))});
    EXPECT_THAT(world.names("Contacts"), ElementsAre("friends.vcf", StartsWith("friends~")));
    EXPECT_EQ(world.files.at("Contacts/friends.vcf"), CardText("9", "Somebody else"));
    world.plan({Contacts(CardText("1", "Ann"))});
    EXPECT_EQ(world.counts(), "0 0 0 1, 0");

    World lost(PimKind::kContacts);
    lost.givenFile("Contacts/friends.vcf", CardText("1", "Ann"));
    lost.sync({Contacts(CardText("1", "Ann"))});
    EXPECT_THAT(lost.actions(), ElementsAre(PimFileAction::kRecord));
    EXPECT_THAT(lost.names("Contacts"), ElementsAre("friends.vcf"));

    World cutShort(PimKind::kContacts);
    cutShort.givenFile("Contacts/friends.vcf", CardText("1", "Ann"));
    cutShort.owned = {"Contacts/friends.vcf"};
    cutShort.sync({Contacts(CardText("1", "Anne"))});
    EXPECT_EQ(cutShort.files.at("Contacts/friends.vcf"), CardText("1", "Anne"));
    EXPECT_THAT(cutShort.files, SizeIs(1));
}

TEST(PimPlan, AnotherPhonesRemovals_WaitForTheirOwnConsent)
{
    World world(PimKind::kContacts);
    const PimSource all = Contacts(CardsText({{"1", "Ann"}, {"2", "Bob"}, {"3", "Cay"}, {"4", "Dan"}}));
    world.sync({all});
    const auto firstLog = world.log;
    const auto firstFiles = world.files;
    const auto firstTimes = world.times;
    const PimSource few = Contacts(CardsText({{"1", "Ann"}, {"5", "Eve"}}));
    world.sync({few}, true);
    // The other phone still has the four.
    world.log = firstLog;
    world.files = firstFiles;
    world.times = firstTimes;
    world.sync({few});
    EXPECT_EQ(world.counts(), "0 0 0 1, 3");
    EXPECT_EQ(world.files, firstFiles);
    EXPECT_EQ(world.log, firstLog);
    PimSource broken = few;
    broken.complete = false;
    world.plan({broken}, true);
    EXPECT_TRUE(world.phone.files.at(0).waitsForSource);
    EXPECT_THAT(world.actions(), ElementsAre(PimFileAction::kKeep));
    world.sync({few}, true);
    EXPECT_EQ(world.counts(), "1 0 3 1, 0");
    EXPECT_EQ(world.files.at("Contacts/friends.vcf"), CardsText({{"1", "Ann"}, {"5", "Eve"}}));
}

TEST(PimPlan, FolderThatAnotherPhonesRunRemoved_GoesHereToo)
{
    World world(PimKind::kContacts);
    world.sync({Contacts(CardText("1", "Ann"))});
    world.stored.clear();
    world.plan({Contacts("")});
    EXPECT_EQ(world.counts(), "0 0 0 0, 1");
    world.sync({Contacts("")}, true);
    EXPECT_EQ(world.counts(), "0 0 1 0, 0");
    EXPECT_THAT(world.files, IsEmpty());
    EXPECT_THAT(world.log, IsEmpty());
}

TEST(PimPlan, RowsOfOthers_StayAsTheyAre)
{
    World world(PimKind::kContacts);
    world.log.push_back({"guid of another program", "luid", FromNumber(1000), FromNumber(2000)});
    world.sync({Contacts(CardText("1", "Ann"))});
    EXPECT_THAT(world.log, SizeIs(2));
    EXPECT_THAT(world.log,
                testing::Contains(PimLogRow{"guid of another program", "luid", FromNumber(1000), FromNumber(2000)}));
}

TEST(PimPlan, Limits_AreSaid)
{
    const std::vector<PimSource> sources{Contacts(CardsText({{"1", "Ann"}, {"2", "Bob"}}), "/a/one.vcf"),
                                         Contacts(CardText("3", "Cay"), "/a/two.vcf")};
    const std::vector<StoredPimFolder> none;
    DeletionGuard guard(false);
    const PimStorePlans folders = PlanPimStore({PimKind::kContacts, sources, none, guard, 1, 100});
    EXPECT_THAT(folders.folders, SizeIs(1));
    EXPECT_THAT(folders.refusedFolders, ElementsAre(sources[1].folders[0].id));
    EXPECT_THAT(folders.refusals, ElementsAre(AllOf(Field(&FailedItem::path, PcPath("/a/two.vcf")),
                                                    Field(&FailedItem::reason, HasSubstr("they take 1 folders")))));
    const PimStorePlans items = PlanPimStore({PimKind::kContacts, sources, none, guard, 10, 1});
    EXPECT_THAT(items.folders.at(0).entries, SizeIs(1));
    EXPECT_THAT(
        items.refusals,
        ElementsAre(Field(&FailedItem::reason, HasSubstr("1 of its entries are left out: the database takes 1 in a"))));
}

}  // namespace
}  // namespace kesta::test
