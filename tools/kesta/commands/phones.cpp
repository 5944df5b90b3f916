#include "commands/phones.h"

#include <fmt/format.h>

#include "base/stop_run.h"
#include "state/hidden_phones.h"

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
        std::vector<PhoneSettings> phones = database.phones().all();
        std::erase_if(phones, [](const PhoneSettings& phone) { return IsHidden(phone.imei); });
        return phones;
    }
    return {KnownPhone(database, *imei)};
}

}  // namespace kesta
