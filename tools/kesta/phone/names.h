// Names on the phone: what FAT, exFAT and Windows can hold, which ones collide where case is ignored, and which paths
// on a phone may be touched at all.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "database/category.h"

namespace kesta {

/// Files in the phone's root and temporary files begin with this; no copied file ever does.
inline constexpr std::string_view kOwnPrefix = ".kesta-";
inline constexpr std::string_view kTemporaryName = ".kesta-part";

/// The name as any phone can hold it; unchanged when it is fine as it is.
[[nodiscard]] std::string SafeName(std::string_view name);
/// Equal for two paths exactly when a file system that ignores case takes them for one.
[[nodiscard]] std::string CaseKey(std::string_view path);
/// The name with a suffix derived from the seed: "song~1a2b3c.mp3". Another attempt gives another suffix.
[[nodiscard]] std::string SuffixedName(std::string_view name, std::string_view seed, unsigned attempt);

/// The components of a path with '/' between them.
[[nodiscard]] std::vector<std::string> SplitPath(std::string_view path);
/// Whether the path lies below the category's folder and names nothing outside of it, whoever wrote it down.
[[nodiscard]] bool IsPhonePath(std::string_view path, Category category);
/// The same for any other folder of the phone.
[[nodiscard]] bool IsPhonePath(std::string_view path, std::string_view folder);

}  // namespace kesta
