// Linked into a second build of the library, in which every statement goes as text: what callers see of both builds is
// the same.
#include "core/statement_cache.h"

namespace {

[[maybe_unused]] const bool kAsText = [] {
    kesta::statementsStayCompiled = false;
    return true;
}();

}  // namespace
