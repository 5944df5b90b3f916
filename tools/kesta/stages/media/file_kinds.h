// The kinds of files that a category takes by itself.
#pragma once

#include <string_view>

#include "database/category.h"

namespace kesta {

/// By the file's ending, in either case. A name without one says nothing of its kind, and fits. Documents take any.
[[nodiscard]] bool IsKindOf(Category category, std::string_view name);

}  // namespace kesta
