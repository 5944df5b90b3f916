#include "database/pim.h"

#include <limits>

#include "database/calls.h"

namespace kesta {
namespace {

using calls::Text;

// An unknown folder makes the library take back what the list holds.
constexpr DbChar kNoFolder[] = {'n', 'o', ' ', 'f', 'o', 'l', 'd', 'e', 'r', 0};

// The texts of one item in the form that the library reads; its fields are not const because it also hands records out.
struct ItemArguments {
    ItemArguments(PimKind kind, const PimItem& item) : id(Text(item.id)), data(item.data)
    {
        if (data.size() > static_cast<size_t>(std::numeric_limits<int32_t>::max())) {
            throw DatabaseError(fmt::format("the entry {} is too large for the database", Printable(item.id)));
        }
        record = {id.data(), TypeOf(kind), static_cast<int32_t>(data.size()), reinterpret_cast<uint8_t*>(data.data())};
    }
    ItemArguments(const ItemArguments&) = delete;
    ItemArguments& operator=(const ItemArguments&) = delete;

    DbText id;
    std::string data;
    PimItemRecord record{};
};

}  // namespace

std::vector<PimFolder> PimRecords::folders(PimKind kind, const std::string& parentId, bool recursive)
{
    const DbText parent = Text(parentId);
    calls::OwnedList<PimFolderList> list(
        [](PimFolderList* record) { (void)DB_PIM_GetFolders(record, kNoFolder, 0, 0); });
    calls::ReadList(
        "DB_PIM_GetFolders",
        [&] { return DB_PIM_GetFolders(list.get(), parent.c_str(), TypeOf(kind), recursive ? 1 : 0); },
        list.get()->Count);
    std::vector<PimFolder> folders;
    folders.reserve(list.size());
    for (const PimFolderRecord& record : list) {
        // The library skips a row that it cannot read.
        if (record.PimID == nullptr) {
            throw DatabaseError("DB_PIM_GetFolders failed: a folder cannot be read");
        }
        folders.push_back({FromDbText(record.PimID), FromDbText(record.ParentPimID), FromDbText(record.Path)});
    }
    return folders;
}

std::vector<PimItem> PimRecords::items(PimKind kind, const std::string& folderId)
{
    const DbText folder = Text(folderId);
    calls::OwnedList<PimItemList> list([](PimItemList* record) { (void)DB_PIM_GetItems(record, kNoFolder, 0, 0); });
    calls::ReadList(
        "DB_PIM_GetItems", [&] { return DB_PIM_GetItems(list.get(), folder.c_str(), TypeOf(kind), 0); },
        list.get()->Count);
    std::vector<PimItem> items;
    items.reserve(list.size());
    for (const PimItemRecord& record : list) {
        if (record.PimID == nullptr) {
            throw DatabaseError("DB_PIM_GetItems failed: an item cannot be read");
        }
        const auto length = static_cast<size_t>(record.DataLength);
        items.push_back(
            {FromDbText(record.PimID),
             length == 0 ? std::string() : std::string(reinterpret_cast<const char*>(record.Data), length)});
    }
    return items;
}

Result PimRecords::addFolder(PimKind kind, const PimFolder& folder)
{
    DbText id = Text(folder.id), path = Text(folder.path);
    const PimFolderRecord record{id.data(), nullptr, path.data(), TypeOf(kind)};
    return DB_PIM_AddFolder(&record, Text(folder.parentId).c_str());
}

Result PimRecords::removeFolder(const std::string& id)
{
    return DB_PIM_DeleteFolder(Text(id).c_str());
}

Result PimRecords::addItem(PimKind kind, const std::string& folderPath, const PimItem& item)
{
    const ItemArguments arguments(kind, item);
    return DB_PIM_AddItem(&arguments.record, Text(folderPath).c_str());
}

Result PimRecords::updateItem(PimKind kind, const PimItem& item)
{
    const ItemArguments arguments(kind, item);
    return DB_PIM_UpdateItem(&arguments.record);
}

Result PimRecords::removeItem(const std::string& id)
{
    return DB_PIM_DeleteItem(Text(id).c_str());
}

std::vector<PimLogRow> PimRecords::log(const std::string& imei, PimKind kind)
{
    // No argument makes the library empty this record without filling it again, so one record serves all calls. A log
    // without items leaves the record as it is, which the count tells.
    static PimLog log{0, 0, nullptr};
    log.Type = TypeOf(kind);
    const DbText phone = Text(imei);
    const auto read = [&] {
        log.Count = 0;
        return DB_PIMLOG_ReadLog(phone.c_str(), &log);
    };
    calls::ReadList("DB_PIMLOG_ReadLog", read, log.Count);
    std::vector<PimLogRow> rows;
    rows.reserve(static_cast<size_t>(log.Count));
    for (int32_t i = 0; i < log.Count; ++i) {
        const PimLogItem& item = log.Items[i];
        rows.push_back(
            {FromDbText(item.Guid), FromDbText(item.Luid), FromDateValue(item.PCTime), FromDateValue(item.PhoneTime)});
    }
    return rows;
}

std::string PimRecords::logProfile(const std::string& imei, PimKind kind)
{
    // The library writes as much as there is, and no statement with which it was stored can have held more than this.
    constexpr size_t kLongestStatement = 40960;
    std::vector<DbChar> buffer(kLongestStatement + 1, 0);
    Require("DB_PIMLOG_GetPimProfile", DB_PIMLOG_GetPimProfile(Text(imei).c_str(), buffer.data(), TypeOf(kind)));
    return FromDbText(buffer.data());
}

Result PimRecords::clearLog(const std::string& imei, PimKind kind)
{
    return DB_PIMLOG_ClearAll(Text(imei).c_str(), TypeOf(kind));
}

Result PimRecords::setLogProfile(const std::string& imei, PimKind kind, const std::string& profile)
{
    return DB_PIMLOG_SetPimProfile(Text(imei).c_str(), Text(profile).c_str(), TypeOf(kind));
}

Result PimRecords::appendToLog(const std::string& imei, PimKind kind, const std::vector<PimLogRow>& rows)
{
    std::vector<DbText> texts;
    texts.reserve(rows.size() * 2);
    std::vector<PimLogItem> items;
    items.reserve(rows.size());
    for (const PimLogRow& row : rows) {
        DbText& guid = texts.emplace_back(Text(row.guid));
        DbText& luid = texts.emplace_back(Text(row.luid));
        items.push_back({guid.data(), luid.data(), ToDateValue(row.pcTime), ToDateValue(row.phoneTime)});
    }
    const PimLog log{TypeOf(kind), static_cast<int32_t>(items.size()), items.data()};
    return DB_PIMLOG_SaveLog(Text(imei).c_str(), &log);
}

}  // namespace kesta
