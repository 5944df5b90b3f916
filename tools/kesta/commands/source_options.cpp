#include "commands/source_options.h"

#include <CLI/CLI.hpp>

#include "commands/command.h"
#include "commands/pc_path.h"

namespace kesta {
namespace {

std::string GlobProblem(const std::string& glob)
{
    return glob.empty() || glob == "/" ? "a glob cannot be empty" : "";
}

void MakeRecorded(std::optional<std::string>& path)
{
    if (path) {
        path = RecordedPath(*path);
    }
}

void MakeRecorded(std::vector<std::string>& paths)
{
    for (std::string& path : paths) {
        path = RecordedPath(path);
    }
}

}  // namespace

void SourceOptions::addTo(CLI::App& app)
{
    app_ = &app;
    std::vector<CLI::Option*> paths;
    for (const Category category : kCategories) {
        const std::string key(KeyOf(category));
        paths.push_back(app.add_option("--" + key, sources_.folders[static_cast<size_t>(category)],
                                       "a folder of " + key + "; may be given again")
                            ->type_name("DIR")
                            ->allow_extra_args(false));
    }
    paths.push_back(
        app.add_option("--playlists", sources_.playlists, "a folder of playlists (.m3u, .m3u8, .pls, .xspf, .asx)")
            ->type_name("DIR"));
    paths.push_back(app.add_option("--bookmarks", sources_.bookmarks,
                                   "a bookmark file of a browser (HTML, or the JSON of Chromium or Firefox)")
                        ->type_name("FILE"));
    // Several behind one option, too: that is what a shell makes of *.vcf.
    paths.push_back(app.add_option("--contacts", sources_.contacts,
                                   "files of contacts (.vcf), or a folder with a file for each card")
                        ->type_name("FILE|DIR..."));
    paths.push_back(
        app.add_option("--calendar", sources_.calendars, "files of calendar entries (.ics)")->type_name("FILE..."));
    paths.push_back(
        app.add_option("--backup", sources_.backup, "a folder of the PC for an archive of the phone's contents")
            ->type_name("DIR"));
    for (CLI::Option* path : paths) {
        path->check([](const std::string& text) { return EmptyPathProblem(text); });
    }
    const auto addRule = [&](const char* name, std::vector<std::string>& globs, const char* about) {
        return app.add_option(name, globs, about)->type_name("GLOB")->allow_extra_args(false)->check(GlobProblem);
    };
    exclude_ = addRule("--exclude", excluded_,
                       "leave out files and folders of this name or path, such as \"*.wav\"; may be given again");
    include_ = addRule("--include", included_,
                       "take along what a rule before it, or its kind, leaves out; may be given again");
}

SyncSources SourceOptions::given() const
{
    SyncSources sources = sources_;
    size_t nextExcluded = 0, nextIncluded = 0;
    for (const CLI::Option* option : app_->parse_order()) {
        if (option == exclude_ && nextExcluded < excluded_.size()) {
            sources.rules.push_back({false, excluded_[nextExcluded++]});
        } else if (option == include_ && nextIncluded < included_.size()) {
            sources.rules.push_back({true, included_[nextIncluded++]});
        }
    }
    return sources;
}

SyncSources WithRecordedPaths(SyncSources sources)
{
    for (auto& ofCategory : sources.folders) {
        MakeRecorded(ofCategory);
    }
    MakeRecorded(sources.playlists);
    MakeRecorded(sources.bookmarks);
    MakeRecorded(sources.contacts);
    MakeRecorded(sources.calendars);
    MakeRecorded(sources.backup);
    return sources;
}

}  // namespace kesta
