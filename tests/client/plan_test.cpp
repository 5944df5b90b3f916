// What a sync would do, from made-up PCs, databases and phones.
#include "stages/media/plan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "os/local_time.h"
#include "os/system.h"
#include "phone/names.h"

namespace kesta {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr int64_t kTime = 1'700'000'000;

class FakePhone : public PhoneView {
public:
    void put(const std::string& path, uint64_t size, int64_t time = kTime)
    {
        files_[path] = {PhoneEntry::kFile, size, time};
    }
    void putFolder(const std::string& path) { files_[path] = {PhoneEntry::kOther, 0, 0}; }
    [[nodiscard]] PhoneFile find(const std::string& path) const override
    {
        const auto found = files_.find(path);
        return found == files_.end() ? PhoneFile{} : found->second;
    }

private:
    std::map<std::string, PhoneFile> files_;
};

std::string Folder(std::string name)
{
    std::replace(name.begin(), name.end(), '/', os::kSeparator);
    return os::Join(os::Join("", "pc"), name);
}

class PlanTest : public testing::Test {
protected:
    FolderScan& given(const std::string& folder)
    {
        FolderScan& scan = scans_[folder];
        scan.path = Folder(folder);
        scan.found = scan.complete = true;
        return scan;
    }
    void givenFile(const std::string& folder, const std::string& relative, uint64_t size = 10, int64_t time = kTime)
    {
        given(folder).files.push_back({path(folder, relative), relative, size, {time, 0}, os::ToLocalTime(time)});
    }
    static std::string path(const std::string& folder, const std::string& relative)
    {
        return os::Join(Folder(folder), relative);
    }
    // A file that an earlier run recorded and that lies on the phone.
    void recorded(const std::string& folder, const std::string& relative, const std::string& place, uint64_t size = 10,
                  int64_t time = kTime)
    {
        input_.recorded.push_back({path(folder, relative), Folder(folder), place, os::ToLocalTime(time)});
        phone_.put(place, size, time);
    }
    FilePlan plan()
    {
        input_.folders.clear();
        for (const auto& name : order_.empty() ? names() : order_) {
            input_.folders.push_back(&scans_.at(name));
        }
        return PlanCategory(input_, phone_);
    }
    static std::vector<std::string> places(const std::vector<FileChange>& actions)
    {
        std::vector<std::string> places;
        for (const FileChange& action : actions) {
            places.push_back(action.file.phonePath);
        }
        return places;
    }

    std::map<std::string, FolderScan> scans_;
    std::vector<std::string> order_;
    DeletionGuard guard_{false};
    LeftFiles left_;
    std::set<std::string> sameContents_;  // phone paths of files that hold what the PC's do
    PhoneChanges changes_{
        left_,
        false,
        [this](const std::string& phonePath, const std::string&) { return sameContents_.contains(phonePath); },
        {}};
    PlanInput input_{Category::kMusic, {}, {}, {}, guard_, changes_};
    FakePhone phone_;

private:
    std::vector<std::string> names() const
    {
        std::vector<std::string> names;
        for (const auto& [name, scan] : scans_) {
            names.push_back(name);
        }
        return names;
    }
};

TEST_F(PlanTest, NewFile_IsCopied)
{
    givenFile("Rock", "sub/a.mp3");
    const FilePlan found = plan();
    ASSERT_THAT(found.copies, SizeIs(1));
    const FileChange& copy = found.copies[0];
    EXPECT_EQ(copy.kind, ChangeKind::kPut);
    EXPECT_EQ(copy.file.path, path("Rock", "sub/a.mp3"));
    EXPECT_EQ(copy.file.basePath, Folder("Rock"));
    EXPECT_EQ(copy.file.phonePath, "Music/Rock/sub/a.mp3");
    EXPECT_EQ(copy.file.modified, os::ToLocalTime(kTime));
    EXPECT_EQ(copy.size, 10u);
}

TEST_F(PlanTest, RecordedFile_IsUnchangedOnlyWithTimeAndSize)
{
    givenFile("Rock", "same");
    givenFile("Rock", "newer", 10, kTime + 1);
    givenFile("Rock", "larger", 11);
    givenFile("Rock", "missing");
    for (const char* name : {"same", "newer", "larger"}) {
        recorded("Rock", name, std::string("Music/Rock/") + name);
    }
    input_.recorded.push_back({path("Rock", "missing"), Folder("Rock"), "Music/Rock/missing", os::ToLocalTime(kTime)});
    const FilePlan found = plan();
    EXPECT_EQ(found.unchanged, 1u);
    EXPECT_THAT(places(found.copies), ElementsAre("Music/Rock/larger", "Music/Rock/missing", "Music/Rock/newer"));
    for (const FileChange& action : found.copies) {
        EXPECT_EQ(action.kind, ChangeKind::kReplace);
    }
}

TEST_F(PlanTest, TimeOnThePhone_DoesNotCountForTheSameContents)
{
    givenFile("Rock", "same");
    recorded("Rock", "same", "Music/Rock/same");
    phone_.put("Music/Rock/same", 10, 5);
    sameContents_.insert("Music/Rock/same");
    EXPECT_EQ(plan().unchanged, 1u);
    sameContents_.clear();
    EXPECT_EQ(plan().unchanged, 1u) << "it has been compared before";
}

TEST_F(PlanTest, ChangedOnThePhone_IsKeptBeside)
{
    const std::vector<std::string> names{"other size", "other time", "both changed", "gone"};
    for (const std::string& name : names) {
        recorded("Rock", name, "Music/Rock/" + name + ".mp3");
        if (name != "gone") {
            givenFile("Rock", name, 10, name == "both changed" ? kTime + 50 : kTime);
        }
    }
    for (int i = 0; i < 5; ++i) {  // so that the removal is not deferred
        const std::string name = "same" + std::to_string(i);
        givenFile("Rock", name);
        recorded("Rock", name, "Music/Rock/" + name);
    }
    phone_.put("Music/Rock/other size.mp3", 11);
    for (const char* name : {"other time", "both changed", "gone"}) {
        phone_.put("Music/Rock/" + std::string(name) + ".mp3", 10, kTime + 100);
    }
    phone_.put("Music/Rock/gone (changed on the phone).mp3", 1);
    const FilePlan found = plan();
    ASSERT_THAT(found.copies, SizeIs(3));
    for (const FileChange& copy : found.copies) {
        const std::string& place = copy.file.phonePath;
        EXPECT_EQ(copy.kind, ChangeKind::kReplace);
        EXPECT_EQ(copy.keepAs, place.substr(0, place.size() - 4) + " (changed on the phone).mp3");
    }
    ASSERT_THAT(found.removals, SizeIs(1));
    EXPECT_THAT(found.removals[0].keepAs, testing::StartsWith("Music/Rock/gone (changed on the phone)~"));
}

TEST_F(PlanTest, ChangedOnThePc_IsNotTakenForChangedOnThePhone)
{
    givenFile("Rock", "newer", 12, kTime + 50);
    givenFile("Rock", "there by now", 12, kTime + 50);
    recorded("Rock", "newer", "Music/Rock/newer");
    recorded("Rock", "there by now", "Music/Rock/there by now");
    phone_.put("Music/Rock/there by now", 12, kTime + 50);
    for (const FileChange& copy : plan().copies) {
        EXPECT_EQ(copy.keepAs, "") << copy.file.phonePath;
    }
}

// The phone's clock, or the PC's, is in another time zone than when the files were copied.
TEST_F(PlanTest, OtherTimeZone_IsNoChange)
{
    constexpr int64_t kHour = 3600;
    givenFile("Rock", "same", 10, kTime + kHour);
    recorded("Rock", "same", "Music/Rock/same");
    phone_.put("Music/Rock/same", 10, kTime + kHour);
    givenFile("Rock", "newer", 12, kTime + 10 * kHour);
    recorded("Rock", "newer", "Music/Rock/newer");
    phone_.put("Music/Rock/newer", 10, kTime + kHour);
    const FilePlan found = plan();
    ASSERT_THAT(places(found.copies), ElementsAre("Music/Rock/newer", "Music/Rock/same"));
    EXPECT_EQ(found.copies[0].keepAs, "");
    EXPECT_EQ(found.copies[1].kind, ChangeKind::kRecord);
    EXPECT_EQ(found.copies[1].file.modified, os::ToLocalTime(kTime + kHour));
}

TEST_F(PlanTest, GoneFile_IsRemovedOnlyFromAFolderReadToItsEnd)
{
    for (const char* name : {"a", "b", "c"}) {
        givenFile("Rock", name);
        recorded("Rock", name, std::string("Music/Rock/") + name);
        recorded("Other", name, std::string("Music/Other/") + name);
    }
    recorded("Rock", "gone", "Music/Rock/gone");
    EXPECT_THAT(places(plan().removals), ElementsAre("Music/Rock/gone"));
    given("Rock").complete = false;
    EXPECT_THAT(plan().removals, IsEmpty());
    EXPECT_EQ(plan().deferred, 0u);
}

TEST_F(PlanTest, FileBelowAProblem_IsNotGone)
{
    for (const char* name : {"a", "b", "c", "d"}) {
        givenFile("Rock", name);
        recorded("Rock", name, std::string("Music/Rock/") + name);
    }
    recorded("Rock", os::Join("link", "x"), "Music/Rock/link/x");
    recorded("Rock", "linked", "Music/Rock/linked");
    given("Rock").problems.push_back({path("Rock", "link"), "the link leads nowhere"});
    EXPECT_THAT(places(plan().removals), ElementsAre("Music/Rock/linked"));
}

TEST_F(PlanTest, MoreThanHalf_IsDeferredUnlessForced)
{
    givenFile("Rock", "a");
    recorded("Rock", "a", "Music/Rock/a");
    recorded("Rock", "b", "Music/Rock/b");
    EXPECT_THAT(plan().removals, SizeIs(1));
    recorded("Rock", "c", "Music/Rock/c");
    EXPECT_THAT(plan().removals, IsEmpty());
    EXPECT_EQ(plan().deferred, 2u);
    guard_ = DeletionGuard(true);
    EXPECT_THAT(plan().removals, SizeIs(2));
    EXPECT_EQ(plan().deferred, 0u);
}

TEST_F(PlanTest, Deferred_WhatIsAddedMeanwhileDoesNotCount)
{
    for (const char* name : {"a", "b", "c"}) {
        recorded("Rock", name, std::string("Music/Rock/") + name);
    }
    givenFile("Rock", "a");
    EXPECT_EQ(plan().deferred, 2u);
    for (const char* name : {"d", "e", "f", "g"}) {
        givenFile("Rock", name);
        recorded("Rock", name, std::string("Music/Rock/") + name);
    }
    EXPECT_EQ(plan().deferred, 2u);
    givenFile("Rock", "b");
    EXPECT_THAT(plan().removals, SizeIs(1)) << "less than half of what was recorded before";
}

TEST_F(PlanTest, ManyFilesThatDifferInCase_GetPlacesThatDoNotCollide)
{
    for (int bits = 0; bits < 64; ++bits) {
        std::string name = "abcdef.mp3";
        for (size_t i = 0; i < 6; ++i) {
            if ((bits >> i & 1) != 0) {
                name[i] = static_cast<char>(name[i] - 32);
            }
        }
        givenFile("Rock", name);
    }
    std::set<std::string> keys;
    for (const std::string& place : places(plan().copies)) {
        keys.insert(CaseKey(place));
    }
    EXPECT_THAT(keys, SizeIs(64));
    EXPECT_EQ(places(plan().copies), places(plan().copies));
}

TEST_F(PlanTest, FileAndFolderOfOneName_GetTwoPlaces)
{
    givenFile("Rock", "x");
    givenFile("Rock", "X/inside");
    givenFile("Rock", "y?/inside");
    givenFile("Rock", "y_");
    const auto found = places(plan().copies);
    std::set<std::string> files, folders;
    for (const std::string& place : found) {
        files.insert(CaseKey(place));
        folders.insert(CaseKey(place.substr(0, place.rfind('/'))));
    }
    EXPECT_THAT(files, SizeIs(4));
    for (const std::string& file : files) {
        EXPECT_FALSE(folders.contains(file)) << file;
    }
}

TEST_F(PlanTest, FileThatIsThereAlready_IsTakenIn)
{
    givenFile("Rock", "a");
    phone_.put("Music/Rock/a", 10, kTime + 2);  // as FAT rounds
    const FilePlan found = plan();
    EXPECT_EQ(found.copies.at(0).kind, ChangeKind::kAdopt);
    phone_.put("Music/Rock/a", 10, kTime + 3);
    EXPECT_EQ(plan().copies.at(0).kind, ChangeKind::kPut);
    EXPECT_NE(plan().copies.at(0).file.phonePath, "Music/Rock/a");
}

TEST_F(PlanTest, ForeignFolderOrFile_IsAvoided)
{
    givenFile("Rock", "a");
    givenFile("Rock", "b/c");
    phone_.putFolder("Music/Rock/a");
    phone_.put("Music/Rock/b", 1);
    const auto found = places(plan().copies);
    EXPECT_THAT(found, ElementsAre(testing::StartsWith("Music/Rock/a~"),
                                   testing::AllOf(testing::StartsWith("Music/Rock/b~"), testing::EndsWith("/c"))));
}

TEST_F(PlanTest, RenamedInCaseOnly_GetsTheFreedPlace)
{
    givenFile("Rock", "song");
    givenFile("Rock", "other");
    recorded("Rock", "Song", "Music/Rock/Song");
    recorded("Rock", "other", "Music/Rock/other");
    phone_.put("Music/Rock/song", 10);  // what a phone that ignores case answers
    const FilePlan found = plan();
    EXPECT_THAT(places(found.removals), ElementsAre("Music/Rock/Song"));
    EXPECT_THAT(places(found.copies), ElementsAre("Music/Rock/song"));
    EXPECT_EQ(found.copies[0].kind, ChangeKind::kPut);
}

TEST_F(PlanTest, TwoRecordsOfOnePlace_AreTakenApart)
{
    givenFile("Rock", "a");
    givenFile("Rock", "b");
    recorded("Rock", "a", "Music/Rock/a");
    recorded("Rock", "b", "Music/Rock/A");
    const FilePlan found = plan();
    EXPECT_EQ(found.unchanged, 1u);
    ASSERT_THAT(found.copies, SizeIs(1));
    EXPECT_EQ(found.copies[0].kind, ChangeKind::kReplace);
    EXPECT_NE(CaseKey(found.copies[0].file.phonePath), CaseKey("Music/Rock/a"));
}

TEST_F(PlanTest, RemovalOfASharedPlace_LeavesTheFileToTheOther)
{
    givenFile("Rock", "a");
    recorded("Rock", "a", "Music/Rock/a");
    recorded("Rock", "b", "Music/Rock/a");
    EXPECT_THAT(places(plan().removals), ElementsAre(""));
}

TEST_F(PlanTest, RecordOutsideTheCategory_IsNeitherTrustedNorTouched)
{
    givenFile("Rock", "a");
    givenFile("Rock", "b");
    recorded("Rock", "a", "../pc/a");
    recorded("Rock", "b", "Music/Rock/b");
    recorded("Rock", "gone", "E:\\Music\\gone");
    const FilePlan found = plan();
    EXPECT_THAT(places(found.removals), ElementsAre(""));
    EXPECT_THAT(places(found.copies), ElementsAre("Music/Rock/a"));
    EXPECT_EQ(found.copies[0].kind, ChangeKind::kReplace);
}

TEST_F(PlanTest, FoldersOfOneName_AreToldApartTheSameWayEachTime)
{
    givenFile("x/Rock", "a");
    givenFile("y/Rock", "a");
    const auto first = places(plan().copies);
    ASSERT_THAT(first, SizeIs(2));
    EXPECT_EQ(first[0], "Music/Rock/a");
    EXPECT_THAT(first[1], testing::StartsWith("Music/Rock~"));
    // The database came to know x first, so the user's order no longer matters.
    input_.known = {{1, given("x/Rock").path, 1, 1, 1, true, false, true, {}},
                    {2, given("y/Rock").path, 1, 1, 1, true, false, true, {}}};
    order_ = {"y/Rock", "x/Rock"};
    EXPECT_EQ(places(plan().copies), first);
    // Where files are recorded already, the rest joins them.
    input_.recorded.push_back({os::Join(given("y/Rock").path, "old"), given("y/Rock").path, "Music/Elsewhere/old", {}});
    EXPECT_THAT(places(plan().copies), ElementsAre("Music/Rock/a", "Music/Elsewhere/a"));
}

TEST_F(PlanTest, InnerFolder_IsInChargeOfItsFiles)
{
    givenFile("Rock", "Live/a");
    FolderScan& inner = given("inner");
    inner.path = os::Join(Folder("Rock"), "Live");
    inner.files.push_back({path("Rock", "Live/a"), "a", 10, {kTime, 0}, os::ToLocalTime(kTime)});
    const FilePlan found = plan();
    EXPECT_THAT(places(found.copies), ElementsAre("Music/Live/a"));
    EXPECT_EQ(found.copies[0].file.basePath, inner.path);
}

TEST_F(PlanTest, FileRecordedForAnotherFolder_KeepsItsRecord)
{
    givenFile("Rock", "Live/a");
    input_.recorded.push_back(
        {path("Rock", "Live/a"), os::Join(Folder("Rock"), "Live"), "Music/Live/a", os::ToLocalTime(kTime - 5)});
    const FilePlan found = plan();
    ASSERT_THAT(found.copies, SizeIs(1));
    EXPECT_EQ(found.copies[0].file.phonePath, "Music/Live/a");
    EXPECT_EQ(found.copies[0].file.basePath, os::Join(Folder("Rock"), "Live"));
}

TEST_F(PlanTest, RootOfADrive_HasAName)
{
    FolderScan& root = given("root");
    root.path = os::kSeparator == '/' ? "/" : "D:\\";
    root.files.push_back({os::Join(root.path, "a"), "a", 1, {kTime, 0}, os::ToLocalTime(kTime)});
    EXPECT_THAT(places(plan().copies), ElementsAre(os::kSeparator == '/' ? "Music/root/a" : "Music/D/a"));
}

}  // namespace
}  // namespace kesta
