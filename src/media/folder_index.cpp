#include "media/folder_index.h"

#include <cstring>
#include <new>

#include "core/schema.h"
#include "core/sql_text.h"
#include "core/statement_cache.h"
#include "platform/code_page.h"

namespace kesta::media {
namespace {

constexpr size_t kLongestText = 16'384;

/// The text as it is compared with what is stored; none for one that is too long, or ends its quotes.
std::optional<std::string> Stored(Connection& db, const SqlArgument& text)
{
    char* buffer = db.textBuffer();
    const size_t bytes = NarrowTextOnce(text, buffer, kLongestText);
    if (bytes == platform::kDoesNotFit) {
        return std::nullopt;
    }
    if (text.kind != SqlArgument::Kind::kEscaped && std::memchr(buffer, '\'', bytes) != nullptr) {
        return std::nullopt;
    }
    return std::string(buffer, bytes);
}

/// View and phone, by which listings are told apart.
std::optional<std::string> ListingOf(Connection& db, const MediaTables& tables, const DbChar* imei)
{
    std::optional<std::string> phone = Stored(db, Plain{imei});
    if (phone.has_value()) {
        phone->insert(0, tables.fileView.text);
    }
    return phone;
}

/// Whether what the view's statements read is as this library makes it: then they go through the rows by the same key.
bool HasOwnSchema(Connection& db, const MediaTables& tables)
{
    constexpr int kParts = 4;  // two tables, a view, and the index on the phone's identity
    Statement parts = db.prepare(
        NarrowSql("SELECT [sql] FROM sqlite_master WHERE ([tbl_name] IN ('tPhone', '%s', '%s') AND [sql] NOTNULL) OR "
                  "[name] GLOB 'sqlite_stat*';",
                  tables.files, tables.fileView));
    int own = 0;
    while (parts.prepared() && parts.step()) {
        if (!IsOwnSchema(parts.utf8(0).value_or(std::string_view()))) {
            return false;
        }
        ++own;
    }
    return parts.last() == SqliteCode::kDone && own == kParts;
}

}  // namespace

bool FolderIndex::follows(Connection& db, const MediaTables& tables, const DbChar* imei) const noexcept
{
    if (!statementsStayCompiled || !isCurrent(db)) {
        return false;
    }
    try {
        return ListingOf(db, tables, imei) == listing_;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

const FolderIndex::Rows* FolderIndex::find(Connection& db, const MediaTables& tables, const DbChar* imei,
                                           const DbChar* folder) noexcept
{
    static const Rows kNone;
    try {
        if (!isCurrent(db) || (!built_ && !read(db, tables, imei))) {
            forget();
            return nullptr;
        }
        const std::optional<std::string> name = Stored(db, Escaped{folder});
        if (!name.has_value()) {
            return nullptr;
        }
        const auto found = folders_.find(*name);
        return found != folders_.end() ? &found->second : &kNone;
    } catch (const std::bad_alloc&) {  // the statements need less
        forget();
        return nullptr;
    }
}

bool FolderIndex::read(Connection& db, const MediaTables& tables, const DbChar* imei)
{
    if (!HasOwnSchema(db, tables)) {
        return false;
    }
    Statement rows = db.prepare(
        WideSql("SELECT %s.ROWID, [BasePath] FROM tPhone, %s WHERE tPhone.ID = %s.PhoneID AND [IMEI] = '%s';",
                tables.files, tables.files, tables.files, Plain{imei}));
    size_t count = 0;
    while (rows.prepared() && rows.step()) {
        const std::optional<std::string_view> folder = rows.utf8(1);
        if (!folder.has_value() || ++count > kMostRows) {
            return false;
        }
        folders_[std::string(*folder)].push_back(rows.int64(0));
    }
    built_ = rows.last() == SqliteCode::kDone;
    return built_;
}

void FolderIndex::noteListing(Connection& db, const MediaTables& tables, const DbChar* imei) noexcept
{
    forget();
    try {
        if (std::optional<std::string> listing = ListingOf(db, tables, imei)) {
            listing_ = *std::move(listing);
            version_ = db.dataVersion();
        }
    } catch (const std::bad_alloc&) {
        forget();
    }
}

void FolderIndex::forget() noexcept
{
    version_.reset();
    built_ = false;
    folders_ = {};
    listing_ = {};
}

}  // namespace kesta::media
