// Contacts: vCard 2.1, 3.0 and 4.0, any number of cards in a file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "formats/problem.h"

namespace kesta::formats {

struct Card {
    std::string uid;          // as the card says, else derived from its contents; two cards may say the same
    bool uidDerived = false;  // then the UID changes with the contents
    std::string version;      // "2.1", "3.0", "4.0"; empty when the card does not say
    std::string name;         // FN, else N in spoken order, else the organisation, else an e-mail address
    std::vector<std::string> categories;
    std::optional<int64_t> revised;  // REV, seconds since 1970 in UTC
    std::string bytes;               // the card as it stands in the file, from BEGIN to END with its line break
    std::string digest;              // changes with the contents; not with REV, PRODID, folding and line breaks
    size_t line = 0;                 // where it begins
};

struct Cards {
    std::vector<Card> cards;
    Problems problems;
};

[[nodiscard]] Cards ParseCards(std::string_view file);

}  // namespace kesta::formats
