#include "statements/call_case.h"

namespace kesta::test {

Exports DirectExports()
{
    Exports all;
#define KESTA_EXPORT(name, ordinal) all.name = &::name;
#include "support/export_list.inc"
#undef KESTA_EXPORT
    return all;
}

std::string Of(char letter, std::string text)
{
    for (char& c : text) {
        c = c == '#' ? letter : c;
    }
    return text;
}

std::vector<CallCase> AllCases()
{
    std::vector<CallCase> all;
    for (const auto& cases : {LibraryCases(), PhoneCases(), CategoryCases(), GalleryCases(), PlaylistCases(),
                              PlaylistFileCases(), BookmarkCases(), BackupCases(), PimLogCases(), PimCases()}) {
        all.insert(all.end(), cases.begin(), cases.end());
    }
    return all;
}

}  // namespace kesta::test
