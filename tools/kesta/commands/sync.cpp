#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <chrono>
#include <memory>

#include "base/byte_escapes.h"
#include "base/text.h"
#include "commands/command.h"
#include "commands/phone_access.h"
#include "database/failures.h"
#include "os/local_time.h"
#include "os/system.h"
#include "phone/marker.h"
#include "stages/backup/backup_stage.h"
#include "stages/bookmarks/bookmark_stage.h"
#include "stages/leftover_stage.h"
#include "stages/main_folder_stage.h"
#include "stages/media/media_stage.h"
#include "stages/phone_stage.h"
#include "stages/pim/pim_stage.h"
#include "stages/playlists/playlist_stage.h"
#include "state/last_run.h"
#include "state/run_history.h"
#include "state/snapshots.h"
#include "sync/executor.h"
#include "sync/mount.h"
#include "sync/preview.h"

namespace kesta {
namespace {

Progress::Style StyleOf(const SyncOptions& options)
{
    if (os::IsTerminal()) {
        return Progress::Style::kBar;
    }
    return options.quiet ? Progress::Style::kQuiet : Progress::Style::kLines;
}

// What ended a run is the summary's matter as soon as the run has a summary.
template <class Work>
void Guarded(Summary& summary, const Work& work)
{
    try {
        work();
    } catch (const StopRun& stop) {
        summary.stopWith(stop.code(), stop.what());
    } catch (const kesta_db::Error& failure) {
        summary.stopWith(ExitCode::kDatabase, TextOf(failure));
    }
}

class SyncRun {
public:
    SyncRun(const SyncOptions& options, PhoneFolder& phone)
        : options_(options), phone_(phone), report_(StyleOf(options), options.quiet), guard_(options.force)
    {
        if (options.dryRun) {
            runner_ = std::make_unique<Preview>(phone, options_, report_);
        } else {
            runner_ = std::make_unique<Executor>(phone, options_, guard_, left_, report_);
        }
    }

    ExitCode run()
    {
        media_.chosen = ChooseFolders(options_, phone_);
        os::DirectoryLock lock;
        if (!options_.dryRun) {
            LockPhone(lock, phone_);
        }
        PhoneStage phoneStage(phone_, options_);
        Database database;
        if (!options_.dryRun) {
            takeSnapshot();
        }
        Session session{database, {}, {}, false, runner_->phone(), phone_, options_, guard_, left_, report_};
        runStage(phoneStage, session);
        session.imei = phoneStage.marker().imei;
        session.name = phoneStage.marker().name;
        session.isKnown = !session.imei.empty() && database.phones().find(session.imei);
        guard_ = DeletionGuard(session.imei, options_.force);
        left_ = LeftFiles(session.imei);
        greet(session);
        Guarded(report_.summary, [&] {
            MainFolderStage mainFolders(phoneStage.isMarked(), options_, media_.chosen);
            runStage(mainFolders, session);
            for (const auto& stage : stagesOf(database, session.imei)) {
                runStage(*stage, session);
            }
        });
        report_.progress.finish();
        if (!options_.dryRun) {
            RememberMount(phone_, session.imei);
            recordEnd(database, session.imei);
            Guarded(report_.summary, [&] { takeSnapshot(); });
        }
        const auto seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started_).count();
        report_.progress.say(Describe(report_.summary, options_.dryRun, seconds));
        return report_.summary.exitCode();
    }

private:
    void runStage(Stage& stage, Session& session) { runner_->run(stage.plan(session)); }

    // What there is to go back to when the database is lost.
    void takeSnapshot()
    {
        const SnapshotResult taken = TakeSnapshot();
        if (taken.outcome == SnapshotOutcome::kDamaged) {
            throw StopRun(ExitCode::kDatabase,
                          fmt::format("the database is damaged: {}; kesta doctor tells more", taken.reason));
        }
        if (taken.outcome == SnapshotOutcome::kFailed) {
            report_.note("no snapshot of the database could be made: " + taken.reason);
        }
    }

    void greet(const Session& session)
    {
        const std::string imei = session.imei.empty() ? "new, its IMEI is made up by the first sync" : session.imei;
        report_.progress.say(fmt::format("Phone     {} ({}){}", Printable(session.name), Printable(imei),
                                         options_.dryRun ? ", dry run: nothing is changed" : ""));
    }

    // In the order of their turn. The backup comes last, to hold it all.
    std::vector<std::unique_ptr<Stage>> stagesOf(const Database& database, const std::string& imei)
    {
        std::vector<std::unique_ptr<Stage>> stages;
        stages.push_back(std::make_unique<LeftoverStage>(media_, phone_));
        stages.push_back(std::make_unique<MediaFolderStage>(media_));
        stages.push_back(std::make_unique<MediaStage>(media_, database, imei));
        if (options_.playlists) {
            playlists_ = std::make_unique<PlaylistRun>(database, imei);
            stages.push_back(std::make_unique<PlaylistFileStage>(*playlists_, media_.phonePaths));
            stages.push_back(std::make_unique<PlaylistStage>(*playlists_));
        }
        if (options_.bookmarks) {
            stages.push_back(std::make_unique<BookmarkStage>(database, imei));
        }
        if (!options_.contacts.empty() || !options_.calendars.empty()) {
            stages.push_back(std::make_unique<PimStage>(database, phone_));
        }
        if (options_.backup) {
            stages.push_back(std::make_unique<BackupStage>());
        }
        return stages;
    }

    void recordEnd(const Database& database, const std::string& imei)
    {
        const auto now = os::ToLocalTime(os::Now());
        const int code = static_cast<int>(report_.summary.exitCode());
        if (!now) {
            report_.summary.stopWith(ExitCode::kDatabase, "the end of the run cannot be recorded: it has no date");
            return;
        }
        try {
            database.phones().setLastSync(imei, *now, code);
        } catch (const kesta_db::Error& failure) {
            report_.summary.stopWith(ExitCode::kDatabase,
                                     "the end of the run cannot be recorded: " + SentenceOf(failure.code()));
        }
        if (os::Status saved = SaveLastRun(imei, {*now, code, reason()}); !saved.ok()) {
            report_.note("how the run ended cannot be noted for kesta status: " + saved.text());
        }
        if (os::Status saved = AddRun(imei, runRecord(*now, code)); !saved.ok()) {
            report_.note("the run cannot be noted for kesta report: " + saved.text());
        }
    }

    [[nodiscard]] RunRecord runRecord(LocalTime time, int code) const
    {
        const Summary& summary = report_.summary;
        Tally all = summary.files;
        for (const FamilyTally& family : summary.families) {
            all += family.tally;
        }
        RunRecord run{time,         code,        reason(),      all.added,
                      all.updated,  all.removed, all.unchanged, summary.failures.size(),
                      all.deferred, {}};
        for (const FailedItem& failure : summary.failures) {
            run.failures.emplace_back(failure.path, failure.reason);
        }
        return run;
    }

    [[nodiscard]] std::string reason() const
    {
        const Summary& summary = report_.summary;
        if (summary.isStopped()) {
            return summary.stopReason;
        }
        if (!summary.failures.empty()) {
            return fmt::format("{} failed", Counted(summary.failures.size(), "item"));
        }
        const size_t deferred = summary.allDeferred();
        return deferred > 0 ? fmt::format("{} deferred", Counted(deferred, "removal")) : std::string();
    }

    SyncOptions options_;  // without what the phone takes no part in
    PhoneFolder& phone_;
    Report report_;
    DeletionGuard guard_;  // the phone's own, once it is known which phone it is
    LeftFiles left_;       // likewise
    std::unique_ptr<Runner> runner_;
    MediaState media_;
    std::unique_ptr<PlaylistRun> playlists_;
    std::chrono::steady_clock::time_point started_ = std::chrono::steady_clock::now();
};

ExitCode Run(const SyncOptions& options)
{
    PhoneFolder phone = OpenPhone(options.phone);
    os::CatchInterrupts();
    return SyncRun(options, phone).run();
}

constexpr const char* kSyncExamples =
    "Examples:\n"
    "  kesta sync --phone /media/me/phone --music ~/Music\n"
    "  kesta sync --phone /media/me/phone --name \"Anna's phone\" --music ~/Music --images ~/Pictures/2025 \\\n"
    "             --images ~/Pictures/2026 --documents ~/Documents\n"
    "  kesta sync --phone E:\\ --music C:\\Users\\me\\Music --dry-run\n"
    "  kesta sync --phone /media/me/phone --playlists ~/Music/Playlists --bookmarks ~/bookmarks.html\n"
    "  kesta sync --phone /media/me/phone --contacts ~/friends.vcf ~/work.vcf --calendar ~/home.ics\n"
    "  kesta sync --phone /media/me/phone --backup ~/Backups\n"
    "\n"
    "The first run marks the folder as that phone; later runs recognise it. Files that are new or changed on the PC "
    "are\n"
    "copied, files gone from a folder that is given are removed from the phone, everything else stays as it is.\n"
    "Playlists take their music along. A backup is one archive of all that is on the phone after the other steps.\n"
    "\n";

std::string NameProblem(const std::string& name)
{
    constexpr size_t kLongest = 1000;
    if (name.size() > kLongest) {
        return "the name is too long";
    }
    return IsValidUtf8(name) && !HasEscapedBytes(name) ? "" : "the name is not valid text";
}

std::function<ExitCode()> Prepare(CLI::App& app)
{
    const auto options = std::make_shared<SyncOptions>();
    app.add_option("--phone", options->phone, "the mounted folder of the phone")
        ->required()
        ->type_name("DIR")
        ->check([](const std::string& path) { return EmptyPathProblem(path); });
    app.add_option("--imei", options->imei,
                   "the phone's IMEI, the 15 digits that *#06# shows on it; made up when none is given for a new one")
        ->type_name("IMEI")
        ->check([](const std::string& imei) { return ImeiProblem(imei); });
    app.add_option("--name", options->name, "the phone's display name")
        ->type_name("NAME")
        ->check([](const std::string& name) { return NameProblem(name); });
    std::vector<CLI::Option*> paths;
    for (const Category category : kCategories) {
        const std::string key(KeyOf(category));
        paths.push_back(app.add_option("--" + key, options->folders[static_cast<size_t>(category)],
                                       "a folder of " + key + "; may be given again")
                            ->type_name("DIR")
                            ->allow_extra_args(false));
    }
    paths.push_back(
        app.add_option("--playlists", options->playlists, "a folder of playlists (.m3u, .m3u8)")->type_name("DIR"));
    paths.push_back(
        app.add_option("--bookmarks", options->bookmarks, "a bookmark file of a browser (HTML, or Chromium's JSON)")
            ->type_name("FILE"));
    // Several behind one option, too: that is what a shell makes of *.vcf.
    paths.push_back(app.add_option("--contacts", options->contacts, "files of contacts (.vcf)")->type_name("FILE..."));
    paths.push_back(
        app.add_option("--calendar", options->calendars, "files of calendar entries (.ics)")->type_name("FILE..."));
    paths.push_back(
        app.add_option("--backup", options->backup, "a folder of the PC for an archive of the phone's contents")
            ->type_name("DIR"));
    for (CLI::Option* path : paths) {
        path->check([](const std::string& text) { return EmptyPathProblem(text); });
    }
    app.add_flag("--no-trash", options->noTrash,
                 "what is removed or replaced on the phone does not go to its trash for 30 days");
    app.add_flag("--accept-folder", options->acceptFolder,
                 "sync to a folder that is not marked as a phone though one is expected there");
    app.add_flag("--dry-run", options->dryRun, "only say what would be done; change nothing");
    app.add_flag("--force", options->force,
                 "remove even if it is more than half of a category or folder, or of the lists, bookmarks or entries");
    app.add_flag("--quiet,-q", options->quiet, "no line for each file");
    app.footer(std::string(kSyncExamples) + kExitCodeHelp);
    return [options] { return Run(*options); };
}

}  // namespace

Command SyncCommand()
{
    return {"sync", "bring a phone up to date with folders of the PC", Prepare};
}

}  // namespace kesta
