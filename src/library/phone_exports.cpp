// DB_LIB_*: the registry of phones.
#include "core/call_frame.h"
#include "core/list.h"
#include "kesta_db/kesta_db.h"
#include "library/main_folders.h"
#include "library/phone_lookup.h"
#include "library/phone_settings.h"

using namespace kesta;

namespace {

/// A list of the library's own, which goes with its scope.
struct LocalMainFolders {
    MainFolderList list = {0, nullptr};
    ~LocalMainFolders() { EmptyList(list); }
};

/// Gives a new phone a row for every main folder, none of them selected.
void AddSyncContents(Connection& db, Trail trail, int32_t phoneId)
{
    constexpr int32_t kNotSelected = 0;
    LocalMainFolders folders;
    if (DB_INTERNAL_LIB_GetAllMainFolders(db, folders.list) != ResultCode::kSuccess) return;
    for (int32_t i = 0; i < folders.list.Count; ++i) {
        const SqliteCode inserted =
            db.exec(NarrowSql("INSERT INTO tSyncContents ([phoneID], [lfID], [Selected]) VALUES (%d, %d, %d);", phoneId,
                              folders.list.Items[i].ID, kNotSelected));
        if (inserted != SqliteCode::kOk) trail.error(2);
    }
}

int32_t DetectPhone(Connection& db, Trail trail, const DbChar* imei, const DbChar* name)
{
    if (const int32_t known = GetPhoneIdByImei(db, imei); known != kNoPhone) return known;
    // Of two identities joined by a colon the first becomes the second IMEI.
    const Escaped firstIdentity = {imei, static_cast<DbChar>(':')};
    const SqliteCode inserted =
        db.exec(WideSql("INSERT INTO tPhone ([IMEI], [IMEI2], [Name]) \t\t\t\tVALUES ('%s', '%s', '%s');",
                        Escaped{imei}, firstIdentity, Escaped{name}));
    if (inserted != SqliteCode::kOk) {
        trail.error(1);
        return kNoPhone;
    }
    const auto phoneId = static_cast<int32_t>(db.lastInsertRowId());
    AddSyncContents(db, trail, phoneId);
    return phoneId;
}

}  // namespace

extern "C" int32_t DB_LIB_PhoneDetected(const DbChar* imei, const DbChar* name)
{
    static constexpr ExitFormat kExit = "Exit %s() with PhoneID = %d.\n";
    static constexpr Export kSelf = {"DB_LIB_PhoneDetected", kNoPhone, &kExit};
    return RunExport(
        kSelf, [&] { DbTrace("Enter %s(IMEI: %s, Name: %s).\n", Name{kSelf.name}, Plain{imei}, Plain{name}); },
        [&](Connection& db) { return DetectPhone(db, Trail(kSelf.name), imei, name); });
}

extern "C" int32_t DB_LIB_SetPhoneSetting(const PhoneSettingRecord* record)
{
    static constexpr Export kSelf = {"DB_LIB_SetPhoneSetting"};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { (void)Required(record); },
        [&](Connection& db) { return SetPhoneSetting(db, Trail(kSelf.name), *record); });
}

extern "C" int32_t DB_LIB_GetPhoneSetting(const DbChar* imei, PhoneSettingRecord* record)
{
    static constexpr Export kSelf = {"DB_LIB_GetPhoneSetting"};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { ResetPhoneSetting(Required(record)); },
        [&](Connection& db) { return GetPhoneSetting(db, Trail(kSelf.name), imei, *record); });
}

extern "C" int32_t DB_LIB_GetAllPhones(PhoneList* list)
{
    static constexpr Export kSelf = {"DB_LIB_GetAllPhones"};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { EmptyList(Required(list)); },
        [&](Connection& db) { return GetAllPhones(db, Trail(kSelf.name), *list); });
}
