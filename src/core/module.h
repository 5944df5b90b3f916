// What exists once while the library is loaded: the lock, the connection and the buffer for statements. Loading and
// unloading call ModuleStart and ModuleEnd; everybody else comes in through the call frame.
#pragma once

#include <atomic>

#include "core/connection.h"
#include "core/statement_buffer.h"
#include "kesta_db/kesta_db.h"
#include "platform/named_mutex.h"

namespace kesta {

class Module {
public:
    constexpr Module() = default;

    void start() noexcept;
    void end() noexcept;

    platform::NamedMutex DbAccessLock;  // serialises every export of all threads and processes
    Connection DbConnection;            // open from load to unload, or null

    /// The open connection, null when there is none; under the lock. A forked process opens its own here.
    Connection* openConnection();

    /// Whether the connection is open, asked without the lock.
    [[nodiscard]] bool isOpen() const { return open_.load(std::memory_order_acquire); }
    void noteOpen() { open_.store(DbConnection.isOpen(), std::memory_order_release); }

    void enterCall() { callsInside_.fetch_add(1, std::memory_order_relaxed); }
    void leaveCall() { callsInside_.fetch_sub(1, std::memory_order_release); }

private:
    void watchForks() noexcept;
    void startAnewInChild() noexcept;

    StatementBuffer EscapeBuffer_;
    bool forked_ = false;  // the connection was another process's and has to be opened
    std::atomic<bool> open_ = false;
    std::atomic<int> callsInside_ = 0;
};

Module& TheModule() noexcept;

}  // namespace kesta
