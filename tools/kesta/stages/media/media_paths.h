// Where media sync puts the files of the PC.
#pragma once

#include <string>
#include <unordered_map>

namespace kesta {

/// By the file's path on the PC.
using MediaPhonePaths = std::unordered_map<std::string, std::string>;

}  // namespace kesta
