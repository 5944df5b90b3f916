#include "database/database.h"

#include <fmt/format.h>

#include <array>

#include "database/calls.h"
#include "database/settings_record.h"

namespace kesta {
namespace {

using calls::kNoPhone;
using calls::OwnedList;
using calls::OwnedSettings;
using calls::ReadList;
using calls::Text;

struct Family {
    const char* name;
    decltype(&DB_MUSIC_AddFolder) addFolder;
    decltype(&DB_MUSIC_GetFolders) getFolders;
    decltype(&DB_MUSIC_GetSyncedFiles) getSyncedFiles;
    decltype(&DB_MUSIC_SetAddedFile) setAddedFile;
    decltype(&DB_MUSIC_SetUpdatedFile) setUpdatedFile;
    decltype(&DB_MUSIC_SetDeletedFile) setDeletedFile;
};

#define KESTA_FAMILY(NAME)                                                                         \
    Family                                                                                         \
    {                                                                                              \
        "DB_" #NAME, &DB_##NAME##_AddFolder, &DB_##NAME##_GetFolders, &DB_##NAME##_GetSyncedFiles, \
            &DB_##NAME##_SetAddedFile, &DB_##NAME##_SetUpdatedFile, &DB_##NAME##_SetDeletedFile    \
    }

const Family& FamilyOf(Category category)
{
    static const std::array kFamilies{KESTA_FAMILY(MUSIC), KESTA_FAMILY(IMAGE), KESTA_FAMILY(VIDEO),
                                      KESTA_FAMILY(DOCUMENT)};
    return kFamilies[static_cast<size_t>(category)];
}
#undef KESTA_FAMILY

struct GetValue {
    const PhoneSettingRecord& record;
    PhoneSettings& phone;
    void operator()(const TextSetting& setting) const { phone.*setting.value = FromDbText(record.*setting.field); }
    void operator()(const TruthSetting& setting) const { phone.*setting.value = record.*setting.field != 0; }
    void operator()(const NumberSetting& setting) const { phone.*setting.value = record.*setting.field; }
    void operator()(const DateSetting& setting) const { phone.*setting.value = FromDateValue(record.*setting.field); }
};

PhoneSettings ToSettings(const PhoneSettingRecord& record)
{
    PhoneSettings phone;
    phone.imei = FromDbText(record.IMEI);
    for (const Setting& setting : kSettings) {
        std::visit(GetValue{record, phone}, setting.members);
    }
    return phone;
}

}  // namespace

void Require(std::string_view call, Result result)
{
    if (!result.ok()) {
        throw DatabaseError(fmt::format("{} failed: {}", call, result.text()));
    }
}

Database::Database()
{
    switch (const int32_t code = DB_Open()) {
        case 0:
            return;
        case 19:
            throw DatabaseError("the database is read-only");
        case 8398:
            throw DatabaseError("the database is of another version, or another program holds it");
        default:
            throw DatabaseError("the database cannot be opened: " + Result(code).text());
    }
}

std::vector<PhoneSettings> Database::phones()
{
    // No argument makes the library empty this list without filling it again, so one record serves all calls.
    static PhoneList list{0, nullptr};
    ReadList(
        "DB_LIB_GetAllPhones", [&] { return DB_LIB_GetAllPhones(&list); }, list.Count);
    std::vector<PhoneSettings> phones;
    for (int32_t i = 0; i < list.Count; ++i) {
        auto phone = this->phone(FromDbText(list.Items[i].IMEI));  // The list leaves NeedMount out.
        phones.push_back(phone ? *std::move(phone) : ToSettings(list.Items[i]));
    }
    return phones;
}

std::optional<PhoneSettings> Database::phone(const std::string& imei)
{
    std::optional<PhoneSettings> phone;
    calls::AskUntilBelieved("DB_LIB_GetPhoneSetting", [&] {
        OwnedSettings settings;
        if (settings.read(imei)) {
            phone = ToSettings(settings.record());
        }
        return phone.has_value();
    });
    return phone;
}

void Database::announce(const std::string& imei, const std::string& name)
{
    if (DB_LIB_PhoneDetected(Text(imei).c_str(), Text(name).c_str()) < 1) {
        throw DatabaseError("DB_LIB_PhoneDetected failed: the phone could not be registered");
    }
}

void Database::rename(const std::string& imei, const std::string& name)
{
    OwnedSettings settings;
    if (!settings.read(imei)) {
        throw DatabaseError("DB_LIB_GetPhoneSetting failed: the phone's settings cannot be read");
    }
    DbText newName = Text(name);
    PhoneSettingRecord record = settings.unchanged();
    record.Name = newName.data();
    Require("DB_LIB_SetPhoneSetting", DB_LIB_SetPhoneSetting(&record));
}

std::optional<LocalTime> Database::lastSync(const std::string& imei)
{
    DateValue time{0.0, kDateNull};
    Require("DB_LIB_GetLastSyncTime", DB_LIB_GetLastSyncTime(Text(imei).c_str(), &time));
    return FromDateValue(time);
}

Result Database::setLastSync(const std::string& imei, LocalTime time, int32_t errorCode)
{
    const DateValue date = ToDateValue(time);
    constexpr int32_t kNeedMount = 1;  // The phone is reached as a mounted folder.
    return DB_LIB_SetLastSyncTime(Text(imei).c_str(), &date, errorCode, kNeedMount);
}

std::vector<RecordedFolder> Database::folders(const std::string& imei, Category category)
{
    const Family& family = FamilyOf(category);
    OwnedList<FolderList> list([&](FolderList* record) { (void)family.getFolders(kNoPhone, record); });
    const DbText phone = Text(imei);
    ReadList(
        fmt::format("{}_GetFolders", family.name), [&] { return family.getFolders(phone.c_str(), list.get()); },
        list.get()->Count);
    return calls::ToFolders(list);
}

std::vector<RecordedFile> Database::files(const std::string& imei, Category category)
{
    const Family& family = FamilyOf(category);
    OwnedList<SyncedFileList> list(
        [&](SyncedFileList* record) { (void)family.getSyncedFiles(kNoPhone, nullptr, record); });
    const DbText phone = Text(imei);
    ReadList(
        fmt::format("{}_GetSyncedFiles", family.name),
        [&] { return family.getSyncedFiles(phone.c_str(), nullptr, list.get()); }, list.get()->Count);
    return calls::ToFiles(list);
}

Result Database::addFolder(const std::string& imei, Category category, const RecordedFolder& folder)
{
    DbText path = Text(folder.path);
    FolderRecord record{};
    record.Path = path.data();
    record.Count = folder.count;
    record.Size = folder.size;
    record.TotalSize = folder.totalSize;
    record.Sized = folder.sized ? 1 : 0;
    return FamilyOf(category).addFolder(Text(imei).c_str(), &record);
}

Result Database::addFile(const std::string& imei, Category category, const RecordedFile& file)
{
    const calls::FileArguments arguments(file);
    return FamilyOf(category).setAddedFile(Text(imei).c_str(), &arguments.record);
}

Result Database::updateFile(const std::string& imei, Category category, const RecordedFile& file)
{
    const calls::FileArguments arguments(file);
    return FamilyOf(category).setUpdatedFile(Text(imei).c_str(), &arguments.record);
}

Result Database::removeFile(const std::string& imei, Category category, const std::string& path)
{
    const calls::FileArguments arguments(RecordedFile{path, {}, {}, {}});
    return FamilyOf(category).setDeletedFile(Text(imei).c_str(), &arguments.record);
}

}  // namespace kesta
