// The manual's pages, made of the commands' help.
#pragma once

#include <string>

#include "commands/option_list.h"

namespace kesta {

/// kesta(1)
[[nodiscard]] std::string MainManual(const std::vector<ListedCommand>& commands);
/// kesta-sync(1)
[[nodiscard]] std::string CommandManual(const ListedCommand& command);

}  // namespace kesta
