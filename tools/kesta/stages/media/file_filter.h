// Which files of a chosen folder go to the phone: what is junk, what is no music, and what the user's rules say.
//
// A rule is a glob. One without a slash stands for a name at any depth, any other one for a path below the folder where
// the rule belongs; with a slash at its end it stands for folders alone. What lies in a folder that a rule is about is
// meant along with it. Of several rules about a file the last one decides, in this order: the kinds of files of the
// category, .kestaignore files from the outermost to the innermost, the rules given on the command line.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/filter_rule.h"
#include "database/category.h"

namespace kesta {

inline constexpr std::string_view kIgnoreFileName = ".kestaignore";

struct LeftOut {
    enum class Reason { kJunk, kKind, kRule };
    Reason reason = Reason::kRule;
    std::string rule;  // "--exclude *.wav", ".kestaignore in Rock: *.wav", "*.part is junk"
};

/// All paths are relative to the chosen folder, with '/' between the components.
class FileFilter {
public:
    FileFilter(Category category, std::vector<FilterRule> given) : category_(category), given_(std::move(given)) {}

    /// folder: where the file lies; empty for the chosen folder itself.
    void addIgnoreFile(const std::string& folder, std::string_view text);

    /// Why the file stays on the PC; std::nullopt if it goes along.
    [[nodiscard]] std::optional<LeftOut> leftOut(std::string_view path) const;
    /// Why nothing in the folder can go along; std::nullopt if something may.
    [[nodiscard]] std::optional<LeftOut> prunes(std::string_view folder) const;

private:
    [[nodiscard]] std::optional<LeftOut> judge(std::string_view path, bool isFolder) const;

    Category category_;
    std::vector<FilterRule> given_;
    std::map<std::string, std::vector<FilterRule>> ofFolders_;
};

/// As a filter has it. The path lies below the folder.
[[nodiscard]] std::string RelativeTo(std::string_view folder, std::string_view path);

/// The filter of the chosen folder with all .kestaignore files from there down to the path, for a file that is not
/// being scanned. readText: false if there is no such file.
[[nodiscard]] FileFilter FilterFor(Category category, std::vector<FilterRule> given, std::string_view path,
                                   const std::function<bool(const std::string& relative, std::string& text)>& readText);

}  // namespace kesta
