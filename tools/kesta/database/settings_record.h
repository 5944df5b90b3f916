// The library's settings record of one phone. For database.cpp and database/settings.cpp only.
#pragma once

#include <string>
#include <variant>

#include "database/calls.h"
#include "database/setting_table.h"

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
        for (const Setting& setting : kSettings) {
            if (const auto* text = std::get_if<TextSetting>(&setting.members)) {
                record.*(text->field) = nullptr;
            } else if (const auto* date = std::get_if<DateSetting>(&setting.members);
                       date != nullptr && (record.*(date->field)).Status != kDateValid) {
                record.*(date->field) = {0.0, kDateNull};
            }
        }
        return record;
    }

private:
    PhoneSettingRecord record_{};
    bool filled_ = false;
};

}  // namespace kesta::calls
