#include "operations.h"

#include "families.h"

namespace kesta::bench {

std::unique_ptr<BenchmarkCase> MakeCase(const DataSet& dataSet, const OperationTraits& traits, Side side)
{
    switch (traits.operation) {
        case Operation::kRecord:
        case Operation::kLookUp:
        case Operation::kListAll:
        case Operation::kListFolder:
        case Operation::kListFolders:
            return MakeMediaCase(dataSet, traits, side);
        case Operation::kAnnounceKnown:
        case Operation::kAnnounceNew:
            return MakePhoneCase(dataSet, traits, side);
        case Operation::kAddNewPlaylist:
        case Operation::kAddUnchangedPlaylist:
        case Operation::kAddChangedPlaylist:
        case Operation::kListPlaylists:
            return MakePlaylistCase(dataSet, traits, side);
        case Operation::kAddBookmark:
        case Operation::kLookUpBookmark:
        case Operation::kReadBookmark:
        case Operation::kListBookmarks:
            return MakeBookmarkCase(dataSet, traits, side);
        case Operation::kAddPimItem:
        case Operation::kListPimItems:
            return MakePimCase(dataSet, traits, side);
        case Operation::kSavePimLog:
        case Operation::kReadPimLog:
            return MakePimLogCase(dataSet, traits, side);
    }
    return nullptr;
}

}  // namespace kesta::bench
