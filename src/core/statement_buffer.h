// The module's EscapeBuffer, in which the one statement at a time is made.
#pragma once

#include <memory>

#include "kesta_db/kesta_db.h"

namespace kesta {

class StatementBuffer {
public:
    constexpr StatementBuffer() = default;

    /// Tries to have the memory now. When there is none yet, the next statement tries again.
    void allocate() noexcept;
    void release() noexcept;

    /// Room for the longest statement and a terminator. Throws std::bad_alloc when there is no memory for it.
    char* get();

private:
    std::unique_ptr<DbChar[]> EscapeBuffer_;
};

}  // namespace kesta
