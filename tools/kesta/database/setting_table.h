// The settings of a phone, listed once: what each is called, what it means, and where it stands in the phone's record.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "database/database.h"

namespace kesta {

using TextSetting = std::string PhoneSettings::*;
using TruthSetting = bool PhoneSettings::*;
using NumberSetting = int32_t PhoneSettings::*;
using DateSetting = std::optional<LocalTime> PhoneSettings::*;

struct Setting {
    std::string_view name, meaning;
    std::variant<TextSetting, TruthSetting, NumberSetting, DateSetting> member;
    bool isWritable = true;
};

/// In the order in which they are shown.
inline constexpr auto kSettings = [] {
    using S = PhoneSettings;
    return std::array{
        Setting{"name", "what the phone is called", &S::name},
        Setting{"photo_path", "the PC's folder for photos", &S::photoPath},
        Setting{"document_path", "the PC's folder for documents", &S::docPath},
        Setting{"wifi_mac", "the phone's Wi-Fi address", &S::wifiMac},
        Setting{"auto_sync", "sync without being asked", &S::autoSync},
        Setting{"auto_backup", "back up without being asked", &S::autoBackup},
        Setting{"allow_wifi", "sync over Wi-Fi, too", &S::allowWifi},
        Setting{"contact_prefer_side", "which side of a contact counts when both have changed", &S::contactPreferSide},
        Setting{"calendar_prefer_side", "which side of an appointment counts when both have changed",
                &S::calendarPreferSide},
        Setting{"contact_program", "the PC's program for contacts", &S::contactProgram},
        Setting{"contact_folder", "that program's folder", &S::contactFolder},
        Setting{"contact_profile", "that program's profile", &S::contactProfile},
        Setting{"calendar_program", "the PC's program for calendars", &S::calendarProgram},
        Setting{"calendar_folder", "that program's folder", &S::calendarFolder},
        Setting{"calendar_profile", "that program's profile", &S::calendarProfile},
        Setting{"calendar_period", "which part of the calendar is synced", &S::calendarPeriod},
        Setting{"calendar_period_text", "the same as text", &S::calendarPeriodText},
        Setting{"calendar_start", "the first day that is synced", &S::calendarStart},
        Setting{"calendar_end", "the last day that is synced", &S::calendarEnd},
        Setting{"bookmark_type", "which set of bookmarks is synced", &S::bookmarkType},
        Setting{"sync_documents_from_folder", "documents, from the PC's folder", &S::syncDocFromFolder},
        Setting{"sync_documents_from_phone", "documents, from the phone", &S::syncDocFromPhone},
        Setting{"sync_photos_from_folder", "photos, from the PC's folder", &S::syncPhotoFromFolder},
        Setting{"sync_photos_from_phone", "photos, from the phone", &S::syncPhotoFromPhone},
        Setting{"sync_music_from_folder", "music, from folders of the PC", &S::syncMusicFromFolder},
        Setting{"sync_music_from_player", "music, from the PC's player", &S::syncMusicFromPlayer},
        Setting{"sync_music_all", "all of the music", &S::syncMusicAll},
        Setting{"need_mount", "the phone is reached as a mounted folder", &S::needMount, false}};
}();

}  // namespace kesta
