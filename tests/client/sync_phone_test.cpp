// Which phone it is, and who may sync it.
#include "client_fixture.h"
#include "os/files.h"

namespace kesta::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

using SyncPhoneTest = ClientTest;

nlohmann::json Marker(const std::string& path)
{
    return nlohmann::json::parse(std::ifstream(Path(path)));
}

TEST_F(SyncPhoneTest, WithoutImei_OneIsMadeUpAndKept)
{
    givenFile("Rock/a.mp3", "first");
    EXPECT_EQ(client({"sync", "--phone", phone(), "--music", pc("Rock")}).exitCode, 0);
    const auto imei = Marker(phone(".kesta-phone")).at("imei").get<std::string>();
    EXPECT_EQ(imei.find_first_not_of("0123456789"), std::string::npos) << imei;
    EXPECT_EQ(imei.size(), 15u);
    EXPECT_EQ(database().text("SELECT [IMEI], [Name] FROM tPhone"), imei + "|phone");
    const Ended again = client({"sync", "--phone", phone(), "--music", pc("Rock")});
    EXPECT_THAT(again.out, HasSubstr("1 unchanged"));
    EXPECT_EQ(database().text("SELECT COUNT(*) FROM tPhone"), "1");
}

TEST_F(SyncPhoneTest, ImeiThatContradictsTheMarker_IsRefused)
{
    givenFile("Rock/a.mp3", "first");
    (void)sync({"--name", "Ann", "--music", pc("Rock")});
    const Ended run = client({"sync", "--phone", phone(), "--imei", "352222", "--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("this folder is the phone 351111 (Ann), not 352222"));
    EXPECT_EQ(database().text("SELECT COUNT(*) FROM tPhone"), "1");
}

TEST_F(SyncPhoneTest, ImeiThatTheDatabaseCannotTake_IsRefused)
{
    for (const char* imei : {"35'1111", "", "35 1111", "35\n", "3\u00e9"}) {
        const Ended run = client({"sync", "--phone", phone(), "--imei", imei});
        EXPECT_EQ(run.exitCode, 2) << imei;
        EXPECT_THAT(run.err, HasSubstr("IMEI")) << imei;
    }
    EXPECT_TRUE(fs::is_empty(Path(phone())));
}

TEST_F(SyncPhoneTest, DamagedMarker_IsReportedAndKept)
{
    for (const char* contents : {"", "{", "[]", "{\"imei\": 5}", "{\"imei\": \"it's\"}"}) {
        std::ofstream(Path(phone(".kesta-phone"))) << contents;
        const Ended run = client({"sync", "--phone", phone()});
        EXPECT_EQ(run.exitCode, 1) << contents;
        EXPECT_THAT(run.err, HasSubstr("the phone's file .kesta-phone cannot be used")) << contents;
        EXPECT_EQ(fs::file_size(Path(phone(".kesta-phone"))), std::string(contents).size());
        fs::remove(Path(phone(".kesta-phone")));
    }
}

TEST_F(SyncPhoneTest, NewName_IsTakenOver)
{
    (void)meet({"--name", "Ann"});
    database().exec("UPDATE tPhone SET [PhotoPath] = 'C:\\Photos', [AutoSync] = 1");
    EXPECT_EQ(meet({"--name", "Bob's"}).exitCode, 0);
    EXPECT_EQ(Marker(phone(".kesta-phone")).at("name"), "Bob's");
    EXPECT_EQ(database().text("SELECT [Name], [PhotoPath], [AutoSync] FROM tPhone"), "Bob's|C:\\Photos|1");
    EXPECT_EQ(meet().exitCode, 0);
    EXPECT_EQ(status().at("name"), "Bob's");
}

TEST_F(SyncPhoneTest, MissingPhoneFolder_IsReported)
{
    const Ended run = client({"sync", "--phone", phone("nowhere"), "--music", pc()});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("the phone folder"));
    givenFile("file", "x");
    EXPECT_EQ(client({"sync", "--phone", pc("file")}).exitCode, 1);
}

TEST_F(SyncPhoneTest, AnotherSyncOfThePhone_IsWaitedForByNobody)
{
    givenFile("Rock/a.mp3", "first");
    {
        os::DirectoryLock other;
        ASSERT_TRUE(other.acquire(phone()).ok());
        const Ended run = sync({"--music", pc("Rock")});
        EXPECT_EQ(run.exitCode, 7);
        EXPECT_THAT(run.err, HasSubstr("another sync of this phone is running"));
        EXPECT_THAT(phonePaths(), IsEmpty());
    }
    EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    EXPECT_THAT(ownFiles(), IsEmpty());
}

// A mount point without its phone is an empty folder like any other.
class UnpluggedPhoneTest : public ClientTest {
protected:
    void givenPhone(const std::vector<std::string>& arguments)
    {
        givenFile("Rock/a.mp3", "first");
        ASSERT_EQ(client(arguments).exitCode, 0);
    }
    void unplug()
    {
        fs::rename(Path(phone()), work() / "phone in the drawer");
        fs::create_directory(Path(phone()));
    }
    [[nodiscard]] std::string countedPhones() const { return database().text("SELECT COUNT(*) FROM tPhone"); }

    const std::vector<std::string> unnamed_{"sync", "--phone", phone(), "--music", pc("Rock")};
    const std::vector<std::string> named_ = syncArguments({"--music", pc("Rock")});
};

TEST_F(UnpluggedPhoneTest, EmptyMountPoint_IsRefusedAndLeftEmpty)
{
    givenPhone(unnamed_);
    unplug();
    for (const char* option : {"--quiet", "--force", "--dry-run"}) {
        std::vector<std::string> arguments = unnamed_;
        arguments.emplace_back(option);
        const Ended run = client(arguments);
        EXPECT_EQ(run.exitCode, 10) << option << run.out << run.err;
        EXPECT_THAT(run.err, HasSubstr("was last seen in")) << option;
        EXPECT_THAT(run.err, HasSubstr("--accept-folder")) << option;
        EXPECT_TRUE(fs::is_empty(Path(phone()))) << option;
        EXPECT_EQ(countedPhones(), "1") << option;
    }
}

TEST_F(UnpluggedPhoneTest, PhoneThatComesBack_IsSyncedAgain)
{
    givenPhone(unnamed_);
    unplug();
    ASSERT_EQ(client(unnamed_).exitCode, 10);
    fs::remove(Path(phone()));
    fs::rename(work() / "phone in the drawer", Path(phone()));
    const Ended run = client(unnamed_);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("1 unchanged"));
}

TEST_F(UnpluggedPhoneTest, AcceptedWithoutImei_IsANewPhone)
{
    givenPhone(unnamed_);
    unplug();
    std::vector<std::string> arguments = unnamed_;
    arguments.emplace_back("--accept-folder");
    const Ended run = client(arguments);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(countedPhones(), "2");
    EXPECT_EQ(client(unnamed_).exitCode, 0) << "it is marked by now";
}

TEST_F(UnpluggedPhoneTest, KnownImei_IsRefusedOnAnyFolderUntilAccepted)
{
    givenPhone(named_);
    fs::create_directory(work() / "another");
    std::vector<std::string> elsewhere = named_;
    elsewhere[2] = Utf8(work() / "another");
    const Ended refused = client(elsewhere);
    EXPECT_EQ(refused.exitCode, 10) << refused.out;
    EXPECT_THAT(refused.err, HasSubstr("351111"));
    EXPECT_TRUE(fs::is_empty(work() / "another"));
    elsewhere.emplace_back("--accept-folder");
    const Ended accepted = client(elsewhere);
    EXPECT_EQ(accepted.exitCode, 0) << accepted.err;
    EXPECT_EQ(countedPhones(), "1");
    EXPECT_TRUE(fs::exists(work() / "another" / "Music" / "Rock" / "a.mp3"));
}

TEST_F(UnpluggedPhoneTest, MarkerThatIsGone_IsSaid)
{
    givenPhone(named_);
    fs::remove(Path(phone(".kesta-phone")));
    const Ended run = client(named_);
    EXPECT_EQ(run.exitCode, 10);
    EXPECT_THAT(run.err, HasSubstr("its file .kesta-phone is gone from there"));
}

TEST_F(UnpluggedPhoneTest, WithoutADatabase_ThePhoneIsExpectedAllTheSame)
{
    givenPhone(named_);
    unplug();
    database().exec("DELETE FROM tMFile; DELETE FROM tMFolder; DELETE FROM tPhone");
    EXPECT_EQ(client(named_).exitCode, 10);
    EXPECT_EQ(client(unnamed_).exitCode, 10);
}

TEST_F(UnpluggedPhoneTest, FolderNeverSeenBefore_IsANewPhone)
{
    givenPhone(named_);
    fs::create_directory(work() / "another");
    EXPECT_EQ(client({"sync", "--phone", Utf8(work() / "another"), "--music", pc("Rock")}).exitCode, 0);
    EXPECT_EQ(countedPhones(), "2");
}

}  // namespace
}  // namespace kesta::test
