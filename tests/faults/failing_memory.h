// A library whose memory fails when it is told to, and the count of what its callers hold.
#pragma once

#include <sqlite3.h>

#include <functional>
#include <set>
#include <string_view>

#include "faults/memory_fault.h"
#include "kesta_db/kesta_db.h"
#include "unit/module_under_test.h"

namespace kesta::test {

inline constexpr char kImei[] = "351111";

/// SQLite serves small wishes from a store of its own, which would keep them from the allocator. Said before its first
/// use.
inline const int kNoLookaside = sqlite3_config(SQLITE_CONFIG_LOOKASIDE, 0, 0);

/// Arrays and texts that callers hold, by the trace. Lines are read without allocating.
inline int held = 0;

inline void CountMemoryLine(const DbChar* line, size_t length) noexcept
{
    const auto endsWith = [&](std::string_view end) {
        if (length < end.size()) {
            return false;
        }
        for (size_t i = 0; i < end.size(); ++i) {
            if (line[length - end.size() + i] != static_cast<DbChar>(end[i])) {
                return false;
            }
        }
        return true;
    };
    if (endsWith(" NEW.\n")) {
        ++held;
    }
    if (endsWith(" DELETE.\n")) {
        --held;
    }
}

class FailingMemory : public ModuleUnderTest {
protected:
    FailingMemory()
    {
        platform::services.writeTraceLine = &CountMemoryLine;
        EXPECT_EQ(DB_LIB_PhoneDetected(W(kImei), W("x")), 1);
        sql.exec(
            "UPDATE tPhone SET [PhotoPath] = 'p', [CalPeriodStr] = 'c', [ContactFolderId] = 'f';"
            "UPDATE tLibMainFolder SET [Setting] = 's';"
            "INSERT INTO tMFolder ([PhoneID], [Path], [Flag], [AddTime]) VALUES (1, 'folder', 0, ''), (1, 'g', 0, '');"
            "INSERT INTO tMFile VALUES (1, 'a', 'folder', 'q', '2024-01-01 00:00:00'), (1, 'b', 'folder', 'q', '')");
        held = 0;
        EXPECT_EQ(kNoLookaside, SQLITE_OK);
    }

    /// Lets the call meet the fault at its first, second, ... allocation, until it needs no more of them. Only
    /// `results` may come out; `after` puts things back.
    void atEveryAllocation(
        const std::set<int32_t>& results, const std::function<int32_t()>& call,
        const std::function<void()>& after = [] {})
    {
        int struck = 0;
        for (int nth = 0;; ++nth) {
            ASSERT_LT(nth, 5000);
            MemoryFault::arm(nth);
            const int32_t result = call();
            const bool wasStruck = MemoryFault::disarm();
            EXPECT_TRUE(results.contains(result)) << "result " << result << " at allocation " << nth;
            after();
            EXPECT_EQ(DB_LIB_PhoneDetected(W(kImei), W("")), 1) << nth;
            if (!wasStruck) {
                break;
            }
            ++struck;
        }
        EXPECT_GT(struck, 0);
        EXPECT_EQ(sql.text("PRAGMA integrity_check"), "ok");
    }

    /// Arguments are made before the fault is armed.
    const Text imei = W(kImei);
    const Text folder = W("folder");
};

}  // namespace kesta::test
