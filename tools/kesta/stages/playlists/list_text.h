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

/// Members without a phone path are left out, URLs stay as they are; phone paths are written relative to the phone's
/// playlist folder. std::nullopt if the list cannot be written.
[[nodiscard]] std::optional<ListText> MakeListText(const PcPlaylist& list,
                                                   const std::function<std::string(const ListMember&)>& pathOf);

/// What the database keeps of the list's members: paths on the PC and URLs, each once.
[[nodiscard]] std::vector<std::string> MemberNames(const PcPlaylist& list);

}  // namespace kesta
