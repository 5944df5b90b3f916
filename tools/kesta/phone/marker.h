// The file in a phone's root that says which phone it is.
#pragma once

#include <optional>
#include <string>

#include "phone/phone_folder.h"

namespace kesta {

inline constexpr std::string_view kMarkerName = ".kesta-phone";

struct Marker {
    std::string imei;
    std::string name;
    bool isUnsaved = false;  // found beside its place, as a killed run can leave it
};

/// The marker is std::nullopt if the phone has none. Fails when there is one that cannot be read or understood.
os::Status ReadMarker(const PhoneFolder& phone, std::optional<Marker>& marker);
os::Status WriteMarker(const PhoneFolder& phone, const Marker& marker);

/// Why the text cannot be an IMEI; empty when it can.
[[nodiscard]] std::string ImeiProblem(const std::string& imei);
/// A made-up IMEI: 15 digits of the range for test equipment, which no real phone has, with a valid check digit.
[[nodiscard]] std::string MakeImei(uint64_t random);

}  // namespace kesta
