#include "os/volume.h"

namespace kesta::os {

// Flushing a volume takes an administrator.
Volume::~Volume() = default;

bool Volume::open(const std::string& /*directory*/)
{
    return false;
}

Status Volume::flush()
{
    return {Failure::kOther, "a volume cannot be flushed as a whole"};
}

}  // namespace kesta::os
