// What is measured: each operation through the library's exports, and beside it its floor.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "scene.h"

namespace kesta::bench {

enum class Operation { kRecord, kLookUp, kListAll, kListFolder, kAnnounceKnown, kAnnounceNew };
enum class Side { kLibrary, kFloor };

struct OperationTraits {
    Operation operation;
    const char* name;
    double goal;    // instructions, as a ratio to the floor
    bool writes;    // its time hangs on the disk, and the books grow
    size_t perRun;  // how often it is done in a row; for a writer no more than that
};

inline constexpr OperationTraits kOperations[] = {
    {Operation::kRecord, "record", 1.05, true, 500},
    {Operation::kLookUp, "look-up", 1.15, false, 500},
    {Operation::kListAll, "list-all", 1.10, false, 1},
    {Operation::kListFolder, "list-folder", 1.02, false, 4},
    {Operation::kAnnounceKnown, "announce-known", 1.05, false, 500},
    {Operation::kAnnounceNew, "announce-new", 1.05, true, 50},
};

/// An operation on one side, ready to be done again and again. Nothing is prepared within run().
class Work {
public:
    virtual ~Work() = default;
    /// The i-th time; a writer is run once for each i below `perRun`.
    virtual void run(size_t i) = 0;
    /// Takes back what a writer has written.
    virtual void undo() {}
};

std::unique_ptr<Work> MakeWork(const Scene& scene, const OperationTraits& traits, Side side);

}  // namespace kesta::bench
