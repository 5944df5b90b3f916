// List records: the rule by which every export that returns a list empties, counts, allocates and fills it.
#pragma once

#include <cstdint>
#include <type_traits>
#include <utility>

#include "core/caller_memory.h"
#include "core/connection.h"
#include "core/results.h"
#include "core/trace.h"

namespace kesta {

template <class List>
using ElementOf = std::remove_pointer_t<decltype(List::Items)>;

/// Frees what the list holds, all of it, whatever its Count says.
template <class List>
void EmptyList(List& list) noexcept
{
    auto* items = std::exchange(list.Items, nullptr);
    list.Count = 0;
    CallerArray<ElementOf<List>>::release(items);
}

/// Gives the empty list an array of `count` elements, none of them valid yet.
template <class List>
void AllocateList(List& list, int32_t count)
{
    list.Items = CallerArray<ElementOf<List>>::create(static_cast<size_t>(count), Now());
}

/// Reads rows into the list's array until either ends; the list counts what was read. `readRow(rows, element)` fills
/// one. One row more than there is room for ends with the code of a row.
template <class List, class ReadRow>
ResultCode FillList(List& list, int32_t room, Statement& rows, ReadRow&& readRow)
{
    // Step first: only so does a row too many show in the result. Count goes along, so that it is true at any time.
    for (int32_t i = 0; rows.step() && i < room; list.Count = ++i) readRow(rows, list.Items[i]);
    return EndOfRows(rows.last());
}

/// The whole rule. `countSql` and `rowSql` make the two statements; the list is known to be empty.
template <class List, class CountSql, class RowSql, class ReadRow>
ResultCode ReadList(Connection& db, Trail trail, List& list, CountSql&& countSql, RowSql&& rowSql, ReadRow&& readRow)
{
    int32_t count = 0;
    {
        Statement counting = db.prepare(countSql());
        if (!counting.prepared()) {
            trail.error(1);
            return ResultCode::kFailure;
        }
        if (!counting.step()) return ResultCode::kSuccess;
        count = counting.int32(0);
    }
    if (count == 0) return ResultCode::kSuccess;
    if (count < 0) {
        trail.error(2);
        return ResultCode::kFailure;
    }
    AllocateList(list, count);
    Statement rows = db.prepare(rowSql());
    if (!rows.prepared()) {
        trail.error(3);
        return ResultCode::kFailure;
    }
    return FillList(list, count, rows, readRow);
}

}  // namespace kesta
