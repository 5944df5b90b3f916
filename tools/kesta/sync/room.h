// The room that a plan needs on the phone: told, and looked after, before anything is copied.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "phone/trash.h"
#include "report/event.h"
#include "sync/plan.h"

namespace kesta {

struct Room {
    uint64_t needed = 0;           // at most, while the changes are made one after the other
    std::optional<uint64_t> free;  // nothing where the phone does not tell
    uint64_t inTrash = 0;          // goes when it is needed; looked up only then

    [[nodiscard]] bool fits() const { return !free || needed <= *free + inTrash; }
    /// "needs 120.0 MB, 5.0 MB free"
    [[nodiscard]] std::string text() const;
    /// The same for programs.
    [[nodiscard]] Event event() const;
};

/// phone: as the changes before the plan have left it, or would have.
[[nodiscard]] Room MeasureRoom(const Plan& plan, const Phone& phone, const PhoneFolder& folder, const Trash& trash);

}  // namespace kesta
