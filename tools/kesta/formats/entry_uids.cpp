#include "formats/entry_uids.h"

namespace kesta::formats {

std::string EntryUids::derive(std::string_view digest)
{
    std::string uid = "kesta-" + std::string(digest);
    const size_t copy = ++seen_[uid];
    if (copy > 1) {
        uid += "-" + std::to_string(copy);
    }
    return uid;
}

}  // namespace kesta::formats
