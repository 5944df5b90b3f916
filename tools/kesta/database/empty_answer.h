// When the library's look into the database fails - it is locked for too long, the disk fails - the answer of many
// calls is the same as when there is nothing: 0 and an empty list, or "unknown phone". Whoever takes that for the truth
// copies everything anew.
#pragma once

#include <functional>
#include <string_view>

namespace kesta::calls {

/// Asks until the answer can be believed; ask says whether there was anything in it. An empty one is believed when it
/// came twice without waiting, and a row that every database has can be read right after. Throws a DatabaseError after
/// a few attempts.
void AskUntilBelieved(std::string_view call, const std::function<bool()>& ask);

}  // namespace kesta::calls
