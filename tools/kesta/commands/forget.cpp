#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <chrono>
#include <memory>

#include "base/text.h"
#include "commands/command.h"
#include "commands/pc_path.h"
#include "commands/phone_access.h"
#include "commands/phones.h"
#include "commands/seen_phones.h"
#include "database/forgetting.h"
#include "database/pim_kind.h"
#include "os/system.h"
#include "phone/marker.h"
#include "report/output.h"
#include "stages/forget_stage.h"
#include "stages/leftover_stage.h"
#include "stages/pim/pim_stage.h"
#include "state/hidden_phones.h"
#include "state/sync_sources.h"
#include "sync/executor.h"
#include "sync/guarded.h"
#include "sync/preview.h"

namespace kesta {
namespace {

struct ForgetOptions {
    std::string what;   // empty: the phone itself
    std::string phone;  // empty: where it was last seen
    std::optional<std::string> imei;
    bool dryRun = false;
    bool force = false;
    bool quiet = false;
    bool noTrash = false;
};

Marker MarkerOf(const PhoneFolder& phone, const ForgetOptions& options)
{
    std::optional<Marker> marker;
    if (os::Status status = ReadMarker(phone, marker); !status.ok()) {
        throw StopRun(ExitCodeOf(status),
                      fmt::format("the phone's file {} cannot be used: {}", kMarkerName, status.text()));
    }
    if (!marker || (options.imei && *options.imei != marker->imei)) {
        throw StopRun(ExitCode::kNotThePhone,
                      fmt::format("the folder {} is not {}", Printable(phone.root()),
                                  options.imei ? "the phone " + *options.imei : std::string("marked as a phone")));
    }
    return *marker;
}

// Which kinds of entries the store holds of an address book or calendar.
bool IsStored(const Database& database, PimKind kind, const std::string& path)
{
    const std::string source = PimSourceId(kind, path);
    const std::vector<PimFolder> folders = database.pimStore().folders(TypeOf(kind), {}, true);
    return std::any_of(folders.begin(), folders.end(),
                       [&](const PimFolder& folder) { return IsOfPimSource(folder.id, source); });
}

class ForgetRun {
public:
    ForgetRun(const ForgetOptions& options, PhoneFolder& phone)
        : what_(options.what),
          path_(RecordedPath(options.what)),
          phone_(phone),
          marker_(MarkerOf(phone, options)),
          report_(options.quiet ? Progress::Style::kQuiet : Progress::Style::kLines, options.quiet),
          guard_(marker_.imei, options.force),
          left_(marker_.imei)
    {
        options_.force = options.force;
        options_.dryRun = options.dryRun;
        options_.quiet = options.quiet;
        options_.noTrash = options.noTrash;
        if (options.dryRun) {
            runner_ = std::make_unique<Preview>(phone, options_, report_);
        } else {
            runner_ = std::make_unique<Executor>(phone, options_, guard_, left_, report_);
        }
    }

    ExitCode run()
    {
        os::DirectoryLock lock;
        if (!options_.dryRun) {
            LockPhone(lock, phone_);
        }
        Database database;
        const bool isKnown = database.phones().find(marker_.imei).has_value();
        Session session{database, marker_.imei, marker_.name, isKnown, runner_->phone(),
                        phone_,   options_,     guard_,       left_,   report_};
        report_.progress.say(fmt::format("Phone     {} ({}){}", Printable(session.name), Printable(session.imei),
                                         options_.dryRun ? ", dry run: nothing is changed" : ""));
        Guarded(report_.summary, [&] { runAll(session); });
        report_.progress.finish();
        const auto seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started_).count();
        report_.progress.say(Describe(report_.summary, options_.dryRun, seconds));
        return report_.summary.exitCode();
    }

private:
    void runAll(Session& session)
    {
        LeftoverStage leftovers(media_, phone_);
        runStage(leftovers, session);
        bool isFound = forgetMedia(session);
        isFound = forgetPlaylist(session) || isFound;
        isFound = forgetEntries(session) || isFound;
        SyncSources remembered;
        const bool isRemembered = ReadSyncSources(session.imei, remembered).ok() && remembered.drop(path_);
        if (!isFound && !isRemembered) {
            throw StopRun(ExitCode::kFailure, fmt::format("nothing of {} is recorded for this phone", what_));
        }
        const bool isDone = report_.summary.exitCode() == ExitCode::kSuccess;
        if (isRemembered && isDone && !options_.dryRun) {
            if (os::Status saved = WriteSyncSources(session.imei, remembered); !saved.ok()) {
                report_.note("it cannot be taken out of what is remembered for kesta sync: " + saved.text());
            }
        } else if (isFound && !isRemembered && isDone) {
            report_.note(
                "a later sync brings it back if it still finds it in what it is given; a rule keeps it away (kesta "
                "settings --exclude).");
        }
    }

    void runStage(Stage& stage, Session& session) { runner_->run(stage.plan(session)); }

    bool forgetMedia(Session& session)
    {
        ForgetMediaStage stage(media_, session.database, session.imei, path_);
        const bool isFound = stage.isRecorded();
        if (isFound) {
            runStage(stage, session);
        }
        return isFound;
    }

    bool forgetPlaylist(Session& session)
    {
        PlaylistRun playlists(session.database, session.imei);
        const std::vector<RecordedPlaylist> lists = playlists.records.all();
        const bool isFound =
            std::any_of(lists.begin(), lists.end(), [&](const RecordedPlaylist& list) { return list.name == what_; });
        if (isFound) {
            ForgetPlaylistStage files(playlists, what_);
            runStage(files, session);
            PlaylistStage list(playlists);
            runStage(list, session);
        }
        return isFound;
    }

    bool forgetEntries(Session& session)
    {
        options_.contacts.clear();
        options_.calendars.clear();
        if (IsStored(session.database, PimKind::kContacts, path_)) {
            options_.contacts.push_back(path_);
        }
        if (IsStored(session.database, PimKind::kCalendar, path_)) {
            options_.calendars.push_back(path_);
        }
        if (!options_.hasAny()) {
            return false;
        }
        PimStage stage(session.database, phone_, PimAim::kForget);
        runStage(stage, session);
        return true;
    }

    std::string what_, path_;
    PhoneFolder& phone_;
    Marker marker_;
    SyncOptions options_;
    Report report_;
    DeletionGuard guard_;
    LeftFiles left_;
    MediaState media_;
    std::unique_ptr<Runner> runner_;
    std::chrono::steady_clock::time_point started_ = std::chrono::steady_clock::now();
};

// What is on the phone itself stays: it may not even be there.
ExitCode ForgetPhone(const ForgetOptions& options)
{
    Database database;
    const PhoneSettings phone = KnownPhone(database, *options.imei);
    const size_t records = CountRecords(database, phone.imei);
    const std::string title = fmt::format("{} ({})", Printable(phone.name), Printable(phone.imei));
    if (options.dryRun) {
        Print(fmt::format("{}: {} would be taken out of the database. Its files stay on the phone.\n", title,
                          Counted(records, "record")));
        return ExitCode::kSuccess;
    }
    if (records > 0 && !options.force) {
        Print(
            fmt::format("Deferred: {} of {} to be taken out of the database. Its files stay on the phone. Add --force "
                        "if that is what you want.\n",
                        Counted(records, "record"), title));
        return ExitCode::kDeferred;
    }
    ForgetAll(database, phone.imei);
    if (const size_t left = CountRecords(database, phone.imei); left > 0) {
        throw StopRun(ExitCode::kDatabase,
                      fmt::format("{} could not be taken out of the database", Counted(left, "record")));
    }
    if (os::Status status = HidePhone(phone.imei); !status.ok()) {
        throw StopRun(ExitCode::kFailure, "the phone cannot be hidden: " + status.text());
    }
    Print(
        fmt::format("{}: forgotten, {} taken out of the database. Its files stay on the phone; a sync makes it known "
                    "again.\n",
                    title, Counted(records, "record")));
    return ExitCode::kSuccess;
}

ExitCode Run(const ForgetOptions& options)
{
    if (!options.what.empty()) {
        PhoneFolder phone = OpenPhone(FolderOfPhone(options.phone, options.imei));
        return ForgetRun(options, phone).run();
    }
    if (!options.imei || !options.phone.empty()) {
        throw StopRun(ExitCode::kUsage,
                      "say what is to be forgotten: a path or a playlist, or a phone by --imei alone");
    }
    return ForgetPhone(options);
}

constexpr const char* kForgetExamples =
    "Examples:\n"
    "  kesta forget ~/Music/Audiobooks --dry-run\n"
    "  kesta forget ~/Music/Rock/song.mp3 --imei 004999010640000\n"
    "  kesta forget Party                          a playlist, and the music that only it has brought\n"
    "  kesta forget ~/friends.vcf\n"
    "  kesta forget --imei 004999010640000         a phone that you do not have any more\n"
    "\n"
    "Takes a folder, a file, a playlist, an address book or a calendar off the phone and out of the database; what is\n"
    "remembered of it for kesta sync as well. Nothing is removed from the PC. More than half of a category, or of an\n"
    "address book, goes with --force only. A phone that is forgotten is cleared in the database and not shown any more;\n"
    "what is on it stays.\n"
    "\n";

std::function<ExitCode()> Prepare(CLI::App& app)
{
    const auto options = std::make_shared<ForgetOptions>();
    app.add_option("what", options->what, "a path of the PC, or the name of a playlist")
        ->type_name("PATH|PLAYLIST")
        ->check([](const std::string& path) { return EmptyPathProblem(path); });
    app.add_option("--phone", options->phone, "the mounted folder of the phone; else where it was last seen")
        ->type_name("DIR")
        ->check([](const std::string& path) { return EmptyPathProblem(path); });
    app.add_option("--imei", options->imei, "the phone")->type_name("IMEI");
    app.add_flag("--no-trash", options->noTrash, "what is removed does not go to the phone's trash for 30 days");
    app.add_flag("--dry-run", options->dryRun, "only say what would be done; change nothing");
    app.add_flag("--force", options->force, "remove even if it is more than half of what is recorded");
    app.add_flag("--quiet,-q", options->quiet, "no line for each file");
    app.footer(std::string(kForgetExamples) + kExitCodeHelp);
    return [options] { return Run(*options); };
}

}  // namespace

Command ForgetCommand()
{
    return {"forget", "take a folder, playlist or address book off a phone, or a phone off the list", Prepare};
}

}  // namespace kesta
