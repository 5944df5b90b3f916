// The settings of a phone, listed once: what each is called, what it means, and where it stands in the client's record
// and in the library's. A further setting is a member of PhoneSettings and a line here.
#pragma once

#include <kesta_db/kesta_db.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "database/database.h"

namespace kesta {

template <class Value, class Field>
struct SettingMembers {
    Value PhoneSettings::*value;
    Field PhoneSettingRecord::*field;
};
using TextSetting = SettingMembers<std::string, DbChar*>;
using TruthSetting = SettingMembers<bool, int32_t>;
using NumberSetting = SettingMembers<int32_t, int32_t>;
using DateSetting = SettingMembers<std::optional<LocalTime>, DateValue>;

struct Setting {
    std::string_view name, meaning;
    std::variant<TextSetting, TruthSetting, NumberSetting, DateSetting> members;
    bool isWritable = true;
};

/// In the order in which they are shown.
inline constexpr auto kSettings = [] {
    using S = PhoneSettings;
    using R = PhoneSettingRecord;
    return std::array{
        Setting{"name", "what the phone is called", TextSetting{&S::name, &R::Name}},
        Setting{"photo_path", "the PC's folder for photos", TextSetting{&S::photoPath, &R::PhotoPath}},
        Setting{"document_path", "the PC's folder for documents", TextSetting{&S::docPath, &R::DocPath}},
        Setting{"wifi_mac", "the phone's Wi-Fi address", TextSetting{&S::wifiMac, &R::WifiMAC}},
        Setting{"auto_sync", "sync without being asked", TruthSetting{&S::autoSync, &R::AutoSync}},
        Setting{"auto_backup", "back up without being asked", TruthSetting{&S::autoBackup, &R::AutoBackup}},
        Setting{"allow_wifi", "sync over Wi-Fi, too", TruthSetting{&S::allowWifi, &R::AllowWifi}},
        Setting{"contact_prefer_side", "which side of a contact counts when both have changed",
                NumberSetting{&S::contactPreferSide, &R::ContactPreferSide}},
        Setting{"calendar_prefer_side", "which side of an appointment counts when both have changed",
                NumberSetting{&S::calendarPreferSide, &R::CalendarPreferSide}},
        Setting{"contact_program", "the PC's program for contacts", NumberSetting{&S::contactProgram, &R::ContactPim}},
        Setting{"contact_folder", "that program's folder", TextSetting{&S::contactFolder, &R::ContactFolderId}},
        Setting{"contact_profile", "that program's profile", TextSetting{&S::contactProfile, &R::ContactProfile}},
        Setting{"calendar_program", "the PC's program for calendars", NumberSetting{&S::calendarProgram, &R::CalPim}},
        Setting{"calendar_folder", "that program's folder", TextSetting{&S::calendarFolder, &R::CalendarFolderId}},
        Setting{"calendar_profile", "that program's profile", TextSetting{&S::calendarProfile, &R::CalendarProfile}},
        Setting{"calendar_period", "which part of the calendar is synced",
                NumberSetting{&S::calendarPeriod, &R::CalPeriod}},
        Setting{"calendar_period_text", "the same as text", TextSetting{&S::calendarPeriodText, &R::CalPeriodStr}},
        Setting{"calendar_start", "the first day that is synced", DateSetting{&S::calendarStart, &R::CalStart}},
        Setting{"calendar_end", "the last day that is synced", DateSetting{&S::calendarEnd, &R::CalEnd}},
        Setting{"bookmark_type", "which set of bookmarks is synced", NumberSetting{&S::bookmarkType, &R::BookMarkType}},
        Setting{"sync_documents_from_folder", "documents, from the PC's folder",
                TruthSetting{&S::syncDocFromFolder, &R::SyncDocFromFolder}},
        Setting{"sync_documents_from_phone", "documents, from the phone",
                TruthSetting{&S::syncDocFromPhone, &R::SyncDocFromPhone}},
        Setting{"sync_photos_from_folder", "photos, from the PC's folder",
                TruthSetting{&S::syncPhotoFromFolder, &R::SyncPhotoFromFolder}},
        Setting{"sync_photos_from_phone", "photos, from the phone",
                TruthSetting{&S::syncPhotoFromPhone, &R::SyncPhotoFromPhone}},
        Setting{"sync_music_from_folder", "music, from folders of the PC",
                TruthSetting{&S::syncMusicFromFolder, &R::SyncMusicFromFolder}},
        Setting{"sync_music_from_player", "music, from the PC's player",
                TruthSetting{&S::syncMusicFromPlayer, &R::SyncMusicFromPlayer}},
        Setting{"sync_music_all", "all of the music", TruthSetting{&S::syncMusicAll, &R::SyncMusicAll}},
        Setting{"need_mount", "the phone is reached as a mounted folder", TruthSetting{&S::needMount, &R::NeedMount},
                false}};
}();

}  // namespace kesta
