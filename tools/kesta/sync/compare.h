// What has to change so that what is recorded becomes what is wanted. The one diff of all families:
//
//     struct FileRules : CompareRules {
//         static std::string_view key(const RecordedFile& file) { return file.path; }
//         static std::string_view key(const ScannedFile& file) { return file.path; }
//         static bool isSame(const RecordedFile& recorded, const ScannedFile& wanted);
//     };
//     const auto diff = Compare(recorded, wanted, FileRules());
#pragma once

#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace kesta {

enum class Comparison { kNew, kChanged, kSame };

template <class Recorded, class Wanted>
struct Diff {
    struct Item {
        Comparison state = Comparison::kNew;
        const Wanted* wanted = nullptr;
        const Recorded* recorded = nullptr;  // none of what is new
    };
    // They point into what was compared.
    std::vector<Item> items;                // all that is wanted, in its order
    std::vector<const Recorded*> removed;   // in the order of the records, like the next two
    std::vector<const Recorded*> deferred;  // to be removed, but the guard makes it wait
    std::vector<const Recorded*> kept;      // not wanted, but not known to be gone either
};

/// Besides these, rules have key() for either type and isSame().
struct CompareRules {
    /// Whether what is recorded and not wanted is gone, and not merely unseen.
    template <class Recorded>
    [[nodiscard]] static bool isGone(const Recorded& /*recorded*/)
    {
        return true;
    }
    /// Asked once: whether so many removals have to wait.
    [[nodiscard]] static bool defers(size_t /*removals*/) { return false; }
};

/// Of several records with one key the first counts; what is wanted has each key once.
template <class Recorded, class Wanted, class Rules>
[[nodiscard]] Diff<Recorded, Wanted> Compare(const std::vector<Recorded>& recorded, const std::vector<Wanted>& wanted,
                                             const Rules& rules)
{
    Diff<Recorded, Wanted> diff;
    std::unordered_set<std::string_view> wantedKeys;
    for (const Wanted& item : wanted) {
        wantedKeys.insert(rules.key(item));
    }
    std::unordered_map<std::string_view, const Recorded*> known;
    for (const Recorded& record : recorded) {
        if (wantedKeys.contains(rules.key(record))) {
            known.emplace(rules.key(record), &record);
        } else {
            (rules.isGone(record) ? diff.removed : diff.kept).push_back(&record);
        }
    }
    if (rules.defers(diff.removed.size())) {
        diff.deferred = std::exchange(diff.removed, {});
    }
    for (const Wanted& item : wanted) {
        const auto found = known.find(rules.key(item));
        if (found == known.end()) {
            diff.items.push_back({Comparison::kNew, &item, nullptr});
        } else {
            const bool isSame = rules.isSame(*found->second, item);
            diff.items.push_back({isSame ? Comparison::kSame : Comparison::kChanged, &item, found->second});
        }
    }
    return diff;
}

/// A diff does not outlive what it points into.
template <class Recorded, class Wanted, class Rules>
Diff<Recorded, Wanted> Compare(std::vector<Recorded>&&, const std::vector<Wanted>&, const Rules&) = delete;
template <class Recorded, class Wanted, class Rules>
Diff<Recorded, Wanted> Compare(const std::vector<Recorded>&, std::vector<Wanted>&&, const Rules&) = delete;

}  // namespace kesta
