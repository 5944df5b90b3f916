// A routine at work: the connection, and the name under which its failing steps are told in the trace. Each step has a
// position there.
//
//     const int32_t id = self.firstNumber(1, NarrowSql("SELECT [pfID] FROM ...", Ansi{pimId}), kNoFolder);
//     return self.first(1, WideSql("SELECT ..."), EndOfRows, [&](const Statement& row) { text = row.newText(0); });
//     return self.run(2, WideSql("UPDATE %s SET ...", table, Escaped{path}));  // step 2, told when it fails
#pragma once

#include <cstdint>
#include <optional>

#include "core/connection.h"
#include "core/results.h"
#include "core/trace.h"

namespace kesta {

class Routine {
public:
    Routine(Connection& connection, Trail itsTrail) : db(connection), trail(itsTrail) {}

    Connection& db;
    const Trail trail;

    /// Runs a statement whose rows nobody wants, and passes SQLite's code on.
    SqliteCode exec(int position, const Sql& sql)
    {
        const SqliteCode code = db.exec(sql);
        if (code != SqliteCode::kOk) {
            trail.error(position);
        }
        return code;
    }

    /// The same where SQLite's code is nobody's business.
    ResultCode run(int position, const Sql& sql)
    {
        return exec(position, sql) == SqliteCode::kOk ? ResultCode::kSuccess : ResultCode::kFailure;
    }

    /// A query; whoever reads it asks first whether it is prepared.
    Statement prepare(int position, const Sql& sql)
    {
        Statement rows = db.prepare(sql);
        if (!rows.prepared()) {
            trail.error(position);
        }
        return rows;
    }

    /// What `body(rows)` makes of a query; failure when it cannot be prepared.
    template <class Body>
    ResultCode query(int position, const Sql& sql, Body&& body)
    {
        Statement rows = prepare(position, sql);
        return rows.prepared() ? body(rows) : ResultCode::kFailure;
    }

    /// Success when there is a row, which `read(row)` reads. Otherwise what `noRow` makes of the step's code.
    template <class Read>
    ResultCode first(int position, const Sql& sql, ResultCode (&noRow)(SqliteCode), Read&& read)
    {
        return query(position, sql, [&](Statement& rows) {
            if (!rows.step()) {
                return noRow(rows.last());
            }
            read(rows);
            return ResultCode::kSuccess;
        });
    }

    /// The first column of the first row; `otherwise` when there is none.
    int32_t firstNumber(int position, const Sql& sql, int32_t otherwise)
    {
        Statement rows = prepare(position, sql);
        return rows.prepared() && rows.step() ? rows.int32(0) : otherwise;
    }

    /// What a query counts, 0 without a row; none if it cannot be prepared.
    std::optional<int32_t> count(int position, const Sql& sql)
    {
        Statement rows = prepare(position, sql);
        if (!rows.prepared()) {
            return std::nullopt;
        }
        return rows.step() ? rows.int32(0) : 0;
    }
};

}  // namespace kesta
