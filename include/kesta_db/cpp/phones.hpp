/**
 * @file
 * @brief C++: the registry of phones, how each is set up, and which main folders it takes part in.
 */
#pragma once

#include <kesta_db/cpp/base.hpp>

namespace kesta_db {

/// How a phone is set up. What the library leaves to its callers' own numbers is left so here.
struct Phone {
    std::string imei{};
    std::string name{};
    std::string photoPath{};
    std::string docPath{};
    std::string wifiMac{};
    bool autoSync = false;
    bool autoBackup = false;
    bool allowWifi = true;
    int32_t contactPreferSide = 2;
    int32_t calendarPreferSide = 2;
    int32_t contactProgram = 0;
    int32_t calendarProgram = 0;
    int32_t calendarPeriod = 0;
    std::string calendarPeriodText{};
    std::optional<LocalTime> calendarStart{};
    std::optional<LocalTime> calendarEnd{};
    int32_t bookmarkType = 1;
    bool syncDocFromFolder = false;
    bool syncDocFromPhone = true;
    bool syncPhotoFromFolder = false;
    bool syncPhotoFromPhone = true;
    bool syncMusicFromFolder = false;
    bool syncMusicFromPlayer = false;
    bool syncMusicAll = true;
    bool needMount = true;  ///< written by setLastSync alone
    std::string contactFolder{};
    std::string calendarFolder{};
    std::string contactProfile{};
    std::string calendarProfile{};

    friend bool operator==(const Phone&, const Phone&) = default;
};

/// The main folders of the library.
enum class MainFolder : int32_t {
    kMusic = kMainFolderMusic,
    kGallery = kMainFolderGallery,
    kDocuments = kMainFolderDocument,
    kContacts = kMainFolderPeople,
    kCalendar = kMainFolderCalendar,
    kBookmarks = kMainFolderWebBookmark,
    kMap = kMainFolderMap
};

/// What the database holds of one main folder, whichever the phone.
struct MainFolderFigures {
    MainFolder folder = MainFolder::kMusic;
    int32_t items = 0;
    int64_t size = 0;
    std::string setting{};
    bool changed = false;
};

namespace detail {

// One row a field, so that reading and writing cannot part.
struct TextField {
    std::string Phone::*ours;
    DbChar* PhoneSettingRecord::*theirs;
};
inline constexpr TextField kPhoneTexts[] = {{&Phone::name, &PhoneSettingRecord::Name},
                                            {&Phone::photoPath, &PhoneSettingRecord::PhotoPath},
                                            {&Phone::docPath, &PhoneSettingRecord::DocPath},
                                            {&Phone::wifiMac, &PhoneSettingRecord::WifiMAC},
                                            {&Phone::calendarPeriodText, &PhoneSettingRecord::CalPeriodStr},
                                            {&Phone::contactFolder, &PhoneSettingRecord::ContactFolderId},
                                            {&Phone::calendarFolder, &PhoneSettingRecord::CalendarFolderId},
                                            {&Phone::contactProfile, &PhoneSettingRecord::ContactProfile},
                                            {&Phone::calendarProfile, &PhoneSettingRecord::CalendarProfile}};
struct TruthField {
    bool Phone::*ours;
    int32_t PhoneSettingRecord::*theirs;
};
inline constexpr TruthField kPhoneTruths[] = {{&Phone::autoSync, &PhoneSettingRecord::AutoSync},
                                              {&Phone::autoBackup, &PhoneSettingRecord::AutoBackup},
                                              {&Phone::allowWifi, &PhoneSettingRecord::AllowWifi},
                                              {&Phone::syncDocFromFolder, &PhoneSettingRecord::SyncDocFromFolder},
                                              {&Phone::syncDocFromPhone, &PhoneSettingRecord::SyncDocFromPhone},
                                              {&Phone::syncPhotoFromFolder, &PhoneSettingRecord::SyncPhotoFromFolder},
                                              {&Phone::syncPhotoFromPhone, &PhoneSettingRecord::SyncPhotoFromPhone},
                                              {&Phone::syncMusicFromFolder, &PhoneSettingRecord::SyncMusicFromFolder},
                                              {&Phone::syncMusicFromPlayer, &PhoneSettingRecord::SyncMusicFromPlayer},
                                              {&Phone::syncMusicAll, &PhoneSettingRecord::SyncMusicAll},
                                              {&Phone::needMount, &PhoneSettingRecord::NeedMount}};
struct NumberField {
    int32_t Phone::*ours;
    int32_t PhoneSettingRecord::*theirs;
};
inline constexpr NumberField kPhoneNumbers[] = {{&Phone::contactPreferSide, &PhoneSettingRecord::ContactPreferSide},
                                                {&Phone::calendarPreferSide, &PhoneSettingRecord::CalendarPreferSide},
                                                {&Phone::contactProgram, &PhoneSettingRecord::ContactPim},
                                                {&Phone::calendarProgram, &PhoneSettingRecord::CalPim},
                                                {&Phone::calendarPeriod, &PhoneSettingRecord::CalPeriod},
                                                {&Phone::bookmarkType, &PhoneSettingRecord::BookMarkType}};

[[nodiscard]] inline Phone ToPhone(const PhoneSettingRecord& record)
{
    Phone phone;
    phone.imei = Utf8(record.IMEI);
    for (const auto& [ours, theirs] : kPhoneTexts) phone.*ours = Utf8(record.*theirs);
    for (const auto& [ours, theirs] : kPhoneTruths) phone.*ours = record.*theirs != 0;
    for (const auto& [ours, theirs] : kPhoneNumbers) phone.*ours = record.*theirs;
    phone.calendarStart = FromDateValue(record.CalStart);
    phone.calendarEnd = FromDateValue(record.CalEnd);
    return phone;
}

/// A settings record that gives its texts back.
class OwnedPhone {
public:
    OwnedPhone() = default;
    OwnedPhone(const OwnedPhone&) = delete;
    OwnedPhone& operator=(const OwnedPhone&) = delete;
    ~OwnedPhone() { (void)DB_LIB_GetPhoneSetting(kUnknown, &record_); }

    /// False for an unknown phone, and when it cannot be read: the library does not tell these apart.
    [[nodiscard]] bool read(std::string_view imei)
    {
        return DB_LIB_GetPhoneSetting(KnownIdentifier(imei).c_str(), &record_) == 0;
    }
    [[nodiscard]] const PhoneSettingRecord& record() const { return record_; }

private:
    PhoneSettingRecord record_{};
};

}  // namespace detail

/// The phones that this PC has met.
class Phones {
public:
    /// Registers the phone unless it is known, and returns its number. A known one keeps its name.
    int32_t announce(std::string_view imei, std::string_view name)
    {
        const detail::Utf16 identity = detail::Identifier(imei);
        const int32_t number = DB_LIB_PhoneDetected(identity.c_str(), detail::Text(name).c_str());
        if (number < 1) throw Error("DB_LIB_PhoneDetected", Code::kFailed);
        return number;
    }

    /// std::nullopt if the phone is not known.
    [[nodiscard]] std::optional<Phone> find(std::string_view imei)
    {
        std::optional<Phone> found;
        detail::AskUntilBelieved("DB_LIB_GetPhoneSetting", [&] {
            detail::OwnedPhone phone;
            if (phone.read(imei)) found = detail::ToPhone(phone.record());
            return found.has_value();
        });
        return found;
    }

    [[nodiscard]] std::vector<Phone> all()
    {
        std::vector<Phone> phones;
        {
            static detail::SharedList<PhoneList> shared;
            const std::scoped_lock lock(shared.mutex);
            detail::ReadCountedList("DB_LIB_GetAllPhones", shared.list,
                                    [&] { return DB_LIB_GetAllPhones(&shared.list); });
            for (int32_t i = 0; i < shared.list.Count; ++i) phones.push_back(detail::ToPhone(shared.list.Items[i]));
        }
        // One by one, for the list leaves some fields out. Another program may have stored an IMEI that cannot be asked
        // for.
        for (Phone& phone : phones) {
            try {
                if (std::optional<Phone> whole = find(phone.imei)) phone = *std::move(whole);
            } catch (const Error& error) {
                if (error.code() != Code::kInvalidText) throw;
            }
        }
        return phones;
    }

    /// Writes what differs from what is stored; the rest keeps its value to the letter. needMount is not written.
    void update(const Phone& phone)
    {
        detail::OwnedPhone stored;
        if (!stored.read(phone.imei)) throw Error("DB_LIB_GetPhoneSetting", Code::kFailed);
        const Phone before = detail::ToPhone(stored.record());
        PhoneSettingRecord record = stored.record();
        std::vector<detail::Utf16> texts(std::size(detail::kPhoneTexts));
        for (size_t i = 0; i < texts.size(); ++i) {
            const auto& [ours, theirs] = detail::kPhoneTexts[i];
            record.*theirs = nullptr;  // leaves the column as it is
            if (before.*ours == phone.*ours) continue;
            texts[i] = detail::Text(phone.*ours);
            record.*theirs = texts[i].data();
        }
        for (const auto& [ours, theirs] : detail::kPhoneTruths)
            if (before.*ours != phone.*ours) record.*theirs = phone.*ours ? 1 : 0;
        for (const auto& [ours, theirs] : detail::kPhoneNumbers) record.*theirs = phone.*ours;
        record.CalStart = detail::ToDateValue(phone.calendarStart);
        record.CalEnd = detail::ToDateValue(phone.calendarEnd);
        detail::Require("DB_LIB_SetPhoneSetting", DB_LIB_SetPhoneSetting(&record));
    }

    /// std::nullopt if the phone has not been synced yet. The phone must be known.
    [[nodiscard]] std::optional<LocalTime> lastSync(std::string_view imei)
    {
        DateValue time{0.0, kDateNull};
        detail::Require("DB_LIB_GetLastSyncTime", DB_LIB_GetLastSyncTime(detail::KnownIdentifier(imei).c_str(), &time));
        return detail::FromDateValue(time);
    }
    void setLastSync(std::string_view imei, LocalTime time, int32_t errorCode = 0, bool needMount = true)
    {
        const DateValue date = detail::ToDateValue(time);
        detail::Require("DB_LIB_SetLastSyncTime", DB_LIB_SetLastSyncTime(detail::KnownIdentifier(imei).c_str(), &date,
                                                                         errorCode, needMount ? 1 : 0));
    }

    /// A folder of which nothing is stored for the phone counts as selected.
    [[nodiscard]] bool isSelected(std::string_view imei, MainFolder folder)
    {
        return DB_LIB_IsFolderSelected(detail::KnownIdentifier(imei).c_str(), static_cast<int32_t>(folder)) != 0;
    }
    void select(std::string_view imei, MainFolder folder, bool selected)
    {
        detail::Require("DB_LIB_SetFolderSelected",
                        DB_LIB_SetFolderSelected(detail::KnownIdentifier(imei).c_str(), static_cast<int32_t>(folder),
                                                 selected ? 1 : 0));
    }

    /// Forgets which files have been synced, of all categories and playlists.
    void forgetSyncedFiles(std::string_view imei)
    {
        detail::Require("DB_LIB_ClearSyncHistory", DB_LIB_ClearSyncHistory(detail::KnownIdentifier(imei).c_str()));
    }

    [[nodiscard]] std::vector<MainFolderFigures> mainFolders()
    {
        std::vector<MainFolderFigures> folders;
        detail::AskUntilBelieved("DB_LIB_GetAllMainFolders", [&] {
            auto& shared = detail::SharedMainFolders();
            const std::scoped_lock lock(shared.mutex);
            detail::ReadList("DB_LIB_GetAllMainFolders", [&] { return DB_LIB_GetAllMainFolders(&shared.list); });
            for (int32_t i = 0; i < shared.list.Count; ++i) {
                const MainFolderRecord& record = shared.list.Items[i];
                folders.push_back({static_cast<MainFolder>(record.ID), record.Number, record.Size,
                                   detail::Utf8(record.Setting), record.Changed != 0});
            }
            return !folders.empty();
        });
        return folders;
    }
};

}  // namespace kesta_db
