#include "stages/playlists/list_text.h"

#include <unordered_set>

#include "base/byte_escapes.h"
#include "formats/digest.h"
#include "phone/phone_layout.h"

namespace kesta {
namespace {

// From the playlist folder, which lies in the phone's root.
std::string RelativeToLists(const std::string& phonePath)
{
    const std::string inside = std::string(kPlaylistFolder) + '/';
    return phonePath.starts_with(inside) ? phonePath.substr(inside.size()) : "../" + phonePath;
}

}  // namespace

std::optional<ListText> MakeListText(const PcPlaylist& list,
                                     const std::function<std::string(const ListMember&)>& pathOf)
{
    std::vector<formats::PlaylistEntry> entries;
    std::string sources;
    for (const ListMember& member : list.members) {
        formats::PlaylistEntry entry = member.entry;
        if (!member.isUrl()) {
            const std::string phonePath = pathOf(member);
            if (phonePath.empty()) {
                continue;
            }
            entry.location = {formats::LocationKind::kRelative, RelativeToLists(phonePath)};
            sources += member.path + '\0';
        }
        entries.push_back(std::move(entry));
    }
    std::optional<std::string> text = formats::WritePlaylist(list.title, entries);
    if (!text) {
        return std::nullopt;
    }
    std::string digest = formats::Digest(*text + '\0' + sources);
    // A player looks for the bytes of a name, also where they are no text.
    return ListText{UnescapeBytes(*text), std::move(digest)};
}

std::vector<std::string> MemberNames(const PcPlaylist& list)
{
    std::vector<std::string> names;
    std::unordered_set<std::string> seen;
    for (const ListMember& member : list.members) {
        const std::string& name = member.isUrl() ? member.entry.location.text : member.path;
        if (seen.insert(name).second) {
            names.push_back(name);
        }
    }
    return names;
}

}  // namespace kesta
