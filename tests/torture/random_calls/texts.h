// The texts of random calls, each in memory of exactly its size, so that reading past its end is seen.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "kesta_db/kesta_db.h"
#include "torture/random_calls/call_bytes.h"

namespace kesta::test {

using TextView = std::basic_string_view<DbChar>;

/// What the filled database has rows for, and what calls mostly name.
inline constexpr TextView kPhones[] = {u"351111", u"352222", u"353333:553333"};
inline constexpr TextView kNames[] = {u"C:\\Music", u"C:\\Music\\Rock",      u"C:\\O'Brien's",
                                      u"351111",    u"D:\\\u0424\U0001f600", u"p1"};

/// Makes the texts of one call and keeps them until it is over.
class Texts {
public:
    /// A text, or null; the first of a call is mostly a phone's IMEI, the others are mostly names.
    DbChar* pick(CallBytes& bytes);

    /// Bytes of an item; of none, an address that nobody may read from.
    uint8_t* keepBytes(size_t length, uint8_t value);

private:
    DbChar* keep(TextView text);
    DbChar* keepLong(CallBytes& bytes);

    std::vector<std::unique_ptr<DbChar[]>> kept_;
    std::vector<std::unique_ptr<uint8_t[]>> bytes_;
    bool any_ = false;
};

}  // namespace kesta::test
