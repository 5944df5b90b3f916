// A playlist as it goes to the phone.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "stages/playlists/pc_playlists.h"

namespace kesta {

struct ListText {
    std::string text;
    std::string digest;  // of the text and of the files that the PC has for it
};

/// Members without a place on the phone are left out, URLs stay as they are; places are written relative to the
/// phone's playlist folder. Nothing when the list cannot be written.
[[nodiscard]] std::optional<ListText> MakeListText(const PcPlaylist& list,
                                                   const std::function<std::string(const ListMember&)>& placeOf);

/// What the database keeps of the list's members: paths on the PC and URLs, each once.
[[nodiscard]] std::vector<std::string> MemberNames(const PcPlaylist& list);

}  // namespace kesta
