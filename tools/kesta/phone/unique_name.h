// A name that nothing else has, the same in every run:
//
//     const std::string name = UniqueName("song.mp3", path, [&](const std::string& name) { return
//     !taken.contains(name); });
#pragma once

#include <string>

#include "phone/names.h"

namespace kesta {

/// The wish if it is free, else the first that is of the wish with a suffix made from the seed: "song~1a2b3c.mp3".
template <class IsFree>
[[nodiscard]] std::string UniqueName(const std::string& wish, const std::string& seed, const IsFree& isFree)
{
    std::string name = wish;
    for (unsigned attempt = 0; !isFree(name); ++attempt) {
        name = SuffixedName(wish, seed, attempt);
    }
    return name;
}

}  // namespace kesta
