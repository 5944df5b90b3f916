// Which phone this is, from the file in its root and the command line, and its registration.
#pragma once

#include "phone/marker.h"
#include "sync/session.h"

namespace kesta {

class PhoneStage : public Stage {
public:
    /// Throws when that cannot be told.
    PhoneStage(const PhoneFolder& phone, const SyncOptions& options);
    [[nodiscard]] Plan plan(Session& session) override;

    [[nodiscard]] const Marker& marker() const { return marker_; }
    /// Whether an earlier run has marked the folder as this phone.
    [[nodiscard]] bool isMarked() const { return isMarked_; }

private:
    void announce(Session& session, bool isKnown);

    const PhoneFolder& phone_;
    const SyncOptions& options_;
    Marker marker_;  // without an IMEI until one has been made up
    bool isMarked_ = false;
};

}  // namespace kesta
