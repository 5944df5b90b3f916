// Several threads in one process.
#include <algorithm>
#include <array>
#include <atomic>
#include <optional>
#include <string>
#include <thread>

#include "support/api_test.h"

namespace kesta::test {
namespace {

/// The routine that an entry or exit line names, if it is one.
std::optional<std::string> Named(const std::string& line, const std::string& kind)
{
    if (!line.starts_with(kind)) {
        return std::nullopt;
    }
    return line.substr(kind.size(), line.find('(') - kind.size());
}

/// How many calls the lines tell of; fails the test where one begins before another has ended.
int CountWholeCalls(const std::vector<std::string>& lines)
{
    int calls = 0;
    std::optional<std::string> inside;
    for (const std::string& line : lines) {
        if (const auto entered = Named(line, "Enter ")) {
            EXPECT_EQ(inside, std::nullopt) << line;
            inside = entered;
        } else if (const auto left = Named(line, "Exit ")) {
            EXPECT_EQ(inside, left) << line;
            inside.reset();
            ++calls;
        } else {
            EXPECT_NE(inside, std::nullopt) << line;
        }
    }
    EXPECT_EQ(inside, std::nullopt);
    return calls;
}

using Threads = ApiTest;

TEST_F(Threads, CallsAtOnce_TraceLinesNeverInterleaveWithinOneExport)
{
    constexpr int kRounds = 60;
    (void)trace.take();
    std::atomic<int> wrong = 0;
    MainFolderList list = {};
    std::thread lister([&] {
        for (int i = 0; i < kRounds; ++i) {
            if (lib.DB_LIB_GetAllMainFolders(&list) != 0 || list.Count != 7) {
                ++wrong;
            }
        }
    });
    std::thread announcer([&] {
        for (int i = 0; i < kRounds; ++i) {
            if (lib.DB_LIB_PhoneDetected(W("351111"), W("Phone")) != 1) {
                ++wrong;
            }
        }
    });
    std::thread opener([&] {
        for (int i = 0; i < kRounds; ++i) {
            if (lib.DB_Open() != 0) {
                ++wrong;
            }
        }
    });
    lister.join();
    announcer.join();
    opener.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(CountWholeCalls(trace.take()), 3 * kRounds);
    release(list);
}

TEST_F(Threads, WritersAtOnce_EveryRowIsThere)
{
    constexpr int kThreads = 4;
    constexpr int kPhones = 10;
    std::array<std::thread, kThreads> threads;
    std::atomic<int> failed = 0;
    for (int t = 0; t < kThreads; ++t) {
        threads[static_cast<size_t>(t)] = std::thread([&, t] {
            for (int i = 0; i < kPhones; ++i) {
                if (lib.DB_LIB_PhoneDetected(W(std::to_string(t * 100 + i)), W("Phone")) < 1) {
                    ++failed;
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(failed, 0);
    EXPECT_EQ(sql.text("SELECT COUNT(*), COUNT(DISTINCT [IMEI]) FROM tPhone"), "40|40");
    EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tSyncContents"), "280");  // seven main folders a phone
}

/// These take the lock further inside than the others do.
TEST_F(Threads, ThinExportsAtOnce_EveryRowIsThere)
{
    constexpr int kThreads = 6;
    constexpr int kFiles = 20;
    ASSERT_EQ(lib.DB_LIB_PhoneDetected(W("351111"), W("Phone")), 1);
    std::array<std::thread, kThreads> threads;
    std::atomic<int> failed = 0;
    for (int t = 0; t < kThreads; ++t) {
        threads[static_cast<size_t>(t)] = std::thread([&, t] {
            for (int i = 0; i < kFiles; ++i) {
                Text path = W("C:\\Music\\" + std::to_string(t * 100 + i));
                Text folder = W("C:\\Music");
                const SyncedFileRecord file = {NullDate(), path.get(), folder.get(), folder.get()};
                if (lib.DB_MUSIC_SetAddedFile(W("351111"), &file) != 0) {
                    ++failed;
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(failed, 0);
    EXPECT_EQ(sql.text("SELECT COUNT(*), COUNT(DISTINCT [Path]) FROM tMFile"), "120|120");
}

}  // namespace
}  // namespace kesta::test
