#include "core/statement_cache.h"

#include <sqlite3.h>

#include <cstring>
#include <optional>
#include <utility>

#include "core/ascii.h"
#include "core/sql_text.h"
#include "core/text.h"
#include "platform/code_page.h"

namespace kesta {
namespace {

using Kind = SqlArgument::Kind;

// A statement whose texts need at most this much is short enough as text too, even if every character were an
// apostrophe that is doubled.
constexpr size_t kBoundBytes = 16'384;
constexpr size_t kTemplateBytes = 2'048;
constexpr size_t kMostArguments = 24;
constexpr size_t kNumberBytes = 20;
static_assert(2 * kBoundBytes + kTemplateBytes + kMostArguments * kNumberBytes <= kStatementBytes);

/// The names in a statement, each with its terminator.
class Names {
public:
    /// False when there are too many.
    bool add(std::string_view name) noexcept
    {
        if (name.size() + 1 > bytes_.size() - length_) {
            return false;
        }
        std::memcpy(bytes_.data() + length_, name.data(), name.size());
        length_ += name.size();
        bytes_[length_++] = '\0';
        return true;
    }
    [[nodiscard]] std::string_view view() const { return {bytes_.data(), length_}; }

private:
    std::array<char, CachedStatement::kNameBytes> bytes_;
    size_t length_ = 0;
};

/// What is bound: the texts as SQLite is to store and compare them.
struct Values {
    std::array<std::string_view, kMostArguments> texts;  // of texts and dates
    Names names;
};

/// Whether an apostrophe in a text would mean something other than itself in the statement.
bool EndsQuote(const SqlArgument& text, std::string_view narrow)
{
    // In an ANSI code page escaping has not seen the apostrophe that another character may become.
    return text.kind != Kind::kEscaped && std::memchr(narrow.data(), '\'', narrow.size()) != nullptr;
}

/// Narrows the texts into the buffer; false when they do not all mean the same bound as written.
bool Collect(const Sql& sql, char* buffer, Values& values) noexcept
{
    const std::span<const SqlArgument> arguments = sql.arguments();
    if (arguments.size() > kMostArguments) {
        return false;
    }
    size_t used = 0;
    for (size_t i = 0; i < arguments.size(); ++i) {
        const SqlArgument& argument = arguments[i];
        if (argument.kind == Kind::kName) {
            if (!values.names.add(argument.narrow)) {
                return false;
            }
        } else if (argument.kind == Kind::kDate) {
            values.texts[i] = argument.narrow;
        } else if (argument.isText()) {
            const size_t bytes = NarrowTextOnce(argument, buffer + used, kBoundBytes - used);
            if (bytes == platform::kDoesNotFit) {
                return false;
            }
            values.texts[i] = {buffer + used, bytes};
            if (EndsQuote(argument, values.texts[i])) {
                return false;
            }
            used += bytes;
        }
    }
    return true;
}

/// The text that is compiled: a parameter for every argument but the names.
class Template {
public:
    /// False when an argument does not stand as a value of its own.
    bool write(const Sql& sql) noexcept
    {
        const std::span<const std::string_view> pieces = sql.pieces();
        const std::span<const SqlArgument> arguments = sql.arguments();
        std::string_view piece = pieces[0];
        for (size_t i = 0; i < arguments.size(); ++i) {
            std::string_view next = pieces[i + 1];
            if (arguments[i].kind == Kind::kName) {
                if (!literal(piece) || !literal(arguments[i].narrow)) {
                    return false;
                }
            } else {
                const bool quoted = piece.ends_with('\'') && next.starts_with('\'');
                if (quoted == (arguments[i].kind == Kind::kNumber)) {
                    return false;
                }
                if (quoted) {
                    piece.remove_suffix(1);
                    next.remove_prefix(1);
                }
                if (!literal(piece) || !parameter()) {
                    return false;
                }
            }
            piece = next;
        }
        return literal(piece);
    }

    [[nodiscard]] std::string_view text() const { return {text_.data(), length_}; }
    [[nodiscard]] int own() const { return own_; }

private:
    bool literal(std::string_view piece) noexcept
    {
        if (piece.size() > text_.size() - length_) {
            return false;
        }
        for (const char c : piece) {
            if (c != '?') {
                continue;
            }
            if (own_ != 0) {
                return false;
            }
            own_ = ++parameters_;
        }
        std::memcpy(text_.data() + length_, piece.data(), piece.size());
        length_ += piece.size();
        return true;
    }
    bool parameter() noexcept
    {
        if (length_ == text_.size()) {
            return false;
        }
        text_[length_++] = '?';
        ++parameters_;
        return true;
    }

    std::array<char, kTemplateBytes> text_;
    size_t length_ = 0;
    int parameters_ = 0;
    int own_ = 0;
};

int Bind(const CachedStatement& entry, const Sql& sql, const Values& values, StatementCache::Lifetime lifetime) noexcept
{
    const auto release = lifetime == StatementCache::Lifetime::kUntilFinished ? SQLITE_TRANSIENT : SQLITE_STATIC;
    const std::span<const SqlArgument> arguments = sql.arguments();
    int parameter = 0;
    int code = SQLITE_OK;
    for (size_t i = 0; i < arguments.size() && code == SQLITE_OK; ++i) {
        if (arguments[i].kind == Kind::kName) {
            continue;
        }
        if (++parameter == entry.own) {
            ++parameter;
        }
        if (arguments[i].kind == Kind::kNumber) {
            code = sqlite3_bind_int64(entry.statement, parameter, arguments[i].number);
        } else {
            // A text of no length has to be somewhere all the same: SQLite takes none for NULL.
            const std::string_view text = values.texts[i];
            code = sqlite3_bind_text(entry.statement, parameter, text.data() != nullptr ? text.data() : "",
                                     static_cast<int>(text.size()), release);
        }
    }
    return code;
}

/// A number that changes with every transaction that this connection commits, or notices of another.
std::optional<unsigned> DataVersion(sqlite3* handle) noexcept
{
    unsigned version = 0;
    if (sqlite3_file_control(handle, "main", SQLITE_FCNTL_DATA_VERSION, &version) != SQLITE_OK) {
        return std::nullopt;
    }
    return version;
}

}  // namespace

StatementCache::Found StatementCache::find(sqlite3* handle, const Sql& sql, char* buffer, Lifetime lifetime) noexcept
{
    Values values;
    if (!statementsStayCompiled || !Collect(sql, buffer, values)) {
        return {Verdict::kAsText, nullptr, SQLITE_OK};
    }
    dropIfChanged(handle);
    if (!versionKnown_) {
        return {Verdict::kAsText, nullptr, SQLITE_OK};
    }
    const char* format = sql.pieces()[0].data();
    const std::string_view names = values.names.view();
    CachedStatement* entry = lookUp(format, names);
    if (entry == nullptr) {
        Template text;
        entry = freeEntry();
        if (entry == nullptr || !text.write(sql)) {
            return {Verdict::kAsText, nullptr, SQLITE_OK};
        }
        const std::string_view written = text.text();
        const char* rest = nullptr;
        const int code = sqlite3_prepare_v3(handle, written.data(), static_cast<int>(written.size()),
                                            SQLITE_PREPARE_PERSISTENT, &entry->statement, &rest);
        if (entry->statement == nullptr) {
            return {Verdict::kRefused, nullptr, code};
        }
        if (rest != written.data() + written.size()) {  // a second statement
            sqlite3_finalize(std::exchange(entry->statement, nullptr));
            return {Verdict::kAsText, nullptr, SQLITE_OK};
        }
        entry->format = format;
        entry->nameBytes = names.copy(entry->names.data(), names.size());
        entry->own = text.own();
    } else if (entry->inUse) {
        return {Verdict::kAsText, nullptr, SQLITE_OK};
    }
    entry->lastUse = ++clock_;
    entry->inUse = true;
    return {Verdict::kCached, entry, Bind(*entry, sql, values, lifetime)};
}

void StatementCache::giveBack(sqlite3* handle, CachedStatement& entry, bool done) noexcept
{
    sqlite3_reset(entry.statement);
    if (entry.own != 0) {
        sqlite3_clear_bindings(entry.statement);  // that one is the caller's memory
    }
    entry.inUse = false;
    if (entry.obsolete) {
        sqlite3_finalize(entry.statement);
        entry = {};
    } else if (done && sqlite3_stmt_readonly(entry.statement) == 0 && DataVersion(handle) == version_ + 1) {
        ++version_;  // its own commit, and nobody else's
    }
}

void StatementCache::drop() noexcept
{
    for (CachedStatement& entry : std::span(entries_).first(count_)) {
        if (entry.inUse) {
            entry.obsolete = true;
            entry.format = nullptr;
        } else {
            sqlite3_finalize(entry.statement);
            entry = {};
        }
    }
    versionKnown_ = false;
}

void StatementCache::abandon() noexcept
{
    entries_ = {};
    count_ = 0;
    versionKnown_ = false;
}

void StatementCache::dropIfChanged(sqlite3* handle) noexcept
{
    const std::optional<unsigned> version = DataVersion(handle);
    if (versionKnown_ && version == version_) {
        return;
    }
    drop();
    versionKnown_ = version.has_value();
    version_ = version.value_or(0);
}

CachedStatement* StatementCache::lookUp(const char* format, std::string_view names) noexcept
{
    for (CachedStatement& entry : std::span(entries_).first(count_)) {
        if (entry.format == format && std::string_view(entry.names.data(), entry.nameBytes) == names) {
            return &entry;
        }
    }
    return nullptr;
}

/// One that was never used or was dropped, else the one that has not been used for the longest time, emptied.
CachedStatement* StatementCache::freeEntry() noexcept
{
    CachedStatement* oldest = nullptr;
    for (CachedStatement& entry : std::span(entries_).first(count_)) {
        if (entry.statement == nullptr) {
            return &entry;
        }
        if (!entry.inUse && (oldest == nullptr || entry.lastUse < oldest->lastUse)) {
            oldest = &entry;
        }
    }
    if (count_ < kMost) {
        return &entries_[count_++];
    }
    if (oldest == nullptr) {
        return nullptr;
    }
    sqlite3_finalize(oldest->statement);
    *oldest = {};
    return oldest;
}

}  // namespace kesta
