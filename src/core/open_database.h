// How the module's connection comes to be: the file is looked at, made or replaced, and opened.
#pragma once

#include "core/module.h"
#include "core/results.h"
#include "core/trace.h"

namespace kesta {

/// Opens the module's connection, if it is not open yet; the caller holds the access lock.
ResultCode OpenDatabase(Module& module, Trail trail);

}  // namespace kesta
