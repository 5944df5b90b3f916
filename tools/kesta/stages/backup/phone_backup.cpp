#include "stages/backup/phone_backup.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

#include "base/names.h"
#include "base/text.h"
#include "database/backups.h"
#include "os/system.h"
#include "stages/backup/phone_contents.h"
#include "stages/backup/zip_check.h"
#include "stages/backup/zip_writer.h"

namespace kesta {
namespace {

constexpr std::string_view kPartEnding = ".part";
constexpr std::size_t kLongestPhoneName = 60;  // bytes; the date must fit behind it in any file name

std::string NameForFile(const std::string& phoneName)
{
    std::string name;
    for (std::string_view rest = phoneName; !rest.empty() && name.size() < kLongestPhoneName;)
        AppendCharacter(name, NextCharacter(rest));
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

enum class Written { kYes, kAgain, kNo };

class PhoneBackup {
public:
    PhoneBackup(Database& database, const Marker& marker, PhoneFolder& phone, const SyncOptions& options,
                Progress& progress, Summary& summary)
        : database_(database), marker_(marker), phone_(phone), options_(options), progress_(progress), summary_(summary)
    {
    }

    void run()
    {
        if (!chooseArchive()) return;
        if (!options_.dryRun) removeOldParts();
        contents_ = ListPhone(phone_.root(), [&](std::size_t files) {
            progress_.remark(fmt::format("reading the phone: {}", Counted(files, "file")));
            return !os::Interrupted();
        });
        if (os::Interrupted()) return summary_.stopWith(ExitCode::kInterrupted, "interrupted");
        if (!phone_.isStillThere()) return summary_.stopWith(ExitCode::kPhoneGone, "the phone went away");
        for (const PhoneProblem& problem : contents_.problems)
            summary_.fail(problem.phonePath, "it is not in the backup: " + problem.reason);
        if (contents_.others > 0)
            summary_.notes.push_back(
                fmt::format("{} on the phone left out of the backup.", Counted(contents_.others, "link or device")));
        if (options_.dryRun) return tell("backup");
        Written written = Written::kAgain;
        while (written == Written::kAgain) written = attempt();
        progress_.finish();
        if (written == Written::kNo) return removePart();
        tell("Backup");
        record();
    }

private:
    bool chooseArchive()
    {
        std::string folder;
        os::Status status = os::CanonicalPath(*options_.backup, folder);
        os::FileInfo info;
        if (status.ok()) status = os::ReadInfo(folder, info);
        if (status.ok() && info.kind != os::FileKind::kDirectory) status = {os::Failure::kOther, "it is not a folder"};
        if (status.ok() && os::LiesIn(folder, phone_.root()))
            status = {os::Failure::kOther, "it lies on the phone itself"};
        if (!status.ok()) {
            summary_.fail(*options_.backup, "the folder for backups cannot be used: " + status.text());
            return false;
        }
        const auto now = ToLocalTime(os::Now());
        if (!now) {
            summary_.fail(*options_.backup, "the PC's clock is out of order, so the backup has no date");
            return false;
        }
        folder_ = folder;
        // A phone that a dry run meets first has no IMEI yet.
        const std::string imei = marker_.imei.empty() ? "new" : SafeName(marker_.imei);
        stem_ = fmt::format("{}-{}-", NameForFile(marker_.name), imei);
        const std::string name = stem_ + DateForFile(*now);
        archive_ = os::Join(folder, name + ".zip");
        for (int number = 2; os::ReadInfoOfLink(archive_, info).ok(); ++number)
            archive_ = os::Join(folder, fmt::format("{}-{}.zip", name, number));
        part_ = archive_ + std::string(kPartEnding);
        return true;
    }

    // A phone whose IMEI begins with this one's and a hyphen has no year behind it.
    [[nodiscard]] bool isOldPart(const std::string& name) const
    {
        const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
        const std::string_view date = name.starts_with(stem_) ? std::string_view(name).substr(stem_.size()) : "";
        return date.size() > 4 && std::all_of(date.begin(), date.begin() + 4, isDigit) && date[4] == '-' &&
               name.ends_with(fmt::format(".zip{}", kPartEnding));
    }

    // Killed runs of this phone have left them; no other run is at it now.
    void removeOldParts()
    {
        std::vector<os::DirectoryEntry> entries;
        if (!os::ListDirectory(folder_, entries).ok()) return;  // Writing will tell why.
        for (const os::DirectoryEntry& entry : entries) {
            if (!isOldPart(entry.name)) continue;
            const std::string path = os::Join(folder_, entry.name);
            if (os::Status status = os::RemoveFile(path); !status.ok())
                summary_.notes.push_back(fmt::format("{} of a run that was cut short cannot be removed: {}",
                                                     Printable(path), status.text()));
        }
    }

    // A file that cannot be read to its end has begun in the archive by then, so the archive begins anew without it.
    Written attempt()
    {
        progress_.start(contents_.files.size(), 2 * contents_.bytes);  // Everything is read twice.
        ZipWriter zip;
        if (os::Status status = os::RemoveFile(part_); !status.ok() && status.failure() != os::Failure::kMissing)
            return fail(status);
        if (os::Status status = zip.create(part_); !status.ok()) return fail(status);
        for (const PhoneItem& folder : contents_.emptyFolders)
            if (os::Status status = zip.addFolder(folder.phonePath, folder.info.modified); !status.ok())
                return fail(status);
        for (const PhoneItem& file : contents_.files) {
            if (const Written written = pack(zip, file); written != Written::kYes) return written;
        }
        if (os::Status status = zip.finish(); !status.ok()) return fail(status);
        return check(zip.entries());
    }

    Written pack(ZipWriter& zip, const PhoneItem& file)
    {
        if (unreadable_.contains(file.phonePath)) return Written::kYes;
        if (!mayGoOn()) return Written::kNo;
        os::InputFile source;
        os::Status reading = source.open(phone_.native(file.phonePath));
        os::FileInfo info;
        if (reading.ok()) reading = source.readInfo(info);
        if (!reading.ok()) return leaveOut(file, reading.text(), Written::kYes);
        if (os::Status status = zip.beginFile(file.phonePath, info.modified, info.size); !status.ok())
            return fail(status);
        std::uint64_t total = 0;
        for (;;) {
            std::size_t count = 0;
            reading = source.read(buffer_, count);
            if (!reading.ok()) return leaveOut(file, reading.text(), Written::kAgain);
            if (count == 0) break;
            if (os::Status status = zip.write(std::span(buffer_).first(count)); !status.ok()) return fail(status);
            total += count;
            if (total > info.size) break;  // It grows; following it could take for ever.
            progress_.addBytes(count);
            if (os::Interrupted() && !mayGoOn()) return Written::kNo;
        }
        if (total != info.size) return leaveOut(file, "it changed while it was read", Written::kAgain);
        if (os::Status status = zip.endFile(); !status.ok()) return fail(status);
        progress_.endFile("packed", file.phonePath, info.size);
        return Written::kYes;
    }

    Written check(const std::vector<ZipEntry>& entries)
    {
        bool stopped = false;
        os::Status status = CheckZip(part_, entries, [&](std::size_t bytes) {
            progress_.addBytes(bytes);
            stopped = os::Interrupted();
            return !stopped;
        });
        if (stopped || !status.ok()) return stopped && !mayGoOn() ? Written::kNo : fail(status);
        status = os::Rename(part_, archive_);
        if (status.ok()) status = os::FlushDirectory(folder_);
        if (!status.ok()) return fail(status);
        files_ = contents_.files.size() - unreadable_.size();
        return Written::kYes;
    }

    bool mayGoOn()
    {
        if (os::Interrupted()) summary_.stopWith(ExitCode::kInterrupted, "interrupted");
        if (!summary_.stopped() && !phone_.isStillThere())
            summary_.stopWith(ExitCode::kPhoneGone, "the phone went away");
        return !summary_.stopped();
    }

    Written leaveOut(const PhoneItem& file, const std::string& reason, Written next)
    {
        if (!mayGoOn()) return Written::kNo;
        unreadable_.insert(file.phonePath);
        summary_.fail(file.phonePath, "it is not in the backup: " + reason);
        return next;
    }

    Written fail(const os::Status& status)
    {
        const bool isFull = status.failure() == os::Failure::kFull;
        summary_.fail(archive_, isFull ? "the backup does not fit: no space is left in its folder"
                                       : "the backup cannot be written: " + status.text());
        return Written::kNo;
    }

    void removePart()
    {
        if (os::Status status = os::RemoveFile(part_); !status.ok() && status.failure() != os::Failure::kMissing)
            summary_.notes.push_back(
                fmt::format("{} is no complete archive and cannot be removed: {}", Printable(part_), status.text()));
    }

    void tell(const char* verb)
    {
        const std::size_t files = options_.dryRun ? contents_.files.size() : files_;
        progress_.say(fmt::format("{:<9} {}: {}, {}", verb, Printable(archive_), Counted(files, "file"),
                                  FormatSize(contents_.bytes)));
    }

    void record()
    {
        BackupRecords backups(database_);
        os::FileInfo info;
        if (os::Status status = os::ReadInfo(archive_, info); !status.ok())
            return summary_.fail(archive_, "it cannot be found again: " + status.text());
        if (!backups.of(marker_.imei)) {
            summary_.notes.push_back("the database has no table for backups; the archive itself is complete.");
            return;
        }
        constexpr const char* kWholePhone = "/";
        const RecordedBackup backup{-1, archive_, kWholePhone, static_cast<std::int64_t>(info.size),
                                    ToLocalTime(info.modified.seconds)};
        if (!backups.add(marker_.imei, backup))
            summary_.fail(archive_, "it is complete, but cannot be recorded in the database");
    }

    Database& database_;
    const Marker& marker_;
    PhoneFolder& phone_;
    const SyncOptions& options_;
    Progress& progress_;
    Summary& summary_;
    std::string folder_, stem_, archive_, part_;
    PhoneContents contents_;
    std::set<std::string> unreadable_;
    std::size_t files_ = 0;  // in the archive
    std::vector<std::byte> buffer_ = std::vector<std::byte>(1 << 18);
};

}  // namespace

void BackUpPhone(Database& database, const Marker& phoneMarker, PhoneFolder& phone, const SyncOptions& options,
                 Progress& progress, Summary& summary)
{
    PhoneBackup(database, phoneMarker, phone, options, progress, summary).run();
}

}  // namespace kesta
