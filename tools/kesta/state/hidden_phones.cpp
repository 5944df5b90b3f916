#include "state/hidden_phones.h"

#include "state/state_file.h"

namespace kesta {
namespace {

// No IMEI holds a blank, so that this is no other file's name.
std::string FileOf(const std::string& imei)
{
    return "hidden " + imei + ".json";
}

}  // namespace

bool IsHidden(const std::string& imei)
{
    nlohmann::json state;
    return ReadStateFile(FileOf(imei), imei, state).ok() && !state.is_null();
}

os::Status HidePhone(const std::string& imei)
{
    os::Status status = WriteStateFile(FileOf(imei), imei, nlohmann::ordered_json::object());
    for (const char* file : {"seen of ", "sync of ", "left of "}) {
        if (status.ok()) {
            status = RemoveStateFile(file + imei + ".json");
        }
    }
    return status;
}

os::Status ShowPhone(const std::string& imei)
{
    return IsHidden(imei) ? RemoveStateFile(FileOf(imei)) : os::Status();
}

}  // namespace kesta
