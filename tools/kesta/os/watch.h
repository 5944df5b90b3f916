// A thread of its own for what the program cannot see to while it is inside a call: a word to the user when a call
// waits for another program, and the end of the program soon after Ctrl-C.
#pragma once

#include <string>
#include <utility>

namespace kesta::os {

/// Starts the watch, and with it CatchInterrupts(). A second call does nothing.
void StartWatch();

/// What standard output gets when the program has to be ended in the middle of something.
void SetLastWords(std::string text);

/// Begins, and ends, what may wait for another program.
void BeginWaiting() noexcept;
void EndWaiting() noexcept;

/// Calls a function of the library: Call(DB_Open)().
template <class Function>
class Call {
public:
    explicit Call(Function* function) : function_(function) {}

    template <class... Arguments>
    auto operator()(Arguments&&... arguments) const
    {
        const Waiting waiting;
        return function_(std::forward<Arguments>(arguments)...);
    }

private:
    struct Waiting {
        Waiting() noexcept { BeginWaiting(); }
        Waiting(const Waiting&) = delete;
        Waiting& operator=(const Waiting&) = delete;
        ~Waiting() { EndWaiting(); }
    };
    Function* function_;
};

}  // namespace kesta::os
