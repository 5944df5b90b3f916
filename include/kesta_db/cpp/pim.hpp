/**
 * @file
 * @brief C++: the store of contacts and calendar entries, and each phone's log of what has been put on it.
 */
#pragma once

#include <kesta_db/cpp/base.hpp>

#include <limits>

namespace kesta_db {

/// A folder of the store. Its id is ASCII without apostrophes.
struct PimFolder {
    std::string id{};
    std::string parentId{};  ///< empty: a root
    std::string path{};      ///< what it is called; items are added by it
    int32_t type = 0;        ///< the kind of data, the caller's own number
};

/// An item of the store. Its id is ASCII without apostrophes.
struct PimItem {
    std::string id{};
    int32_t type = 0;
    std::string data{};  ///< any bytes
};

/// One synced entry: the PC's and the phone's name for it, ASCII without apostrophes, and when either last changed it.
struct PimLogRow {
    std::string guid{};
    std::string luid{};
    std::optional<LocalTime> pcTime{};
    std::optional<LocalTime> phoneTime{};

    friend bool operator==(const PimLogRow&, const PimLogRow&) = default;
};

/// The store, which all phones share.
class PimStore {
public:
    /// The folders of a type right below the parent, or at the root when it is empty; all of them when recursive. At
    /// most 1,023.
    [[nodiscard]] std::vector<PimFolder> folders(int32_t type, std::string_view parentId = {}, bool recursive = false)
    {
        const detail::Utf16 parent = detail::KnownIdentifier(parentId);
        auto release = [](PimFolderList* list) { (void)DB_PIM_GetFolders(list, detail::kUnknown, 0, 0); };
        detail::OwnedList<PimFolderList, decltype(release)> list(release);
        detail::ReadCountedList("DB_PIM_GetFolders", *list.get(),
                                [&] { return DB_PIM_GetFolders(list.get(), parent.c_str(), type, recursive ? 1 : 0); });
        return list.records([](const PimFolderRecord& record) {
            if (record.PimID == nullptr) throw Error("DB_PIM_GetFolders", Code::kUnreadable);
            return PimFolder{detail::Utf8(record.PimID), detail::Utf8(record.ParentPimID), detail::Utf8(record.Path),
                             record.Type};
        });
    }
    void addFolder(const PimFolder& folder)
    {
        detail::Utf16 id = detail::Identifier(folder.id);
        detail::Utf16 path = detail::Text(folder.path);
        const PimFolderRecord record{id.data(), nullptr, path.data(), folder.type};
        detail::Require("DB_PIM_AddFolder", DB_PIM_AddFolder(&record, detail::Identifier(folder.parentId).c_str()));
    }
    /// Path and type; the folder stays where it is.
    void updateFolder(const PimFolder& folder)
    {
        detail::Utf16 id = detail::Identifier(folder.id);
        detail::Utf16 path = detail::Text(folder.path);
        const PimFolderRecord record{id.data(), nullptr, path.data(), folder.type};
        detail::Require("DB_PIM_UpdateFolder", DB_PIM_UpdateFolder(&record));
    }
    /// What lies below it stays, and is no longer reached from the root.
    void removeFolder(std::string_view id)
    {
        detail::Require("DB_PIM_DeleteFolder", DB_PIM_DeleteFolder(detail::Identifier(id).c_str()));
    }

    /// The items of a folder, which must be known; of the folders of that type below it too when recursive.
    [[nodiscard]] std::vector<PimItem> items(std::string_view folderId, int32_t type = 0, bool recursive = false)
    {
        const detail::Utf16 folder = detail::KnownIdentifier(folderId);
        auto release = [](PimItemList* list) { (void)DB_PIM_GetItems(list, detail::kUnknown, 0, 0); };
        detail::OwnedList<PimItemList, decltype(release)> list(release);
        detail::ReadCountedList("DB_PIM_GetItems", *list.get(),
                                [&] { return DB_PIM_GetItems(list.get(), folder.c_str(), type, recursive ? 1 : 0); });
        return list.records([](const PimItemRecord& record) {
            if (record.PimID == nullptr) throw Error("DB_PIM_GetItems", Code::kUnreadable);
            PimItem item{detail::Utf8(record.PimID), record.Type, {}};
            if (record.DataLength > 0)
                item.data.assign(reinterpret_cast<const char*>(record.Data), static_cast<size_t>(record.DataLength));
            return item;
        });
    }
    /// Into the folder of that path (not id); the root level when it is empty.
    void addItem(std::string_view folderPath, const PimItem& item)
    {
        const ItemArgument argument(item);
        detail::Require("DB_PIM_AddItem", DB_PIM_AddItem(argument.get(), detail::Text(folderPath).c_str()));
    }
    /// The data; type and folder stay.
    void updateItem(const PimItem& item)
    {
        const ItemArgument argument(item);
        detail::Require("DB_PIM_UpdateItem", DB_PIM_UpdateItem(argument.get()));
    }
    void removeItem(std::string_view id)
    {
        detail::Require("DB_PIM_DeleteItem", DB_PIM_DeleteItem(detail::Identifier(id).c_str()));
    }
    /// All items of a type, and its folders too unless they are to be kept.
    void removeAll(int32_t type, bool keepFolders = false)
    {
        detail::Require("DB_PIM_ClearAll", DB_PIM_ClearAll(type, keepFolders ? 1 : 0));
    }

private:
    class ItemArgument {
    public:
        explicit ItemArgument(const PimItem& item) : id_(detail::Identifier(item.id)), data_(item.data)
        {
            if (data_.size() > static_cast<size_t>(std::numeric_limits<int32_t>::max()))
                throw Error("A call with an item", Code::kTooLong);
            record_ = {id_.data(), item.type, static_cast<int32_t>(data_.size()),
                       reinterpret_cast<uint8_t*>(data_.data())};
        }
        ItemArgument(const ItemArgument&) = delete;
        ItemArgument& operator=(const ItemArgument&) = delete;
        [[nodiscard]] const PimItemRecord* get() const { return &record_; }

    private:
        detail::Utf16 id_;
        std::string data_;
        PimItemRecord record_{};
    };
};

/// The log of one phone, which must be known, and one kind of data.
class PimSyncLog {
public:
    PimSyncLog(std::string_view imei, int32_t type) : imei_(detail::KnownIdentifier(imei)), type_(type) {}

    /// An empty answer is a true one.
    [[nodiscard]] std::vector<PimLogRow> rows()
    {
        static detail::SharedList<PimLog> shared;
        const std::scoped_lock lock(shared.mutex);
        PimLog& log = shared.list;
        log.Type = type_;
        detail::ReadCountedList("DB_PIMLOG_ReadLog", log, [&] {
            log.Count = 0;  // a log without items leaves the record as it is
            return DB_PIMLOG_ReadLog(imei_.c_str(), &log);
        });
        std::vector<PimLogRow> rows;
        for (int32_t i = 0; i < log.Count; ++i) {
            const PimLogItem& item = log.Items[i];
            rows.push_back({detail::Utf8(item.Guid), detail::Utf8(item.Luid), detail::FromDateValue(item.PCTime),
                            detail::FromDateValue(item.PhoneTime)});
        }
        return rows;
    }
    /// The library does not tell whether each row was stored: rows() does.
    void append(const std::vector<PimLogRow>& rows)
    {
        std::vector<detail::Utf16> texts;
        texts.reserve(rows.size() * 2);
        std::vector<PimLogItem> items;
        for (const PimLogRow& row : rows) {
            detail::Utf16& guid = texts.emplace_back(detail::Identifier(row.guid));
            detail::Utf16& luid = texts.emplace_back(detail::Identifier(row.luid));
            items.push_back(
                {guid.data(), luid.data(), detail::ToDateValue(row.pcTime), detail::ToDateValue(row.phoneTime)});
        }
        const PimLog log{type_, static_cast<int32_t>(items.size()), items.data()};
        detail::Require("DB_PIMLOG_SaveLog", DB_PIMLOG_SaveLog(imei_.c_str(), &log));
    }
    /// Rows and profile.
    void clear() { detail::Require("DB_PIMLOG_ClearAll", DB_PIMLOG_ClearAll(imei_.c_str(), type_)); }

    /// Empty when there is none.
    [[nodiscard]] std::string profile()
    {
        // The library writes as much as there is, and no statement with which it was stored can have held more.
        constexpr size_t kLongestStatement = 40960;
        std::vector<DbChar> buffer(kLongestStatement + 1, 0);
        detail::Require("DB_PIMLOG_GetPimProfile", DB_PIMLOG_GetPimProfile(imei_.c_str(), buffer.data(), type_));
        return detail::Utf8(buffer.data());
    }
    void setProfile(std::string_view profile)
    {
        detail::Require("DB_PIMLOG_SetPimProfile",
                        DB_PIMLOG_SetPimProfile(imei_.c_str(), detail::Text(profile).c_str(), type_));
    }

private:
    detail::Utf16 imei_;
    int32_t type_;
};

}  // namespace kesta_db
