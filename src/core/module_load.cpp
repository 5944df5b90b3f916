// Ties the module to the library's load and unload: an object's life is the loader's notification on every platform.
// Linked into the library itself only, so that tests of its parts start and end the module when they want.
#include "core/module.h"

namespace kesta {
namespace {

struct Loaded {
    Loaded() noexcept { TheModule().start(); }
    ~Loaded() { TheModule().end(); }
};

const Loaded loaded;

}  // namespace
}  // namespace kesta
