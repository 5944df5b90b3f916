// List records: the rule by which every export that returns a list empties, counts, allocates and fills it.
//
//     EmptyList(*list);
//     return ReadList(self, *list, NarrowSql("SELECT COUNT(*) FROM tPhone;"), NarrowSql(kSelectAll), ReadPhone);
#pragma once

#include <cstdint>
#include <type_traits>
#include <utility>

#include "core/caller_memory.h"
#include "core/results.h"
#include "core/routine.h"
#include "core/text_blocks.h"

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
    TextBlocks blocks;
    rows.cutTextsFrom(blocks);
    // Step first: only so does a row too many show in the result. Count goes along, so that it is true at any time.
    for (int32_t i = 0; rows.step() && i < room; list.Count = ++i) {
        readRow(rows, list.Items[i]);
    }
    return EndOfRows(rows.last());
}

/// The whole rule: `countSql` counts the rows of `rowSql`. The list is known to be empty.
template <class List, class ReadRow>
ResultCode ReadList(Routine self, List& list, const Sql& countSql, const Sql& rowSql, ReadRow&& readRow)
{
    const std::optional<int32_t> count = self.count(1, countSql);
    if (!count.has_value()) {
        return ResultCode::kFailure;
    }
    if (*count == 0) {
        return ResultCode::kSuccess;
    }
    if (*count < 0) {
        self.trail.error(2);
        return ResultCode::kFailure;
    }
    AllocateList(list, *count);
    return self.query(3, rowSql, [&](Statement& rows) { return FillList(list, *count, rows, readRow); });
}

}  // namespace kesta
