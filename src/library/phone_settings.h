// The settings record of a phone: how it is emptied, written and read.
#pragma once

#include "core/caller_memory.h"
#include "core/connection.h"
#include "core/results.h"
#include "kesta_db/kesta_db.h"

namespace kesta {

/// Frees the record's texts and zeroes all of it.
void ResetPhoneSetting(PhoneSettingRecord& phone) noexcept;

template <>
struct Element<PhoneSettingRecord> {
    static void construct(PhoneSettingRecord& phone, const DateValue& /*now*/) { phone = {}; }
    static void destroy(PhoneSettingRecord& phone) { ResetPhoneSetting(phone); }
};

ResultCode SetPhoneSetting(Connection& db, Trail trail, const PhoneSettingRecord& phone);

/// Fills an empty record.
ResultCode GetPhoneSetting(Connection& db, Trail trail, const DbChar* imei, PhoneSettingRecord& phone);

/// Fills an empty list.
ResultCode GetAllPhones(Connection& db, Trail trail, PhoneList& list);

}  // namespace kesta
