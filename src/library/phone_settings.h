// The settings record of a phone: how it is emptied, written and read.
#pragma once

#include "core/caller_memory.h"
#include "core/routine.h"
#include "kesta_db/kesta_db.h"

namespace kesta {

/// Frees the record's texts and zeroes all of it.
void ResetPhoneSetting(PhoneSettingRecord& phone) noexcept;

template <>
struct Element<PhoneSettingRecord> {
    static void construct(PhoneSettingRecord& phone, const DateValue& /*now*/) { phone = {}; }
    static void destroy(PhoneSettingRecord& phone) { ResetPhoneSetting(phone); }
};

namespace library {

ResultCode SetPhoneSetting(Routine self, const PhoneSettingRecord& phone);

/// Fills an empty record.
ResultCode GetPhoneSetting(Routine self, const DbChar* imei, PhoneSettingRecord& phone);

/// Fills an empty list.
ResultCode GetAllPhones(Routine self, PhoneList& list);

}  // namespace library
}  // namespace kesta
