// Starts the watch before the libraries are initialised: Ctrl-C is to end the program also while the library waits
// there for another program's call. Linked into the program alone, so that no test is watched.
#include "os/watch.h"

namespace kesta::os {
namespace {

// A sanitizer is not ready by then.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
[[gnu::section(".preinit_array"), gnu::used]] void (*const kStartEarly)() = StartWatch;
#endif

}  // namespace
}  // namespace kesta::os
