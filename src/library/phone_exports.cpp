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
void AddSyncContents(Routine self, int32_t phoneId)
{
    constexpr int32_t kNotSelected = 0;
    LocalMainFolders folders;
    if (library::GetAllMainFolders(self.db, folders.list) != ResultCode::kSuccess) {
        return;
    }
    for (int32_t i = 0; i < folders.list.Count; ++i) {
        (void)self.run(2, NarrowSql("INSERT INTO tSyncContents ([phoneID], [lfID], [Selected]) VALUES (%d, %d, %d);",
                                    phoneId, folders.list.Items[i].ID, kNotSelected));
    }
}

int32_t DetectPhone(Routine self, const DbChar* imei, const DbChar* name)
{
    if (const int32_t known = GetPhoneIdByImei(self.db, imei); known != kNoPhone) {
        return known;
    }
    // Of two identities joined by a colon the first becomes the second IMEI.
    const Escaped firstIdentity = {imei, static_cast<DbChar>(':')};
    const ResultCode inserted =
        self.run(1, WideSql("INSERT INTO tPhone ([IMEI], [IMEI2], [Name]) \t\t\t\tVALUES ('%s', '%s', '%s');",
                            Escaped{imei}, firstIdentity, Escaped{name}));
    if (inserted != ResultCode::kSuccess) {
        return kNoPhone;
    }
    const auto phoneId = static_cast<int32_t>(self.db.lastInsertRowId());
    AddSyncContents(self, phoneId);
    return phoneId;
}

}  // namespace

extern "C" int32_t DB_LIB_PhoneDetected(const DbChar* imei, const DbChar* name)
{
    static constexpr ExitFormat kExit = "Exit %s() with PhoneID = %d.\n";
    static constexpr Export kSelf = {__func__, kNoPhone, &kExit};
    return RunExport(
        kSelf, [&] { DbTrace("Enter %s(IMEI: %s, Name: %s).\n", Name{kSelf.name}, Plain{imei}, Plain{name}); },
        [&](Routine self) { return DetectPhone(self, imei, name); });
}

extern "C" int32_t DB_LIB_SetPhoneSetting(const PhoneSettingRecord* record)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { (void)Required(record); },
        [&](Routine self) { return library::SetPhoneSetting(self, *record); });
}

extern "C" int32_t DB_LIB_GetPhoneSetting(const DbChar* imei, PhoneSettingRecord* record)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { ResetPhoneSetting(Required(record)); },
        [&](Routine self) { return library::GetPhoneSetting(self, imei, *record); });
}

extern "C" int32_t DB_LIB_GetAllPhones(PhoneList* list)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { EmptyList(Required(list)); },
        [&](Routine self) { return library::GetAllPhones(self, *list); });
}
