// What a run that was cut short has left on the phone.
#pragma once

#include "stages/media/media_stage.h"
#include "sync/journal.h"

namespace kesta {

/// Reads what the database has of media, and sees to what a run that was cut short has left on the phone: before
/// anything else is planned.
class LeftoverStage : public Stage {
public:
    LeftoverStage(MediaState& state, PhoneFolder& phone) : state_(state), phone_(phone) {}
    [[nodiscard]] Plan plan(Session& session) override;

private:
    void settle(const Leftovers& leftovers, Session& session) const;
    [[nodiscard]] bool hasWritten(const RecordedFile& file, const PhoneFile& there, const LeftFile* left) const;

    MediaState& state_;
    PhoneFolder& phone_;
};

}  // namespace kesta
