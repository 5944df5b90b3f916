#include <fmt/format.h>

#include <array>

#include "doctor/checks.h"
#include "os/files.h"
#include "phone/names.h"
#include "phone/phone_layout.h"
#include "report/summary.h"
#include "state/database_notice.h"
#include "state/snapshots.h"

namespace kesta {
namespace {

constexpr size_t kMostItems = 100;

// Rows by a condition that says which ones refer to what is not there.
struct Reference {
    const char* table;
    const char* condition;
};

constexpr const char* kNoSuchPhone = "[PhoneID] NOT IN (SELECT [ID] FROM tPhone)";

// tPFilename goes by IMEI: its lists belong to a phone that may yet be announced, so they are told of and stay.
constexpr std::array<Reference, 15> kOfPhones{{{"tBFile", kNoSuchPhone},
                                               {"tBackup", kNoSuchPhone},
                                               {"tDFile", kNoSuchPhone},
                                               {"tDFolder", kNoSuchPhone},
                                               {"tIFile", kNoSuchPhone},
                                               {"tIFolder", kNoSuchPhone},
                                               {"tVFile", kNoSuchPhone},
                                               {"tVFolder", kNoSuchPhone},
                                               {"tMFile", kNoSuchPhone},
                                               {"tMFolder", kNoSuchPhone},
                                               {"tPFile", kNoSuchPhone},
                                               {"tPFolder", kNoSuchPhone},
                                               {"tSyncContents", kNoSuchPhone},
                                               {"tPhotoDocLog", kNoSuchPhone},
                                               {"tPimLog", kNoSuchPhone}}};

constexpr Reference kListOfNoPhone{"tPFilename", "[IMEI] NOT IN (SELECT [IMEI] FROM tPhone)"};

constexpr Reference kLogRows{"tPimLogItem", "[plID] NOT IN (SELECT [plID] FROM tPimLog)"};
constexpr Reference kChoices{"tSyncContents", "[lfID] NOT IN (SELECT [ID] FROM tLibMainFolder)"};

// What holds something of the user's stays.
constexpr std::array<Reference, 2> kOfFolders{
    {{"tPimItem", "[pfID] NOT IN (SELECT [pfID] FROM tPimFolder)"},
     {"tPimFolder", "[parentID] >= 0 AND [parentID] NOT IN (SELECT [pfID] FROM tPimFolder)"}}};

int64_t CountRows(SqliteFile& database, const Reference& reference)
{
    int64_t count = 0;
    (void)database.query(fmt::format("SELECT COUNT(*) FROM {} WHERE {}", reference.table, reference.condition),
                         [&](const SqliteRow& row) { count = row.number(0); });
    return count;
}

os::Status RemoveRows(const std::vector<Reference>& references)
{
    // What is removed can be had back from it.
    if (const SnapshotResult taken = TakeSnapshot(); taken.outcome != SnapshotOutcome::kDone) {
        return {os::Failure::kOther, "no snapshot could be made before: " + taken.reason};
    }
    SqliteFile database;
    os::Status status = database.open(DatabasePath(), SqliteFile::Access::kWrite);
    std::string statements = "BEGIN IMMEDIATE;";
    for (const Reference& reference : references) {
        statements += fmt::format("DELETE FROM {} WHERE {};", reference.table, reference.condition);
    }
    return status.ok() ? database.exec(statements + "COMMIT;") : status;
}

// One finding for all the references that something was found by.
template <class List>
void AddRows(SqliteFile& database, const List& references, const char* what, Finding finding, bool isFixable,
             Findings& findings)
{
    std::vector<Reference> found;
    int64_t all = 0;
    for (const Reference& reference : references) {
        if (const int64_t count = CountRows(database, reference); count > 0) {
            finding.items.push_back(
                fmt::format("{} in {}", Counted(static_cast<size_t>(count), "row"), reference.table));
            found.push_back(reference);
            all += count;
        }
    }
    if (all == 0) {
        return;
    }
    finding.text = fmt::format("{} {}", Counted(static_cast<size_t>(all), "row"), what);
    if (isFixable) {
        finding.fix = [found] { return RemoveRows(found); };
    }
    findings.add(std::move(finding));
}

// Files of which the client would neither replace nor remove anything: another program has recorded them.
void CheckPhonePaths(SqliteFile& database, Findings& findings)
{
    Finding finding{.severity = Severity::kNote,
                    .advice = "Another program has recorded them. They are left alone until their files are synced."};
    size_t count = 0;
    for (const FileTable& files : FileTables()) {
        (void)database.query(fmt::format("SELECT [PhonePath] FROM {}", files.table), [&](const SqliteRow& row) {
            const std::string path = row.text(0);
            const bool isOfMedia = std::string_view(files.table) == "tPFile" && IsPhonePath(path, Category::kMusic);
            if (IsPhonePath(path, files.folder) || isOfMedia) {
                return;
            }
            ++count;
            if (finding.items.size() < kMostItems) {
                finding.items.push_back(path);
            }
        });
    }
    if (count > 0) {
        finding.text =
            fmt::format("{} recorded outside of the folders that this client uses on a phone", Counted(count, "file"));
        findings.add(std::move(finding));
    }
}

}  // namespace

void CheckDatabase(DoctorContext& context, Findings& findings)
{
    findings.begin("replaced", "the known database");
    if (const auto notice = FindDatabaseNotice()) {
        findings.add(
            {.severity = Severity::kError, .text = notice->text, .advice = notice->advice, .items = notice->files});
    }

    findings.begin("integrity", "integrity");
    SqliteFile database;
    std::vector<std::string> problems;
    os::Status status = database.open(DatabasePath(), SqliteFile::Access::kRead);
    if (status.ok()) {
        status = CheckIntegrity(database, problems);
    }
    const bool hasSnapshot = !ReadSnapshots().empty();
    const std::string restore = hasSnapshot
                                    ? "kesta doctor --restore brings the latest snapshot back. Copy the file first."
                                    : "There is no snapshot. Copy the file, and let SQLite's own tools have a look.";
    if (!status.ok()) {
        findings.add(
            {.severity = Severity::kError,
             .text = fmt::format("{} cannot be checked: {}", DatabasePath(), status.text()),
             .advice = status.failure() == os::Failure::kBusy ? "Close the other program, and look again." : restore});
        return;
    }
    if (!problems.empty()) {
        findings.add({.severity = Severity::kError,
                      .text = fmt::format("{} is damaged: {}", DatabasePath(), problems.front()),
                      .advice = restore,
                      .items = problems});
    }
    context.isReadable = ReadPhoneRows(database, context.phones).ok();
}

void CheckRows(const DoctorContext& context, Findings& findings)
{
    SqliteFile database;
    if (!context.isReadable || !database.open(DatabasePath(), SqliteFile::Access::kRead).ok()) {
        return;
    }
    findings.begin("foreign_rows", "foreign rows");
    AddRows(database, std::array{kLogRows, kChoices}, "of logs and choices that are not there any more",
            {.advice = "Nobody reads them. kesta doctor --fix removes them, after a snapshot."}, true, findings);
    AddRows(database, kOfFolders, "of contacts or calendars in a folder that is not there",
            {.advice = "No program shows them. They are left as they are: they hold somebody's entries."}, false,
            findings);
    CheckPhonePaths(database, findings);

    findings.begin("rows_without_phone", "rows without a phone");
    AddRows(database, kOfPhones, "of phones that are not in the database",
            {.advice = "Nobody reads them. kesta doctor --fix removes them, after a snapshot."}, true, findings);
    AddRows(database, std::array{kListOfNoPhone}, "of playlists of phones that are not in the database",
            {.severity = Severity::kNote, .advice = "They are left as they are: the phone may come yet."}, false,
            findings);
}

std::array<FileTable, 5> FileTables()
{
    return {{{"tMFile", PhoneFolderOf(Category::kMusic)},
             {"tIFile", PhoneFolderOf(Category::kImages)},
             {"tVFile", PhoneFolderOf(Category::kVideos)},
             {"tDFile", PhoneFolderOf(Category::kDocuments)},
             {"tPFile", kPlaylistMediaFolder}}};
}

}  // namespace kesta
