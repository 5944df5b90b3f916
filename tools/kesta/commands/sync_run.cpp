#include "commands/sync_run.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <memory>

#include "base/text.h"
#include "commands/phone_access.h"
#include "commands/source_options.h"
#include "database/failures.h"
#include "os/files.h"
#include "os/local_time.h"
#include "os/system.h"
#include "phone/marker.h"
#include "report/output.h"
#include "report/summary_json.h"
#include "stages/backup/backup_stage.h"
#include "stages/bookmarks/bookmark_stage.h"
#include "stages/leftover_stage.h"
#include "stages/main_folder_stage.h"
#include "stages/media/media_stage.h"
#include "stages/phone_stage.h"
#include "stages/pim/pim_stage.h"
#include "stages/playlists/playlist_stage.h"
#include "state/hidden_phones.h"
#include "state/last_run.h"
#include "state/run_history.h"
#include "state/snapshots.h"
#include "sync/executor.h"
#include "sync/guarded.h"
#include "sync/mount.h"
#include "sync/preview.h"

namespace kesta {
namespace {

Progress::Style StyleOf(const SyncOptions& options)
{
    if (options.json) {
        return options.quiet ? Progress::Style::kQuietJson : Progress::Style::kJson;
    }
    if (os::IsTerminal()) {
        return Progress::Style::kBar;
    }
    return options.quiet ? Progress::Style::kQuiet : Progress::Style::kLines;
}

class SyncRun {
public:
    SyncRun(const SyncOptions& options, PhoneFolder& phone, RunLog& log)
        : options_(options),
          phone_(phone),
          log_(log),
          report_(StyleOf(options), options.quiet, &log),
          guard_(options.force)
    {
        if (options.dryRun) {
            runner_ = std::make_unique<Preview>(phone, options_, report_);
        } else {
            runner_ = std::make_unique<Executor>(phone, options_, guard_, left_, report_);
        }
    }

    ExitCode run()
    {
        (void)ChooseFolders(options_, phone_);  // which throws before anything is changed
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
        const Plan phonePlan = phoneStage.plan(session);
        takeRemembered(phoneStage.marker().imei);
        media_.chosen = ChooseFolders(options_, phone_);
        runner_->run(phonePlan);
        session.imei = phoneStage.marker().imei;
        session.name = phoneStage.marker().name;
        session.isKnown = !session.imei.empty() && database.phones().find(session.imei);
        guard_ = DeletionGuard(session.imei, options_.force);
        left_ = LeftFiles(session.imei);
        remember(session.imei);
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
            forgetMoved(session);
            RememberMount(phone_, session.imei);
            recordEnd(database, session.imei);
            Guarded(report_.summary, [&] { takeSnapshot(); });
        }
        const auto seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started_).count();
        report_.progress.say(Describe(report_.summary, options_.dryRun, seconds));
        if (options_.json) {
            Print(SummaryJsonLine(report_.summary, options_.dryRun, seconds) + '\n');
        }
        if (log_.hasFailed()) {
            (void)std::fprintf(stderr, "kesta: the log %s could not be written completely\n", options_.log->c_str());
        }
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

    // What is not given again is what was given before. The rules add up.
    void takeRemembered(const std::string& imei)
    {
        if (!imei.empty()) {
            const os::Status status = ReadSyncSources(imei, remembered_);
            mayRemember_ = status.ok();
            if (!mayRemember_) {
                report_.note("what was given for this phone before cannot be read: " + status.text());
            }
        }
        stored_ = remembered_;
        remembered_.add(WithRecordedPaths(options_));
        if (!options_.hasAny()) {
            static_cast<SyncSources&>(options_) = remembered_;
        }
        options_.rules = remembered_.rules;
        options_.remembered = remembered_;
        if (!options_.hasAny()) {
            throw StopRun(ExitCode::kUsage,
                          "there is nothing to sync: give --music, --images, --videos, --documents, --playlists, "
                          "--bookmarks, --contacts, --calendar or --backup. It is remembered for the next time.");
        }
    }

    void remember(const std::string& imei)
    {
        if (options_.dryRun || !mayRemember_) {
            return;
        }
        os::Status saved = ShowPhone(imei);
        if (saved.ok() && remembered_ != stored_) {
            saved = WriteSyncSources(imei, remembered_);
        }
        stored_ = remembered_;
        if (!saved.ok()) {
            report_.note("what was given cannot be remembered for the next run: " + saved.text());
        }
    }

    // What is not there any more, and was found elsewhere, is not to be looked for by the next kesta sync.
    void forgetMoved(const Session& session)
    {
        const auto dropped = std::count_if(session.movedSources.begin(), session.movedSources.end(),
                                           [&](const std::string& path) { return remembered_.drop(path); });
        if (dropped > 0) {
            remember(session.imei);
        }
    }

    void greet(const Session& session)
    {
        const std::string imei = session.imei.empty() ? "new, its IMEI is made up by the first sync" : session.imei;
        report_.progress.say(
            fmt::format("Phone     {} ({}){}", Printable(session.name), Printable(imei),
                        options_.dryRun ? ", dry run: nothing is changed" : ""),
            {"phone",
             {{"imei", session.imei}, {"name", session.name}, {"path", phone_.root()}, {"dry_run", options_.dryRun}}});
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
    RunLog& log_;
    Report report_;
    DeletionGuard guard_;  // the phone's own, once it is known which phone it is
    LeftFiles left_;       // likewise
    std::unique_ptr<Runner> runner_;
    SyncSources remembered_;
    SyncSources stored_;  // what the next run would remember
    bool mayRemember_ = true;
    MediaState media_;
    std::unique_ptr<PlaylistRun> playlists_;
    std::chrono::steady_clock::time_point started_ = std::chrono::steady_clock::now();
};

}  // namespace

ExitCode SyncPhone(const SyncOptions& options, PhoneFolder& phone, RunLog& log)
{
    return SyncRun(options, phone, log).run();
}

}  // namespace kesta
