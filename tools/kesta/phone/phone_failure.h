// What a failure on the phone means for the run: one that every further write would meet ends it.
#pragma once

#include "phone/phone_folder.h"
#include "report/summary.h"

namespace kesta {

inline void StopOnPhoneFailure(const PhoneFolder& phone, const os::Status& status, Summary& summary)
{
    if (!phone.isStillThere()) return summary.stopWith(ExitCode::kPhoneGone, "the phone went away");
    if (status.failure() == os::Failure::kFull) return summary.stopWith(ExitCode::kPhoneFull, "the phone is full");
    if (status.failure() == os::Failure::kReadOnly)
        return summary.stopWith(ExitCode::kPhoneReadOnly, "the phone is read-only");
}

}  // namespace kesta
