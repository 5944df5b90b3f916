#include "phone/marker.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "phone/names.h"
#include "phone/put_text.h"

namespace kesta {
namespace {

constexpr size_t kLongestImei = 100;

std::string MarkerPath(const PhoneFolder& phone)
{
    return phone.native(std::string(kMarkerName));
}

char CheckDigit(const std::string& digits)
{
    int sum = 0;
    for (size_t i = 0; i < digits.size(); ++i) {
        int digit = digits[i] - '0';
        if (i % 2 == 1) {
            digit *= 2;
        }
        sum += digit > 9 ? digit - 9 : digit;
    }
    return static_cast<char>('0' + (10 - sum % 10) % 10);
}

os::Status ReadMarkerAt(const std::string& path, std::optional<Marker>& marker)
{
    marker.reset();
    std::string text;
    if (os::Status status = os::ReadText(path, text); !status.ok()) {
        return status.failure() == os::Failure::kMissing ? os::Status() : status;
    }
    const auto json = nlohmann::json::parse(text, nullptr, false);
    if (!json.is_object() || !json.contains("imei") || !json["imei"].is_string()) {
        return {os::Failure::kOther, "it does not say which phone this is"};
    }
    Marker found{json["imei"].get<std::string>(), {}};
    if (json.contains("name") && json["name"].is_string()) {
        found.name = json["name"].get<std::string>();
    }
    if (const std::string problem = ImeiProblem(found.imei); !problem.empty()) {
        return {os::Failure::kOther, problem};
    }
    marker = std::move(found);
    return {};
}

}  // namespace

os::Status ReadMarker(const PhoneFolder& phone, std::optional<Marker>& marker)
{
    os::Status status = ReadMarkerAt(MarkerPath(phone), marker);
    if (!marker) {
        // Where the mount does not replace files, a killed run can have left it under the temporary name alone.
        std::optional<Marker> unsaved;
        if (ReadMarkerAt(phone.native(std::string(kTemporaryName)), unsaved).ok() && unsaved) {
            marker = std::move(unsaved);
            marker->isUnsaved = true;
            return {};
        }
    }
    return status;
}

os::Status WriteMarker(const PhoneFolder& phone, const Marker& marker)
{
    const nlohmann::ordered_json json{{"imei", marker.imei}, {"name", marker.name}};
    const std::string text = json.dump(4) + "\n";
    return PutText({.target = MarkerPath(phone), .text = text, .abilities = phone.abilities()});
}

std::string ImeiProblem(const std::string& imei)
{
    if (imei.empty()) {
        return "an IMEI must not be empty";
    }
    if (imei.size() > kLongestImei) {
        return fmt::format("an IMEI has at most {} characters", kLongestImei);
    }
    for (const char c : imei) {
        if (c == '\'') {
            return "an IMEI must not hold an apostrophe";
        }
        if (c <= ' ' || c > '~') {
            return "an IMEI consists of printable ASCII characters without blanks";
        }
    }
    return {};
}

std::string MakeImei(uint64_t random)
{
    const std::string digits = fmt::format("00{:012}", random % 1'000'000'000'000u);
    return digits + CheckDigit(digits);
}

}  // namespace kesta
