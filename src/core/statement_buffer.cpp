#include "core/statement_buffer.h"

#include <new>

#include "core/sql_text.h"
#include "core/trace.h"

namespace kesta {
namespace {

constexpr size_t kEscapeBufferUnits = 40960;
static_assert(kEscapeBufferUnits * sizeof(DbChar) > kStatementBytes, "a statement and its terminator must fit");

}  // namespace

void StatementBuffer::allocate() noexcept
{
    if (EscapeBuffer_ != nullptr) {
        return;
    }
    EscapeBuffer_.reset(new (std::nothrow) DbChar[kEscapeBufferUnits]);
    if (EscapeBuffer_ != nullptr) {
        TraceNew(EscapeBuffer_.get());
    }
}

void StatementBuffer::release() noexcept
{
    if (EscapeBuffer_ == nullptr) {
        return;
    }
    TraceDelete(EscapeBuffer_.get());
    EscapeBuffer_.reset();
}

char* StatementBuffer::get()
{
    allocate();
    if (EscapeBuffer_ == nullptr) {
        throw std::bad_alloc();
    }
    return reinterpret_cast<char*>(EscapeBuffer_.get());
}

}  // namespace kesta
