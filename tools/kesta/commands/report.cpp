// kesta report: everything about the phones on one page.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <set>

#include "base/stop_run.h"
#include "base/text.h"
#include "commands/command.h"
#include "commands/phones.h"
#include "commands/report_page.h"
#include "formats/cover.h"
#include "os/files.h"
#include "os/local_time.h"
#include "os/system.h"
#include "phone/names.h"
#include "report/output.h"
#include "report/summary.h"

namespace kesta {
namespace {

constexpr size_t kMostPictures = 60;  // of a phone
constexpr size_t kMostTried = 2000;   // files that are looked into for them
constexpr size_t kLargestPicture = size_t{200} << 10;

struct ReportOptions {
    std::string html;
    std::optional<std::string> imei;
};

// The beginning of the PC's file; empty if it cannot be read.
std::string BeginningOf(const std::string& path)
{
    std::string text;
    os::InputFile file;
    if (!file.open(path).ok()) {
        return text;
    }
    std::vector<std::byte> buffer(formats::kCoverBytes);
    for (size_t count = 1; count > 0 && text.size() < formats::kCoverBytes;) {
        if (!file.read(std::span(buffer).first(formats::kCoverBytes - text.size()), count).ok()) {
            return {};
        }
        text.append(reinterpret_cast<const char*>(buffer.data()), count);
    }
    return text;
}

// Songs of one album share a cover: it is shown once.
std::vector<ReportPicture> PicturesOf(const Database& database, const std::string& imei)
{
    std::vector<ReportPicture> pictures;
    std::set<std::string> seen;
    size_t tried = 0;
    for (const Category category : {Category::kMusic, Category::kImages}) {
        const size_t most = pictures.size() + kMostPictures / 2;
        for (const RecordedFile& file : database.media(imei, category).files()) {
            if (pictures.size() == most || ++tried > kMostTried || os::Interrupted()) {
                break;
            }
            const auto cover = formats::FindCover(BeginningOf(file.path), kLargestPicture);
            if (!cover) {
                continue;
            }
            std::string address = fmt::format("data:{};base64,{}", cover->type, formats::Base64(cover->bytes));
            if (seen.insert(address).second) {
                pictures.push_back({file.phonePath, std::move(address)});
            }
        }
    }
    return pictures;
}

// A file that is not such a page is somebody's, and stays.
void CheckTarget(const std::string& path)
{
    os::FileInfo info;
    if (os::ReadInfoOfLink(path, info).failure() == os::Failure::kMissing) {
        return;
    }
    std::string text;
    if (os::Status status = os::ReadText(path, text); !status.ok()) {
        throw StopRun(ExitCode::kFailure, fmt::format("{}: {}", Printable(path), status.text()));
    }
    if (!text.starts_with(kReportStart)) {
        throw StopRun(ExitCode::kFailure,
                      fmt::format("{} is there already, and is not a report: name another file", Printable(path)));
    }
}

ExitCode Run(const ReportOptions& options)
{
    const std::string path = os::AbsolutePath(options.html);
    CheckTarget(path);
    os::CatchInterrupts();
    Database database;
    std::vector<ReportPhone> phones;
    for (PhoneSettings& settings : ChosenPhones(database, options.imei)) {
        const std::string imei = settings.imei;
        phones.push_back({Collect(database, std::move(settings)), ReadRuns(imei), PicturesOf(database, imei)});
    }
    if (os::Interrupted()) {
        throw StopRun(ExitCode::kInterrupted, "interrupted");
    }
    const auto now = os::ToLocalTime(os::Now());
    const std::string page = ReportPage(phones, now ? FormatLocalTime(*now) : std::string());
    const std::string temporary = os::Join(os::ParentOf(path), kTemporaryName);
    if (os::Status status = os::WriteText(path, temporary, page); !status.ok()) {
        throw StopRun(ExitCode::kFailure, fmt::format("{} cannot be written: {}", Printable(path), status.text()));
    }
    Print(fmt::format("{:<9} {}: {}, {}\n", "Report", Printable(path), Counted(phones.size(), "phone"),
                      FormatSize(page.size())));
    return ExitCode::kSuccess;
}

constexpr const char* kReportExamples =
    "Examples:\n"
    "  kesta report --html phones.html\n"
    "  kesta report --html ann.html --imei 356938035643809\n"
    "\n"
    "One page that needs nothing beside it: what is on each phone by family and folder, how the last runs ended, what\n"
    "failed and what was deferred, and the covers and thumbnails that the files carry.\n"
    "\n";

std::function<ExitCode()> Prepare(CLI::App& app)
{
    const auto options = std::make_shared<ReportOptions>();
    app.add_option("--html", options->html, "the file to write; an earlier report is replaced, no other file")
        ->required()
        ->type_name("FILE")
        ->check([](const std::string& path) { return EmptyPathProblem(path); });
    app.add_option("--imei", options->imei, "only this phone")->type_name("IMEI");
    app.footer(std::string(kReportExamples) + kExitCodeHelp);
    return [options] { return Run(*options); };
}

}  // namespace

Command ReportCommand()
{
    return {"report", "write a page that shows what is on the phones", Prepare};
}

}  // namespace kesta
