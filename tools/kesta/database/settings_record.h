// The library's settings record of one phone. For database.cpp and database/settings.cpp only.
#pragma once

#include <string>

#include "database/calls.h"

namespace kesta::calls {

/// A settings record that gives its texts back.
class OwnedSettings {
public:
    OwnedSettings() = default;
    OwnedSettings(const OwnedSettings&) = delete;
    OwnedSettings& operator=(const OwnedSettings&) = delete;
    ~OwnedSettings()
    {
        if (filled_) {
            (void)DB_LIB_GetPhoneSetting(kNoPhone, &record_);  // Answers 1 after it has emptied the record.
        }
    }
    /// False for an unknown phone.
    [[nodiscard]] bool read(const std::string& imei)
    {
        filled_ = true;
        return DB_LIB_GetPhoneSetting(Text(imei).c_str(), &record_) == 0;
    }
    [[nodiscard]] const PhoneSettingRecord& record() const { return record_; }

    /// The record for writing it back as it was read: what is not set in it then keeps its value.
    [[nodiscard]] PhoneSettingRecord unchanged() const
    {
        PhoneSettingRecord record = record_;
        // Null leaves the column as it is, and a date that was never set must not become the text of an invalid one.
        record.Name = record.PhotoPath = record.DocPath = record.WifiMAC = record.CalPeriodStr = nullptr;
        record.ContactFolderId = record.CalendarFolderId = record.ContactProfile = record.CalendarProfile = nullptr;
        for (DateValue* date : {&record.CalStart, &record.CalEnd}) {
            if (date->Status != kDateValid) {
                *date = {0.0, kDateNull};
            }
        }
        return record;
    }

private:
    PhoneSettingRecord record_{};
    bool filled_ = false;
};

}  // namespace kesta::calls
