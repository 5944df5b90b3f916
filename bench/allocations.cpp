// Counts the library's heap allocations and checks them against the baseline's: the library adds none for statements
// and for trace lines that nobody reads, and a list takes one for its array and one per text. Fails when it does not
// hold.
#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "bare.h"
#include "library.h"
#include "operations.h"

extern "C" void* __libc_malloc(size_t size);
extern "C" void* __libc_calloc(size_t count, size_t size);
extern "C" void* __libc_realloc(void* memory, size_t size);

namespace {

bool counting = false;
size_t allocations = 0;

}  // namespace

// The program's own functions stand before the system's for the library too, which frees with the system's free.
extern "C" void* malloc(size_t size)
{
    if (counting) {
        ++allocations;
    }
    return __libc_malloc(size);
}

extern "C" void* calloc(size_t count, size_t size)
{
    if (counting) {
        ++allocations;
    }
    return __libc_calloc(count, size);
}

extern "C" void* realloc(void* memory, size_t size)
{
    if (counting) {
        ++allocations;
    }
    return __libc_realloc(memory, size);
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
    if (library > allowed) {
        failed = true;
    }
}

/// Per operation, beyond what SQLite allocates for the statements themselves.
void CheckOperation(const DataSet& dataSet, const OperationTraits& traits)
{
    const size_t times = std::min<size_t>(traits.perRun > 1 ? traits.perRun - 1 : 1, 20);
    size_t counts[2] = {};
    for (const Side side : {Side::kLibrary, Side::kBaseline}) {
        const std::unique_ptr<BenchmarkCase> benchmarkCase = MakeCase(dataSet, traits, side);
        benchmarkCase->run(0);  // compiles what stays compiled
        counts[static_cast<size_t>(side)] = CountAllocations([&] {
            for (size_t i = 1; i <= times; ++i) {
                benchmarkCase->run(i % traits.perRun);
            }
        });
        benchmarkCase->undo();
    }
    Check(traits.name, counts[0], counts[1] + times * traits.allocations);
}

void CheckList(const DataSet& dataSet, const OperationTraits& traits)
{
    const std::unique_ptr<BenchmarkCase> bare = MakeCase(dataSet, traits, Side::kUtf8Baseline);
    bare->run(0);
    const size_t baseline = CountAllocations([&] { bare->run(0); });

    const std::unique_ptr<BenchmarkCase> library = MakeCase(dataSet, traits, Side::kLibrary);
    library->run(0);
    library->dropList();
    const size_t before = mallinfo2().uordblks + mallinfo2().hblkhd;
    const size_t counted = CountAllocations([&] { library->run(0); });
    const size_t held = mallinfo2().uordblks + mallinfo2().hblkhd - before;
    const ListSize needed = library->list();
    const std::string name = traits.name;
    Check((name + ": allocations").c_str(), counted, baseline + 1 + needed.pieces + traits.allocations);
    std::printf("%-58s %8.3f\n", (name + ": bytes held by records and texts").c_str(),
                static_cast<double>(held) / static_cast<double>(needed.bytes));
    Check((name + ": bytes held, at most 1.2 times that").c_str(), held, needed.bytes + needed.bytes / 5);
}

/// What writers change, without the times at which they did.
constexpr const char* kDumps[] = {
    "SELECT * FROM tMFile;",
    "SELECT * FROM tMFolder;",
    "SELECT * FROM tPhone;",
    "SELECT * FROM tSyncContents;",
    ("SELECT ROWID, [PhoneID], [Path], [Digest], [IdInPhone], [Type], [Flag], [Count], [Size], [TotalSize], "
     "[Selected], [Sized] FROM tPFolder;"),
    "SELECT * FROM tBFile;",
    "SELECT [piID], [pfID], [PimID], HEX([Data]), [Type] FROM tPimItem;",
    "SELECT * FROM tPimLog;",
    "SELECT * FROM tPimLogItem;"};

/// What the two sides have written is the same: the baseline is the baseline of this library.
void CheckSameRows(const DataSet& dataSet, const OperationTraits& traits)
{
    std::string contents[2];
    std::string unchanged;
    for (const Side side : {Side::kLibrary, Side::kBaseline}) {
        const std::unique_ptr<BenchmarkCase> benchmarkCase = MakeCase(dataSet, traits, side);
        const auto dump = [&] {
            Bare db(side == Side::kLibrary ? dataSet.database() : dataSet.bareDatabase());
            std::string dumped;
            for (const char* query : kDumps) {
                dumped += db.dump(query);
            }
            return dumped;
        };
        unchanged = dump();
        for (size_t i = 0; i < traits.perRun; ++i) {
            benchmarkCase->run(i);
        }
        contents[static_cast<size_t>(side)] = dump();
        benchmarkCase->undo();
        Require(dump() == unchanged, "the database as it was");
    }
    Require(contents[0] != unchanged && contents[0] == contents[1], "the same rows on both sides");
    std::printf("%-58s the same rows on both sides\n", traits.name);
}

void CheckFamily(Family family, Letters letters)
{
    const DataSet dataSet("/dev/shm", family, 1'000, letters);
    for (const OperationTraits& traits : kOperations) {
        if (traits.family != family) {
            continue;
        }
        switch (traits.kind) {
            case Kind::kWriter:
                CheckOperation(dataSet, traits);
                CheckSameRows(dataSet, traits);
                break;
            case Kind::kReader:
                CheckOperation(dataSet, traits);
                break;
            case Kind::kList:
                CheckList(dataSet, traits);
                break;
            case Kind::kListPart:
                break;
        }
    }
}

}  // namespace
}  // namespace kesta::bench

int main()
{
    using namespace kesta::bench;
    for (const Letters letters : {Letters::kAscii, Letters::kAny}) {
        std::printf("%s names\n", letters == Letters::kAscii ? "ASCII" : "non-ASCII");
        for (const Family family : kFamilies) {
            CheckFamily(family, letters);
        }
    }
    return failed ? 1 : 0;
}
