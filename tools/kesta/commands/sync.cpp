#include <fmt/format.h>

#include <chrono>
#include <cstdio>

#include "base/names.h"
#include "base/text.h"
#include "commands/commands.h"
#include "commands/main_folder_choice.h"
#include "commands/sync_folders.h"
#include "os/system.h"
#include "phone/marker.h"
#include "stages/backup/phone_backup.h"
#include "stages/bookmarks/sync_bookmarks.h"
#include "stages/media/carry_out.h"
#include "stages/pim/sync_pim.h"
#include "stages/playlists/sync_playlists.h"
#include "state/last_run.h"
#include "sync/journal.h"

namespace kesta {
namespace {

// A reason why the run cannot even begin.
class Refusal : public std::exception {
public:
    Refusal(ExitCode code, std::string text) : code_(code), text_(std::move(text)) {}
    [[nodiscard]] const char* what() const noexcept override { return text_.c_str(); }
    [[nodiscard]] ExitCode code() const { return code_; }

private:
    ExitCode code_;
    std::string text_;
};

ExitCode CodeOfPhoneFailure(const os::Status& status)
{
    switch (status.failure()) {
        case os::Failure::kBusy:
            return ExitCode::kAnotherSync;
        case os::Failure::kReadOnly:
        case os::Failure::kDenied:
            return ExitCode::kPhoneReadOnly;
        case os::Failure::kFull:
            return ExitCode::kPhoneFull;
        default:
            return ExitCode::kFailure;
    }
}

void Require(const os::Status& status, const std::string& what)
{
    if (!status.ok()) throw Refusal(CodeOfPhoneFailure(status), fmt::format("{}: {}", what, status.text()));
}

class SyncRun {
public:
    SyncRun(const SyncOptions& options, PhoneFolder& phone, Progress& progress)
        : options_(options), phone_(phone), progress_(progress), folders_(ChooseFolders(options, phone))
    {
    }

    ExitCode run()
    {
        if (!options_.dryRun) lock();
        identify();
        Database database;
        const auto known = marker_.imei.empty() ? std::nullopt : database.phone(marker_.imei);
        isKnown_ = known.has_value();
        guard_.emplace(marker_.imei, options_.force);
        if (isKnown_ && !isMarked_)
            summary_.notes.push_back(
                "the database knows this phone, but the folder was not marked as it: if the phone was not mounted "
                "there, "
                "remove the folder's contents and sync again.");
        // The user may have changed it in the database since the phone was marked.
        if (known && !options_.name && !known->name.empty()) marker_.name = known->name;
        if (!options_.dryRun) announce(database);
        greet();
        try {
            MainFolderChoice(database, marker_.imei, isMarked_, options_.dryRun).apply(folders_, options_, summary_);
            const auto plans = plan(database);
            if (options_.dryRun)
                Preview(plans, options_.quiet, progress_, summary_);
            else
                execute(database, plans);
            syncFamilies(database, plans);
        } catch (const DatabaseError& failure) {
            summary_.stopWith(ExitCode::kDatabase, failure.what());
        } catch (const PhoneError& failure) {
            summary_.stopWith(ExitCode::kPhoneGone, failure.what());
        }
        progress_.finish();
        if (!options_.dryRun) recordEnd(database);
        const auto seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started_).count();
        progress_.say(Describe(summary_, options_.dryRun, seconds));
        return summary_.exitCode();
    }

private:
    void lock()
    {
        const os::Status status = lock_.acquire(phone_.root());
        if (status.failure() == os::Failure::kBusy)
            throw Refusal(ExitCode::kAnotherSync, "another sync of this phone is running");
        Require(status, "the phone cannot be locked");
        Require(os::CheckWritable(phone_.root()), "the phone cannot be written");
    }

    // Settles which phone this is, from the marker and the command line.
    void identify()
    {
        std::optional<Marker> found;
        Require(ReadMarker(phone_, found), fmt::format("the phone's file {} cannot be used", kMarkerName));
        isMarked_ = found.has_value();
        if (isMarked_) {
            marker_ = *found;
            if (options_.imei && *options_.imei != marker_.imei)
                throw Refusal(ExitCode::kFailure, fmt::format("this folder is the phone {} ({}), not {}", marker_.imei,
                                                              marker_.name, *options_.imei));
        } else if (options_.imei) {
            marker_.imei = *options_.imei;
        } else if (!options_.dryRun) {
            marker_.imei = MakeImei(os::RandomNumber());
        }
        if (!isMarked_) {
            const std::string name = os::NameOf(phone_.root());
            marker_.name = options_.name.value_or(name.empty() || !IsValidUtf8(name) ? "phone" : name);
        }
    }

    void announce(Database& database)
    {
        const bool isRenamed = options_.name && isMarked_ && *options_.name != marker_.name;
        if (isRenamed) marker_.name = *options_.name;
        if (!isMarked_ || isRenamed) Require(WriteMarker(phone_, marker_), "the phone cannot be marked");
        database.announce(marker_.imei, marker_.name);
        if (isKnown_ && options_.name) database.rename(marker_.imei, *options_.name);
    }

    void greet()
    {
        const std::string imei = marker_.imei.empty() ? "new, its IMEI is made up by the first sync" : marker_.imei;
        progress_.say(fmt::format("Phone     {} ({}){}", Printable(marker_.name), Printable(imei),
                                  options_.dryRun ? ", dry run: nothing is changed" : ""));
    }

    std::vector<CategoryPlan> plan(Database& database)
    {
        std::array<CategoryState, kCategories.size()> states;
        std::vector<std::string> places;
        for (const Category category : kCategories) {
            CategoryState& state = states[static_cast<std::size_t>(category)];
            if (options_.dryRun && !isKnown_) continue;
            state.known = database.folders(marker_.imei, category);
            state.recorded = database.files(marker_.imei, category);
            for (const RecordedFile& file : state.recorded) places.push_back(file.phonePath);
        }
        if (isKnown_) {
            for (std::string& place : PhonePathsOfPlaylists(database, marker_.imei)) places.push_back(std::move(place));
            for (std::string& place : PhonePathsOfBookmarks(database, marker_.imei)) places.push_back(std::move(place));
        }
        takeUpLeftovers(places);
        for (const Category category : kCategories) {
            const auto index = static_cast<std::size_t>(category);
            ScanChosen(category, folders_[index], phone_, states[index], progress_, summary_);
            if (summary_.stopped()) return {};
            if (!options_.dryRun) EnterFolders(database, marker_.imei, category, states[index], summary_);
        }
        std::vector<CategoryPlan> plans;
        for (const Category category : kCategories) {
            CategoryState& state = states[static_cast<std::size_t>(category)];
            PlanInput input{category, {}, std::move(state.known), std::move(state.recorded), *guard_};
            for (const FolderScan& scan : state.scans) input.folders.push_back(&scan);
            if (!input.folders.empty()) plans.push_back(PlanCategory(input, phone_));
        }
        for (const CategoryPlan& plan : plans) {
            summary_.unchanged += plan.unchanged;
            summary_.deferred += plan.deferred;
        }
        return plans;
    }

    void takeUpLeftovers(const std::vector<std::string>& places)
    {
        Leftovers leftovers;
        if (os::Status status = FindLeftovers(phone_, places, leftovers); !status.ok())
            return summary_.stopWith(CodeOfPhoneFailure(status),
                                     "the phone's journal cannot be read: " + status.text());
        if (!leftovers.journalFound && leftovers.temporaryFiles.empty()) return;
        const std::size_t files = leftovers.temporaryFiles.size() + leftovers.unknownFiles.size();
        if (options_.dryRun) {
            summary_.notes.push_back(
                fmt::format("the last run was cut short; {} of it would be removed.", Counted(files, "leftover")));
            return;
        }
        if (os::Status status = RemoveLeftovers(phone_, leftovers); !status.ok())
            return summary_.stopWith(CodeOfPhoneFailure(status),
                                     "what the last run left on the phone cannot be removed: " + status.text());
        summary_.notes.push_back(
            fmt::format("the last run was cut short; {} of it removed.", Counted(files, "leftover")));
    }

    void execute(Database& database, const std::vector<CategoryPlan>& plans)
    {
        guard_->save(summary_);
        MediaRecords records(database, marker_.imei);
        Execute(records, phone_, progress_, summary_).run(plans);
    }

    // What is no folder of media. A run that was stopped stops here, too; the backup comes last, to hold it all.
    void syncFamilies(Database& database, const std::vector<CategoryPlan>& plans)
    {
        if (options_.playlists && !summary_.stopped())
            SyncPlaylists(database, marker_.imei, phone_, options_, placesOfMedia(database, plans), *guard_, progress_,
                          summary_);
        if (options_.bookmarks && !summary_.stopped())
            SyncBookmarks(database, marker_.imei, phone_, options_, *guard_, progress_, summary_);
        if ((!options_.contacts.empty() || !options_.calendars.empty()) && !summary_.stopped())
            SyncPim(database, marker_.imei, phone_, options_, *guard_, progress_, summary_);
        if (options_.backup && !summary_.stopped())
            BackUpPhone(database, marker_, phone_, options_, progress_, summary_);
    }

    // Where the media lie after this run.
    MediaPhonePaths placesOfMedia(Database& database, const std::vector<CategoryPlan>& plans)
    {
        MediaPhonePaths places;
        for (const Category category : kCategories) {
            if (options_.dryRun && !isKnown_) break;
            for (const RecordedFile& file : database.files(marker_.imei, category))
                if (IsPhonePath(file.phonePath, category)) places[file.path] = {file.phonePath, false};
        }
        if (!options_.dryRun) return places;
        for (const CategoryPlan& plan : plans) {
            for (const Action& action : plan.removals) places.erase(action.file.path);
            for (const Action& action : plan.copies) places[action.file.path] = {action.file.phonePath, true};
        }
        return places;
    }

    void recordEnd(Database& database)
    {
        const auto now = ToLocalTime(os::Now());
        const int code = static_cast<int>(summary_.exitCode());
        const std::int32_t result = now ? database.setLastSync(marker_.imei, *now, code) : 1;
        if (result != 0)
            summary_.stopWith(ExitCode::kDatabase, "the end of the run cannot be recorded: " + ResultText(result));
        if (!now) return;
        const os::Status saved = SaveLastRun(marker_.imei, {*now, code, reason()});
        if (!saved.ok())
            summary_.notes.push_back("how the run ended cannot be noted for kesta status: " + saved.text());
    }

    [[nodiscard]] std::string reason() const
    {
        if (summary_.stopped()) return summary_.stopReason;
        if (!summary_.failures.empty()) return fmt::format("{} failed", Counted(summary_.failures.size(), "item"));
        if (const std::size_t all = summary_.allDeferred(); all > 0)
            return fmt::format("{} deferred", Counted(all, "removal"));
        return {};
    }

    SyncOptions options_;  // without what the phone takes no part in
    PhoneFolder& phone_;
    Progress& progress_;
    ChosenFolders folders_;
    os::DirectoryLock lock_;
    Marker marker_;
    bool isMarked_ = false;
    bool isKnown_ = false;
    std::optional<DeletionGuard> guard_;  // once it is known which phone it is
    Summary summary_;
    std::chrono::steady_clock::time_point started_ = std::chrono::steady_clock::now();
};

}  // namespace

ExitCode RunSync(const SyncOptions& options)
{
    try {
        std::string root;
        Require(os::CanonicalPath(options.phone, root), fmt::format("the phone folder {}", options.phone));
        PhoneFolder phone(root);
        Require(phone.open(), fmt::format("the phone folder {}", options.phone));
        os::CatchInterrupts();
        Progress progress(options.quiet && !os::IsTerminal() ? Progress::Style::kQuiet
                          : os::IsTerminal()                 ? Progress::Style::kBar
                                                             : Progress::Style::kLines);
        return SyncRun(options, phone, progress).run();
    } catch (const Refusal& refusal) {
        (void)std::fprintf(stderr, "kesta: %s\n", Printable(refusal.what()).c_str());
        return refusal.code();
    }
}

}  // namespace kesta
