#include "state/seen_phone.h"

#include <algorithm>

#include "state/state_file.h"

namespace kesta {
namespace {

// No IMEI holds a blank, so that this is no other file's name.
constexpr std::string_view kPrefix = "seen of ";

// Empty when there is none.
std::string TextOf(const nlohmann::json& state, const char* key)
{
    const auto found = state.find(key);
    return found != state.end() && found->is_string() ? found->get<std::string>() : std::string();
}

SeenPhone FromJson(const nlohmann::json& state)
{
    return {TextOf(state, "imei"), TextOf(state, "name"), TextOf(state, "path"), TextOf(state, "file_system")};
}

}  // namespace

std::vector<SeenPhone> ReadSeenPhones()
{
    std::vector<SeenPhone> phones;
    for (const nlohmann::json& state : ReadStateFiles(kPrefix)) {
        phones.push_back(FromJson(state));
    }
    std::sort(phones.begin(), phones.end(), [](const auto& a, const auto& b) { return a.imei < b.imei; });
    return phones;
}

os::Status SaveSeenPhone(const SeenPhone& seen)
{
    const std::string file = std::string(kPrefix) + seen.imei + ".json";
    nlohmann::ordered_json wanted{{"name", seen.name}, {"path", seen.path}, {"file_system", seen.fileSystem}};
    nlohmann::json state;
    if (ReadStateFile(file, seen.imei, state).ok() && !state.is_null()) {
        const SeenPhone known = FromJson(state);
        if (known.name == seen.name && known.path == seen.path && known.fileSystem == seen.fileSystem) {
            return {};
        }
    }
    return WriteStateFile(file, seen.imei, std::move(wanted));
}

}  // namespace kesta
