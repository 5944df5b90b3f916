#include "sync/phone_changes.h"

#include <algorithm>
#include <cstdlib>

#include "os/local_time.h"
#include "phone/phone_paths.h"

namespace kesta {
namespace {

bool IsSameTime(int64_t a, int64_t b)
{
    return std::abs(a - b) <= kPhoneTimeTolerance;
}

bool IsAsLeft(const PhoneFile& there, const LeftFile& left)
{
    return there.size == left.size && (IsSameTime(there.modifiedSeconds, left.modifiedSeconds) ||
                                       IsZoneDifference(there.modifiedSeconds - left.modifiedSeconds));
}

// How much later the phone's file is, in local time.
std::optional<int64_t> Difference(const PhoneFile& there, std::optional<LocalTime> recorded)
{
    const auto local = os::ToLocalTime(there.modifiedSeconds);
    if (!local || !recorded) {
        return std::nullopt;
    }
    return (*local - *recorded).count();
}

}  // namespace

bool IsZoneDifference(int64_t seconds)
{
    constexpr int64_t kQuarter = 900, kLargest = 26 * 3600;
    const int64_t off = std::abs(seconds);
    const int64_t rest = off % kQuarter;
    return off >= kQuarter - kPhoneTimeTolerance && off <= kLargest + kPhoneTimeTolerance &&
           (rest <= kPhoneTimeTolerance || rest >= kQuarter - kPhoneTimeTolerance);
}

void PhoneChanges::learn(const PhoneFile& there, std::optional<LocalTime> recorded, const PcFile& pc)
{
    const auto difference = Difference(there, recorded);
    if (there.entry != PhoneEntry::kFile || there.size != pc.size || !difference) {
        return;
    }
    const bool isAsCopied = recorded == pc.localTime || IsSameFile(there, pc.size, pc.modifiedSeconds);
    if (isAsCopied && IsZoneDifference(*difference)) {
        zoneDifferences_.insert(*difference);
    }
}

bool PhoneChanges::isChanged(const std::string& phonePath, const PhoneFile& there, std::optional<LocalTime> recorded,
                             const PcFile* pc) const
{
    if (force_ || there.entry != PhoneEntry::kFile) {
        return false;
    }
    const auto difference = Difference(there, recorded);
    const bool isTimeKept = difference && std::abs(*difference) <= kPhoneTimeTolerance;
    const bool isPcAsCopied = pc != nullptr && recorded == pc->localTime;
    const bool isSizeAsOnPc = pc != nullptr && there.size == pc->size;
    if (isPcAsCopied && isSizeAsOnPc && difference && (isTimeKept || IsZoneDifference(*difference))) {
        return false;
    }
    if (const LeftFile* left = left_.find(phonePath)) {
        if (IsAsLeft(there, *left)) {
            return false;
        }
        if (there.size != left->size || !left->digest.empty() || !difference) {
            return isChanged(phonePath, there);
        }
    }
    if (!difference) {
        return false;
    }
    if (isPcAsCopied) {
        if (!isSizeAsOnPc || !holdsFile_(phonePath, pc->path)) {
            return true;
        }
        left_.leave(phonePath, {there.size, there.modifiedSeconds, {}});
        return false;
    }
    const bool isWanted = pc != nullptr && IsSameFile(there, pc->size, pc->modifiedSeconds);
    const bool isClockOff = std::any_of(zoneDifferences_.begin(), zoneDifferences_.end(),
                                        [&](int64_t zone) { return IsSameTime(*difference, zone); });
    return !isTimeKept && !isWanted && !isClockOff;
}

bool PhoneChanges::isChanged(const std::string& phonePath, const PhoneFile& there) const
{
    const LeftFile* left = left_.find(phonePath);
    if (force_ || left == nullptr || there.entry != PhoneEntry::kFile || IsAsLeft(there, *left)) {
        return false;
    }
    // A phone that was restored from a backup has the same texts with other times.
    if (there.size != left->size || left->digest.empty() || digestOf_(phonePath) != left->digest) {
        return true;
    }
    left_.leave(phonePath, {there.size, there.modifiedSeconds, left->digest});
    return false;
}

}  // namespace kesta
