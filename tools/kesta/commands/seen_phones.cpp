#include "commands/seen_phones.h"

#include <fmt/format.h>

#include "base/stop_run.h"
#include "phone/marker.h"
#include "phone/phone_folder.h"

namespace kesta {
namespace {

bool IsInPlace(const SeenPhone& seen)
{
    PhoneFolder folder(seen.path);
    std::optional<Marker> marker;
    return folder.open().ok() && ReadMarker(folder, marker).ok() && marker && marker->imei == seen.imei;
}

}  // namespace

std::vector<SeenPhone> PhonesInPlace(const std::optional<std::string>& imei)
{
    std::vector<SeenPhone> there;
    std::string missing;
    for (SeenPhone& seen : ReadSeenPhones()) {
        if (imei && seen.imei != *imei) {
            continue;
        }
        if (IsInPlace(seen)) {
            there.push_back(std::move(seen));
        } else {
            missing += fmt::format("\n  {} ({}), last seen in {}", seen.name, seen.imei, seen.path);
        }
    }
    if (!there.empty()) {
        return there;
    }
    if (missing.empty()) {
        throw StopRun(ExitCode::kUsage,
                      imei ? fmt::format("the phone {} has not been synced from here yet: give --phone DIR", *imei)
                           : "no phone has been synced from here yet: give --phone DIR");
    }
    throw StopRun(ExitCode::kNotThePhone,
                  "no phone is where it was last seen. Is it plugged in and mounted? Else give --phone DIR." + missing);
}

std::string FolderOfPhone(const std::string& given, const std::optional<std::string>& imei)
{
    if (!given.empty()) {
        return given;
    }
    const std::vector<SeenPhone> phones = PhonesInPlace(imei);
    if (phones.size() > 1) {
        throw StopRun(ExitCode::kUsage, "several phones are there: say which one with --imei or --phone");
    }
    return phones.front().path;
}

}  // namespace kesta
