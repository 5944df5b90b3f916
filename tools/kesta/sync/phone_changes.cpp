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
    constexpr int64_t kQuarter = 900, kLargest = int64_t{26} * 3600;
    const int64_t off = std::abs(seconds);
    const int64_t rest = off % kQuarter;
    return off >= kQuarter - kPhoneTimeTolerance && off <= kLargest + kPhoneTimeTolerance &&
           (rest <= kPhoneTimeTolerance || rest >= kQuarter - kPhoneTimeTolerance);
}

bool IsSameFraction(int32_t nanoseconds, int32_t other)
{
    for (const int32_t unit : {1, 100, 1'000, 1'000'000, 10'000'000, 1'000'000'000}) {
        if (nanoseconds / unit * unit == other || other / unit * unit == nanoseconds) {
            return true;
        }
    }
    return false;
}

bool PhoneChanges::hasTimeOf(const std::string& phonePath, const PcFile& pc) const
{
    const LeftFile* left = left_.find(phonePath);
    return left != nullptr && left->pcNanoseconds && *left->pcNanoseconds != 0 &&
           *left->pcNanoseconds == pc.modifiedNanoseconds;
}

bool PhoneChanges::isCopyOf(const std::string& phonePath, const PcFile& pc) const
{
    return holdsFile_(phonePath, pc.path);
}

bool PhoneChanges::isPcChanged(const std::string& phonePath, const PcFile& pc) const
{
    const LeftFile* left = left_.find(phonePath);
    return left != nullptr && left->pcNanoseconds && !IsSameFraction(*left->pcNanoseconds, pc.modifiedNanoseconds);
}

void PhoneChanges::notePc(const std::string& phonePath, const PhoneFile& there, const PcFile& pc) const
{
    const LeftFile* left = left_.find(phonePath);
    if (left == nullptr || !left->pcNanoseconds) {
        left_.leave(phonePath, {there.size, there.modifiedSeconds, left == nullptr ? std::string() : left->digest,
                                pc.modifiedNanoseconds});
    }
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
    // A run that was killed may have written it without a note.
    if (pc != nullptr && IsSameFile(there, pc->size, pc->modifiedSeconds)) {
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
        left_.leave(phonePath, {there.size, there.modifiedSeconds, {}, pc->modifiedNanoseconds});
        return false;
    }
    const bool isClockOff = std::any_of(zoneDifferences_.begin(), zoneDifferences_.end(),
                                        [&](int64_t zone) { return IsSameTime(*difference, zone); });
    return !isTimeKept && !isClockOff;
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
    left_.leave(phonePath, {there.size, there.modifiedSeconds, left->digest, left->pcNanoseconds});
    return false;
}

}  // namespace kesta
