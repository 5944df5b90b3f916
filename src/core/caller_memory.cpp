#include "core/caller_memory.h"

#include <utility>

#include "core/text.h"
#include "core/text_blocks.h"

namespace kesta {

namespace {

/// Memory for `count` of something, told in the trace.
template <class T>
T* Allocate(size_t count)
{
    auto* memory = static_cast<T*>(std::malloc(count * sizeof(T)));
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    memory[count - 1] = 0;
    TraceNew(memory);
    return memory;
}

template <class T>
void Free(T*& memory) noexcept
{
    if (memory == nullptr) {
        return;
    }
    TraceDelete(memory);
    std::free(memory);
    memory = nullptr;
}

}  // namespace

DbChar* NewText(size_t length, TextBlocks* blocks)
{
    DbChar* const text = blocks != nullptr ? blocks->cut(length + 1) : nullptr;
    if (text == nullptr) {
        return Allocate<DbChar>(length + 1);
    }
    text[length] = 0;
    TraceNew(text);
    return text;
}

DbChar* DuplicateText(const DbChar* text)
{
    if (text == nullptr) {
        return nullptr;
    }
    const size_t length = LengthOf(text);
    DbChar* copy = NewText(length);
    std::copy_n(text, length, copy);
    return copy;
}

void FreeText(DbChar*& text) noexcept
{
    if (!TextBlocks::cutFromBlock(text)) {
        return Free(text);
    }
    TraceDelete(text);
    TextBlocks::giveBack(std::exchange(text, nullptr));
}

uint8_t* NewBytes(size_t length)
{
    return Allocate<uint8_t>(length);
}

void FreeBytes(uint8_t*& bytes) noexcept
{
    Free(bytes);
}

}  // namespace kesta
