#include "stages/phone_stage.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/text.h"
#include "os/system.h"
#include "state/seen_phone.h"
#include "sync/mount.h"

namespace kesta {
namespace {

// Empty when the system does not tell it.
std::string FileSystemOf(const PhoneFolder& phone)
{
    std::string id;
    (void)os::ReadFileSystemId(phone.root(), id);
    return id;
}

}  // namespace

PhoneStage::PhoneStage(PhoneFolder& phone, const SyncOptions& options) : phone_(phone), options_(options)
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
    const auto known = marker_.imei.empty() ? std::nullopt : session.database.phones().find(marker_.imei);
    if (!isMarked_ && !options_.acceptFolder) {
        refuseStrangeFolder(known, session.database);
    }
    // The user may have changed it in the database since the phone was marked.
    if (known && !options_.name && !known->name.empty()) {
        marker_.name = known->name;
    }
    Change change;
    change.record = [this, &session, isKnown = known.has_value()](const Written&) { announce(session, isKnown); };
    plan.add(std::move(change));
    return plan;
}

// An empty mount point would become a second phone, and take all files to the PC's own disk.
void PhoneStage::refuseStrangeFolder(const std::optional<PhoneSettings>& known, const Database& database) const
{
    const std::string path = Printable(phone_.root());
    const std::vector<SeenPhone> seen = ReadSeenPhones();
    const auto named =
        std::find_if(seen.begin(), seen.end(), [&](const SeenPhone& phone) { return phone.imei == marker_.imei; });
    const auto here =
        std::find_if(seen.begin(), seen.end(), [&](const SeenPhone& phone) { return phone.path == path; });
    // One that another program has announced, but nobody has synced yet, cannot be marked.
    const bool isKnown = named != seen.end() || (known && database.phones().lastSync(marker_.imei));
    if (!isKnown && here == seen.end()) {
        return;
    }
    const SeenPhone phone = named != seen.end() ? *named : known ? SeenPhone{known->imei, known->name, {}, {}} : *here;
    const bool isFileSystemThere = phone.path == path && phone.fileSystem == FileSystemOf(phone_);
    throw StopRun(
        ExitCode::kNotThePhone,
        fmt::format("the phone {} ({}) {}, but {}\nIf this folder is meant all the same, add --accept-folder: {}.",
                    phone.name, phone.imei,
                    phone.path.empty() ? "is known" : fmt::format("was last seen in {}", phone.path),
                    isFileSystemThere ? fmt::format("its file {} is gone from there.", kMarkerName)
                                      : fmt::format("{} is not marked as it. Is the phone mounted there?", path),
                    isKnown ? "it is taken for that phone then"
                            : fmt::format("it becomes a new phone then, or that one with --imei {}", phone.imei)));
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
    LearnMount(phone_, marker_.imei, session.report);
    if (!isMarked_ || isRenamed || marker_.isUnsaved) {
        if (os::Status status = WriteMarker(phone_, marker_); !status.ok()) {
            throw StopRun(ExitCodeOf(status), "the phone cannot be marked: " + status.text());
        }
    }
    kesta_db::Phones phones = session.database.phones();
    phones.announce(marker_.imei, marker_.name);
    rememberFolder(session.report);
    if (isKnown && options_.name) {
        if (auto phone = phones.find(marker_.imei)) {
            phone->name = *options_.name;
            phones.update(*phone);
        }
    }
}

void PhoneStage::rememberFolder(Report& report) const
{
    const os::Status saved =
        SaveSeenPhone({marker_.imei, marker_.name, Printable(phone_.root()), FileSystemOf(phone_)});
    if (!saved.ok()) {
        report.note("where the phone was seen cannot be noted for the next run: " + saved.text());
    }
}

}  // namespace kesta
