// kesta doctor: looks over everything that the client depends on, says what to do, and brings the database back.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

#include "base/stop_run.h"
#include "base/text.h"
#include "commands/command.h"
#include "commands/json.h"
#include "doctor/checks.h"
#include "os/files.h"
#include "report/output.h"
#include "report/summary.h"
#include "report/table.h"
#include "state/snapshots.h"

namespace kesta {
namespace {

constexpr size_t kItemsShown = 10;

struct DoctorOptions {
    std::optional<std::string> phone;
    std::string snapshot;  // empty: the latest
    bool isToRestore = false;
    bool isToAccept = false;
    bool isToFix = false;
    bool asJson = false;
};

const char* NameOf(Severity severity)
{
    switch (severity) {
        case Severity::kNote:
            return "note";
        case Severity::kWarning:
            return "warning";
        default:
            return "error";
    }
}

std::string StateOf(const Check& check)
{
    Severity worst = Severity::kNote;
    bool isOpen = false;
    for (const Finding& finding : check.findings) {
        worst = std::max(worst, finding.severity);
        isOpen = isOpen || !finding.isFixed;
    }
    if (check.findings.empty()) {
        return "ok";
    }
    return isOpen ? NameOf(worst) : "fixed";
}

Findings LookAtAll(const DoctorOptions& options)
{
    DoctorContext context{options.phone, {}, false};
    Findings findings;
    CheckDatabase(context, findings);
    CheckRows(context, findings);
    CheckPhones(context, findings);
    CheckStateFiles(context, findings);
    CheckDiskSpace(context, findings);
    CheckPermissions(context, findings);
    CheckTraceSocket(findings);
    CheckMutex(findings);
    return findings;
}

Json SnapshotsJson()
{
    Json json = Json::array();
    for (const Snapshot& snapshot : ReadSnapshots()) {
        os::FileInfo info;
        (void)os::ReadInfo(snapshot.path, info);
        json.push_back({{"path", snapshot.path}, {"time", FormatLocalTime(snapshot.time)}, {"size", info.size}});
    }
    return json;
}

Json ToJson(const Findings& findings)
{
    Json checks = Json::array(), all = Json::array();
    for (const Check& check : findings.checks()) {
        checks.push_back({{"check", check.key}, {"state", StateOf(check)}});
        for (const Finding& finding : check.findings) {
            all.push_back({{"check", check.key},
                           {"severity", NameOf(finding.severity)},
                           {"text", finding.text},
                           {"advice", finding.advice},
                           {"items", finding.items},
                           {"fixable", static_cast<bool>(finding.fix)},
                           {"fixed", finding.isFixed},
                           {"outcome", finding.outcome.empty() ? Json(nullptr) : Json(finding.outcome)}});
        }
    }
    return {{"database", DatabasePath()},
            {"checks", std::move(checks)},
            {"findings", std::move(all)},
            {"snapshots", SnapshotsJson()}};
}

// Each line of it on its own, behind the indentation.
std::string Indented(const std::string& text, const char* indent)
{
    std::string lines;
    for (size_t begin = 0; begin <= text.size();) {
        const size_t end = std::min(text.find('\n', begin), text.size());
        lines += indent + Printable(text.substr(begin, end - begin)) + '\n';
        begin = end + 1;
    }
    return lines;
}

std::string ToText(const Findings& findings)
{
    std::string text = fmt::format("Database  {}\n\n", Printable(DatabasePath()));
    Table table({"Check", "State"});
    std::string told;
    for (const Check& check : findings.checks()) {
        table.add({check.title, StateOf(check)});
        for (const Finding& finding : check.findings) {
            told += fmt::format("\n{} ({}):\n{}", finding.isFixed ? "fixed" : NameOf(finding.severity), check.title,
                                Indented(finding.text, "  "));
            const size_t shown = std::min(kItemsShown, finding.items.size());
            for (size_t i = 0; i < shown; ++i) {
                told += Indented(finding.items[i], "    ");
            }
            if (shown < finding.items.size()) {
                told += fmt::format("    and {} more; --json lists them\n", finding.items.size() - shown);
            }
            told += Indented(finding.outcome.empty() ? "What to do: " + finding.advice : finding.outcome, "  ");
        }
    }
    text += table.text("") + told;
    const std::vector<Snapshot> snapshots = ReadSnapshots();
    text += fmt::format("\nSnapshots of the database: {}\n", snapshots.empty() ? "none yet" : "");
    for (const Snapshot& snapshot : snapshots) {
        text += fmt::format("  {}  {}\n", FormatLocalTime(snapshot.time), Printable(snapshot.path));
    }
    return text;
}

// The one that is named, else the latest that is intact.
Snapshot ChooseSnapshot(const std::string& named, std::string& remark)
{
    const std::vector<Snapshot> all = ReadSnapshots();
    if (all.empty()) {
        throw StopRun(ExitCode::kFailure, "there is no snapshot of the database");
    }
    for (const Snapshot& snapshot : all) {
        if (!named.empty() && named != snapshot.path && named != os::NameOf(snapshot.path)) {
            continue;
        }
        const std::string problem = SnapshotProblem(snapshot);
        if (problem.empty()) {
            return snapshot;
        }
        remark += fmt::format("{} cannot be used: {}\n", Printable(snapshot.path), Printable(problem));
    }
    throw StopRun(ExitCode::kFailure,
                  !remark.empty() ? remark : fmt::format("there is no snapshot {}; kesta doctor lists them", named));
}

ExitCode Restore(const DoctorOptions& options)
{
    std::string remark, kept;
    const Snapshot snapshot = ChooseSnapshot(options.snapshot, remark);
    if (os::Status status = RestoreSnapshot(snapshot, kept); !status.ok()) {
        throw StopRun(ExitCode::kDatabase,
                      fmt::format("{} cannot be restored: {}", Printable(snapshot.path), status.text()));
    }
    if (options.asJson) {
        PrintJson({{"restored", snapshot.path},
                   {"time", FormatLocalTime(snapshot.time)},
                   {"kept", kept.empty() ? Json(nullptr) : Json(kept)}});
        return ExitCode::kSuccess;
    }
    Print(remark + fmt::format("restored  {}, of {}\n", Printable(snapshot.path), FormatLocalTime(snapshot.time)));
    if (!kept.empty()) {
        Print(fmt::format("kept      {}, what was there before\n", Printable(kept)));
    }
    Print("The next sync of each phone records what has been copied to it since.\n");
    return ExitCode::kSuccess;
}

ExitCode Accept()
{
    if (const SnapshotResult taken = TakeSnapshot(); taken.outcome != SnapshotOutcome::kDone) {
        throw StopRun(ExitCode::kDatabase, "the database cannot be taken for the known one: " + taken.reason);
    }
    Print("accepted  the present database; the snapshots of the former one stay until they are too old\n");
    return ExitCode::kSuccess;
}

ExitCode Run(const DoctorOptions& options)
{
    if (options.isToRestore) {
        return Restore(options);
    }
    if (options.isToAccept) {
        return Accept();
    }
    Findings findings = LookAtAll(options);
    if (options.isToFix) {
        findings.fix();
    }
    if (options.asJson) {
        PrintJson(ToJson(findings));
    } else {
        Print(ToText(findings));
    }
    switch (findings.worst()) {
        case Severity::kNote:
            return ExitCode::kSuccess;
        case Severity::kWarning:
            return ExitCode::kIncomplete;
        default:
            return ExitCode::kDatabase;
    }
}

constexpr const char* kDoctorExamples =
    "Examples:\n"
    "  kesta doctor\n"
    "  kesta doctor --phone /media/me/phone --json\n"
    "  kesta doctor --fix\n"
    "  kesta doctor --restore\n"
    "  kesta doctor --restore KESTA_DB-20260131-235958.s3db\n"
    "\n"
    "Every sync makes a snapshot of the database before it changes anything, and another one at its end; five are kept.\n"
    "Where something is not as it should be, the exit code is 3, and 8 where something is lost or damaged.\n"
    "\n";

std::function<ExitCode()> Prepare(CLI::App& app)
{
    const auto options = std::make_shared<DoctorOptions>();
    app.add_option("--phone", options->phone, "the mounted folder of a phone; else where each was last seen")
        ->type_name("DIR")
        ->check([](const std::string& path) { return EmptyPathProblem(path); });
    CLI::Option* fix = app.add_flag("--fix", options->isToFix, "mend what can be mended without a loss");
    CLI::Option* restore =
        app.add_option("--restore", options->snapshot, "bring a snapshot of the database back, else the latest")
            ->type_name("SNAPSHOT")
            ->expected(0, 1);
    CLI::Option* accept =
        app.add_flag("--accept-database", options->isToAccept, "go on with a database that was replaced");
    restore->excludes(fix);
    accept->excludes(fix)->excludes(restore);
    app.add_flag("--json", options->asJson, "write JSON");
    app.footer(std::string(kDoctorExamples) + kExitCodeHelp);
    return [options, restore] {
        options->isToRestore = restore->count() > 0;
        return Run(*options);
    };
}

}  // namespace

Command DoctorCommand()
{
    return {"doctor", "look over database, phones and files, and bring a lost database back", Prepare,
            OnDatabaseLoss::kIgnore};
}

}  // namespace kesta
