#include "commands/remembered.h"

#include <fmt/format.h>

#include "base/stop_run.h"
#include "base/text.h"
#include "commands/pc_path.h"
#include "commands/source_options.h"

namespace kesta {
namespace {

void Require(const os::Status& status, const char* what)
{
    if (!status.ok()) {
        throw StopRun(ExitCode::kFailure,
                      fmt::format("what is remembered of the phone cannot be {}: {}", what, status.text()));
    }
}

std::vector<std::string> ListOf(const std::optional<std::string>& path)
{
    return path ? std::vector<std::string>{*path} : std::vector<std::string>();
}

// Everything by its option, in the order of the help.
template <class Visit>
void VisitAll(const SyncSources& sources, const Visit& visit)
{
    for (const Category category : kCategories) {
        visit(std::string(KeyOf(category)), sources.folders[static_cast<size_t>(category)]);
    }
    visit("playlists", ListOf(sources.playlists));
    visit("bookmarks", ListOf(sources.bookmarks));
    visit("contacts", sources.contacts);
    visit("calendar", sources.calendars);
    visit("backup", ListOf(sources.backup));
}

}  // namespace

SyncSources RememberedOf(const std::string& imei)
{
    SyncSources sources;
    Require(ReadSyncSources(imei, sources), "read");
    return sources;
}

void ChangeRemembered(const std::string& imei, const SyncSources& added, const std::vector<std::string>& dropped)
{
    SyncSources sources = RememberedOf(imei);
    for (const std::string& what : dropped) {
        if (!sources.drop(what) && !sources.drop(RecordedPath(what))) {
            throw StopRun(ExitCode::kFailure,
                          fmt::format("{} is not among what is remembered of the phone", Printable(what)));
        }
    }
    sources.add(WithRecordedPaths(added));
    Require(WriteSyncSources(imei, sources), "changed");
}

std::string DescribeRemembered(const SyncSources& sources)
{
    std::string text;
    VisitAll(sources, [&](const std::string& option, const std::vector<std::string>& paths) {
        for (const std::string& path : paths) {
            text += fmt::format("  {:<27} {}\n", "--" + option, Printable(path));
        }
    });
    for (const FilterRule& rule : sources.rules) {
        text += fmt::format("  {:<27} {}\n", rule.isInclude ? "--include" : "--exclude", Printable(rule.glob));
    }
    return text;
}

Json RememberedJson(const SyncSources& sources)
{
    Json json = Json::object();
    VisitAll(sources, [&](const std::string& option, const std::vector<std::string>& paths) { json[option] = paths; });
    json["rules"] = Json::array();
    for (const FilterRule& rule : sources.rules) {
        json["rules"].push_back({{rule.isInclude ? "include" : "exclude", rule.glob}});
    }
    return json;
}

}  // namespace kesta
