// libFuzzer's entry: an input is a sequence of calls of any exports, on a database that every input starts with anew.
//
// Beside what the sanitizers see, each call has to answer what its contract knows, to leave lists and records that can
// be read, no lock on the file and well-formed trace lines; and everything that can be given back, has to be.
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <dlfcn.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "torture/random_calls/database.h"
#include "torture/random_calls/exports.h"

namespace {

using namespace kesta::test;

int64_t calls = 0;

void TellCalls()
{
    std::fprintf(stderr, "calls: %lld\n", static_cast<long long>(calls));
}

struct World {
    DataFolder folder;
    Library library{folder};
    Database database{library};
    Slots slots;
    int viewer = -1;

    World()
    {
        if (library.DB_Open() != 0) {
            Fail("the database is not open");
        }
        std::atexit(TellCalls);
    }
};

World& TheWorld()
{
    static auto* world = new World;  // as long as the library, which libFuzzer's counters keep loaded
    return *world;
}

void CheckLine(const char* line, size_t length)
{
    static constexpr char kPrefix[] = "DB TRACE >> ";
    if (length < sizeof kPrefix || std::memcmp(line, kPrefix, sizeof kPrefix - 1) != 0) {
        Fail("a line without its prefix");
    }
    if (line[length - 1] != '\n') {
        Fail("a line without its end");
    }
}

}  // namespace

// The viewer of the trace: always there, and as fast as it gets.
extern "C" int connect(int, const sockaddr*, socklen_t)
{
    return 0;
}

extern "C" ssize_t send(int, const void* bytes, size_t length, int)
{
    CheckLine(static_cast<const char*>(bytes), length);
    return static_cast<ssize_t>(length);
}

// Each fuzzer has a lock of its own: they run side by side.
extern "C" int shm_open(const char* name, int flags, mode_t mode)
{
    static auto* const original = reinterpret_cast<decltype(&shm_open)>(dlsym(RTLD_NEXT, "shm_open"));
    const std::string own = std::string(name) + "." + std::to_string(getpid());
    const int file = original(own.c_str(), flags, mode);
    shm_unlink(own.c_str());
    return file;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    World& world = TheWorld();
    if (size == 0) {
        return 0;
    }
    world.database.restore(data[0] % Database::kFiles);
    for (size_t at = 1; at + CallBytes::kSize <= size; at += CallBytes::kSize) {
        CallBytes bytes(std::span<const uint8_t, CallBytes::kSize>(data + at, CallBytes::kSize));
        Texts texts;
        Caller caller = {world.library, bytes, texts, world.slots};
        const AnyExport& chosen = AllExports()[bytes.next() % AllExports().size()];
        const int32_t result = chosen.call(caller);
        CheckResult(chosen.name, result);
        if (world.database.isLocked()) {
            Fail("%s() left a lock on the database", chosen.name);
        }
        ++calls;
    }
    world.slots.release(world.library);
    return 0;
}
