// Statements that stay compiled. One is found by its format and the names in it; its other arguments are bound instead
// of written in, whenever that comes to the same. A sync runs the same few statements thousands of times, and compiling
// one costs several times what running it does.
//
// What a caller can tell stays as if every statement came as text. So a cached statement is used only while no other
// connection has changed the file since it was compiled: as text it would compile against that same schema. After a
// change all are dropped, and a table that has gone is noticed where it is for a text, when the statement is prepared.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/sql.h"

struct sqlite3;
struct sqlite3_stmt;

namespace kesta {

/// Whether statements stay compiled. Tests turn it off to hold both ways against each other.
inline constinit bool statementsStayCompiled = true;

/// A statement that stays compiled.
struct CachedStatement {
    static constexpr size_t kNameBytes = 64;

    sqlite3_stmt* statement = nullptr;
    const char* format = nullptr;  // where its literal lies
    std::array<char, kNameBytes> names = {};
    size_t nameBytes = 0;
    int own = 0;  // the number of the parameter that the format itself has; 0 for none
    uint64_t lastUse = 0;
    bool inUse = false;
    bool obsolete = false;
};

class StatementCache {
public:
    static constexpr size_t kMost = 48;

    constexpr StatementCache() = default;
    StatementCache(const StatementCache&) = delete;
    StatementCache& operator=(const StatementCache&) = delete;

    enum class Verdict { kCached, kRefused, kAsText };
    enum class Lifetime { kUntilNextStatement, kUntilFinished };  // how long the bound texts must live

    struct Found {
        Verdict verdict;
        CachedStatement* entry;  // bound and ready to be stepped when cached
        int code;                // why it does not compile, or cannot be bound
    };

    /// `buffer` is the statement buffer.
    Found find(sqlite3* handle, const Sql& sql, char* buffer, Lifetime lifetime) noexcept;

    /// A found statement is no longer used; `done` when its last step was its end.
    void giveBack(sqlite3* handle, CachedStatement& entry, bool done) noexcept;

    /// Finalises all that are not in use, and those when they are given back.
    void drop() noexcept;
    /// Forgets all without a call to SQLite.
    void abandon() noexcept;

private:
    void dropIfChanged(sqlite3* handle) noexcept;
    CachedStatement* lookUp(const char* format, std::string_view names) noexcept;
    CachedStatement* freeEntry() noexcept;

    std::array<CachedStatement, kMost> entries_ = {};
    size_t count_ = 0;  // entries that were ever used
    uint64_t clock_ = 0;
    unsigned version_ = 0;
    bool versionKnown_ = false;
};

}  // namespace kesta
