#include "platform/forks.h"

namespace kesta::platform {

void WatchForks(void (* /*before*/)(), void (* /*inParent*/)(), void (* /*inChild*/)()) noexcept
{
}

}  // namespace kesta::platform
