// What a process does when it is forked. Systems that do not fork do nothing.
#pragma once

namespace kesta::platform {

/// `before` and `inParent` run in the forking process around the fork, `inChild` in the new one, in which only the
/// thread that forked goes on. Lasts until the library is unloaded; the first call counts.
void WatchForks(void (*before)(), void (*inParent)(), void (*inChild)()) noexcept;

}  // namespace kesta::platform
