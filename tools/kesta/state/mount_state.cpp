#include "state/mount_state.h"

#include "state/state_file.h"

namespace kesta {
namespace {

// No IMEI holds a blank, so that this is no other file's name.
std::string FileOf(const std::string& imei)
{
    return "mount of " + imei + ".json";
}

nlohmann::ordered_json ToJson(const MountName& mount)
{
    return {{"path", mount.path}, {"file_system", mount.fileSystem}, {"volume", mount.volume}};
}

bool IsTold(const nlohmann::json& state, const char* ability)
{
    return state.value(ability, true);
}

}  // namespace

std::optional<MountAbilities> ReadMountState(const std::string& imei, const MountName& mount)
{
    nlohmann::json state;
    if (!ReadStateFile(FileOf(imei), imei, state).ok() || state.is_null()) {
        return std::nullopt;
    }
    try {
        if (state.at("mount") != nlohmann::json(ToJson(mount))) {
            return std::nullopt;
        }
        return MountAbilities{IsTold(state, "renames"), IsTold(state, "replaces"), IsTold(state, "keeps_times"),
                              IsTold(state, "reads_back")};
    } catch (const nlohmann::json::exception&) {
        return std::nullopt;
    }
}

os::Status SaveMountState(const std::string& imei, const MountName& mount, const MountAbilities& abilities)
{
    return WriteStateFile(FileOf(imei), imei,
                          {{"mount", ToJson(mount)},
                           {"renames", abilities.renames},
                           {"replaces", abilities.replaces},
                           {"keeps_times", abilities.keepsTimes},
                           {"reads_back", abilities.readsBack}});
}

}  // namespace kesta
