// A word when another program holds the start up. The library opens its database while it is loaded, before main, and
// waits without limit for the program that is in a call just then.
#pragma once

namespace kesta::os {

/// To be called first thing in main: the start is over.
void EndStartupWatch();

}  // namespace kesta::os
