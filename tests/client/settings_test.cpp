// Showing and changing a phone's settings, and what a sync makes of the selections.
#include "client_fixture.h"

namespace kesta::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class SettingsTest : public ClientTest {
protected:
    Ended settings(std::vector<std::string> arguments = {})
    {
        arguments.insert(arguments.begin(), {"settings", "--imei", kImei});
        return client(arguments);
    }
    nlohmann::json asJson(std::vector<std::string> arguments = {})
    {
        arguments.push_back("--json");
        const Ended run = settings(arguments);
        EXPECT_EQ(run.exitCode, 0) << run.err;
        return nlohmann::json::parse(run.out);
    }
    void givenSyncedMusic()
    {
        givenFile("Rock/a.mp3", "first");
        ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    }
    // Everything of the phone's row.
    std::string row() const { return database().text("SELECT * FROM tPhone"); }
};

TEST_F(SettingsTest, Shown_WithTheNamesOfTheStatus)
{
    givenSyncedMusic();
    const Ended run = settings();
    EXPECT_EQ(run.exitCode, 0);
    const auto json = asJson();
    EXPECT_EQ(json.at("imei"), kImei);
    EXPECT_EQ(json.at("settings"), status().at("settings"));
    EXPECT_EQ(json.at("main_folders"), status().at("main_folders"));
    for (const auto& [name, value] : json.at("settings").items()) {
        EXPECT_THAT(run.out, HasSubstr("  " + name + " "));
    }
    for (const auto& [name, value] : json.at("main_folders").items()) {
        EXPECT_THAT(run.out, HasSubstr("  select." + name + " "));
    }
}

TEST_F(SettingsTest, UnknownPhone_IsAnError)
{
    for (const auto& arguments :
         {std::vector<std::string>{"settings", "--imei", "999"}, {"settings", "--imei", "999", "auto_sync=yes"}}) {
        const Ended run = client(arguments);
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_THAT(run.err, HasSubstr("no phone with the IMEI 999 is known"));
    }
    EXPECT_EQ(database().text("SELECT COUNT(*) FROM tPhone"), "0");
}

TEST_F(SettingsTest, Change_EveryKind_IsStored)
{
    givenSyncedMusic();
    const Ended run = settings({"name=Ann's \u00e4\U0001F600", "photo_path=/p'q", "auto_sync=YES", "contact_program=-5",
                                "calendar_start=2026-01-31", "calendar_end=2026-12-31 18:30:00", "bookmark_type=2"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("auto_sync: yes, before: no"));
    EXPECT_THAT(run.out, HasSubstr("calendar_start: 2026-01-31 00:00:00, before: (empty)"));
    EXPECT_EQ(
        database().text("SELECT [Name], [PhotoPath], [AutoSync], [ContactPim], [CalStart], [CalEnd], [BookMarkType] "
                        "FROM tPhone"),
        "Ann's \u00e4\U0001F600|/p'q|1|-5|2026-01-31 00:00:00|2026-12-31 18:30:00|2");
    EXPECT_EQ(status().at("name"), "Ann's \u00e4\U0001F600");
    EXPECT_THAT(sync({"--music", pc("Rock")}).out, HasSubstr("Ann's \u00e4\U0001F600 (351111)"));
    EXPECT_EQ(settings({"photo_path=", "calendar_start="}).exitCode, 0);
    EXPECT_EQ(asJson().at("settings").at("photo_path"), "");
    EXPECT_TRUE(asJson().at("settings").at("calendar_start").is_null());
}

TEST_F(SettingsTest, Change_LeavesEverythingElseAsItIs)
{
    givenSyncedMusic();
    database().exec(
        "UPDATE tPhone SET [PhotoPath] = 'p', [DocPath] = 'd', [WifiMAC] = 'w', [AutoSync] = 1, [AutoBackup] = 3, "
        "[AllowWifi] = 0, [ContactPreferSide] = 5, [CalendarPreferSide] = 6, [ContactPim] = 7, [CalPim] = 8, "
        "[CalPeriod] = 9, [CalStart] = '2020-01-02 03:04:05', [CalEnd] = '', [CalPeriodStr] = 'c', [BookMarkType] = "
        "10, "
        "[SyncDocFromFolder] = 1, [SyncDocFromPhone] = 0, [SyncPhotoFromFolder] = 1, [SyncPhotoFromPhone] = 0, "
        "[SyncMusicFromFolder] = 1, [SyncMusicFromPlayer] = 1, [SyncMusicAll] = 0, [NeedMount] = 0, "
        "[ContactFolderId] = 'cf', [CalendarFolderId] = 'kf', [ContactProfile] = 'cp', [CalendarProfile] = 'kp'");
    const std::string before = row();
    EXPECT_EQ(settings({"wifi_mac=new"}).exitCode, 0);
    EXPECT_EQ(database().text("SELECT [WifiMAC] FROM tPhone"), "new");
    database().exec("UPDATE tPhone SET [WifiMAC] = 'w'");
    EXPECT_EQ(row(), before);
    EXPECT_EQ(settings({"contact_folder=x", "contact_folder=y"}).exitCode, 2);
    EXPECT_EQ(row(), before);
}

TEST_F(SettingsTest, UnknownName_IsRefusedWithNearOnesAndTheList)
{
    givenSyncedMusic();
    const std::string before = row();
    const Ended run = settings({"auto_backup=yes", "auto_snyc=yes"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.err, HasSubstr("there is no setting auto_snyc. Did you mean auto_sync?"));
    EXPECT_THAT(run.err, HasSubstr("calendar_period_text, calendar_start, calendar_end"));
    EXPECT_THAT(run.err, HasSubstr("select.music"));
    EXPECT_THAT(run.err, Not(HasSubstr("need_mount")));
    EXPECT_THAT(settings({"select.musik=no"}).err, HasSubstr("Did you mean select.music?"));
    EXPECT_THAT(settings({"brightness=5"}).err, Not(HasSubstr("Did you mean")));
    EXPECT_EQ(row(), before) << "one wrong change and none is made";
}

TEST_F(SettingsTest, WrongValues_AreRefused)
{
    givenSyncedMusic();
    const std::string before = row();
    const std::pair<const char*, const char*> table[] = {
        {"auto_sync=maybe", "it is yes or no"},       {"bookmark_type=two", "it is a whole number"},
        {"calendar_start=31.1.2026", "it is a date"}, {"need_mount=no", "cannot be changed by hand"},
        {"select.music=", "it is yes or no"},         {"auto_sync", "write NAME=VALUE"}};
    for (const auto& [change, why] : table) {
        const Ended run = settings({"auto_backup=yes", change});
        EXPECT_EQ(run.exitCode, 2) << change;
        EXPECT_THAT(run.err, HasSubstr(why)) << change;
        EXPECT_EQ(run.out, "");
    }
    EXPECT_EQ(row(), before);
}

TEST_F(SettingsTest, TextThatTheDatabaseCannotTake_IsReported)
{
    givenSyncedMusic();
    const std::string before = row();
    // More than a statement holds, but not more than a command line does.
    std::vector<std::string> changes;
    for (const char* name : {"photo_path", "document_path", "wifi_mac", "calendar_period_text"}) {
        changes.push_back(std::string(name) + "=" + std::string(7'000, '\''));
    }
    const Ended run = settings(changes);
    EXPECT_EQ(run.exitCode, 8);
    EXPECT_THAT(run.err, HasSubstr("could not be changed"));
    EXPECT_EQ(row(), before);
}

TEST_F(SettingsTest, FirstSync_SelectsTheMainFolders)
{
    givenSyncedMusic();
    EXPECT_EQ(asJson().at("main_folders"), nlohmann::json::parse(R"({"music": true, "gallery": true, "documents": true,
        "contacts": true, "calendar": true, "bookmarks": true, "map": false})"));
}

TEST_F(SettingsTest, FirstSyncThatWasCutShort_SelectsTheRestInTheNext)
{
    givenSyncedMusic();
    database().exec("UPDATE tPhone SET [LastTime] = NULL; UPDATE tSyncContents SET [Selected] = [lfID] = 1000");
    EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    EXPECT_EQ(database().text("SELECT SUM([Selected]) FROM tSyncContents"), "6");
}

TEST_F(SettingsTest, ChoiceOfAnotherProgram_IsHonouredByTheFirstSync)
{
    givenSyncedMusic();
    database().exec("UPDATE tPhone SET [LastTime] = NULL; UPDATE tSyncContents SET [Selected] = [lfID] = 1100");
    fs::remove_all(Path(phone()));
    fs::create_directories(Path(phone()));
    fs::remove(note("seen of 351111.json"));
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("Music skipped: the main folder music is not selected"));
    EXPECT_THAT(phonePaths(), IsEmpty());
}

TEST_F(SettingsTest, EverythingDeselected_StaysSo)
{
    givenSyncedMusic();
    EXPECT_EQ(settings({"select.music=no", "select.gallery=no", "select.documents=no", "select.contacts=no",
                        "select.calendar=no", "select.bookmarks=no"})
                  .exitCode,
              0);
    givenFile("Rock/b.mp3", "second");
    EXPECT_THAT(sync({"--music", pc("Rock")}).out, HasSubstr("Music skipped"));
    EXPECT_THAT(phonePaths(), ElementsAre("Music/Rock/a.mp3"));
    EXPECT_EQ(database().text("SELECT SUM([Selected]) FROM tSyncContents"), "0");
}

TEST_F(SettingsTest, DeselectedMainFolder_IsSkippedAndKept)
{
    givenFile("Rock/a.mp3", "first");
    givenFile("Pics/p.png", "second");
    givenFile("Clips/v.mp4", "third");
    const std::vector<std::string> all{"--music", pc("Rock"), "--images", pc("Pics"), "--videos", pc("Clips")};
    (void)sync(all);
    const Ended change = settings({"select.gallery=no"});
    EXPECT_EQ(change.exitCode, 0);
    EXPECT_THAT(change.out, HasSubstr("main folder gallery: not selected"));
    removeFile("Pics/p.png");
    removeFile("Clips/v.mp4");
    changeFile("Rock/a.mp3", "newer");
    for (const bool dryRun : {true, false}) {
        std::vector<std::string> arguments = all;
        if (dryRun) {
            arguments.push_back("--dry-run");
        }
        arguments.push_back("--force");
        const Ended run = sync(arguments);
        EXPECT_EQ(run.exitCode, 0);
        EXPECT_THAT(run.out, HasSubstr("Images skipped: the main folder gallery is not selected for this phone"));
        EXPECT_THAT(run.out, HasSubstr("Videos skipped"));
        EXPECT_THAT(run.out, HasSubstr("1 updated, 0 removed"));
    }
    EXPECT_THAT(phonePaths(), ElementsAre("Music/Rock/a.mp3", "Pictures/Pics/p.png", "Videos/Clips/v.mp4"));
    EXPECT_EQ(settings({"select.gallery=yes"}).exitCode, 0);
    EXPECT_THAT(sync({"--force", "--images", pc("Pics")}).out, HasSubstr("1 removed"));
}

TEST_F(SettingsTest, DeselectedFamilies_AreSkipped)
{
    givenSyncedMusic();
    givenFile("Lists/l.m3u8", pc("Rock/a.mp3") + "\n");
    givenFile("bookmarks.html",
              "<!DOCTYPE NETSCAPE-Bookmark-file-1>\n<DL><p><DT><A HREF=\"http://a.example/\">A</A></DL><p>\n");
    givenFile("c.vcf", "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:1\r\nFN:Ann\r\nN:;Ann;;;\r\nEND:VCARD\r\n");
    givenFile("k.ics",
              "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:x\r\nBEGIN:VEVENT\r\nUID:1\r\nDTSTAMP:20260101T000000Z\r\n"
              "DTSTART:20260101T000000Z\r\nSUMMARY:S\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n");
    (void)settings({"select.music=no", "select.bookmarks=no", "select.contacts=no", "select.calendar=no"});
    const Ended run = sync({"--playlists", pc("Lists"), "--bookmarks", pc("bookmarks.html"), "--contacts", pc("c.vcf"),
                            "--calendar", pc("k.ics")});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    for (const char* family : {"Playlists", "Bookmarks", "Contacts", "Calendar"}) {
        EXPECT_THAT(run.out, HasSubstr(std::string(family) + " skipped: the main folder "));
    }
    EXPECT_THAT(phonePaths(), ElementsAre("Music/Rock/a.mp3"));
    for (const char* table : {"tPFolder", "tBFile", "tPimItem"}) {
        EXPECT_EQ(database().text(std::string("SELECT COUNT(*) FROM ") + table), "0") << table;
    }
}

TEST_F(SettingsTest, Deselect_FolderOfMedia_InAllItsCategories)
{
    givenFile("Pics/p.png", "first");
    (void)sync({"--images", pc("Pics"), "--videos", pc("Pics")});
    const Ended run = settings({"--deselect", pc("Pics/../Pics")});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("(images): not selected"));
    EXPECT_THAT(run.out, HasSubstr("(videos): not selected"));
    EXPECT_EQ(database().text("SELECT [Selected] FROM tIFolder UNION ALL SELECT [Selected] FROM tVFolder"), "0\n0");
    EXPECT_THAT(sync({"--images", pc("Pics")}).out, HasSubstr("is not selected for this phone in the database"));
    EXPECT_EQ(settings({"--select", pc("Pics")}).exitCode, 0);
    EXPECT_EQ(database().text("SELECT [Selected] FROM tIFolder"), "1");
}

TEST_F(SettingsTest, Deselect_FolderGoneFromThePc)
{
    givenSyncedMusic();
    fs::remove_all(Path(pc("Rock")));
    EXPECT_EQ(settings({"--deselect", pc("Rock")}).exitCode, 0);
    EXPECT_EQ(database().text("SELECT [Selected] FROM tMFolder"), "0");
}

TEST_F(SettingsTest, Deselect_UnknownFolderOrPlaylist_ChangesNothing)
{
    givenSyncedMusic();
    const Ended folder = settings({"auto_sync=yes", "--deselect", pc("Rock"), "--deselect", pc("Jazz")});
    EXPECT_EQ(folder.exitCode, 1);
    EXPECT_THAT(folder.err, HasSubstr("the database knows no folder"));
    const Ended list = settings({"auto_sync=yes", "--deselect-playlist", "Party"});
    EXPECT_EQ(list.exitCode, 1);
    EXPECT_THAT(list.err, HasSubstr("the database knows no playlist Party"));
    EXPECT_EQ(database().text("SELECT [AutoSync], (SELECT [Selected] FROM tMFolder) FROM tPhone"), "0|1");
}

TEST_F(SettingsTest, SelectAndDeselectAtOnce_IsRefused)
{
    givenSyncedMusic();
    const Ended run = settings({"--select", pc("Rock"), "--deselect", pc("Rock")});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.err, HasSubstr("selected and deselected at once"));
    EXPECT_EQ(settings({"select.music=no", "select.music=yes"}).exitCode, 2);
    EXPECT_EQ(database().text("SELECT [Selected] FROM tMFolder"), "1");
}

TEST_F(SettingsTest, Deselect_Playlist)
{
    givenSyncedMusic();
    database().exec(
        "INSERT INTO tPFolder ([PhoneID], [Path], [Flag], [AddTime]) SELECT [ID], 'Party', 1, '2026-01-01' FROM "
        "tPhone");
    EXPECT_EQ(settings({"--deselect-playlist", "Party"}).exitCode, 0);
    EXPECT_EQ(database().text("SELECT [Selected] FROM tPFolder"), "0");
    EXPECT_EQ(status().at("playlists").at("lists").at(0).at("state"), "not selected");
    EXPECT_EQ(settings({"--select-playlist", "Party"}).exitCode, 0);
    EXPECT_EQ(database().text("SELECT [Selected] FROM tPFolder"), "1");
}

}  // namespace
}  // namespace kesta::test
