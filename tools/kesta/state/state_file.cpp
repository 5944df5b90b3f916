#include "state/state_file.h"

#include "os/files.h"
#include "os/system.h"
#include "phone/names.h"

namespace kesta {
namespace {

std::string PathOf(const std::string& name)
{
    return os::Join(StateFolder(), SafeName(name));
}

// Null when there is no such file.
os::Status ReadState(const std::string& path, nlohmann::json& state)
{
    state = nullptr;
    std::string text;
    if (os::Status status = os::ReadText(path, text); !status.ok()) {
        return status.failure() == os::Failure::kMissing ? os::Status() : status;
    }
    nlohmann::json read = nlohmann::json::parse(text, nullptr, false);
    if (!read.is_object() || !read.contains("imei") || !read["imei"].is_string()) {
        return {os::Failure::kOther, "it is damaged"};
    }
    state = std::move(read);
    return {};
}

os::Status Replace(const std::string& path, const std::string& temporary, const std::string& text, StateFlush flush)
{
    if (os::Status status = os::RemoveFileIfThere(temporary); !status.ok()) {
        return status;
    }
    os::OutputFile file;
    if (os::Status status = file.create(temporary); !status.ok()) {
        return status;
    }
    os::Status status = file.write(std::as_bytes(std::span(text)));
    if (status.ok() && flush == StateFlush::kContents) {
        status = file.flush();
    }
    if (status.ok()) {
        status = file.close();
    }
    if (status.ok()) {
        status = os::Rename(temporary, path);
    }
    if (!status.ok()) {
        (void)os::RemoveFile(temporary);
    }
    return status;
}

}  // namespace

std::string StateFolder()
{
    const std::string data = os::DataDirectory();
    if (data.empty()) {
        return {};
    }
    return os::Join(os::Join(os::Join(data, "NORVIK"), "NORVIK Sync"), "Client");
}

os::Status ReadStateFile(const std::string& name, const std::string& imei, nlohmann::json& state)
{
    os::Status status = ReadState(PathOf(name), state);
    if (!state.is_null() && state["imei"] != imei) {
        state = nullptr;
    }
    return status;
}

std::vector<nlohmann::json> ReadStateFiles(std::string_view prefix)
{
    std::vector<nlohmann::json> states;
    std::vector<os::DirectoryEntry> entries;
    (void)os::ListDirectory(StateFolder(), entries);  // There is none before the first sync.
    for (const os::DirectoryEntry& entry : entries) {
        nlohmann::json state;
        if (!entry.name.starts_with(prefix) || !entry.name.ends_with(".json")) {
            continue;
        }
        if (ReadState(PathOf(entry.name), state).ok() && !state.is_null()) {
            states.push_back(std::move(state));
        }
    }
    return states;
}

os::Status WriteStateFile(const std::string& name, const std::string& imei, nlohmann::ordered_json state,
                          StateFlush flush)
{
    const std::string folder = StateFolder();
    if (folder.empty() || !os::MakePrivateDirectories(folder)) {
        return {os::Failure::kOther, "the folder for application data cannot be made"};
    }
    state["imei"] = imei;
    constexpr auto kReplace = nlohmann::json::error_handler_t::replace;
    const std::string path = PathOf(name);
    const std::string text = state.dump(-1, ' ', false, kReplace) + "\n", temporary = path + ".new";
    return flush == StateFlush::kAll ? os::WriteText(path, temporary, text) : Replace(path, temporary, text, flush);
}

os::Status RemoveStateFile(const std::string& name)
{
    os::Status status = os::RemoveFile(PathOf(name));
    return status.failure() == os::Failure::kMissing ? os::Status() : status;
}

}  // namespace kesta
