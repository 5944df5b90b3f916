// One call, and what SQLite receives of it. The texts are written out as callers and logs know them.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "api/category_exports.h"
#include "api/records.h"

namespace kesta::test {

/// Within the texts below, '$' stands for a paragraph sign in the process's ANSI code page, where '§' is one in UTF-8;
/// "<now>" for the present time. Every text that a caller gives holds two apostrophes and that sign: so doubled
/// apostrophes, and the code page in which each text goes in, show at every place.
struct CallCase {
    std::string name;  // the export; after a '/' what is particular about the call
    std::function<int32_t(const Exports&)> call;
    /// The statements, in order. A lock given up and taken again in between shows as "unlock" and "lock".
    std::vector<std::string> statements;
    /// Run before the call, after what all cases start from.
    std::string given = {};
};

/// The phone's own text; its row has the number 1. Number 2 is that of the same text in UTF-8, where it differs.
inline constexpr char kImeiText[] = "I''§";
inline constexpr char kPhoneLookUp[] = "SELECT [ID] FROM tPhone WHERE  [IMEI] = 'I''$';";
inline constexpr char kTypeLookUp[] = "SELECT [BookMarkType] FROM tPhone WHERE  [IMEI] = 'I''$';";

inline Text Imei()
{
    return W(kImeiText);
}

inline const DateValue kTime = Date(2024, 2, 29, 12, 34, 56);

/// The exports of the library that is linked into this program.
Exports DirectExports();

/// The text with the category's letter for every '#'.
std::string Of(char letter, std::string text);

/// All of them; every export has at least one.
std::vector<CallCase> AllCases();

std::vector<CallCase> LibraryCases();
std::vector<CallCase> PhoneCases();
std::vector<CallCase> CategoryCases();
std::vector<CallCase> GalleryCases();
std::vector<CallCase> PlaylistCases();
std::vector<CallCase> PlaylistFileCases();
std::vector<CallCase> BookmarkCases();
std::vector<CallCase> BackupCases();
std::vector<CallCase> PimLogCases();
std::vector<CallCase> PimCases();

}  // namespace kesta::test
