#include "stages/backup/backup_stage.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/text.h"
#include "database/backups.h"
#include "os/local_time.h"
#include "os/system.h"
#include "phone/names.h"
#include "stages/backup/archive_writer.h"

namespace kesta {
namespace {

constexpr size_t kLongestPhoneName = 60;  // bytes; the date must fit behind it in any file name

std::string NameForFile(const std::string& phoneName)
{
    std::string name;
    for (std::string_view rest = phoneName; !rest.empty() && name.size() < kLongestPhoneName;) {
        AppendCharacter(name, NextCharacter(rest));
    }
    return SafeName(name);
}

// "2026-01-31-235958"
std::string DateForFile(LocalTime time)
{
    std::string date = FormatLocalTime(time);
    date[10] = '-';
    std::erase(date, ':');
    return date;
}

std::string Line(const std::string& archive, size_t files, uint64_t bytes)
{
    return fmt::format("{}: {}, {}", archive, Counted(files, "file"), FormatSize(bytes));
}

}  // namespace

Plan BackupStage::plan(Session& session)
{
    Report& report = session.report;
    Plan plan(report.summary.files);
    if (!chooseArchive(session)) {
        return plan;
    }
    contents_ = ListPhone(session.folder.root(), [&](size_t files) {
        report.progress.remark(fmt::format("reading the phone: {}", Counted(files, "file")));
        return !os::Interrupted();
    });
    Session::checkInterrupt();
    if (!session.folder.isStillThere()) {
        throw StopRun(ExitCode::kPhoneGone, "the phone went away");
    }
    for (const PhoneProblem& problem : contents_.problems) {
        report.fail(problem.phonePath, "it is not in the backup: " + problem.reason);
    }
    if (contents_.others > 0) {
        report.note(
            fmt::format("{} on the phone left out of the backup.", Counted(contents_.others, "link or device")));
    }
    Change change;
    change.verb = {"", "backup"};
    change.shown = Line(archive_, contents_.files.size(), contents_.bytes);
    change.record = [this, &session](const Written&) { pack(session); };
    plan.add(std::move(change));
    return plan;
}

bool BackupStage::chooseArchive(Session& session)
{
    const std::string& given = *session.options.backup;
    std::string folder;
    os::Status status = os::CanonicalPath(given, folder);
    os::FileInfo info;
    if (status.ok()) {
        status = os::ReadInfo(folder, info);
    }
    if (status.ok() && info.kind != os::FileKind::kDirectory) {
        status = {os::Failure::kOther, "it is not a folder"};
    }
    if (status.ok() && os::LiesIn(folder, session.folder.root())) {
        status = {os::Failure::kOther, "it lies on the phone itself"};
    }
    if (!status.ok()) {
        session.report.fail(given, "the folder for backups cannot be used: " + status.text());
        return false;
    }
    const auto now = os::ToLocalTime(os::Now());
    if (!now) {
        session.report.fail(given, "the PC's clock is out of order, so the backup has no date");
        return false;
    }
    folder_ = folder;
    // A phone that a preview meets first has no IMEI yet.
    const std::string imei = session.imei.empty() ? "new" : SafeName(session.imei);
    stem_ = fmt::format("{}-{}-", NameForFile(session.name), imei);
    const std::string name = stem_ + DateForFile(*now);
    archive_ = os::Join(folder, name + ".zip");
    for (int number = 2; os::ReadInfoOfLink(archive_, info).ok(); ++number) {
        archive_ = os::Join(folder, fmt::format("{}-{}.zip", name, number));
    }
    return true;
}

// A phone whose IMEI begins with this one's and a hyphen has no year behind it.
bool BackupStage::isOldPart(const std::string& name) const
{
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    const std::string_view date = name.starts_with(stem_) ? std::string_view(name).substr(stem_.size()) : "";
    return date.size() > 4 && std::all_of(date.begin(), date.begin() + 4, isDigit) && date[4] == '-' &&
           name.ends_with(fmt::format(".zip{}", ArchiveWriter::kPartEnding));
}

// Killed runs of this phone have left them; no other run is at it now.
void BackupStage::removeOldParts(Report& report) const
{
    std::vector<os::DirectoryEntry> entries;
    if (!os::ListDirectory(folder_, entries).ok()) {
        return;  // Writing will tell why.
    }
    for (const os::DirectoryEntry& entry : entries) {
        if (!isOldPart(entry.name)) {
            continue;
        }
        const std::string path = os::Join(folder_, entry.name);
        if (os::Status status = os::RemoveFile(path); !status.ok()) {
            report.note(
                fmt::format("{} of a run that was cut short cannot be removed: {}", Printable(path), status.text()));
        }
    }
}

void BackupStage::pack(Session& session) const
{
    removeOldParts(session.report);
    ArchiveWriter writer(contents_, session.folder, archive_, session.report);
    const bool isDone = writer.run();
    session.report.progress.finish();
    if (!isDone) {
        return;
    }
    session.report.progress.say(
        fmt::format("{:<9} {}", "Backup", Printable(Line(archive_, writer.files(), contents_.bytes))),
        {"backup", {{"path", archive_}, {"files", uint64_t{writer.files()}}, {"bytes", contents_.bytes}}});
    record(session);
}

void BackupStage::record(Session& session) const
{
    os::FileInfo info;
    if (os::Status status = os::ReadInfo(archive_, info); !status.ok()) {
        return session.report.fail(archive_, "it cannot be found again: " + status.text());
    }
    if (!BackupsOf(session.database, session.imei)) {
        return session.report.note("the database has no table for backups; the archive itself is complete.");
    }
    constexpr const char* kWholePhone = "/";
    const RecordedBackup backup{-1, archive_, kWholePhone, static_cast<int64_t>(info.size),
                                os::ToLocalTime(info.modified.seconds)};
    try {
        (void)session.database.backups().add(session.imei, backup);
    } catch (const kesta_db::Error&) {
        session.report.fail(archive_, "it is complete, but cannot be recorded in the database");
    }
}

}  // namespace kesta
