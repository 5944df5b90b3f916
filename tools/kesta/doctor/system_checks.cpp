#include <fmt/format.h>

#include <algorithm>

#include "base/text.h"
#include "doctor/checks.h"
#include "os/files.h"
#include "os/library_mutex.h"
#include "os/permissions.h"
#include "os/trace_socket.h"
#include "report/summary.h"
#include "state/state_file.h"

namespace kesta {
namespace {

constexpr uint64_t kLeastRoom = uint64_t{50} << 20;
constexpr std::string_view kUnfinished = ".json.new";

// Out of the client's way, under a name that says what it is.
os::Status SetAside(const std::string& path)
{
    for (int attempt = 1;; ++attempt) {
        const std::string other = attempt == 1 ? path + ".damaged" : fmt::format("{}.damaged-{}", path, attempt);
        os::FileInfo info;
        if (os::ReadInfoOfLink(other, info).failure() == os::Failure::kMissing) {
            return os::Rename(path, other);
        }
    }
}

std::string ImeiOf(const nlohmann::json& state)
{
    const auto imei = state.is_object() ? state.find("imei") : state.end();
    return state.is_object() && imei != state.end() && imei->is_string() ? imei->get<std::string>() : std::string();
}

void CheckStateFile(const std::string& path, const DoctorContext& context, Findings& findings)
{
    std::string text;
    if (os::Status status = os::ReadText(path, text); !status.ok()) {
        findings.add({.text = fmt::format("{} cannot be read: {}", path, status.text()),
                      .advice = "Give yourself the right to read it."});
        return;
    }
    const nlohmann::json state = nlohmann::json::parse(text, nullptr, false);
    if (!state.is_object() || !state.contains("imei") || !state["imei"].is_string()) {
        findings.add({.text = fmt::format("{} is damaged", path),
                      .advice =
                          "kesta doctor --fix sets it aside; the next sync makes a new one. What it said is lost: "
                          "how a run ended, what was deferred, or how files were left on a phone.",
                      .fix = [path] { return SetAside(path); }});
        return;
    }
    const std::string imei = ImeiOf(state);
    const bool isKnown = imei.empty() || std::any_of(context.phones.begin(), context.phones.end(),
                                                     [&](const PhoneRow& phone) { return phone.imei == imei; });
    if (context.isReadable && !isKnown) {
        findings.add({.severity = Severity::kNote,
                      .text = fmt::format("{} is about the phone {}, which the database does not know", path, imei),
                      .advice = "It is of use as soon as that phone is synced again. Nothing has to be done."});
    }
}

void CheckRoom(const std::string& folder, uint64_t wanted, const std::string& what, Severity severity,
               Findings& findings)
{
    std::optional<uint64_t> bytes;
    if (os::ReadFreeSpace(folder, bytes).ok() && bytes && *bytes < wanted) {
        findings.add({.severity = severity,
                      .text = fmt::format("{}: only {} free", what, FormatSize(*bytes)),
                      .advice = "Make room there."});
    }
}

void CheckPrivate(const std::string& path, Findings& findings)
{
    if (os::IsOpenToOthers(path)) {
        findings.add({.text = fmt::format("other users of this computer may read or change {}", path),
                      .advice = "kesta doctor --fix closes it to them.",
                      .fix = [path] { return os::CloseToOthers(path); }});
    }
}

}  // namespace

void CheckStateFiles(const DoctorContext& context, Findings& findings)
{
    findings.begin("state_files", "state files");
    std::vector<os::DirectoryEntry> entries;
    if (os::Status status = os::ListDirectory(StateFolder(), entries);
        !status.ok() && status.failure() != os::Failure::kMissing) {
        findings.add({.text = fmt::format("{} cannot be read: {}", StateFolder(), status.text()),
                      .advice = "Give yourself the right to read it."});
    }
    std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
    for (const os::DirectoryEntry& entry : entries) {
        const std::string path = os::Join(StateFolder(), entry.name);
        if (entry.name.ends_with(".json")) {
            CheckStateFile(path, context, findings);
        } else if (entry.name.ends_with(kUnfinished)) {
            findings.add({.severity = Severity::kNote,
                          .text = fmt::format("{} is what a run that was cut short has left", path),
                          .advice = "kesta doctor --fix removes it.",
                          .fix = [path] { return os::RemoveFile(path); }});
        }
    }
}

void CheckDiskSpace(const DoctorContext& context, Findings& findings)
{
    findings.begin("disk_space", "disk space");
    os::FileInfo file;
    (void)os::ReadInfo(DatabasePath(), file);
    // A snapshot, and what a statement writes beside the database before it changes it.
    const uint64_t wanted = std::max(kLeastRoom, 3 * file.size);
    const std::string folder = os::ParentOf(DatabasePath());
    CheckRoom(folder, wanted, fmt::format("{}, where the database lies", folder), Severity::kWarning, findings);
    for (const MountedPhone& phone : MountedPhones(context)) {
        CheckRoom(phone.path, kLeastRoom, fmt::format("{} ({})", phone.name, phone.imei), Severity::kNote, findings);
    }
}

void CheckPermissions(const DoctorContext& context, Findings& findings)
{
    findings.begin("permissions", "permissions");
    const std::string folder = os::ParentOf(DatabasePath());
    const auto check = [&](const std::string& path, const os::Status& status, const std::string& what) {
        if (!status.ok() && status.failure() != os::Failure::kMissing) {
            findings.add({.severity = Severity::kError,
                          .text = fmt::format("{} cannot be written: {} ({})", what, path, status.text()),
                          .advice = "Give yourself the right to write there."});
        }
    };
    check(DatabasePath(), os::CheckFileWritable(DatabasePath()), "the database");
    check(folder, os::CheckWritable(folder), "the database's folder");
    check(StateFolder(), os::CheckWritable(StateFolder()), "the client's folder");
    CheckPrivate(DatabasePath(), findings);
    CheckPrivate(StateFolder(), findings);
    for (const MountedPhone& phone : MountedPhones(context)) {
        check(phone.path, os::CheckWritable(phone.path), fmt::format("the phone {} ({})", phone.name, phone.imei));
    }
}

void CheckTraceSocket(Findings& findings)
{
    findings.begin("trace_socket", "trace socket");
    const std::string path = os::TraceSocketPath();
    os::TraceSocket socket = os::TraceSocket::kNone;
    if (os::Status status = os::LookAtTraceSocket(path, socket); !status.ok()) {
        findings.add({.text = fmt::format("{} cannot be looked at: {}", path, status.text()),
                      .advice = "kesta trace cannot show anything as long as that is so."});
    } else if (socket == os::TraceSocket::kViewer) {
        findings.add({.severity = Severity::kNote,
                      .text = fmt::format("a viewer reads the trace from {}", path),
                      .advice = "Calls take somewhat longer as long as it runs."});
    } else if (socket == os::TraceSocket::kStale) {
        findings.add({.text = fmt::format("{} was left by a viewer that has been killed", path),
                      .advice = "kesta doctor --fix removes it, and so does the next kesta trace.",
                      .fix = [path] { return os::RemoveFile(path); }});
    } else if (socket == os::TraceSocket::kForeign) {
        findings.add({.text = fmt::format("{} is not a socket of yours", path),
                      .advice = "kesta trace cannot run as long as it is there. See whose it is."});
    }
}

void CheckMutex(Findings& findings)
{
    findings.begin("mutex", "the library's mutex");
    const os::LibraryMutex mutex = os::ReadLibraryMutex();
    if (!mutex.isKnown) {
        findings.add({.severity = Severity::kNote,
                      .text = "it cannot be looked at",
                      .advice = "The programs that use the library take a lock file instead."});
        return;
    }
    if (mutex.isHeld) {
        const std::string holder =
            mutex.process == 0 ? "another program" : fmt::format("{}[{}]", Printable(mutex.name), mutex.process);
        findings.add({.severity = Severity::kNote,
                      .text = fmt::format("{} is in a call to the library just now", holder),
                      .advice = "Other programs wait until its call ends. If it stays so, end that program."});
    }
    if (mutex.needsLockFile) {
        findings.add({.severity = Severity::kNote,
                      .text = "a program that cannot use it takes part: all of them take a lock file as well",
                      .advice = "Nothing has to be done; a program in a container is a usual reason."});
    }
}

}  // namespace kesta
