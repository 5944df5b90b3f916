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

// Puts into the library's record what differs between two of the client's.
struct PutChange {
    const PhoneSettings& before;
    const PhoneSettings& after;
    PhoneSettingRecord& record;
    DbText& text;  // what the record points to

    void operator()(const TextSetting& setting) const
    {
        if (isChanged(setting)) {
            text = Text(after.*setting.value);
            record.*setting.field = text.data();
        }
    }
    void operator()(const TruthSetting& setting) const
    {
        if (isChanged(setting)) {
            record.*setting.field = Truth(after.*setting.value);
        }
    }
    void operator()(const NumberSetting& setting) const
    {
        if (isChanged(setting)) {
            record.*setting.field = after.*setting.value;
        }
    }
    void operator()(const DateSetting& setting) const
    {
        if (isChanged(setting)) {
            record.*setting.field = ToDateValue(after.*setting.value);
        }
    }

private:
    [[nodiscard]] bool isChanged(const auto& setting) const { return before.*setting.value != after.*setting.value; }
};

}  // namespace

Result SettingsRecords::write(const PhoneSettings& before, const PhoneSettings& after)
{
    calls::OwnedSettings present;
    if (!present.read(imei_)) {
        throw DatabaseError("DB_LIB_GetPhoneSetting failed: the phone's settings cannot be read");
    }
    PhoneSettingRecord record = present.unchanged();
    std::array<DbText, kSettings.size()> texts;
    for (size_t i = 0; i < kSettings.size(); ++i) {
        if (kSettings[i].isWritable) {
            std::visit(PutChange{before, after, record, texts[i]}, kSettings[i].members);
        }
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
