#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>

#include "base/text.h"
#include "commands/command.h"
#include "commands/json.h"
#include "commands/phones.h"
#include "commands/why_reasons.h"
#include "database/database.h"
#include "report/output.h"
#include "report/summary.h"

namespace kesta {
namespace {

struct WhyOptions {
    std::string path;
    std::optional<std::string> imei;
    bool json = false;
};

const char* KeyOf(PcEntry::Kind kind)
{
    switch (kind) {
        case PcEntry::Kind::kMissing:
            return "missing";
        case PcEntry::Kind::kFile:
            return "file";
        case PcEntry::Kind::kFolder:
            return "folder";
        case PcEntry::Kind::kOther:
            return "other";
        case PcEntry::Kind::kUnreadable:
            break;
    }
    return "unreadable";
}

std::string PcText(const PcEntry& entry)
{
    switch (entry.kind) {
        case PcEntry::Kind::kMissing:
            return "not on the PC";
        case PcEntry::Kind::kFile:
            return fmt::format("a file of {}, changed {}", FormatSize(entry.size),
                               entry.modified ? FormatLocalTime(*entry.modified) : "at an unknown time");
        case PcEntry::Kind::kFolder:
            return "a folder";
        case PcEntry::Kind::kOther:
            return "neither a file nor a folder";
        case PcEntry::Kind::kUnreadable:
            break;
    }
    return "cannot be looked at on the PC";
}

std::string Verdict(const Explanation& explanation)
{
    if (!explanation.phonePaths.empty()) {
        return "on the phone";
    }
    if (explanation.filesOnPhone > 0) {
        return Counted(explanation.filesOnPhone, "file") + " on the phone";
    }
    return "not on the phone";
}

Json ToJson(const PhoneSettings& phone, const Explanation& explanation)
{
    Json json{{"imei", phone.imei},
              {"name", phone.name},
              {"on_phone", !explanation.phonePaths.empty() || explanation.filesOnPhone > 0},
              {"phone_paths", explanation.phonePaths},
              {"files_on_phone", explanation.filesOnPhone + explanation.phonePaths.size()},
              {"reasons", Json::array()},
              {"playlists", Json::array()}};
    for (const Reason& reason : explanation.reasons) {
        json["reasons"].push_back({{"reason", reason.key}, {"text", reason.text}});
    }
    for (const NamingPlaylist& list : explanation.playlists) {
        json["playlists"].push_back({{"name", list.name}, {"state", list.state}});
    }
    return json;
}

std::string ToText(const PhoneSettings& phone, const Explanation& explanation)
{
    std::string text =
        fmt::format("{} (IMEI {}): {}\n", Printable(phone.name), Printable(phone.imei), Verdict(explanation));
    for (const Reason& reason : explanation.reasons) {
        text += fmt::format("  {}\n", Printable(reason.text));
    }
    return text;
}

ExitCode Run(const WhyOptions& options)
{
    Database database;
    std::vector<PhoneSettings> phones = ChosenPhones(database, options.imei);
    const PcEntry entry = ReadPcEntry(options.path);
    if (options.json) {
        Json json{{"path", entry.path},
                  {"on_pc", {{"kind", KeyOf(entry.kind)}, {"size", nullptr}, {"modified", nullptr}}},
                  {"phones", Json::array()}};
        if (entry.kind == PcEntry::Kind::kFile) {
            json["on_pc"]["size"] = entry.size;
            json["on_pc"]["modified"] = TimeJson(entry.modified);
        }
        for (const PhoneSettings& phone : phones) {
            json["phones"].push_back(ToJson(phone, Explain(database, phone.imei, entry)));
        }
        PrintJson(json);
        return ExitCode::kSuccess;
    }
    Print(fmt::format("{}: {}\n", Printable(entry.path), PcText(entry)));
    if (phones.empty()) {
        Print("No phone has been synced yet. Begin with: kesta sync --help\n");
    }
    for (const PhoneSettings& phone : phones) {
        Print(ToText(phone, Explain(database, phone.imei, entry)));
    }
    return ExitCode::kSuccess;
}

constexpr const char* kWhyExamples =
    "Examples:\n"
    "  kesta why ~/Music/Rock/song.mp3\n"
    "  kesta why ~/Pictures/2026 --imei 004999010640000\n"
    "  kesta why ~/Music/Rock/song.mp3 --json\n"
    "\n"
    "The path is a file or folder of the PC, which may be gone by now. Nothing is changed.\n"
    "\n";

std::function<ExitCode()> Prepare(CLI::App& app)
{
    const auto options = std::make_shared<WhyOptions>();
    app.add_option("path", options->path, "the file or folder of the PC")->required()->type_name("PATH");
    app.add_option("--imei", options->imei, "only this phone")->type_name("IMEI");
    app.add_flag("--json", options->json, "as JSON");
    app.footer(std::string(kWhyExamples) + kExitCodeHelp);
    return [options] { return Run(*options); };
}

}  // namespace

Command WhyCommand()
{
    return {"why", "say why a file or folder is on a phone, or why it is not", Prepare};
}

}  // namespace kesta
