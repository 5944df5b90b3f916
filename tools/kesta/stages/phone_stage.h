// Which phone this is, from the file in its root and the command line, and its registration.
#pragma once

#include "phone/marker.h"
#include "sync/session.h"

namespace kesta {

class PhoneStage : public Stage {
public:
    /// Throws when that cannot be told. So does plan() for a folder where another phone is expected than it seems to
    /// be.
    PhoneStage(PhoneFolder& phone, const SyncOptions& options);
    [[nodiscard]] Plan plan(Session& session) override;

    [[nodiscard]] const Marker& marker() const { return marker_; }
    /// Whether an earlier run has marked the folder as this phone.
    [[nodiscard]] bool isMarked() const { return isMarked_; }

private:
    void refuseStrangeFolder(const std::optional<PhoneSettings>& known, const Database& database) const;
    void announce(Session& session, bool isKnown);
    void rememberFolder(Report& report) const;

    PhoneFolder& phone_;
    const SyncOptions& options_;
    Marker marker_;  // without an IMEI until one has been made up
    bool isMarked_ = false;
};

}  // namespace kesta
