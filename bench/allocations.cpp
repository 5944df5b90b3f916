// Counts the library's heap allocations and checks them against the floor's: the library adds none for statements and
// for trace lines that nobody reads, and a list takes one for its array and one per text. Fails when it does not hold.
#include <malloc.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "bare.h"
#include "library.h"
#include "operations.h"

extern "C" void* __libc_malloc(size_t size);

namespace {

bool counting = false;
size_t allocations = 0;

}  // namespace

// The program's own malloc stands before the system's for the library too, which frees with the system's free.
extern "C" void* malloc(size_t size)
{
    if (counting) ++allocations;
    return __libc_malloc(size);
}

namespace kesta::bench {
namespace {

template <class Function>
size_t CountAllocations(Function&& function)
{
    allocations = 0;
    counting = true;
    function();
    counting = false;
    return allocations;
}

bool failed = false;

void Check(const char* what, size_t library, size_t allowed)
{
    std::printf("%-58s %8zu, allowed %8zu%s\n", what, library, allowed, library > allowed ? "  missed" : "");
    if (library > allowed) failed = true;
}

/// Per operation, beyond what SQLite allocates for the statements themselves.
void CheckOperation(const Scene& scene, const OperationTraits& traits, size_t callersTexts)
{
    constexpr size_t kTimes = 20;
    size_t counts[2] = {};
    for (const Side side : {Side::kLibrary, Side::kFloor}) {
        const std::unique_ptr<Work> work = MakeWork(scene, traits, side);
        work->run(0);
        work->undo();
        counts[static_cast<size_t>(side)] = CountAllocations([&] {
            for (size_t i = 0; i < kTimes; ++i) work->run(i);
        });
        work->undo();
    }
    Check(traits.name, counts[0], counts[1] + kTimes * callersTexts);
}

void CheckList(const Scene& scene)
{
    constexpr size_t kTextsPerFile = 3;
    size_t floor = 0;
    {
        Bare db(scene.bareDatabase());
        const std::string count = CountAllText();
        const std::string list = ListAllText();
        const auto read = [&] {
            (void)db.firstInt(count.c_str(), -1);
            (void)db.readUtf8(list.c_str(), 4);
        };
        read();
        floor = CountAllocations(read);
    }
    const Library library(scene);
    SyncedFileList list = {0, nullptr};
    (void)library.GetSyncedFiles(kImei, nullptr, &list);
    (void)library.GetSyncedFiles(u"", nullptr, &list);
    const size_t before = mallinfo2().uordblks + mallinfo2().hblkhd;
    const size_t counted = CountAllocations([&] { (void)library.GetSyncedFiles(kImei, nullptr, &list); });
    const size_t held = mallinfo2().uordblks + mallinfo2().hblkhd - before;
    Check("list-all: allocations", counted, floor + 1 + kTextsPerFile * scene.files());
    size_t needed = 0;
    for (int32_t i = 0; i < list.Count; ++i) {
        const SyncedFileRecord& file = list.Items[i];
        needed += sizeof file;
        for (const char16_t* text : {file.Path, file.BasePath, file.PhonePath}) {
            needed += (std::char_traits<char16_t>::length(text) + 1) * sizeof *text;
        }
    }
    std::printf("%-58s %8.3f\n", "list-all: bytes held by records and texts",
                static_cast<double>(held) / static_cast<double>(needed));
    Check("list-all: bytes held, at most 1.2 times that", held, needed + needed / 5);
    (void)library.GetSyncedFiles(u"", nullptr, &list);
}

/// What the two sides have written is the same: the floor is the floor of this library.
void CheckSameBooks(const Scene& scene)
{
    std::string books[2];
    for (const Side side : {Side::kLibrary, Side::kFloor}) {
        for (const OperationTraits& traits : kOperations) {
            if (!traits.writes) continue;
            const std::unique_ptr<Work> work = MakeWork(scene, traits, side);
            for (size_t i = 0; i < traits.perRun; ++i) work->run(i);
            Bare db(side == Side::kLibrary ? scene.database() : scene.bareDatabase());
            for (const char* table : {"tMFile", "tMFolder", "tPhone", "tSyncContents"}) {
                books[static_cast<size_t>(side)] += db.dump((std::string("SELECT * FROM ") + table).c_str());
            }
            work->undo();
        }
    }
    Require(!books[0].empty() && books[0] == books[1], "the same books on both sides");
    std::printf("library and floor leave the same books\n");
}

}  // namespace
}  // namespace kesta::bench

int main()
{
    using namespace kesta::bench;
    for (const Letters letters : {Letters::kAscii, Letters::kAny}) {
        const Scene scene("/dev/shm", 1'000, letters);
        std::printf("%s names\n", letters == Letters::kAscii ? "ASCII" : "non-ASCII");
        for (const OperationTraits& traits : kOperations) {
            switch (traits.operation) {
                case Operation::kRecord:
                case Operation::kAnnounceKnown:
                    CheckOperation(scene, traits, 0);
                    break;
                case Operation::kAnnounceNew:
                    CheckOperation(scene, traits, 1);  // the array of main folders
                    break;
                case Operation::kLookUp:
                    CheckOperation(scene, traits, 3);
                    break;
                default:
                    break;
            }
        }
        CheckList(scene);
        CheckSameBooks(scene);
    }
    return failed ? 1 : 0;
}
