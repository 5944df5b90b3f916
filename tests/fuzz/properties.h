// What holds for each reader whatever bytes it is given. A property that does not hold ends the program.
#pragma once

#include <string_view>

namespace kesta::test {

void CheckPlaylist(std::string_view file);
void CheckBookmarks(std::string_view file);
void CheckCards(std::string_view file);
void CheckCalendars(std::string_view file);

}  // namespace kesta::test
