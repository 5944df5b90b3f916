#include "media/gallery.h"

#include <array>
#include <cmath>
#include <list>
#include <type_traits>

#include "core/list.h"
#include "core/text.h"
#include "media/folder_records.h"

namespace kesta {
namespace {

/// A folder with a path of its own.
class OwnFolder {
public:
    explicit OwnFolder(const FolderRecord& folder) : folder_(folder) { folder_.Path = DuplicateText(folder.Path); }
    OwnFolder(const OwnFolder&) = delete;
    OwnFolder& operator=(const OwnFolder&) = delete;
    ~OwnFolder() { FreeText(folder_.Path); }

    [[nodiscard]] FolderRecord& record() { return folder_; }
    [[nodiscard]] const FolderRecord& record() const { return folder_; }
    /// Leaves the path to the caller.
    FolderRecord release()
    {
        FolderRecord folder = folder_;
        folder_.Path = nullptr;
        return folder;
    }

private:
    FolderRecord folder_;
};

using Run = std::list<OwnFolder>;

/// Compares by code units, a missing path as the empty one.
int ComparePaths(const DbChar* a, const DbChar* b)
{
    static constexpr DbChar kEmpty[] = {0};
    if (a == nullptr) {
        a = kEmpty;
    }
    if (b == nullptr) {
        b = kEmpty;
    }
    for (; *a != 0 && *a == *b; ++a, ++b) {
    }
    return *a == *b ? 0 : *a < *b ? -1 : 1;
}

FolderRecord& Append(Run& run, const FolderRecord& folder)
{
    return run.emplace_back(folder).record();
}

/// Adds as the processor does, without minding an overflow.
template <class Integer>
Integer WrappingSum(Integer a, Integer b)
{
    using Unsigned = std::make_unsigned_t<Integer>;
    return static_cast<Integer>(static_cast<Unsigned>(a) + static_cast<Unsigned>(b));
}

void AppendBoth(Run& run, const FolderRecord& picture, const FolderRecord& video)
{
    FolderRecord& both = Append(run, picture);
    both.Count = WrappingSum(picture.Count, video.Count);
    both.Size = WrappingSum(picture.Size, video.Size);
    both.TotalSize = WrappingSum(picture.TotalSize, video.TotalSize);
    both.Selected = picture.Selected != 0 || video.Selected != 0 ? 1 : 0;
    both.Deleted = picture.Deleted != 0 && video.Deleted != 0 ? 1 : 0;
}

Run Pair(const FolderList& pictures, const FolderList& videos)
{
    Run merged;
    int32_t i = 0;
    int32_t j = 0;
    while (j < videos.Count && (i < pictures.Count || pictures.Count == 0)) {
        const FolderRecord& video = videos.Items[j];
        const int order = pictures.Count == 0 ? 1 : ComparePaths(pictures.Items[i].Path, video.Path);
        if (order == 0) {
            AppendBoth(merged, pictures.Items[i++], video);
            ++j;
        } else {
            Append(merged, order < 0 ? pictures.Items[i++] : videos.Items[j++]);
        }
    }
    return merged;
}

/// Whether two folders were added at least a second apart: -1, 0 or 1 as the first is earlier, equal or later.
int CompareAddTimes(const FolderRecord& a, const FolderRecord& b)
{
    constexpr double kSecondsPerDay = 86400;
    constexpr double kHalfSecond = 0.5 / kSecondsPerDay;
    double days = a.AddTime.Days - b.AddTime.Days;
    days += days >= 0 ? kHalfSecond : -kHalfSecond;
    const double seconds = std::trunc(days * kSecondsPerDay);
    return seconds < 0 ? -1 : seconds > 0 ? 1 : 0;
}

void MergeIn(Run& run, Run& other)
{
    // Deliberate: any difference puts the folder merged in first, whichever of the two is later. The order that comes
    // of it is not by time, but always the same.
    run.merge(other, [](const OwnFolder& theirs, const OwnFolder& ours) {
        return CompareAddTimes(theirs.record(), ours.record()) != 0;
    });
}

/// Merge sort through bins that hold runs of doubling length; the last bin takes what is more.
void Sort(Run& folders)
{
    constexpr size_t kBins = 25;
    std::array<Run, kBins> bins;
    size_t used = 0;
    while (!folders.empty()) {
        Run carried;
        carried.splice(carried.begin(), folders, folders.begin());
        size_t bin = 0;
        for (; bin < used && !bins[bin].empty(); ++bin) {
            MergeIn(bins[bin], carried);
            carried.swap(bins[bin]);
        }
        if (bin == kBins) {
            MergeIn(bins[bin - 1], carried);
        } else {
            carried.swap(bins[bin]);
            if (bin == used) {
                ++used;
            }
        }
    }
    for (size_t bin = 1; bin < used; ++bin) {
        MergeIn(bins[bin], bins[bin - 1]);
    }
    if (used > 0) {
        folders.swap(bins[used - 1]);
    }
}

}  // namespace

void MergeGallery(FolderList& pictures, const FolderList& videos)
{
    if (videos.Count == 0) {
        return;
    }
    Run merged = Pair(pictures, videos);
    Sort(merged);
    EmptyList(pictures);
    AllocateList(pictures, static_cast<int32_t>(merged.size()));
    for (OwnFolder& folder : merged) {
        pictures.Items[pictures.Count++] = folder.release();
    }
}

}  // namespace kesta
