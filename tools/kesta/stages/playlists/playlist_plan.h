// What a sync has to do about playlists, from the lists of the PC, the database and the phone. Changes nothing.
#pragma once

#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "database/database.h"
#include "stages/media/plan.h"
#include "stages/playlists/pc_playlists.h"
#include "sync/deletion_guard.h"

namespace kesta {

struct PlaylistPlanInput {
    const std::vector<PcPlaylist>& lists;
    const std::vector<RecordedPlaylist>& recorded;                   // after the lists of the PC have been confirmed
    const std::map<std::string, std::vector<std::string>>& members;  // of the recorded lists, as the phone has them
    const std::vector<RecordedFile>& files;                          // that were copied for playlists
    const MediaPhonePaths& media;
    DeletionGuard& guard;
    PhoneChanges& changes;
};

/// A list that is to be on the phone as the PC has it.
struct ListToBring {
    const PcPlaylist* list = nullptr;
    const RecordedPlaylist* record = nullptr;
};

struct PlaylistPlan {
    std::vector<ListToBring> lists;
    std::vector<const RecordedPlaylist*> obsolete;   // to be removed from the phone and the database
    std::vector<const RecordedPlaylist*> forgotten;  // only the database still has them
    std::vector<const RecordedPlaylist*> notSelected, deletedOnPhone;
    FilePlan files;                        // removals and copies of members
    FilePlan superseded;                   // members that media sync carries by now: removed when no list names them
    std::vector<RecordedFile> reassigned;  // members of obsolete lists, under the lists that need them still
    std::map<std::string, std::string> phonePaths;  // of members by their path on the PC, once all is executed
    size_t deferred = 0;  // lists to be removed or emptied, since they are more than half of those on the phone
};

[[nodiscard]] PlaylistPlan PlanPlaylists(const PlaylistPlanInput& input, const PhoneView& phone);

/// Where media sync has the member on the phone; empty when it has not.
[[nodiscard]] std::string PathInMedia(const ListMember& member, const MediaPhonePaths& media, const PhoneView& phone);

/// The list's own phone path, when the database tells one that can be this client's; else empty.
[[nodiscard]] std::string PhonePathOfList(const RecordedPlaylist& list);

}  // namespace kesta
