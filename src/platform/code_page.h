// Wide text to narrow text. Both functions convert `length` code units into `out` and return the number of bytes,
// or kDoesNotFit when they need more than `room`; nothing is terminated. A lone surrogate becomes U+FFFD.
#pragma once

#include <cstddef>

#include "kesta_db/kesta_db.h"

namespace kesta::platform {

inline constexpr size_t kDoesNotFit = static_cast<size_t>(-1);

size_t Utf8FromWide(const DbChar* text, size_t length, char* out, size_t room) noexcept;

/// The process's ANSI code page, which is UTF-8 on systems that have no such thing.
size_t AnsiFromWide(const DbChar* text, size_t length, char* out, size_t room) noexcept;

}  // namespace kesta::platform
