#include "statements/call_recorder.h"

#include <sqlite3.h>

#include <cstring>
#include <map>
#include <new>
#include <utility>

#include "core/module.h"
#include "platform/named_mutex.h"
#include "platform/services.h"
#include "support/text.h"

// How a member function is called: as any other, but for 32-bit Windows, where "this" goes in a register.
#if defined(_WIN32) && defined(__i386__)
#define KESTA_MEMBER __attribute__((thiscall))
#pragma GCC diagnostic ignored "-Wattributes"  // these are no members
#else
#define KESTA_MEMBER
#endif

// The functions themselves, as the linker names them behind "--wrap", and those that the library now calls instead.
// NOLINTBEGIN(bugprone-reserved-identifier): the linker's names
using RowCallback = int(void*, int, char**, char**);

extern "C" {
int __real_sqlite3_exec(sqlite3* db, const char* text, RowCallback* row, void* data, char** message);
int __real_sqlite3_prepare_v2(sqlite3* db, const char* text, int bytes, sqlite3_stmt** statement, const char** tail);
int __real_sqlite3_prepare_v3(sqlite3* db, const char* text, int bytes, unsigned flags, sqlite3_stmt** statement,
                              const char** tail);
int __real_sqlite3_step(sqlite3_stmt* statement);
int __real_sqlite3_close(sqlite3* db);
void KESTA_MEMBER __real__ZN5kesta8platform10NamedMutex4lockEv(kesta::platform::NamedMutex* mutex) noexcept;
void KESTA_MEMBER __real__ZN5kesta8platform10NamedMutex6unlockEv(kesta::platform::NamedMutex* mutex) noexcept;
char* KESTA_MEMBER __real__ZN5kesta15StatementBuffer3getEv(kesta::StatementBuffer* buffer);
}

namespace kesta::test {
namespace {

bool recording = false;
std::vector<std::string> events;
std::map<sqlite3_stmt*, std::string> texts;  // as each statement was received
sqlite3_stmt* justCompiled = nullptr;
int buffersLeft = -1;
std::string refused;
int refusal = SQLITE_OK;
int statementsLeft = -1;
int stepsLeft = -1;
int endCode = SQLITE_OK;

/// Whether it is the turn of the one that fails.
bool Strikes(int& left)
{
    return left >= 0 && left-- == 0;
}

void Note(std::string event)
{
    if (recording) {
        events.push_back(std::move(event));
    }
}

void NoteLine(const DbChar* line, size_t /*length*/) noexcept
{
    Note(Utf8(line));
}

/// A statement of `bytes` bytes; up to its terminator when that comes first, or for a negative number.
std::string Received(const char* text, int bytes)
{
    return bytes < 0 ? std::string(text) : std::string(text, strnlen(text, static_cast<size_t>(bytes)));
}

/// A compiled statement with the values that are bound to it written in.
std::string Expanded(sqlite3_stmt* statement)
{
    char* text = sqlite3_expanded_sql(statement);
    std::string expanded = text;
    sqlite3_free(text);
    return expanded;
}

}  // namespace

void CallRecorder::start()
{
    platform::services.traceIsRead = []() noexcept { return true; };
    platform::services.memoryIsRead = []() noexcept { return true; };
    platform::services.writeTraceLine = &NoteLine;
    events.clear();
    justCompiled = nullptr;
    recording = true;
}

std::vector<std::string> CallRecorder::stop()
{
    recording = false;
    return std::exchange(events, {});
}

void CallRecorder::refuseStatementAfter(int statements)
{
    statementsLeft = statements;
}

void CallRecorder::endStepAfter(int steps, int code)
{
    stepsLeft = steps;
    endCode = code;
}

void CallRecorder::withholdBufferAfter(int statements)
{
    buffersLeft = statements;
}

void CallRecorder::refuse(std::string statement, int code)
{
    refused = std::move(statement);
    refusal = code;
}

}  // namespace kesta::test

using namespace kesta::test;

extern "C" {

int __wrap_sqlite3_exec(sqlite3* db, const char* text, RowCallback* row, void* data, char** message)
{
    Note(text);
    if (!refused.empty() && text == refused) {
        return refusal;
    }
    return __real_sqlite3_exec(db, text, row, data, message);
}

int __wrap_sqlite3_prepare_v2(sqlite3* db, const char* text, int bytes, sqlite3_stmt** statement, const char** tail)
{
    Note(Received(text, bytes));
    if (Strikes(statementsLeft)) {
        *statement = nullptr;
        return SQLITE_ERROR;
    }
    const int code = __real_sqlite3_prepare_v2(db, text, bytes, statement, tail);
    if (*statement != nullptr) {
        texts[*statement] = Received(text, bytes);
    }
    justCompiled = *statement;
    return code;
}

/// Of a statement that stays compiled; what it is run with is noted when it is stepped.
int __wrap_sqlite3_prepare_v3(sqlite3* db, const char* text, int bytes, unsigned flags, sqlite3_stmt** statement,
                              const char** tail)
{
    const int code = __real_sqlite3_prepare_v3(db, text, bytes, flags, statement, tail);
    texts.erase(*statement);
    if (*statement == nullptr) {
        Note(Received(text, bytes));
    }
    return code;
}

int __wrap_sqlite3_step(sqlite3_stmt* statement)
{
    if (sqlite3_stmt_busy(statement) == 0 && std::exchange(justCompiled, nullptr) != statement) {
        const auto text = texts.find(statement);
        Note(text != texts.end() ? text->second : Expanded(statement));
    }
    return Strikes(stepsLeft) ? endCode : __real_sqlite3_step(statement);
}

int __wrap_sqlite3_close(sqlite3* db)
{
    Note("close");
    return __real_sqlite3_close(db);
}

void KESTA_MEMBER __wrap__ZN5kesta8platform10NamedMutex4lockEv(kesta::platform::NamedMutex* mutex) noexcept
{
    __real__ZN5kesta8platform10NamedMutex4lockEv(mutex);
    Note("lock");
}

void KESTA_MEMBER __wrap__ZN5kesta8platform10NamedMutex6unlockEv(kesta::platform::NamedMutex* mutex) noexcept
{
    Note("unlock");
    __real__ZN5kesta8platform10NamedMutex6unlockEv(mutex);
}

char* KESTA_MEMBER __wrap__ZN5kesta15StatementBuffer3getEv(kesta::StatementBuffer* buffer)
{
    if (buffersLeft == 0) {
        throw std::bad_alloc();
    }
    if (buffersLeft > 0) {
        --buffersLeft;
    }
    return __real__ZN5kesta15StatementBuffer3getEv(buffer);
}
}
// NOLINTEND(bugprone-reserved-identifier)
