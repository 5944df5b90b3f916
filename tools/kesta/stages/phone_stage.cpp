#include "stages/phone_stage.h"

#include <fmt/format.h>

#include "base/text.h"
#include "os/system.h"

namespace kesta {

PhoneStage::PhoneStage(const PhoneFolder& phone, const SyncOptions& options) : phone_(phone), options_(options)
{
    std::optional<Marker> found;
    if (os::Status status = ReadMarker(phone, found); !status.ok()) {
        throw StopRun(ExitCodeOf(status),
                      fmt::format("the phone's file {} cannot be used: {}", kMarkerName, status.text()));
    }
    isMarked_ = found.has_value();
    if (isMarked_) {
        marker_ = *found;
        if (options.imei && *options.imei != marker_.imei) {
            throw StopRun(ExitCode::kFailure, fmt::format("this folder is the phone {} ({}), not {}", marker_.imei,
                                                          marker_.name, *options.imei));
        }
        return;
    }
    marker_.imei = options.imei.value_or(std::string());
    const std::string name = os::NameOf(phone.root());
    marker_.name = options.name.value_or(name.empty() || !IsValidUtf8(name) ? "phone" : name);
}

Plan PhoneStage::plan(Session& session)
{
    Plan plan(session.report.summary.files);
    const auto known = marker_.imei.empty() ? std::nullopt : session.database.phone(marker_.imei);
    if (known && !isMarked_) {
        session.report.note(
            "the database knows this phone, but the folder was not marked as it: if the phone was not mounted there, "
            "remove the folder's contents and sync again.");
    }
    // The user may have changed it in the database since the phone was marked.
    if (known && !options_.name && !known->name.empty()) {
        marker_.name = known->name;
    }
    Change change;
    change.record = [this, &session, isKnown = known.has_value()](const Written&) {
        announce(session, isKnown);
        return Result();
    };
    plan.add(std::move(change));
    return plan;
}

void PhoneStage::announce(Session& session, bool isKnown)
{
    if (marker_.imei.empty()) {
        marker_.imei = MakeImei(os::RandomNumber());
    }
    const bool isRenamed = options_.name && isMarked_ && *options_.name != marker_.name;
    if (isRenamed) {
        marker_.name = *options_.name;
    }
    if (!isMarked_ || isRenamed) {
        if (os::Status status = WriteMarker(phone_, marker_); !status.ok()) {
            throw StopRun(ExitCodeOf(status), "the phone cannot be marked: " + status.text());
        }
    }
    session.database.announce(marker_.imei, marker_.name);
    if (isKnown && options_.name) {
        session.database.rename(marker_.imei, *options_.name);
    }
}

}  // namespace kesta
