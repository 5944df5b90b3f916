// The look-ups that find a phone's number, its bookmark type and a folder's flag. They trace nothing; the caller holds
// the lock.
#pragma once

#include <cstdint>

#include "core/routine.h"

namespace kesta {

inline constexpr int32_t kNoPhone = -1;

/// The number of a phone; kNoPhone when it is not known or cannot be looked up.
int32_t GetPhoneIdByImei(Connection& db, const DbChar* imei);

/// The bookmark type of a phone; 0 when it is not known or cannot be looked up.
int32_t GetBookMarkTypeByImei(Connection& db, const DbChar* imei);

/// The [Flag] of a folder or playlist; 0 when there is no such row or it cannot be looked up.
int32_t GetPathFlag(Connection& db, int32_t phoneId, Name folderTable, const DbChar* path);

/// What `body(phoneId)` comes to; failure when the phone is not known.
template <class Body>
auto ForPhone(Routine self, const DbChar* imei, Body&& body) -> decltype(body(kNoPhone))
{
    const int32_t phoneId = GetPhoneIdByImei(self.db, imei);
    if (phoneId == kNoPhone) {
        return ResultCode::kFailure;
    }
    return body(phoneId);
}

}  // namespace kesta
