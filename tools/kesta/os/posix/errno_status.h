// From errno to a Status.
#pragma once

#include "os/status.h"

namespace kesta::os {

[[nodiscard]] Status FromErrno(int code);
[[nodiscard]] Status LastError();

}  // namespace kesta::os
