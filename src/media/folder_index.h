// Which rows are those of which folder, remembered while a program lists one folder after the other. The tables have no
// index on the folder, so each such listing goes through all files of the phone, twice.
//
//     if (index.follows(db, tables, imei)) { ... index.find(db, tables, imei, folder) ... }
//     else { ... index.noteListing(db, tables, imei); }  // after the listing by statement
//
// It answers only what the statements would: for tables as this library makes them, and as long as nobody has written.
// It is read at the second listing in a row, which takes no longer than that listing by statement.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/connection.h"
#include "media/media_tables.h"

namespace kesta::media {

class FolderIndex {
public:
    using Rows = std::vector<int64_t>;  // in the order in which the statement gives them

    static constexpr size_t kMostRows = 4'000'000;  // 8 bytes each

    /// Whether a folder of this phone was listed last, and nobody has written since as far as the connection knows.
    [[nodiscard]] bool follows(Connection& db, const MediaTables& tables, const DbChar* imei) const noexcept;

    /// The rows of a folder; null when only the statements know. Only while a statement holds the file's lock: so it is
    /// seen whether another program has written, and none can.
    const Rows* find(Connection& db, const MediaTables& tables, const DbChar* imei, const DbChar* folder) noexcept;

    /// A folder of this phone has been listed by statement.
    void noteListing(Connection& db, const MediaTables& tables, const DbChar* imei) noexcept;
    void forget() noexcept;

private:
    [[nodiscard]] bool isCurrent(const Connection& db) const
    {
        return version_.has_value() && version_ == db.dataVersion();
    }
    bool read(Connection& db, const MediaTables& tables, const DbChar* imei);

    std::string listing_;              // whose folders were listed last, and are in the index if there is one
    std::optional<uint64_t> version_;  // of the file then
    bool built_ = false;
    std::unordered_map<std::string, Rows> folders_;
};

}  // namespace kesta::media
