#include <fmt/format.h>

#include <algorithm>
#include <map>

#include "doctor/checks.h"
#include "os/files.h"
#include "os/local_time.h"
#include "phone/marker.h"
#include "phone/names.h"
#include "phone/phone_layout.h"
#include "report/summary.h"
#include "state/left_files.h"
#include "state/seen_phone.h"
#include "sync/phone_changes.h"

namespace kesta {
namespace {

constexpr size_t kMostItems = 1000;

struct RecordedCopy {
    std::string path;  // on the PC; empty for what the client has made itself
    std::string phonePath;
    std::optional<LocalTime> modified;
};

// Of the phone paths that the client may touch.
std::vector<RecordedCopy> ReadCopies(SqliteFile& database, int64_t phoneId)
{
    std::vector<RecordedCopy> copies;
    for (const FileTable& files : FileTables()) {
        (void)database.query(fmt::format("SELECT [Path], [PhonePath], [ModifiedTime] FROM {} WHERE [PhoneID] = {}",
                                         files.table, phoneId),
                             [&](const SqliteRow& row) {
                                 if (IsPhonePath(row.text(1), files.folder)) {
                                     copies.push_back({row.text(0), row.text(1), ParseLocalTime(row.text(2))});
                                 }
                             });
    }
    (void)database.query(fmt::format("SELECT [IdInPhone] FROM tPFolder WHERE [PhoneID] = {}", phoneId),
                         [&](const SqliteRow& row) {
                             if (IsPhonePath(row.text(0), kPlaylistFolder)) {
                                 copies.push_back({{}, row.text(0), std::nullopt});
                             }
                         });
    return copies;
}

std::optional<PcFile> ReadPcFile(const std::string& path)
{
    os::FileInfo info;
    if (!os::ReadInfo(path, info).ok() || info.kind != os::FileKind::kFile) {
        return std::nullopt;
    }
    return PcFile{path, info.size, info.modified.seconds, os::ToLocalTime(info.modified.seconds)};
}

void Add(std::vector<std::string>& items, const std::string& item)
{
    if (items.size() < kMostItems) {
        items.push_back(item);
    }
}

void CompareWithPhone(const std::vector<RecordedCopy>& copies, const PhoneFolder& phone, const std::string& imei,
                      const std::string& title, Findings& findings)
{
    LeftFiles left(imei);
    PhoneChanges changes(
        left, false,
        [&](const std::string& phonePath, const std::string& pcPath) { return phone.holdsFile(phonePath, pcPath); },
        [&](const std::string& phonePath) { return phone.digest(phonePath); });
    Finding missing{.severity = Severity::kWarning,
                    .advice =
                        "The next sync of their folders copies them again; kesta restore lists what syncs have "
                        "removed."};
    Finding different{.severity = Severity::kWarning,
                      .advice =
                          "The next sync of their folders keeps them beside the PC's, as \"... (changed on the "
                          "phone)\"."};
    size_t missingCount = 0, differentCount = 0;
    std::vector<std::pair<const RecordedCopy*, PhoneFile>> found;
    for (const RecordedCopy& copy : copies) {
        const PhoneFile there = phone.find(copy.phonePath);
        if (there.entry == PhoneEntry::kFile) {
            found.emplace_back(&copy, there);
            if (const auto pc = ReadPcFile(copy.path)) {
                changes.learn(there, copy.modified, *pc);
            }
            continue;
        }
        ++missingCount;
        Add(missing.items, copy.phonePath);
    }
    for (const auto& [copy, there] : found) {
        const auto pc = ReadPcFile(copy->path);
        const bool isChanged = copy->path.empty()
                                   ? changes.isChanged(copy->phonePath, there)
                                   : changes.isChanged(copy->phonePath, there, copy->modified, pc ? &*pc : nullptr);
        if (isChanged) {
            ++differentCount;
            Add(different.items, copy->phonePath);
        }
    }
    if (missingCount > 0) {
        missing.text = fmt::format("{}: {} recorded, but not on it", title, Counted(missingCount, "file"));
        findings.add(std::move(missing));
    }
    if (differentCount > 0) {
        different.text =
            fmt::format("{}: {} changed on it since the last sync", title, Counted(differentCount, "file"));
        findings.add(std::move(different));
    }
}

}  // namespace

std::vector<MountedPhone> MountedPhones(const DoctorContext& context)
{
    std::vector<std::string> paths;
    if (context.phone) {
        std::string canonical;
        paths.push_back(os::CanonicalPath(*context.phone, canonical).ok() ? canonical : *context.phone);
    } else {
        for (const SeenPhone& seen : ReadSeenPhones()) {
            paths.push_back(seen.path);
        }
    }
    std::vector<MountedPhone> mounted;
    for (const std::string& path : paths) {
        PhoneFolder folder(path);
        std::optional<Marker> marker;
        const bool isNew =
            std::none_of(mounted.begin(), mounted.end(), [&](const MountedPhone& other) { return other.path == path; });
        if (isNew && folder.open().ok() && ReadMarker(folder, marker).ok() && marker) {
            mounted.push_back({path, marker->imei, marker->name});
        }
    }
    return mounted;
}

void CheckPhones(const DoctorContext& context, Findings& findings)
{
    findings.begin("phones", "files on the phones");
    const std::vector<MountedPhone> mounted = MountedPhones(context);
    if (context.phone && mounted.empty()) {
        findings.add({.text = fmt::format("{} is not marked as a phone", *context.phone),
                      .advice = "Is the phone mounted there? Its first sync marks it."});
    }
    for (const SeenPhone& seen : context.phone ? std::vector<SeenPhone>() : ReadSeenPhones()) {
        const bool isThere = std::any_of(mounted.begin(), mounted.end(),
                                         [&](const MountedPhone& phone) { return phone.imei == seen.imei; });
        if (!isThere) {
            findings.add({.severity = Severity::kNote,
                          .text = fmt::format("{} ({}) is not mounted where it was last seen: {}", seen.name, seen.imei,
                                              seen.path),
                          .advice = "Mount it, or name its folder by --phone, to have its files compared."});
        }
    }
    SqliteFile database;
    if (!context.isReadable || !database.open(DatabasePath(), SqliteFile::Access::kRead).ok()) {
        return;
    }
    for (const MountedPhone& phone : mounted) {
        const std::string title = fmt::format("{} ({})", phone.name, phone.imei);
        const auto row = std::find_if(context.phones.begin(), context.phones.end(),
                                      [&](const PhoneRow& known) { return known.imei == phone.imei; });
        if (row == context.phones.end()) {
            findings.add({.text = fmt::format("{}: {} says that it is this phone, which the database does not know",
                                              title, phone.path),
                          .advice =
                              "The next sync records what lies there as it should. If the database was lost, bring "
                              "it back first: kesta doctor --restore."});
            continue;
        }
        PhoneFolder folder(phone.path);
        if (os::Status status = folder.open(); !status.ok()) {
            findings.add({.text = fmt::format("{}: {} cannot be read: {}", title, phone.path, status.text()),
                          .advice = "Mount the phone again."});
            continue;
        }
        try {
            CompareWithPhone(ReadCopies(database, row->id), folder, phone.imei, title, findings);
        } catch (const StopRun& gone) {
            findings.add({.text = fmt::format("{}: {}", title, gone.what()), .advice = "Mount the phone again."});
        }
    }
}

}  // namespace kesta
