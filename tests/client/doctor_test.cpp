// Snapshots of the database, how a lost one is noticed and brought back, and what kesta doctor finds.
#include "client_fixture.h"

namespace kesta::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class DoctorTest : public ClientTest {
protected:
    void givenSynced()
    {
        for (const char* name : {"a.mp3", "b.mp3", "c.mp3"}) {
            givenFile(std::string("Rock/") + name, name);
        }
        const Ended run = sync({"--music", pc("Rock"), "--name", "Ann"});
        ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
    }
    /// The library replaces such a file when it is loaded.
    void givenRandomBytes() const
    {
        std::string bytes;
        for (uint32_t i = 0, value = 12345; i < 20000; ++i) {
            value = value * 1664525 + 1013904223;
            bytes += static_cast<char>(value >> 24);
        }
        std::ofstream(data().databasePath(), std::ios::binary | std::ios::trunc) << bytes;
    }
    /// Their names, the latest first.
    [[nodiscard]] std::vector<std::string> snapshots() const
    {
        std::vector<std::string> names;
        std::error_code none;
        for (const auto& entry : fs::directory_iterator(note("Snapshots"), none)) {
            names.push_back(Utf8(entry.path().filename()));
        }
        std::sort(names.rbegin(), names.rend());
        std::erase_if(names, [](const std::string& name) { return !name.starts_with("KESTA_DB-"); });
        return names;
    }
    struct Findings {
        int exitCode = -1;
        nlohmann::json json;
        /// Of one check.
        [[nodiscard]] std::vector<nlohmann::json> of(const std::string& check) const
        {
            std::vector<nlohmann::json> found;
            for (const auto& finding : json.at("findings")) {
                if (finding.at("check") == check) {
                    found.push_back(finding);
                }
            }
            return found;
        }
        [[nodiscard]] std::string state(const std::string& check) const
        {
            for (const auto& one : json.at("checks")) {
                if (one.at("check") == check) {
                    return one.at("state").get<std::string>();
                }
            }
            return "not looked at";
        }
    };
    Findings doctor(std::vector<std::string> arguments = {})
    {
        arguments.insert(arguments.begin(), {"doctor", "--json"});
        const Ended run = client(arguments);
        EXPECT_THAT(run.err, IsEmpty());
        return {run.exitCode, nlohmann::json::parse(run.out)};
    }
    /// Everything that the phone has recorded, and what is known of the phone.
    [[nodiscard]] std::string contents(const fs::path& file) const
    {
        const Sql sql(file);
        return sql.text("SELECT * FROM tMFile ORDER BY Path") + sql.text("SELECT * FROM tPhone");
    }
};

TEST_F(DoctorTest, Sync_LeavesASnapshotOfBeforeAndOneOfAfter)
{
    givenSynced();
    const std::vector<std::string> all = snapshots();
    ASSERT_THAT(all, SizeIs(2));
    EXPECT_EQ(contents(note("Snapshots") / all[0]), contents(data().databasePath()));
    EXPECT_EQ(Sql(note("Snapshots") / all[1]).text("SELECT COUNT(*) FROM tPhone"), "0");
    EXPECT_EQ(Sql(note("Snapshots") / all[0]).text("PRAGMA integrity_check"), "ok");
}

TEST_F(DoctorTest, DryRunAndOtherCommands_MakeNone)
{
    givenSynced();
    const auto before = snapshots();
    EXPECT_EQ(sync({"--music", pc("Rock"), "--dry-run"}).exitCode, 0);
    EXPECT_EQ(client({"status"}).exitCode, 0);
    EXPECT_EQ(doctor().exitCode, 0);
    EXPECT_EQ(snapshots(), before);
}

TEST_F(DoctorTest, Snapshots_FiveAreKept)
{
    givenSynced();
    for (int i = 0; i < 5; ++i) {
        givenFile("Rock/" + std::to_string(i), "new");
        EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    }
    EXPECT_THAT(snapshots(), SizeIs(5));
    EXPECT_EQ(contents(note("Snapshots") / snapshots()[0]), contents(data().databasePath()));
}

TEST_F(DoctorTest, RandomBytesForADatabase_AreNoticedByEveryCommand)
{
    givenSynced();
    const std::string snapshot = snapshots()[0];
    givenRandomBytes();
    const auto notice = AllOf(HasSubstr("was replaced by an empty one"), HasSubstr(snapshot),
                              HasSubstr("kesta doctor --restore"), HasSubstr("KESTA_DB.s3db.replaced-"));
    for (const std::vector<std::string>& command :
         std::vector<std::vector<std::string>>{{"status"},
                                               {"status", "--json"},
                                               {"files", "--imei", kImei, "--category", "music"},
                                               {"why", pc("Rock/a.mp3")},
                                               {"settings", "--imei", kImei},
                                               {"sync", "--phone", phone(), "--music", pc("Rock"), "--dry-run"},
                                               {"sync", "--phone", phone(), "--music", pc("Rock")}}) {
        const Ended run = client(command);
        EXPECT_EQ(run.exitCode, 8) << command[0];
        EXPECT_THAT(run.err, notice) << command[0];
        EXPECT_THAT(run.out, IsEmpty()) << command[0];
    }
    // It has no need of the database.
    const Ended restore = client({"restore", "--phone", phone()});
    EXPECT_EQ(restore.exitCode, 0);
    EXPECT_THAT(restore.err, notice);
    const Findings found = doctor();
    EXPECT_EQ(found.exitCode, 8);
    ASSERT_THAT(found.of("replaced"), SizeIs(1));
    EXPECT_THAT(found.of("replaced")[0].at("text").get<std::string>(), HasSubstr(snapshot));
    EXPECT_THAT(found.of("replaced")[0].at("advice").get<std::string>(), HasSubstr("kesta doctor --restore"));
    EXPECT_THAT(phonePaths(), ElementsAre("Music/Rock/a.mp3", "Music/Rock/b.mp3", "Music/Rock/c.mp3"));
}

TEST_F(DoctorTest, Restore_BringsTheDatabaseBack)
{
    givenSynced();
    const std::string before = contents(data().databasePath());
    givenRandomBytes();
    const Ended run = client({"doctor", "--restore"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, AllOf(HasSubstr("restored  "), HasSubstr("before-restore-")));
    EXPECT_EQ(contents(data().databasePath()), before);
    EXPECT_THAT(client({"status"}).out, HasSubstr("Ann"));
    EXPECT_THAT(sync({"--music", pc("Rock")}).out, HasSubstr("0 copied, 0 updated, 0 removed, 3 unchanged"));
    expectInOrder();
    EXPECT_EQ(doctor().exitCode, 0);
}

TEST_F(DoctorTest, Restore_TakesTheSnapshotThatIsNamed)
{
    givenSynced();
    const std::string first = snapshots()[0], before = contents(data().databasePath());
    givenFile("Rock/d.mp3", "later");
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    const Ended run = client({"doctor", "--restore", first});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(contents(data().databasePath()), before);
    // What has been copied since lies there as it should.
    EXPECT_THAT(sync({"--music", pc("Rock")}).out, HasSubstr("0 copied, 0 updated, 0 removed, 3 unchanged"));
    expectInOrder();

    const Ended unknown = client({"doctor", "--restore", "KESTA_DB-20200101-000000.s3db"});
    EXPECT_EQ(unknown.exitCode, 1);
    EXPECT_THAT(unknown.err, HasSubstr("there is no snapshot KESTA_DB-20200101-000000.s3db"));
}

TEST_F(DoctorTest, Restore_SkipsASnapshotThatIsDamaged)
{
    givenSynced();
    givenFile("Rock/d.mp3", "later");
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    const std::vector<std::string> all = snapshots();
    std::ofstream(note("Snapshots") / all[0], std::ios::binary | std::ios::trunc) << "no database";
    givenRandomBytes();
    const Ended run = client({"doctor", "--restore"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, AllOf(HasSubstr(all[0] + " cannot be used"), HasSubstr(all[1])));
    EXPECT_EQ(recorded().size(), 3u);
}

TEST_F(DoctorTest, AcceptedDatabase_IsTheKnownOne)
{
    givenSynced();
    const std::string snapshot = snapshots()[0];
    givenRandomBytes();
    EXPECT_EQ(client({"doctor", "--accept-database"}).exitCode, 0);
    EXPECT_THAT(client({"status"}).out, HasSubstr("No phone has been synced yet"));
    EXPECT_THAT(sync({"--music", pc("Rock")}).out, HasSubstr("3 recorded"));
    EXPECT_THAT(snapshots(), Contains(snapshot));
}

TEST_F(DoctorTest, ReplacedBeforeTheClientMadeSnapshots_IsNoLoss)
{
    givenSynced();
    fs::remove_all(note("Snapshots"));
    fs::remove(note("known database.json"));
    std::ofstream(data().databaseFolder() / "KESTA_DB.s3db.replaced-20200101-000000") << "of years ago";
    const Ended run = client({"status"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.err, IsEmpty());
    EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    EXPECT_EQ(doctor().exitCode, 0);
}

// Whoever removes it may mean to begin anew.
TEST_F(DoctorTest, RemovedDatabase_IsSaidByEveryCommand)
{
    givenSynced();
    const std::string snapshot = snapshots()[0];
    fs::remove(data().databasePath());
    const auto notice =
        AllOf(HasSubstr("does not know the phone 351111"), HasSubstr(snapshot), HasSubstr("kesta doctor --restore"));
    for (const std::vector<std::string>& command : std::vector<std::vector<std::string>>{
             {"status"}, {"why", pc("Rock/a.mp3")}, {"restore", "--phone", phone()}}) {
        const Ended run = client(command);
        EXPECT_EQ(run.exitCode, 0) << command[0];
        EXPECT_THAT(run.err, notice) << command[0];
    }
    EXPECT_EQ(doctor().exitCode, 8);
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.err, notice);
    EXPECT_THAT(run.out, HasSubstr("3 recorded as found"));
    EXPECT_THAT(client({"status"}).err, IsEmpty());
    EXPECT_THAT(snapshots(), Contains(snapshot));
}

TEST_F(DoctorTest, DamagedDatabase_SyncChangesNothing)
{
    givenSynced();
    // A table that the library does not read while it is loaded.
    const auto page = std::stoul(database().text("SELECT rootpage FROM sqlite_master WHERE name = 'tVFolder'"));
    {
        std::fstream file(data().databasePath(), std::ios::binary | std::ios::in | std::ios::out);
        file.seekp(static_cast<std::streamoff>((page - 1) * 4096));
        file << std::string(4096, 'x');
    }
    givenFile("Rock/d.mp3", "new");
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 8) << run.out;
    EXPECT_THAT(run.err, AllOf(HasSubstr("the database is damaged"), HasSubstr("kesta doctor")));
    EXPECT_THAT(phonePaths(), Not(Contains("Music/Rock/d.mp3")));
    const Findings found = doctor();
    EXPECT_EQ(found.exitCode, 8);
    ASSERT_THAT(found.of("integrity"), SizeIs(1));
    EXPECT_THAT(found.of("integrity")[0].at("advice").get<std::string>(), HasSubstr("kesta doctor --restore"));
    EXPECT_EQ(client({"doctor", "--restore"}).exitCode, 0);
    EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    expectInOrder();
}

TEST_F(DoctorTest, NothingWrong_EveryCheckIsOk)
{
    givenSynced();
    const Findings found = doctor();
    EXPECT_EQ(found.exitCode, 0) << found.json;
    for (const char* check : {"replaced", "integrity", "foreign_rows", "rows_without_phone", "phones", "state_files",
                              "disk_space", "permissions", "trace_socket"}) {
        EXPECT_EQ(found.state(check), "ok") << check;
    }
    // A note where a test beside this one is in a call.
    EXPECT_THAT(found.state("mutex"), testing::AnyOf("ok", "note"));
    EXPECT_THAT(found.json.at("snapshots"), SizeIs(2));
    EXPECT_THAT(client({"doctor"}).out, AllOf(HasSubstr("integrity             ok"), HasSubstr("Snapshots")));
}

TEST_F(DoctorTest, RowsOfNothing_AreFoundAndRemoved)
{
    givenSynced();
    database().exec(
        "INSERT INTO tMFile VALUES (77, 'x', 'y', 'Music/x', NULL); INSERT INTO tMFile VALUES (77, 'y', 'y', 'Music/y', "
        "NULL); INSERT INTO tPimLog (phoneID, Type) VALUES (77, 1); INSERT INTO tPimLogItem (plID, Guid, Luid) VALUES "
        "(99, 'g', 'l'); INSERT INTO tPFilename VALUES ('nobody', 'list', 'file'); INSERT INTO tPimItem (pfID, PimID, "
        "Type) VALUES (99, 'id', 1)");
    Findings found = doctor();
    EXPECT_EQ(found.exitCode, 3);
    ASSERT_THAT(found.of("rows_without_phone"), SizeIs(2));
    EXPECT_EQ(found.of("rows_without_phone")[0].at("text"), "3 rows of phones that are not in the database");
    EXPECT_THAT(found.of("rows_without_phone")[0].at("items"), ElementsAre("2 rows in tMFile", "1 row in tPimLog"));
    ASSERT_THAT(found.of("foreign_rows"), SizeIs(2));
    EXPECT_THAT(found.of("foreign_rows")[0].at("items"), ElementsAre("1 row in tPimLogItem"));
    EXPECT_EQ(found.of("foreign_rows")[1].at("fixable"), false);

    found = doctor({"--fix"});
    EXPECT_EQ(found.of("rows_without_phone")[0].at("fixed"), true) << found.json;
    EXPECT_EQ(database().text("SELECT COUNT(*) FROM tMFile"), "3");
    EXPECT_EQ(database().text("SELECT COUNT(*) FROM tPimLog"), "0");
    EXPECT_EQ(database().text("SELECT COUNT(*) FROM tPimLogItem"), "0");
    // They hold something of the user's.
    EXPECT_EQ(database().text("SELECT COUNT(*) FROM tPimItem"), "1");
    EXPECT_EQ(database().text("SELECT COUNT(*) FROM tPFilename"), "1");
    // What was removed can be had back.
    EXPECT_EQ(Sql(note("Snapshots") / snapshots()[0]).text("SELECT COUNT(*) FROM tMFile WHERE PhoneID = 77"), "2");
}

TEST_F(DoctorTest, FilesOfAMountedPhone_AreCompared)
{
    givenSynced();
    fs::remove(Path(phone("Music/Rock/a.mp3")));
    std::ofstream(Path(phone("Music/Rock/b.mp3")), std::ios::binary) << "edited on the phone";
    const Findings found = doctor();
    EXPECT_EQ(found.exitCode, 3);
    ASSERT_THAT(found.of("phones"), SizeIs(2));
    EXPECT_EQ(found.of("phones")[0].at("text"), "Ann (351111): 1 file recorded, but not on it");
    EXPECT_THAT(found.of("phones")[0].at("items"), ElementsAre("Music/Rock/a.mp3"));
    EXPECT_EQ(found.of("phones")[1].at("text"), "Ann (351111): 1 file changed on it since the last sync");
    EXPECT_THAT(found.of("phones")[1].at("items"), ElementsAre("Music/Rock/b.mp3"));
    EXPECT_THAT(client({"doctor"}).out, AllOf(HasSubstr("    Music/Rock/a.mp3\n"), HasSubstr("What to do: ")));
    EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    EXPECT_EQ(doctor().exitCode, 0);
}

TEST_F(DoctorTest, PhoneThatIsNotMounted_IsSaid)
{
    givenSynced();
    fs::rename(Path(phone()), work() / "elsewhere");
    Findings found = doctor();
    EXPECT_EQ(found.exitCode, 0);
    ASSERT_THAT(found.of("phones"), SizeIs(1));
    EXPECT_THAT(found.of("phones")[0].at("text").get<std::string>(),
                HasSubstr("is not mounted where it was last seen"));
    found = doctor({"--phone", Utf8(work() / "elsewhere")});
    EXPECT_THAT(found.of("phones"), IsEmpty());
    fs::create_directories(Path(phone()));
    EXPECT_EQ(doctor({"--phone", phone()}).exitCode, 3);
}

TEST_F(DoctorTest, DamagedStateFile_IsSetAside)
{
    givenSynced();
    std::ofstream(note("351111.json"), std::ios::binary | std::ios::trunc) << "{\"time\": ";
    std::ofstream(note("351111.json.new"), std::ios::binary) << "half of it";
    Findings found = doctor();
    EXPECT_EQ(found.exitCode, 3);
    ASSERT_THAT(found.of("state_files"), SizeIs(2));
    EXPECT_THAT(found.of("state_files")[0].at("text").get<std::string>(), HasSubstr("351111.json is damaged"));
    found = doctor({"--fix"});
    EXPECT_EQ(found.exitCode, 0) << found.json;
    EXPECT_EQ(found.state("state_files"), "fixed");
    EXPECT_FALSE(fs::exists(note("351111.json")));
    EXPECT_TRUE(fs::exists(note("351111.json.damaged")));
    EXPECT_FALSE(fs::exists(note("351111.json.new")));
    EXPECT_THAT(doctor().of("state_files"), IsEmpty());
}

TEST_F(DoctorTest, ReadOnlyDatabase_IsSaid)
{
    givenSynced();
    fs::permissions(data().databasePath(), fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                    fs::perm_options::remove);
    const Findings found = doctor();
    fs::permissions(data().databasePath(), fs::perms::owner_write, fs::perm_options::add);
    EXPECT_EQ(found.exitCode, 8);
    ASSERT_THAT(found.of("permissions"), SizeIs(1));
    EXPECT_THAT(found.of("permissions")[0].at("text").get<std::string>(), HasSubstr("the database cannot be written"));
}

TEST_F(DoctorTest, OptionsThatContradict_AreAMistake)
{
    EXPECT_EQ(client({"doctor", "--fix", "--restore"}).exitCode, 2);
    EXPECT_EQ(client({"doctor", "--accept-database", "--restore"}).exitCode, 2);
    const Ended none = client({"doctor", "--restore"});
    EXPECT_EQ(none.exitCode, 1);
    EXPECT_THAT(none.err, HasSubstr("there is no snapshot"));
}

}  // namespace
}  // namespace kesta::test
