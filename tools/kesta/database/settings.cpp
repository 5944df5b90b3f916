#include "database/settings.h"

#include <array>
#include <cstddef>

#include "database/settings_record.h"

namespace kesta {
namespace {

using calls::Text;

int32_t Truth(bool value)
{
    return value ? 1 : 0;
}

struct TextField {
    std::string PhoneSettings::*setting;
    DbChar* PhoneSettingRecord::*field;
};

constexpr std::array kTexts{TextField{&PhoneSettings::name, &PhoneSettingRecord::Name},
                            TextField{&PhoneSettings::photoPath, &PhoneSettingRecord::PhotoPath},
                            TextField{&PhoneSettings::docPath, &PhoneSettingRecord::DocPath},
                            TextField{&PhoneSettings::wifiMac, &PhoneSettingRecord::WifiMAC},
                            TextField{&PhoneSettings::calendarPeriodText, &PhoneSettingRecord::CalPeriodStr},
                            TextField{&PhoneSettings::contactFolder, &PhoneSettingRecord::ContactFolderId},
                            TextField{&PhoneSettings::calendarFolder, &PhoneSettingRecord::CalendarFolderId},
                            TextField{&PhoneSettings::contactProfile, &PhoneSettingRecord::ContactProfile},
                            TextField{&PhoneSettings::calendarProfile, &PhoneSettingRecord::CalendarProfile}};

struct TruthField {
    bool PhoneSettings::*setting;
    int32_t PhoneSettingRecord::*field;
};

constexpr std::array kTruths{TruthField{&PhoneSettings::autoSync, &PhoneSettingRecord::AutoSync},
                             TruthField{&PhoneSettings::autoBackup, &PhoneSettingRecord::AutoBackup},
                             TruthField{&PhoneSettings::allowWifi, &PhoneSettingRecord::AllowWifi},
                             TruthField{&PhoneSettings::syncDocFromFolder, &PhoneSettingRecord::SyncDocFromFolder},
                             TruthField{&PhoneSettings::syncDocFromPhone, &PhoneSettingRecord::SyncDocFromPhone},
                             TruthField{&PhoneSettings::syncPhotoFromFolder, &PhoneSettingRecord::SyncPhotoFromFolder},
                             TruthField{&PhoneSettings::syncPhotoFromPhone, &PhoneSettingRecord::SyncPhotoFromPhone},
                             TruthField{&PhoneSettings::syncMusicFromFolder, &PhoneSettingRecord::SyncMusicFromFolder},
                             TruthField{&PhoneSettings::syncMusicFromPlayer, &PhoneSettingRecord::SyncMusicFromPlayer},
                             TruthField{&PhoneSettings::syncMusicAll, &PhoneSettingRecord::SyncMusicAll}};

struct NumberField {
    int32_t PhoneSettings::*setting;
    int32_t PhoneSettingRecord::*field;
};

constexpr std::array kNumbers{NumberField{&PhoneSettings::contactPreferSide, &PhoneSettingRecord::ContactPreferSide},
                              NumberField{&PhoneSettings::calendarPreferSide, &PhoneSettingRecord::CalendarPreferSide},
                              NumberField{&PhoneSettings::contactProgram, &PhoneSettingRecord::ContactPim},
                              NumberField{&PhoneSettings::calendarProgram, &PhoneSettingRecord::CalPim},
                              NumberField{&PhoneSettings::calendarPeriod, &PhoneSettingRecord::CalPeriod},
                              NumberField{&PhoneSettings::bookmarkType, &PhoneSettingRecord::BookMarkType}};

}  // namespace

Result SettingsRecords::write(const PhoneSettings& before, const PhoneSettings& after)
{
    calls::OwnedSettings present;
    if (!present.read(imei_)) {
        throw DatabaseError("DB_LIB_GetPhoneSetting failed: the phone's settings cannot be read");
    }
    PhoneSettingRecord record = present.unchanged();
    std::array<DbText, kTexts.size()> texts;
    for (size_t i = 0; i < kTexts.size(); ++i) {
        const auto& [setting, field] = kTexts[i];
        if (before.*setting == after.*setting) {
            continue;
        }
        texts[i] = Text(after.*setting);
        record.*field = texts[i].data();
    }
    for (const auto& [setting, field] : kTruths) {
        if (before.*setting != after.*setting) {
            record.*field = Truth(after.*setting);
        }
    }
    for (const auto& [setting, field] : kNumbers) {
        if (before.*setting != after.*setting) {
            record.*field = after.*setting;
        }
    }
    if (before.calendarStart != after.calendarStart) {
        record.CalStart = ToDateValue(after.calendarStart);
    }
    if (before.calendarEnd != after.calendarEnd) {
        record.CalEnd = ToDateValue(after.calendarEnd);
    }
    return DB_LIB_SetPhoneSetting(&record);
}

Result SettingsRecords::selectFolder(Category category, const std::string& path, bool selected)
{
    constexpr std::array kCalls{&DB_MUSIC_SetFolderSelected, &DB_IMAGE_SetFolderSelected, &DB_VIDEO_SetFolderSelected,
                                &DB_DOCUMENT_SetFolderSelected};
    return kCalls[static_cast<size_t>(category)](Text(imei_).c_str(), Text(path).c_str(), Truth(selected));
}

Result SettingsRecords::selectPlaylist(const std::string& name, bool selected)
{
    return DB_PLAYERMUSIC_SetListSelected(Text(imei_).c_str(), Text(name).c_str(), Truth(selected));
}

}  // namespace kesta
