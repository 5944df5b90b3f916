// What is measured: each operation through the library's exports, and beside it its baseline.
#pragma once

#include <cstddef>
#include <memory>

#include "data_set.h"

namespace kesta::bench {

enum class Operation {
    kRecord,
    kLookUp,
    kListAll,
    kListFolder,
    kListFolders,
    kAnnounceKnown,
    kAnnounceNew,
    kAddNewPlaylist,
    kAddUnchangedPlaylist,
    kAddChangedPlaylist,
    kListPlaylists,
    kAddBookmark,
    kLookUpBookmark,
    kReadBookmark,
    kListBookmarks,
    kAddPimItem,
    kListPimItems,
    kSavePimLog,
    kReadPimLog,
};

enum class Kind {
    kWriter,  // its time hangs on the disk, and the database changes
    kReader,
    kList,     // a reader whose work grows with the entries
    kListPart  // a list of some of them
};

/// The second baseline leaves texts in the form in which the file has them: without a conversion, which allocates.
enum class Side { kLibrary, kBaseline, kUtf8Baseline };

struct OperationTraits {
    Operation operation;
    Family family;
    const char* name;
    double goal;  // instructions, as a ratio to the baseline; 0.05 more where letters are not ASCII
    Kind kind;
    size_t perRun;       // how often it is done in a row; for a writer no more than that
    size_t allocations;  // how many are allowed beyond the baseline's and those of a list

    [[nodiscard]] constexpr bool writes() const { return kind == Kind::kWriter; }
};

inline constexpr OperationTraits kOperations[] = {
    {Operation::kRecord, Family::kMedia, "record", 0.45, Kind::kWriter, 500, 0},
    {Operation::kLookUp, Family::kMedia, "look-up", 0.25, Kind::kReader, 500, 3},
    {Operation::kListAll, Family::kMedia, "list-all", 0.90, Kind::kList, 1, 0},
    {Operation::kListFolder, Family::kMedia, "list-folder", 1.00, Kind::kListPart, 4, 0},
    // Every folder, one after the other, beside one listing of everything.
    {Operation::kListFolders, Family::kMedia, "list-folders", 5.00, Kind::kListPart, 1, 0},
    {Operation::kAnnounceKnown, Family::kMedia, "announce-known", 0.30, Kind::kReader, 500, 0},
    // The array of main folders.
    {Operation::kAnnounceNew, Family::kMedia, "announce-new", 0.75, Kind::kWriter, 50, 1},
    {Operation::kAddNewPlaylist, Family::kPlaylists, "add-playlist:new", 0.60, Kind::kWriter, 100, 0},
    {Operation::kAddUnchangedPlaylist, Family::kPlaylists, "add-playlist:unchanged", 0.60, Kind::kWriter, 100, 0},
    {Operation::kAddChangedPlaylist, Family::kPlaylists, "add-playlist:changed", 0.60, Kind::kWriter, 100, 0},
    {Operation::kListPlaylists, Family::kPlaylists, "list-playlists", 0.96, Kind::kList, 1, 0},
    {Operation::kAddBookmark, Family::kBookmarks, "add-bookmark", 0.45, Kind::kWriter, 500, 0},
    {Operation::kLookUpBookmark, Family::kBookmarks, "look-up-bookmark", 0.25, Kind::kReader, 500, 0},
    {Operation::kReadBookmark, Family::kBookmarks, "read-bookmark", 0.25, Kind::kReader, 500, 3},
    {Operation::kListBookmarks, Family::kBookmarks, "list-bookmarks", 0.98, Kind::kList, 1, 0},
    {Operation::kAddPimItem, Family::kPim, "add-pim-item", 0.60, Kind::kWriter, 500, 0},
    // The work area for the items' ids.
    {Operation::kListPimItems, Family::kPim, "list-pim-items", 0.55, Kind::kList, 1, 1},
    {Operation::kSavePimLog, Family::kPim, "save-pim-log", 0.60, Kind::kWriter, 1, 0},
    {Operation::kReadPimLog, Family::kPim, "read-pim-log", 0.95, Kind::kList, 1, 0},
};

/// What a list that the library has handed out consists of.
struct ListSize {
    size_t pieces = 0;  // texts and blobs
    size_t bytes = 0;   // of the records and of the pieces
};

/// An operation on one side, ready to be done again and again. Nothing is prepared within run().
class BenchmarkCase {
public:
    virtual ~BenchmarkCase() = default;
    /// The i-th time; a writer is run once for each i below `perRun`.
    virtual void run(size_t i) = 0;
    /// Takes back what a writer has written.
    virtual void undo() {}
    /// The list that the library has handed out last.
    [[nodiscard]] virtual ListSize list() const { return {}; }
    /// Frees it.
    virtual void dropList() {}
};

std::unique_ptr<BenchmarkCase> MakeCase(const DataSet& dataSet, const OperationTraits& traits, Side side);

}  // namespace kesta::bench
