#include "os/watch.h"

#include <atomic>
#include <string_view>

#include "os/system.h"
#include "os/watch_thread.h"

namespace kesta::os {
namespace {

constexpr int kTickMs = 100;
constexpr int kPatienceTicks = 10;  // A call takes milliseconds, unless it waits.
constexpr int kEndTicks = 8;        // Within a second.

constexpr std::string_view kWaitingWord =
    "kesta: waiting: another program seems to be in a call of the library, or has the database locked; Ctrl-C ends "
    "this\n";

constexpr int kInterrupted = 130;

// A number of its own for each call; 0 outside of all calls.
std::atomic<unsigned> call{0};
std::atomic<unsigned> lastCall{0};
std::atomic<const std::string*> lastWords{nullptr};

void Watch()
{
    unsigned watched = 0;
    int ticksInCall = 0, ticksInterrupted = 0;
    for (;;) {
        PauseMs(kTickMs);
        if (const unsigned present = call.load(); present != watched) {
            watched = present;
            ticksInCall = 0;
        } else if (present != 0 && ++ticksInCall == kPatienceTicks) {
            WriteToErrors(kWaitingWord);
        }
        if (Interrupted() && ++ticksInterrupted == kEndTicks) {
            const std::string* words = lastWords.load();
            EndAtOnce(kInterrupted, words == nullptr ? std::string_view() : *words);
        }
    }
}

}  // namespace

void StartWatch()
{
    static bool hasStarted = false;
    if (hasStarted) {
        return;
    }
    hasStarted = true;
    CatchInterrupts();
    StartThread(Watch);
}

void SetLastWords(std::string text)
{
    // Never destroyed: the thread may need it to the end.
    lastWords = new const std::string(std::move(text));
}

void BeginWaiting() noexcept
{
    call = ++lastCall;
}

void EndWaiting() noexcept
{
    call = 0;
}

}  // namespace kesta::os
