#include "commands/phones.h"
#include "base/stop_run.h"

#include <fmt/format.h>

#include <stdexcept>

namespace kesta {

PhoneSettings KnownPhone(Database& database, const std::string& imei)
{
    auto phone = database.phone(imei);
    if (!phone) {
        throw StopRun(ExitCode::kFailure, fmt::format("no phone with the IMEI {} is known", imei));
    }
    return *std::move(phone);
}

std::vector<PhoneSettings> ChosenPhones(Database& database, const std::optional<std::string>& imei)
{
    if (!imei) {
        return database.phones();
    }
    return {KnownPhone(database, *imei)};
}

}  // namespace kesta
