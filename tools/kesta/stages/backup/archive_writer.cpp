#include "stages/backup/archive_writer.h"

#include <fmt/format.h>

#include "base/text.h"
#include "os/system.h"
#include "stages/backup/zip_check.h"
#include "sync/session.h"

namespace kesta {

ArchiveWriter::ArchiveWriter(const PhoneContents& contents, const PhoneFolder& phone, std::string archive,
                             Report& report)
    : contents_(contents),
      phone_(phone),
      archive_(std::move(archive)),
      part_(archive_ + std::string(kPartEnding)),
      report_(report)
{
}

bool ArchiveWriter::run()
{
    Outcome outcome = Outcome::kAgain;
    try {
        while (outcome == Outcome::kAgain) {
            outcome = attempt();
        }
    } catch (...) {
        removePart();
        throw;
    }
    if (outcome == Outcome::kFailed) {
        removePart();
    }
    return outcome == Outcome::kDone;
}

void ArchiveWriter::checkRun() const
{
    Session::checkInterrupt();
    if (!phone_.isStillThere()) {
        throw StopRun(ExitCode::kPhoneGone, "the phone went away");
    }
}

// A file that cannot be read to its end has begun in the archive by then, so the archive begins anew without it.
ArchiveWriter::Outcome ArchiveWriter::attempt()
{
    report_.progress.start(contents_.files.size(), 2 * contents_.bytes);  // Everything is read twice.
    ZipWriter zip;
    if (os::Status status = os::RemoveFile(part_); !status.ok() && status.failure() != os::Failure::kMissing) {
        return fail(status);
    }
    if (os::Status status = zip.create(part_); !status.ok()) {
        return fail(status);
    }
    for (const PhoneItem& folder : contents_.emptyFolders) {
        if (os::Status status = zip.addFolder(folder.phonePath, folder.info.modified); !status.ok()) {
            return fail(status);
        }
    }
    for (const PhoneItem& file : contents_.files) {
        if (const Outcome outcome = pack(zip, file); outcome != Outcome::kDone) {
            return outcome;
        }
    }
    if (os::Status status = zip.finish(); !status.ok()) {
        return fail(status);
    }
    return check(zip.entries());
}

ArchiveWriter::Outcome ArchiveWriter::pack(ZipWriter& zip, const PhoneItem& file)
{
    if (unreadable_.contains(file.phonePath)) {
        return Outcome::kDone;
    }
    checkRun();
    os::InputFile source;
    os::Status reading = source.open(phone_.native(file.phonePath));
    os::FileInfo info;
    if (reading.ok()) {
        reading = source.readInfo(info);
    }
    if (!reading.ok()) {
        return leaveOut(file, reading.text(), Outcome::kDone);
    }
    if (os::Status status = zip.beginFile(file.phonePath, info.modified, info.size); !status.ok()) {
        return fail(status);
    }
    uint64_t total = 0;
    for (;;) {
        size_t count = 0;
        reading = source.read(buffer_, count);
        if (!reading.ok()) {
            return leaveOut(file, reading.text(), Outcome::kAgain);
        }
        if (count == 0) {
            break;
        }
        if (os::Status status = zip.write(std::span(buffer_).first(count)); !status.ok()) {
            return fail(status);
        }
        total += count;
        if (total > info.size) {
            break;  // It grows; following it could take for ever.
        }
        report_.progress.addBytes(count);
        Session::checkInterrupt();
    }
    if (total != info.size) {
        return leaveOut(file, "it changed while it was read", Outcome::kAgain);
    }
    if (os::Status status = zip.endFile(); !status.ok()) {
        return fail(status);
    }
    report_.progress.endFile("packed", file.phonePath, info.size);
    return Outcome::kDone;
}

ArchiveWriter::Outcome ArchiveWriter::check(const std::vector<ZipEntry>& entries)
{
    os::Status status = CheckZip(part_, entries, [&](size_t bytes) {
        report_.progress.addBytes(bytes);
        return !os::Interrupted();
    });
    Session::checkInterrupt();
    if (status.ok()) {
        status = os::Rename(part_, archive_);
    }
    if (status.ok()) {
        status = os::FlushDirectory(os::ParentOf(archive_));
    }
    return status.ok() ? Outcome::kDone : fail(status);
}

ArchiveWriter::Outcome ArchiveWriter::leaveOut(const PhoneItem& file, const std::string& reason, Outcome next)
{
    checkRun();
    unreadable_.insert(file.phonePath);
    report_.fail(file.phonePath, "it is not in the backup: " + reason);
    return next;
}

ArchiveWriter::Outcome ArchiveWriter::fail(const os::Status& status)
{
    const bool isFull = status.failure() == os::Failure::kFull;
    report_.fail(archive_, isFull ? "the backup does not fit: no space is left in its folder"
                                  : "the backup cannot be written: " + status.text());
    return Outcome::kFailed;
}

void ArchiveWriter::removePart()
{
    if (os::Status status = os::RemoveFile(part_); !status.ok() && status.failure() != os::Failure::kMissing) {
        report_.note(
            fmt::format("{} is not a complete archive and cannot be removed: {}", Printable(part_), status.text()));
    }
}

}  // namespace kesta
