#include "operations.h"

#include "families.h"

namespace kesta::bench {

std::unique_ptr<Work> MakeWork(const Scene& scene, const OperationTraits& traits, Side side)
{
    switch (traits.operation) {
        case Operation::kRecord:
        case Operation::kLookUp:
        case Operation::kListAll:
        case Operation::kListFolder:
        case Operation::kListFolders:
            return MakeMediaWork(scene, traits, side);
        case Operation::kAnnounceKnown:
        case Operation::kAnnounceNew:
            return MakePhoneWork(scene, traits, side);
        case Operation::kAddNewPlaylist:
        case Operation::kAddUnchangedPlaylist:
        case Operation::kAddChangedPlaylist:
        case Operation::kListPlaylists:
            return MakePlaylistWork(scene, traits, side);
        case Operation::kAddMark:
        case Operation::kLookUpMark:
        case Operation::kReadMark:
        case Operation::kListMarks:
            return MakeBookmarkWork(scene, traits, side);
        case Operation::kAddPimItem:
        case Operation::kListPimItems:
            return MakePimWork(scene, traits, side);
        case Operation::kSavePimLog:
        case Operation::kReadPimLog:
            return MakePimLogWork(scene, traits, side);
    }
    return nullptr;
}

}  // namespace kesta::bench
