// What shells need to complete the command line.
#pragma once

#include <string>

#include "commands/option_list.h"

namespace kesta {

[[nodiscard]] std::string BashCompletion(const std::vector<ListedCommand>& commands);
[[nodiscard]] std::string ZshCompletion(const std::vector<ListedCommand>& commands);
[[nodiscard]] std::string FishCompletion(const std::vector<ListedCommand>& commands);

}  // namespace kesta
