#include <fmt/format.h>

#include <cstdio>
#include <nlohmann/json.hpp>

#include "books.h"
#include "commands/commands.h"
#include "os/files.h"
#include "output.h"
#include "summary.h"
#include "table.h"
#include "text.h"

namespace kesta {
namespace {

// The books know a folder by its canonical path; one that is gone from the PC is asked for as it stands there.
bool IsFolder(const std::string& basePath, const std::string& given)
{
    std::string canonical;
    return basePath == given || basePath == os::AbsolutePath(given) ||
           (os::CanonicalPath(given, canonical).ok() && basePath == canonical);
}

}  // namespace

ExitCode RunFiles(const FilesOptions& options)
{
    Books books;
    if (!books.phone(options.imei)) {
        (void)std::fprintf(stderr, "kesta: no phone with the IMEI %s is known\n", Printable(options.imei).c_str());
        return ExitCode::kFailure;
    }
    std::vector<RecordedFile> files = books.files(options.imei, options.category);
    if (options.folder)
        std::erase_if(files, [&](const RecordedFile& file) { return !IsFolder(file.basePath, *options.folder); });

    if (options.json) {
        nlohmann::ordered_json json{
            {"imei", options.imei}, {"category", KeyOf(options.category)}, {"files", nlohmann::ordered_json::array()}};
        for (const RecordedFile& file : files) {
            nlohmann::ordered_json modified = nullptr;
            if (file.modified) modified = FormatLocalTime(*file.modified);
            json["files"].push_back({{"path", file.path},
                                     {"folder", file.basePath},
                                     {"phone_path", file.phonePath},
                                     {"modified", std::move(modified)}});
        }
        Print(fmt::format("{}\n", json.dump(4)));
        return ExitCode::kSuccess;
    }
    if (files.empty()) {
        Print("Nothing is recorded here.\n");
        return ExitCode::kSuccess;
    }
    Table table({"Modified", "File", "On the phone"});
    for (const RecordedFile& file : files)
        table.add({file.modified ? FormatLocalTime(*file.modified) : "unknown", file.path, file.phonePath});
    Print(fmt::format("{}{}\n", table.text(""), Counted(files.size(), "file")));
    return ExitCode::kSuccess;
}

}  // namespace kesta
