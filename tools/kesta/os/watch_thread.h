// What the watch needs of the system. It may run before anything else of the program does, and while the system is
// loading a library.
#pragma once

#include <string_view>

namespace kesta::os {

/// Of a thread that gets no signals and runs as long as the program. Without one there is no watch.
void StartThread(void (*run)());
void PauseMs(int milliseconds);
void WriteToErrors(std::string_view text);
[[noreturn]] void EndAtOnce(int exitCode, std::string_view lastWords);

}  // namespace kesta::os
