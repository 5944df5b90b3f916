// Texts and arrays that are handed to callers, and stay the library's. Everything a caller holds comes from here and
// goes back here, with its line in the trace. An array carries its true number of elements in front of the first one.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <new>
#include <type_traits>

#include "core/trace.h"
#include "kesta_db/kesta_db.h"

namespace kesta {

class TextBlocks;

/// A terminated text of `length` code units, to be filled; one of many may be cut from blocks. Throws std::bad_alloc.
DbChar* NewText(size_t length, TextBlocks* blocks = nullptr);

/// A copy of the text; null stays null, an empty one is copied.
DbChar* DuplicateText(const DbChar* text);

/// Frees the text, if there is one, and forgets it.
void FreeText(DbChar*& text) noexcept;

/// `length` bytes, to be filled. Throws std::bad_alloc.
uint8_t* NewBytes(size_t length);
void FreeBytes(uint8_t*& bytes) noexcept;

/// How the elements of a kind start and end; each record type says so beside its reader:
/// `static void construct(T&, const DateValue& now)` and `static void destroy(T&)`.
template <class T>
struct Element;

template <class T>
class CallerArray {
    static_assert(std::is_trivially_copyable_v<T>);
    static constexpr size_t kFront = std::max(alignof(T), sizeof(size_t));

    static size_t& countOf(T* items) { return reinterpret_cast<size_t*>(items)[-1]; }

public:
    static T* create(size_t count, const DateValue& now)
    {
        if (count > (std::numeric_limits<size_t>::max() - kFront) / sizeof(T)) {
            throw std::bad_alloc();
        }
        void* memory = std::malloc(kFront + count * sizeof(T));
        if (memory == nullptr) {
            throw std::bad_alloc();
        }
        T* items = reinterpret_cast<T*>(static_cast<std::byte*>(memory) + kFront);
        countOf(items) = count;
        for (size_t i = 0; i < count; ++i) {
            Element<T>::construct(items[i], now);
        }
        TraceNew(items);
        return items;
    }

    static void release(T* items) noexcept
    {
        if (items == nullptr) {
            return;
        }
        TraceDelete(items);
        const size_t count = countOf(items);
        for (size_t i = 0; i < count; ++i) {
            Element<T>::destroy(items[i]);
        }
        std::free(reinterpret_cast<std::byte*>(items) - kFront);
    }
};

}  // namespace kesta
