// kesta files and kesta status: what is recorded of each family, from the rows in the database.
#include "client_fixture.h"

namespace kesta::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

class FilesTest : public ClientTest {
protected:
    FilesTest() { EXPECT_EQ(meet({"--name", "Ann"}).exitCode, 0); }
    nlohmann::json files(const std::string& category, std::vector<std::string> arguments = {})
    {
        arguments.insert(arguments.begin(), {"files", "--imei", kImei, "--category", category, "--json"});
        const Ended run = client(arguments);
        EXPECT_EQ(run.exitCode, 0) << run.err;
        const auto json = nlohmann::json::parse(run.out);
        EXPECT_EQ(json.at("imei"), kImei);
        EXPECT_EQ(json.at("category"), category);
        return json;
    }
    std::string text(const std::string& category, std::vector<std::string> arguments = {})
    {
        arguments.insert(arguments.begin(), {"files", "--imei", kImei, "--category", category});
        const Ended run = client(arguments);
        EXPECT_EQ(run.exitCode, 0) << run.err;
        return run.out;
    }
    std::string statusText() { return client({"status"}).out; }

    void givenGallery() const
    {
        const char* const kColumns = "([PhoneID], [Path], [Count], [Size], [Selected], [AddTime])";
        database().exec(
            std::string("INSERT INTO tIFolder ") + kColumns +
            " VALUES (1, '/a', 2, 20, 0, '2026-01-01 10:00:00'), "
            "(1, '/c', 3, 30, 1, '2026-01-01 10:00:00'); INSERT INTO tVFolder " +
            kColumns +
            " VALUES (1, '/a', 5, 500, 1, '2026-01-01 10:00:00'), (1, '/d', 1, 1, 1, '2026-01-01 10:00:00')");
    }
    void givenPlaylists() const
    {
        database().exec(
            "INSERT INTO tPFolder ([PhoneID], [Path], [Digest], [IdInPhone], [Type], [Flag], [Count], [Size], "
            "[TotalSize], "
            "[AddTime]) VALUES (1, 'Added', 'd', NULL, 0, 1, 2, 10, 20, '2026-01-01'), "
            "(1, 'Gone', 'd', 'Playlists/Gone.m3u8', 0, 3, 0, 0, 0, '2026-01-01'), "
            "(1, 'Here', 'd', 'Playlists/Here.m3u8', 0, 0, 1, 5, 5, '2026-01-01'), "
            "(1, 'Not', 'd', '(null)', 0, 4, 0, 0, 0, '2026-01-01'), (1, 'Odd', 'd', NULL, 0, 9, 0, 0, 0, "
            "'2026-01-01'); "
            "INSERT INTO tPFilename VALUES ('351111', 'Added', '/m/1.mp3'), ('351111', 'Added', '/m/2.mp3'), "
            "('351111', 'Here', '/m/1.mp3'); "
            "INSERT INTO tPFile VALUES (1, '/m/1.mp3', 'Here', 'Playlists/Media/1.mp3', '2026-01-31 12:00:00')");
    }
    void givenPim() const
    {
        database().exec(
            "INSERT INTO tPimFolder ([pfID], [parentID], [PimID], [Path], [Type]) VALUES (1, -1, 'contacts', "
            "'Contacts', "
            "1500), (2, 1, 'contacts-1', 'Contacts/Friends', 1500), (3, 1, 'contacts-2', 'Work', 1500), (4, -1, "
            "'calendar', "
            "'Calendar', 1600), (5, 4, 'calendar-1', 'Home', 1600); "
            "INSERT INTO tPimItem ([pfID], [PimID], [Data], [Type]) VALUES "
            "(2, 'i1', CAST('BEGIN:VCARD'||x'0d0a'||'VERSION:3.0'||x'0d0a'||'UID:1'||x'0d0a'||'FN:Ann "
            "\xc3\x84'||x'0d0a'||"
            "'END:VCARD'||x'0d0a' AS BLOB), 1500), (2, 'i2', CAST('no card' AS BLOB), 1500), "
            "(5, 'i3', CAST('BEGIN:VCALENDAR'||x'0d0a'||'BEGIN:VEVENT'||x'0d0a'||'UID:1'||x'0d0a'||'SUMMARY:Dentist'||"
            "x'0d0a'||'END:VEVENT'||x'0d0a'||'END:VCALENDAR'||x'0d0a' AS BLOB), 1600); "
            "INSERT INTO tPimLog VALUES (1, 1, 1500, 'profile'); "
            "INSERT INTO tPimLogItem ([plID], [Guid], [Luid], [PCTime], [PhoneTime]) VALUES (1, 'i1', 'luid', "
            "'2026-01-31 12:00:00', NULL)");
    }
};

TEST_F(FilesTest, EmptyDatabase_EachCategorySaysSo)
{
    for (const char* category : {"music", "images", "videos", "documents", "gallery", "playlists", "bookmarks",
                                 "contacts", "calendar", "log"}) {
        EXPECT_THAT(text(category), HasSubstr("Nothing is recorded here.")) << category;
        (void)files(category);
    }
    EXPECT_THAT(text("backups"), HasSubstr("The database has no table for backups"));
    EXPECT_TRUE(files("backups").at("backups").is_null());
}

TEST_F(FilesTest, Gallery_IsTheMergedList)
{
    givenGallery();
    const auto folders = files("gallery").at("folders");
    ASSERT_THAT(folders, SizeIs(2)) << "the walk ends with the picture folders";
    EXPECT_EQ(folders.at(0).at("path"), "/a");
    EXPECT_EQ(folders.at(0).at("files"), 7);
    EXPECT_EQ(folders.at(0).at("size"), 520);
    EXPECT_EQ(folders.at(0).at("selected"), true) << "selected for videos";
    EXPECT_EQ(folders.at(0).at("state"), "selected");
    EXPECT_EQ(folders.at(1).at("path"), "/c");
    EXPECT_THAT(files("gallery", {"--folder", "/c"}).at("folders"), SizeIs(1));
    EXPECT_THAT(text("gallery"), HasSubstr("2 folders"));
    EXPECT_EQ(status().at("gallery").at("folders"), folders);
    EXPECT_EQ(status().at("gallery").at("left_out"), 1);
    EXPECT_THAT(statusText(), HasSubstr("pictures and videos as one: 2 folders, 10 files, 550 B; 1 folder left out"));
    database().exec("UPDATE tIFolder SET [Selected] = 0; UPDATE tVFolder SET [Selected] = 0");
    EXPECT_EQ(files("gallery").at("folders").at(0).at("state"), "not selected");
    database().exec("UPDATE tIFolder SET [Deleted] = 1; UPDATE tVFolder SET [Deleted] = 1");
    EXPECT_EQ(files("gallery").at("folders").at(0).at("state"), "gone from the PC");
}

TEST_F(FilesTest, Playlists_WithStateInWordsAndMembers)
{
    givenPlaylists();
    const auto json = files("playlists");
    const auto& lists = json.at("playlists");
    const std::pair<const char*, const char*> states[] = {{"Added", "to be added"},
                                                          {"Gone", "gone from the PC, to be removed"},
                                                          {"Here", "on the phone"},
                                                          {"Not", "deleted on the phone, kept off it"},
                                                          {"Odd", "state 9"}};
    ASSERT_THAT(lists, SizeIs(std::size(states)));
    for (size_t i = 0; i < std::size(states); ++i) {
        EXPECT_EQ(lists.at(i).at("name"), states[i].first);
        EXPECT_EQ(lists.at(i).at("state"), states[i].second);
        EXPECT_THAT(text("playlists"), HasSubstr(std::string(states[i].first) + ": " + states[i].second));
        EXPECT_EQ(status().at("playlists").at("lists").at(i).at("state"), states[i].second);
    }
    EXPECT_EQ(lists.at(0).at("members"), nlohmann::json::parse(R"(["/m/1.mp3", "/m/2.mp3"])"));
    EXPECT_EQ(lists.at(0).at("entries"), 2);
    EXPECT_TRUE(lists.at(0).at("id_on_phone").is_null());
    EXPECT_EQ(lists.at(2).at("id_on_phone"), "Playlists/Here.m3u8");
    EXPECT_TRUE(lists.at(3).at("id_on_phone").is_null());
    EXPECT_EQ(json.at("files"), nlohmann::json::parse(R"([{"path": "/m/1.mp3", "playlist": "Here",
        "phone_path": "Playlists/Media/1.mp3", "modified": "2026-01-31 12:00:00"}])"));
    EXPECT_EQ(status().at("playlists").at("files_on_phone"), 1);
    EXPECT_THAT(statusText(), HasSubstr("5 playlists, 1 file copied for them"));
    const auto one = files("playlists", {"--folder", "Added"});
    EXPECT_THAT(one.at("playlists"), SizeIs(1));
    EXPECT_THAT(one.at("files"), SizeIs(0));
}

TEST_F(FilesTest, Bookmarks_OfThePresentType)
{
    database().exec(
        "INSERT INTO tBFile VALUES (1, 'Mine', 'http://a.example/', 'm1', 7, 2, 1), "
        "(1, 'Other', 'http://b.example/', 'm2', 8, 0, 2)");
    const auto json = files("bookmarks");
    EXPECT_EQ(json.at("type"), 1);
    EXPECT_EQ(json.at("bookmarks"), nlohmann::json::parse(R"([{"title": "Mine", "url": "http://a.example/",
        "id_on_phone": "m1", "flag": 2}])"));
    EXPECT_THAT(text("bookmarks"), HasSubstr("http://a.example/"));
    EXPECT_THAT(text("bookmarks"), HasSubstr("1 bookmark\n"));
    EXPECT_EQ(status().at("bookmarks"), nlohmann::json::parse(R"({"type": 1, "count": 1})"));
    ASSERT_EQ(client({"settings", "--imei", kImei, "bookmark_type=2"}).exitCode, 0);
    EXPECT_THAT(text("bookmarks"), HasSubstr("http://b.example/"));
    EXPECT_THAT(statusText(), HasSubstr("1 of type 2"));
}

TEST_F(FilesTest, Backups_WhereTheDatabaseHasATable)
{
    EXPECT_THAT(statusText(), Not(HasSubstr("Backups")));  // a database made by the library has none
    EXPECT_TRUE(status().at("backups").is_null());
    database().exec(
        "CREATE TABLE tBackups ([bcID] INTEGER PRIMARY KEY, [phoneID], [Path], [PhonePath], [Size], "
        "[ModifiedTime])");
    EXPECT_THAT(files("backups").at("backups"), SizeIs(0));
    EXPECT_THAT(text("backups"), HasSubstr("Nothing is recorded here."));
    EXPECT_THAT(statusText(), HasSubstr("Backups       none"));
    database().exec(
        "INSERT INTO tBackups VALUES (1, 1, '/b/one.zip', 'all', 1000, '2026-01-31 12:00:00'), "
        "(2, 2, '/b/other.zip', 'all', 1, '2026-01-31 12:00:00')");
    const auto expected = nlohmann::json::parse(R"([{"path": "/b/one.zip", "phone_path": "all", "size": 1000,
        "modified": "2026-01-31 12:00:00"}])");
    EXPECT_EQ(files("backups").at("backups"), expected);
    EXPECT_EQ(status().at("backups"), expected);
    EXPECT_THAT(text("backups"), HasSubstr("/b/one.zip"));
    EXPECT_THAT(statusText(), HasSubstr("1 archive"));
}

TEST_F(FilesTest, ContactsAndCalendar_FolderByFolder)
{
    givenPim();
    const auto folders = files("contacts").at("folders");
    ASSERT_THAT(folders, SizeIs(3));
    EXPECT_EQ(folders.at(0).at("path"), "Contacts");
    EXPECT_TRUE(folders.at(0).at("parent").is_null());
    EXPECT_EQ(folders.at(1).at("path"), "Contacts/Friends");
    EXPECT_EQ(folders.at(1).at("parent"), "contacts");
    EXPECT_EQ(folders.at(1).at("depth"), 1);
    EXPECT_EQ(folders.at(1).at("items").at(0).at("title"), "Ann \u00c4");
    EXPECT_EQ(folders.at(1).at("items").at(0).at("on_phone"), true);
    EXPECT_EQ(folders.at(1).at("items").at(1).at("on_phone"), false);
    EXPECT_EQ(folders.at(1).at("items").at(1).at("size"), 7);
    const std::string words = text("contacts");
    EXPECT_THAT(words, HasSubstr("  Friends: 2 entries\n    Ann \u00c4\n    (without a name) (not on this phone)\n"));
    EXPECT_THAT(words, HasSubstr("  Work: 0 entries\n2 entries\n"));
    EXPECT_THAT(text("calendar"), HasSubstr("Dentist (not on this phone)"));
    EXPECT_THAT(files("contacts", {"--folder", "Work"}).at("folders"), SizeIs(1));
}

TEST_F(FilesTest, Store_IsATreeInTheStatus)
{
    EXPECT_THAT(statusText(), Not(HasSubstr("Contacts and calendar in the database")));
    givenPim();
    const std::string words = statusText();
    EXPECT_THAT(words, HasSubstr("Contacts and calendar in the database, for all phones\n  Contacts "));
    EXPECT_THAT(words, HasSubstr("\n    Friends "));
    EXPECT_THAT(words, HasSubstr("2 entries\n"));
    EXPECT_THAT(words, HasSubstr("Contacts      1 entry on the phone"));
    EXPECT_THAT(words, HasSubstr("Calendar      never synced"));
    const auto json = nlohmann::json::parse(client({"status", "--json"}).out);
    ASSERT_THAT(json.at("store").at("contacts"), SizeIs(3));
    EXPECT_EQ(json.at("store").at("contacts").at(1).at("entries"), 2);
    EXPECT_THAT(json.at("store").at("calendar"), SizeIs(2));
    EXPECT_EQ(json.at("phones").at(0).at("log").at("contacts"),
              nlohmann::json::parse(R"({"profile": "profile", "entries": 1})"));
}

TEST_F(FilesTest, Log_ListsWhatThePhoneHas)
{
    givenPim();
    const auto json = files("log");
    EXPECT_EQ(json.at("contacts").at("profile"), "profile");
    EXPECT_EQ(json.at("contacts").at("entries"), nlohmann::json::parse(R"([{"id": "i1", "id_on_phone": "luid",
        "pc_time": "2026-01-31 12:00:00", "phone_time": null}])"));
    EXPECT_THAT(json.at("calendar").at("entries"), SizeIs(0));
    EXPECT_THAT(text("log"), HasSubstr("1 entry\n"));
}

TEST_F(FilesTest, MainFolders_AreInTheStatus)
{
    database().exec(
        "UPDATE tLibMainFolder SET [Number] = 3, [Size] = 33, [Setting] = 's' WHERE [ID] = 1900; "
        "UPDATE tSyncContents SET [Selected] = 0 WHERE [lfID] = 1100");
    EXPECT_THAT(statusText(),
                HasSubstr("Main folders  music, documents, contacts, calendar, bookmarks; not gallery, map"));
    const auto json = nlohmann::json::parse(client({"status", "--json"}).out);
    EXPECT_EQ(json.at("phones").at(0).at("main_folders").at("gallery"), false);
    EXPECT_EQ(json.at("phones").at(0).at("main_folders").at("music"), true);
    ASSERT_THAT(json.at("library"), SizeIs(7));
    EXPECT_EQ(json.at("library").at(5),
              nlohmann::json::parse(R"({"folder": "bookmarks", "items": 3, "size": 33, "setting": "s"})"));
    database().exec("UPDATE tSyncContents SET [Selected] = 0");
    EXPECT_THAT(statusText(), HasSubstr("Main folders  none selected; not music"));
}

TEST_F(FilesTest, FolderWhereThereAreNone_IsAUsageError)
{
    for (const char* category : {"bookmarks", "backups", "log"}) {
        const Ended run = client({"files", "--imei", kImei, "--category", category, "--folder", "x"});
        EXPECT_EQ(run.exitCode, 2) << category;
        EXPECT_THAT(run.err, HasSubstr("--folder has no meaning for " + std::string(category)));
    }
}

TEST_F(FilesTest, UnknownCategory_NamesThemAll)
{
    const Ended run = client({"files", "--imei", kImei, "--category", "songs"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.err,
                HasSubstr("music, images, videos, documents, gallery, playlists, bookmarks, backups, contacts, "
                          "calendar, log"));
}

}  // namespace
}  // namespace kesta::test
