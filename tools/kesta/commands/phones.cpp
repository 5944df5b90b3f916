#include "commands/phones.h"
#include "base/stop_run.h"

#include <fmt/format.h>

#include <stdexcept>

namespace kesta {

PhoneSettings KnownPhone(const Database& database, const std::string& imei)
{
    auto phone = database.phones().find(imei);
    if (!phone) {
        throw StopRun(ExitCode::kFailure, fmt::format("no phone with the IMEI {} is known", imei));
    }
    return *std::move(phone);
}

std::vector<PhoneSettings> ChosenPhones(const Database& database, const std::optional<std::string>& imei)
{
    if (!imei) {
        return database.phones().all();
    }
    return {KnownPhone(database, *imei)};
}

}  // namespace kesta
