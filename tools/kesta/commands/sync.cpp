#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>

#include "base/byte_escapes.h"
#include "base/text.h"
#include "commands/command.h"
#include "commands/phone_access.h"
#include "commands/seen_phones.h"
#include "commands/source_options.h"
#include "commands/sync_run.h"
#include "database/failures.h"
#include "os/system.h"
#include "os/watch.h"
#include "phone/marker.h"
#include "report/output.h"
#include "report/summary_json.h"

namespace kesta {
namespace {

// A run that ends before it has begun: programs get their summary, the log its reason.
void TellEarlyEnd(const SyncOptions& options, RunLog& log, ExitCode code, const char* reason)
{
    log.add(fmt::format("Stopped: {}", Printable(reason)));
    if (options.json) {
        Summary summary;
        summary.stopWith(code, reason);
        Print(SummaryJsonLine(summary, options.dryRun, 0) + '\n');
    }
}

ExitCode Run(const SyncOptions& options)
{
    RunLog log;
    if (options.json) {
        Summary interrupted;
        interrupted.stopWith(ExitCode::kInterrupted, "interrupted in the middle of a call");
        os::SetLastWords(SummaryJsonLine(interrupted, options.dryRun, 0) + '\n');
    }
    try {
        if (options.log) {
            if (os::Status status = log.open(*options.log); !status.ok()) {
                throw StopRun(ExitCode::kFailure,
                              fmt::format("the log {} cannot be opened: {}", *options.log, status.text()));
            }
        }
        PhoneFolder phone = OpenPhone(options.phone);
        return SyncPhone(options, phone, log);
    } catch (const StopRun& stop) {
        TellEarlyEnd(options, log, stop.code(), stop.what());
        throw;
    } catch (const kesta_db::Error& failure) {
        TellEarlyEnd(options, log, ExitCode::kDatabase, TextOf(failure).c_str());
        throw;
    }
}

// One after the other: what ends one of them does not concern the next.
ExitCode RunWhereSeen(SyncOptions options)
{
    std::vector<SeenPhone> phones;
    try {
        phones = PhonesInPlace(options.imei);
    } catch (const StopRun& stop) {
        RunLog none;
        TellEarlyEnd(options, none, stop.code(), stop.what());
        throw;
    }
    ExitCode worst = ExitCode::kSuccess;
    for (const SeenPhone& seen : phones) {
        options.phone = seen.path;
        ExitCode code = ExitCode::kSuccess;
        if (&seen == &phones.back() && worst == ExitCode::kSuccess) {
            return Run(options);
        }
        try {
            code = Run(options);
        } catch (const StopRun& stop) {
            code = stop.code();
            (void)std::fprintf(stderr, "kesta: %s (%s): %s\n", Printable(seen.name).c_str(), seen.imei.c_str(),
                               Printable(stop.what()).c_str());
        }
        worst = worst == ExitCode::kSuccess ? code : worst;
        if (os::Interrupted()) {
            break;
        }
    }
    return worst;
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
    "  kesta sync --phone /media/me/phone --music ~/Music --exclude Live --exclude \"*.wav\" --include \"cover.jpg\"\n"
    "  kesta sync\n"
    "\n"
    "The first run marks the folder as that phone; later runs recognise it. Files that are new or changed on the PC "
    "are\n"
    "copied, files gone from a folder that is given are removed from the phone, everything else stays as it is.\n"
    "Playlists take their music along. A backup is one archive of all that is on the phone after the other steps.\n"
    "What is given is remembered for the phone: without it a sync does the same again, and without --phone it finds the\n"
    "phones where they were last seen. kesta settings shows and changes what is remembered.\n"
    "\n"
    "Globs: * stands for any characters but /, ** for any, ? for one, [a-z] for one of a set. Without a / a glob is about\n"
    "names, else about paths below the folder. The last one that fits decides. Files .kestaignore in the folders hold\n"
    "further ones, a line each, with ! in front for --include.\n"
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
    app.add_option("--phone", options->phone, "the mounted folder of the phone; else where phones were last seen")
        ->type_name("DIR")
        ->check([](const std::string& path) { return EmptyPathProblem(path); });
    app.add_option("--imei", options->imei,
                   "the phone's IMEI, the 15 digits that *#06# shows on it; made up when none is given for a new one")
        ->type_name("IMEI")
        ->check([](const std::string& imei) { return ImeiProblem(imei); });
    app.add_option("--name", options->name, "the phone's display name")
        ->type_name("NAME")
        ->check([](const std::string& name) { return NameProblem(name); });
    const auto sources = std::make_shared<SourceOptions>();
    sources->addTo(app);
    app.add_flag("--no-trash", options->noTrash,
                 "what is removed or replaced on the phone does not go to its trash for 30 days");
    app.add_flag("--accept-folder", options->acceptFolder,
                 "sync to a folder that is not marked as a phone though one is expected there");
    app.add_flag("--dry-run", options->dryRun, "only say what would be done; change nothing");
    app.add_flag("--force", options->force,
                 "remove even if it is more than half of a category or folder, or of the lists, bookmarks or entries");
    app.add_flag("--json", options->json, "one line of JSON for each event, a summary last");
    app.add_option("--log", options->log, "add what the run says to this file, each line with its time")
        ->type_name("FILE")
        ->check([](const std::string& path) { return EmptyPathProblem(path); });
    app.add_flag("--quiet,-q", options->quiet, "no line for each file");
    app.footer(std::string(kSyncExamples) + kExitCodeHelp);
    return [options, sources] {
        static_cast<SyncSources&>(*options) = sources->given();
        return options->phone.empty() ? RunWhereSeen(*options) : Run(*options);
    };
}

}  // namespace

Command SyncCommand()
{
    return {"sync", "bring a phone up to date with folders of the PC", Prepare};
}

}  // namespace kesta
