#include "os/watch_thread.h"

#include <pthread.h>
#include <unistd.h>

#include <csignal>
#include <ctime>

namespace kesta::os {
namespace {

void Write(int stream, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t count = ::write(stream, text.data(), text.size());
        if (count <= 0) {
            return;
        }
        text.remove_prefix(static_cast<size_t>(count));
    }
}

void* Run(void* argument)
{
    reinterpret_cast<void (*)()>(argument)();  // NOLINT(performance-no-int-to-ptr): as StartThread made it
    return nullptr;
}

}  // namespace

void StartThread(void (*run)())
{
    // A read that waits in the program's own thread is to end when a signal comes.
    sigset_t all, before;
    (void)sigfillset(&all);
    (void)pthread_sigmask(SIG_SETMASK, &all, &before);
    pthread_t thread{};
    if (pthread_create(&thread, nullptr, Run, reinterpret_cast<void*>(run)) == 0) {
        (void)pthread_detach(thread);
    }
    (void)pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

void PauseMs(int milliseconds)
{
    const timespec time{milliseconds / 1000, milliseconds % 1000 * 1'000'000L};
    (void)nanosleep(&time, nullptr);
}

void WriteToErrors(std::string_view text)
{
    Write(STDERR_FILENO, text);
}

void EndAtOnce(int exitCode, std::string_view lastWords)
{
    Write(STDOUT_FILENO, lastWords);
    Write(STDERR_FILENO, "kesta: interrupted\n");
    _exit(exitCode);
}

}  // namespace kesta::os
