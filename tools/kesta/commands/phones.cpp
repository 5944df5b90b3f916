#include "commands/phones.h"

#include <fmt/format.h>

#include <stdexcept>

namespace kesta {

PhoneSettings KnownPhone(Books& books, const std::string& imei)
{
    auto phone = books.phone(imei);
    if (!phone) throw std::runtime_error(fmt::format("no phone with the IMEI {} is known", imei));
    return *std::move(phone);
}

std::vector<PhoneSettings> ChosenPhones(Books& books, const std::optional<std::string>& imei)
{
    if (!imei) return books.phones();
    return {KnownPhone(books, *imei)};
}

}  // namespace kesta
