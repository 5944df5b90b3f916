#include "commands/restore_archive.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <memory>

#include "base/stop_run.h"
#include "base/text.h"
#include "commands/phone_access.h"
#include "commands/seen_phones.h"
#include "os/system.h"
#include "phone/marker.h"
#include "phone/names.h"
#include "phone/phone_paths.h"
#include "report/output.h"
#include "report/summary.h"
#include "report/table.h"
#include "stages/backup/zip_reader.h"

namespace kesta {
namespace {

constexpr std::string_view kEnding = ".zip";
constexpr std::string_view kDateShape = "0000-00-00-000000";  // 0: a digit
constexpr size_t kDayLength = 10;

struct Archive {
    std::string path;
    std::string date;  // of its name: "2026-01-31-235958"; empty for any other name
};

// What is to be brought back, and from where.
struct Wanted {
    std::shared_ptr<ZipReader> zip;
    ZipItem item;
    std::string archive;
};

// The date that a backup puts at the end of a name, before ".zip" or "-2.zip"; and what stands before it.
std::string DateOf(std::string_view name, std::string_view& start)
{
    for (size_t at = 0; at + kDateShape.size() + kEnding.size() <= name.size(); ++at) {
        const std::string_view date = name.substr(at, kDateShape.size());
        const bool isDate = std::equal(date.begin(), date.end(), kDateShape.begin(), [](char c, char shape) {
            return shape == '0' ? c >= '0' && c <= '9' : c == shape;
        });
        const std::string_view rest = name.substr(at + kDateShape.size());
        if (isDate && (rest == kEnding || rest.starts_with('-'))) {
            start = name.substr(0, at);
            return std::string(date);
        }
    }
    return {};
}

// The latest first. Of a folder only those of this phone, as far as it says which one it is.
std::vector<Archive> FindArchives(const std::string& given, const PhoneFolder& phone)
{
    os::FileInfo info;
    if (os::Status status = os::ReadInfo(given, info); !status.ok()) {
        throw StopRun(ExitCode::kFailure, fmt::format("{}: {}", Printable(given), status.text()));
    }
    std::string_view start;
    if (info.kind != os::FileKind::kDirectory) {
        return {{given, DateOf(os::NameOf(given), start)}};
    }
    std::optional<Marker> marker;
    (void)ReadMarker(phone, marker);
    std::vector<os::DirectoryEntry> entries;
    if (os::Status status = os::ListDirectory(given, entries); !status.ok()) {
        throw StopRun(ExitCode::kFailure, fmt::format("{} cannot be read: {}", Printable(given), status.text()));
    }
    std::vector<Archive> archives;
    for (const os::DirectoryEntry& entry : entries) {
        const std::string date = entry.name.ends_with(kEnding) ? DateOf(entry.name, start) : std::string();
        if (!date.empty() && (!marker || start.ends_with(fmt::format("-{}-", SafeName(marker->imei))))) {
            archives.push_back({os::Join(given, entry.name), date});
        }
    }
    std::sort(archives.begin(), archives.end(),
              [](const Archive& a, const Archive& b) { return a.date != b.date ? a.date > b.date : a.path > b.path; });
    return archives;
}

std::shared_ptr<ZipReader> Open(const Archive& archive)
{
    auto zip = std::make_shared<ZipReader>();
    if (os::Status status = zip->open(archive.path); !status.ok()) {
        throw StopRun(ExitCode::kFailure, fmt::format("{}: {}", Printable(archive.path), status.text()));
    }
    return zip;
}

void ListArchives(const std::vector<Archive>& archives)
{
    if (archives.empty()) {
        Print("No archive of this phone lies there.\n");
        return;
    }
    Table table({"Day", ">Files", ">Size", "Archive"});
    for (const Archive& archive : archives) {
        ZipReader zip;
        const os::Status status = zip.open(archive.path);
        uint64_t bytes = 0;
        for (const ZipItem& item : zip.items()) {
            bytes += item.size;
        }
        table.add({archive.date.substr(0, kDayLength), status.ok() ? std::to_string(zip.items().size()) : "?",
                   status.ok() ? FormatSize(bytes) : "?",
                   status.ok() ? archive.path : archive.path + ": " + status.text()});
    }
    Print(table.text(""));
    Print("Name an archive with --backup to see what it holds; name files, folders or --all to bring them back.\n");
}

void ListItems(const ZipReader& zip)
{
    Table table({">Size", "Path"});
    for (const ZipItem& item : zip.items()) {
        table.add({FormatSize(item.size), item.name});
    }
    Print(table.text(""));
    Print(fmt::format("{}.\n", Counted(zip.items().size(), "file")));
}

// Anybody may have written the archive: a name must not lead out of the phone, nor to the client's own files.
bool IsSafe(const std::string& name)
{
    const auto parts = SplitPath(name);
    return !parts.empty() && name.find('\\') == std::string::npos && IsValidUtf8(name) &&
           std::none_of(parts.begin(), parts.end(), [](const std::string& part) {
               return part.empty() || part == "." || part == ".." || SafeName(part) != part ||
                      CaseKey(part).starts_with(CaseKey(kOwnPrefix));
           });
}

// Of each path the latest there is; all of the latest archive.
std::map<std::string, Wanted> Collect(const std::vector<Archive>& archives, const RestoreOptions& options)
{
    std::map<std::string, Wanted> wanted;
    const bool isWhole = options.paths.empty();
    for (const Archive& archive : archives) {
        if (options.day && !archive.date.starts_with(*options.day)) {
            continue;
        }
        const auto zip = Open(archive);
        for (const ZipItem& item : zip->items()) {
            if (isWhole || IsNamed(options, item.name)) {
                wanted.try_emplace(item.name, Wanted{zip, item, archive.path});
            }
        }
        if (isWhole) {
            break;
        }
    }
    if (wanted.empty()) {
        throw StopRun(ExitCode::kFailure, "nothing of that is in the archives");
    }
    return wanted;
}

os::Status WriteItem(const Wanted& wanted, const std::string& temporary)
{
    os::OutputFile file;
    os::Status status = os::RemoveFile(temporary);
    if (status.ok() || status.failure() == os::Failure::kMissing) {
        status = file.create(temporary);
    }
    if (!status.ok()) {
        return status;
    }
    status = wanted.zip->extract(wanted.item, [&](std::span<const std::byte> data) {
        if (os::Interrupted()) {
            throw StopRun(ExitCode::kInterrupted, "interrupted");
        }
        return file.write(data);
    });
    if (status.ok()) {
        (void)file.setModified(wanted.item.modified);  // Not every phone takes it.
        status = file.flush();
    }
    return status.ok() ? file.close() : status;
}

os::Status BringBack(const Wanted& wanted, const std::string& place, PhoneFolder& phone)
{
    if (os::Status status = phone.makeFolders(place); !status.ok()) {
        return status;
    }
    const std::string target = phone.native(place);
    const std::string temporary = os::Join(os::ParentOf(target), kTemporaryName);
    os::Status status;
    try {
        status = WriteItem(wanted, temporary);
    } catch (const StopRun&) {
        (void)os::RemoveFile(temporary);
        (void)phone.tidyAbove(place);
        throw;
    }
    // The last look: nothing is overwritten.
    os::FileInfo there;
    if (status.ok() && os::ReadInfoOfLink(target, there).ok()) {
        status = {os::Failure::kExists, "another file has taken its place on the phone"};
    }
    if (status.ok()) {
        status = os::Rename(temporary, target);
    }
    if (status.ok()) {
        return os::FlushDirectory(os::ParentOf(target));
    }
    (void)os::RemoveFile(temporary);
    (void)phone.tidyAbove(place);
    return status;
}

void CheckRoom(const std::map<std::string, Wanted>& wanted, const PhoneFolder& phone)
{
    uint64_t needed = 0;
    for (const auto& [path, file] : wanted) {
        needed += file.item.size;
    }
    std::optional<uint64_t> free;
    (void)os::ReadFreeSpace(phone.root(), free);
    if (free && needed > *free) {
        throw StopRun(ExitCode::kPhoneFull, fmt::format("the phone has not enough room: needs {}, {} free",
                                                        FormatSize(needed), FormatSize(*free)));
    }
}

ExitCode BringAllBack(std::map<std::string, Wanted> wanted, PhoneFolder& phone, bool isDryRun)
{
    size_t failed = 0, there = 0;
    const auto fail = [&](const std::string& path, const std::string& reason) {
        Print(fmt::format("{:<9} {}: {}\n", "failed", Printable(path), Printable(reason)));
        ++failed;
    };
    std::erase_if(wanted, [&](const auto& entry) {
        const auto& [path, file] = entry;
        if (!IsSafe(path)) {
            fail(path, "no file of a phone has such a name");
            return true;
        }
        const bool isThere = IsSameFile(phone.find(path), file.item.size, file.item.modified.seconds);
        there += isThere ? 1u : 0u;
        return isThere;
    });
    CheckRoom(wanted, phone);
    for (const auto& [path, file] : wanted) {
        if (os::Interrupted()) {
            throw StopRun(ExitCode::kInterrupted, "interrupted");
        }
        const std::string place = PlaceFor(path, file.archive, phone);
        if (isDryRun) {
            Print(fmt::format("{:<9} {}\n", "restore", Printable(place)));
        } else if (os::Status status = BringBack(file, place, phone); !status.ok()) {
            fail(path, status.text());
            if (const auto reason = phone.whyNothingCanBeWritten(status)) {
                throw *reason;
            }
        } else {
            Print(fmt::format("{:<9} {}\n", "restored", Printable(place)));
        }
    }
    if (there > 0) {
        Print(fmt::format("{} on the phone as in the archive.\n", Counted(there, "file")));
    }
    return failed > 0 ? ExitCode::kIncomplete : ExitCode::kSuccess;
}

}  // namespace

void ListArchivesIn(const std::string& folder, const PhoneFolder& phone)
{
    ListArchives(FindArchives(folder, phone));
}

ExitCode RestoreFromArchives(const RestoreOptions& options)
{
    PhoneFolder phone = OpenPhone(FolderOfPhone(options.phone, options.imei));
    const std::vector<Archive> archives = FindArchives(*options.backup, phone);
    if (options.paths.empty() && !options.all && !options.day) {
        os::FileInfo info;
        if (os::ReadInfo(*options.backup, info).ok() && info.kind == os::FileKind::kDirectory) {
            ListArchives(archives);
        } else {
            ListItems(*Open(archives.front()));
        }
        return ExitCode::kSuccess;
    }
    os::CatchInterrupts();
    os::DirectoryLock lock;
    if (!options.dryRun) {
        LockPhone(lock, phone);
    }
    return BringAllBack(Collect(archives, options), phone, options.dryRun);
}

}  // namespace kesta
