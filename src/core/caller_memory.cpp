#include "core/caller_memory.h"

#include "core/text.h"

namespace kesta {

DbChar* NewText(size_t length)
{
    auto* text = static_cast<DbChar*>(std::malloc((length + 1) * sizeof(DbChar)));
    if (text == nullptr) throw std::bad_alloc();
    text[length] = 0;
    TraceNew(text);
    return text;
}

DbChar* DuplicateText(const DbChar* text)
{
    if (text == nullptr) return nullptr;
    const size_t length = LengthOf(text);
    DbChar* copy = NewText(length);
    std::copy_n(text, length, copy);
    return copy;
}

void FreeText(DbChar*& text) noexcept
{
    if (text == nullptr) return;
    TraceDelete(text);
    std::free(text);
    text = nullptr;
}

}  // namespace kesta
