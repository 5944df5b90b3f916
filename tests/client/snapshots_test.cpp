// Which snapshots of the database are kept.
#include "state/snapshots.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace kesta {
namespace {

using testing::ElementsAre;

// Seconds.
constexpr int64_t kHour = 3600, kDay = 24 * kHour;
constexpr int64_t kNow = 46000 * kDay;

// Ages in, ages out, the youngest first.
std::vector<int64_t> Kept(const std::vector<int64_t>& ages)
{
    std::vector<LocalTime> times;
    std::vector<int64_t> kept;
    for (const int64_t age : ages) {
        times.push_back(FromNumber(kNow - age));
    }
    const std::vector<bool> stays = ChooseSnapshots(times, FromNumber(kNow));
    for (size_t i = 0; i < ages.size(); ++i) {
        if (stays[i]) {
            kept.push_back(ages[i]);
        }
    }
    return kept;
}

TEST(Snapshots, UpToFive_AllAreKept)
{
    EXPECT_THAT(Kept({}), ElementsAre());
    EXPECT_THAT(Kept({1, 2, 3}), ElementsAre(1, 2, 3));
    EXPECT_THAT(Kept({400 * kDay, 500 * kDay}), ElementsAre(400 * kDay, 500 * kDay));
}

TEST(Snapshots, More_TheOldestOfDayWeekAndMonthAreKept)
{
    EXPECT_THAT(Kept({0, 1, kHour, 20 * kHour, 2 * kDay, 6 * kDay, 8 * kDay, 29 * kDay, 40 * kDay}),
                ElementsAre(0, 1, 20 * kHour, 6 * kDay, 29 * kDay));
}

TEST(Snapshots, ManyOfOneDay_TheLatestAndTheOldestAreKept)
{
    EXPECT_THAT(Kept({0, 1, 2, 3, 4, 5, 6}), ElementsAre(0, 1, 2, 3, 6));
}

// One is made every day, and what is not kept on that day is gone.
TEST(Snapshots, OneADay_SpreadOverAMonth)
{
    std::vector<LocalTime> times;
    for (int64_t day = 0; day < 200; ++day) {
        const LocalTime now = FromNumber(kNow + day * kDay);
        std::vector<LocalTime> all = {now};
        for (const LocalTime& time : times) {
            all.push_back(time);
        }
        const std::vector<bool> stays = ChooseSnapshots(all, now);
        times.clear();
        for (size_t i = 0; i < all.size(); ++i) {
            if (stays[i]) {
                times.push_back(all[i]);
            }
        }
        EXPECT_LE(times.size(), kMostSnapshots);
        if (day > 40) {
            EXPECT_GE(now - times.back(), std::chrono::days(7)) << "day " << day;
        }
    }
}

}  // namespace
}  // namespace kesta
