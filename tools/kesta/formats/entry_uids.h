// UIDs for entries that bring none.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>

namespace kesta::formats {

/// Derives UIDs within one file: the same contents get the same UID in every run, and copies are numbered.
class EntryUids {
public:
    [[nodiscard]] std::string derive(std::string_view digest);

private:
    std::map<std::string, size_t, std::less<>> seen_;
};

}  // namespace kesta::formats
