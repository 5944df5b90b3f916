#include "os/startup_watch.h"

namespace kesta::os {

// Nothing of the program runs before its libraries have been loaded.
void EndStartupWatch()
{
}

}  // namespace kesta::os
