#include "commands/report_page.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/text.h"
#include "commands/report_style.h"
#include "commands/states.h"
#include "report/summary.h"

namespace kesta {
namespace {

constexpr size_t kShownFailures = 10;  // more of them unfold when the reader asks for it

// For text and for attributes.
std::string Html(std::string_view text)
{
    std::string html;
    for (const char c : Printable(text)) {
        switch (c) {
            case '&':
                html += "&amp;";
                break;
            case '<':
                html += "&lt;";
                break;
            case '>':
                html += "&gt;";
                break;
            case '"':
                html += "&quot;";
                break;
            default:
                html += c;
        }
    }
    return html;
}

double Percent(int64_t part, int64_t whole)
{
    return whole <= 0 ? 0.0 : 100.0 * static_cast<double>(std::max<int64_t>(part, 0)) / static_cast<double>(whole);
}

int64_t SizeOf(const std::vector<FolderStatus>& folders)
{
    int64_t size = 0;
    for (const FolderStatus& folder : folders) {
        size += std::max<int64_t>(folder.folder.size, 0);
    }
    return size;
}

std::string Families(const PhoneStatus& status)
{
    int64_t all = 0;
    for (const auto& [category, folders] : status.folders) {
        all += SizeOf(folders);
    }
    std::string bar, legend;
    for (const auto& [category, folders] : status.folders) {
        const int64_t size = SizeOf(folders);
        if (size > 0) {
            bar += fmt::format(R"(<div class="{}" style="width:{:.2f}%" title="{} {}"></div>)", KeyOf(category),
                               Percent(size, all), TitleOf(category), SizeText(size));
        }
        legend +=
            fmt::format("<li><i class=\"{}\"></i>{} <span class=\"quiet\">{} on the phone, {}</span></li>\n",
                        KeyOf(category), TitleOf(category), Counted(status.files.at(category), "file"), SizeText(size));
    }
    return fmt::format("<div class=\"stack\">{}</div>\n<ul class=\"legend\">\n{}</ul>\n", bar, legend);
}

std::string Folders(const PhoneStatus& status)
{
    int64_t largest = 0;
    for (const auto& [category, folders] : status.folders) {
        for (const FolderStatus& folder : folders) {
            largest = std::max(largest, folder.folder.size);
        }
    }
    std::string text;
    for (const auto& [category, folders] : status.folders) {
        if (folders.empty()) {
            continue;
        }
        text += fmt::format("<h3>{}</h3>\n", TitleOf(category));
        for (const auto& [folder, filesOnPhone] : folders) {
            text += fmt::format(
                "<div class=\"row\"><div class=\"line\"><span class=\"name\">{}</span>"
                "<span class=\"quiet\">{} on the phone, {} on the PC, {}, {}</span></div>"
                "<div class=\"meter\"><div class=\"{}\" style=\"width:{:.2f}%\"></div></div></div>\n",
                Html(folder.path), Counted(filesOnPhone, "file"), std::max(folder.count, 0), SizeText(folder.size),
                StateOf(folder, filesOnPhone), KeyOf(category), Percent(folder.size, largest));
        }
    }
    return text;
}

std::string OtherFamilies(const PhoneStatus& status)
{
    std::string text;
    for (const RecordedPlaylist& list : status.playlists) {
        text += fmt::format(
            "<div class=\"row\"><div class=\"line\"><span class=\"name\">{}</span><span class=\"quiet\">{}, {}</span>"
            "</div></div>\n",
            Html(list.name), list.count == 1 ? "1 entry" : fmt::format("{} entries", list.count), StateOf(list));
    }
    std::string page = text.empty() ? text : "<h3>Playlists</h3>\n" + text;
    std::string counts;
    if (status.bookmarks > 0) {
        counts += fmt::format("<p>{} on the phone</p>\n", Counted(status.bookmarks, "bookmark"));
    }
    for (const auto& [kind, log] : status.logs) {
        if (log.entries > 0) {
            counts += fmt::format("<p>{} of {} on the phone</p>\n",
                                  log.entries == 1 ? "1 entry" : fmt::format("{} entries", log.entries), KeyOf(kind));
        }
    }
    return page + (counts.empty() ? counts : "<h3>Bookmarks, contacts and calendars</h3>\n" + counts);
}

std::string Run(const RunRecord& run)
{
    const bool isDeferredOnly = run.code == static_cast<int>(ExitCode::kDeferred);
    const char* colour = run.code == 0 ? "good" : isDeferredOnly ? "wait" : "bad";
    std::string text = fmt::format(
        "<div class=\"row\"><div class=\"line\"><span>{}</span><span class=\"{}\">{}</span></div>\n"
        "<p class=\"quiet\">{} copied, {} updated, {} removed, {} unchanged, {} failed</p>\n",
        FormatLocalTime(run.time), colour, run.code == 0 ? std::string("in order") : Html(run.reason), run.added,
        run.updated, run.removed, run.unchanged, run.failed);
    if (run.deferred > 0) {
        text += fmt::format("<p class=\"wait\">{} deferred: <code>--force</code> removes them, if that is meant</p>\n",
                            Counted(run.deferred, "removal"));
    }
    if (!run.failures.empty()) {
        text += fmt::format("<details{}><summary class=\"bad\">{}</summary><ul>\n",
                            run.failures.size() <= kShownFailures ? " open" : "", Counted(run.failed, "failure"));
        for (const auto& [path, reason] : run.failures) {
            text += fmt::format("<li>{}: {}</li>\n", Html(path), Html(reason));
        }
        if (run.failures.size() < run.failed) {
            text += fmt::format("<li>and {} more</li>\n", run.failed - run.failures.size());
        }
        text += "</ul></details>\n";
    }
    return text + "</div>\n";
}

std::string Runs(const ReportPhone& phone)
{
    std::string text = "<h3>The last runs</h3>\n";
    for (const RunRecord& run : phone.runs) {
        text += Run(run);
    }
    return phone.runs.empty() ? text + "<p class=\"quiet\">None has been noted yet.</p>\n" : text;
}

std::string Pictures(const std::vector<ReportPicture>& pictures)
{
    if (pictures.empty()) {
        return {};
    }
    std::string text = "<h3>Covers and pictures</h3>\n<div class=\"pictures\">\n";
    for (const ReportPicture& picture : pictures) {
        text += fmt::format("<figure><img src=\"{}\" alt=\"\" loading=\"lazy\"><figcaption>{}</figcaption></figure>\n",
                            picture.address, Html(picture.caption));
    }
    return text + "</div>\n";
}

std::string Phone(const ReportPhone& phone)
{
    const PhoneStatus& status = phone.status;
    return fmt::format(
        "<section class=\"card\">\n<h2>{}</h2>\n<p class=\"quiet\">IMEI {} &middot; last sync {}</p>\n{}{}{}{}{}"
        "</section>\n",
        Html(status.settings.name), Html(status.settings.imei),
        status.lastSync ? FormatLocalTime(*status.lastSync) : std::string("never"), Families(status), Folders(status),
        OtherFamilies(status), Runs(phone), Pictures(phone.pictures));
}

}  // namespace

std::string ReportPage(const std::vector<ReportPhone>& phones, const std::string& time)
{
    std::string body;
    for (const ReportPhone& phone : phones) {
        body += Phone(phone);
    }
    if (phones.empty()) {
        body = "<p>No phone has been synced yet.</p>\n";
    }
    return fmt::format(
        "{}<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>kesta: what is on the "
        "phones</title>\n<style>{}</style>\n</head>\n<body>\n<main>\n<h1>What is on the phones</h1>\n"
        "<p class=\"quiet\">{}, by the database of kesta</p>\n{}</main>\n</body>\n</html>\n",
        kReportStart, kReportStyle, Html(time), body);
}

}  // namespace kesta
