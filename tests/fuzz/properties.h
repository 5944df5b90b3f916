// What holds for each reader whatever bytes it is given. A property that does not hold ends the program.
//
// A further format is one function and one line in Formats(), and a folder of its name below seeds/: the mutations and
// the fuzzers find it there.
#pragma once

#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kesta::test {

struct Format {
    const char* name;  // of the folder of seeds, too
    void (*check)(std::string_view file);
    std::vector<std::string> words;  // what makes a difference to this reader
};

[[nodiscard]] std::span<const Format> Formats();
/// Ends the program when there is none of that name.
[[nodiscard]] const Format& FormatNamed(std::string_view name);

inline std::ostream& operator<<(std::ostream& out, const Format& format)
{
    return out << format.name;
}

}  // namespace kesta::test
