// The work areas in which row ids are collected. Each has a fixed number of slots, the last of which marks the end: a
// call that finds more stops there.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <span>

#include "core/connection.h"
#include "core/trace.h"

namespace kesta {

class IdArea {
public:
    /// `slots` has room for the sentinel too.
    explicit constexpr IdArea(std::span<int32_t> slots) : slots_(slots) {}

    /// False when the area is full.
    bool append(int32_t id)
    {
        if (count_ + 1 >= slots_.size()) {
            return false;
        }
        slots_[count_++] = id;
        return true;
    }
    /// Appends the ids of all rows, or as many as there is room for, which is no failure.
    ResultCode appendFirstColumn(Statement& rows)
    {
        while (rows.step()) {
            if (!append(rows.int32(0))) {
                return ResultCode::kSuccess;
            }
        }
        return rows.last() == SqliteCode::kDone ? ResultCode::kSuccess : ResultCode::kFailure;
    }
    /// Read by index while it grows: so it is a queue.
    [[nodiscard]] size_t count() const { return count_; }
    [[nodiscard]] int32_t operator[](size_t i) const { return slots_[i]; }

private:
    std::span<int32_t> slots_;
    size_t count_ = 0;
};

/// Room for the folders of one call, kept in place.
class FolderIds : public IdArea {
public:
    FolderIds() : IdArea(slots_) {}

private:
    int32_t slots_[1024];
};

/// The memory for the items of one call, told in the trace.
class ItemSlots {
public:
    // Not cleared: the C library would do it by hand when it takes the memory out of what was freed before.
    ItemSlots() : memory_(static_cast<int32_t*>(std::malloc(kSlots * sizeof(int32_t))))
    {
        if (memory_ == nullptr) {
            throw std::bad_alloc();
        }
        TraceNew(memory_);
    }
    ~ItemSlots()
    {
        TraceDelete(memory_);
        std::free(memory_);
    }
    ItemSlots(const ItemSlots&) = delete;
    ItemSlots& operator=(const ItemSlots&) = delete;

    [[nodiscard]] std::span<int32_t> slots() const { return {memory_, kSlots}; }

private:
    static constexpr size_t kSlots = 1'048'576;

    int32_t* memory_;  // pages that no item needs are never touched
};

}  // namespace kesta
