"""DB_GALLERY_*: images and videos seen as one."""

import math

from core import ListSlot, Slot
from media import Media
from values import plain

BINS = 25


def add_time_order(left, right):
    """-1, 0 or 1 for the AddTimes of two records, in whole seconds."""
    difference = left["AddTime"][0] - right["AddTime"][0]
    half = 0.5 / 86400
    difference = difference + half if difference >= 0 else difference - half
    seconds = math.trunc(difference * 86400)
    return (seconds > 0) - (seconds < 0)


def _merge(into, other):
    """Merges other into a list: any nonzero answer puts the element of other first."""
    merged, i = [], 0
    for element in other:
        while i < len(into) and add_time_order(element, into[i]) == 0:
            merged.append(into[i])
            i += 1
        if i == len(into):
            merged.extend(other[len(merged) - i:])
            return merged
        merged.append(element)
    return merged + into[i:]


def bin_sort(elements):
    """Elements are taken one at a time into bins of doubling length; the last bin takes what overflows."""
    bins = [[] for _ in range(BINS)]
    used = 0
    for element in elements:
        run, i = [element], 0
        while i < used and bins[i] and i < BINS - 1:
            run, bins[i] = _merge(bins[i], run), []
            i += 1
        bins[i] = _merge(bins[i], run) if bins[i] else run
        used = max(used, i + 1)
    for i in range(1, used):
        bins[i] = _merge(bins[i], bins[i - 1])
    return bins[used - 1] if used else []


def _both(image, video):
    """One record for a folder that both categories have."""
    record = dict(image)
    for field, bits in (("Count", 32), ("Size", 64), ("TotalSize", 64)):
        half = 2 ** (bits - 1)
        record[field] = (image[field] + video[field] + half) % (2 * half) - half
    record["Selected"] = 1 if image["Selected"] or video["Selected"] else 0
    record["Deleted"] = 1 if image["Deleted"] and video["Deleted"] else 0
    return record


def merged(images, videos):
    """The walk over both lists; what is left when it stops is dropped."""
    if not images:
        return list(videos)
    out, i, j = [], 0, 0
    while j < len(videos) and i < len(images):
        left, right = images[i]["Path"] or "", videos[j]["Path"] or ""
        if left == right:
            out.append(_both(images[i], videos[j]))
        else:
            out.append(dict(images[i] if left < right else videos[j]))
        i, j = i + (left <= right), j + (right <= left)
    return out


class Gallery(Media):
    def GALLERY_any(self, name, family, suffix, args):
        return self.thin(name, lambda: self._gallery(name, suffix, *args))

    def _gallery(self, name, suffix, imei, *args):
        if suffix == "GetFolders":
            return self._gallery_folders(name, imei, *args)
        if suffix.startswith("Set"):
            label = "Selected" if suffix == "SetFolderSelected" else "Deleted"
            self.enter(name, imei, args[0], more=f", {label}: {args[1]}")
            work = self.set_folder_selected if label == "Selected" else self.set_folder_deleted
            return sum([work(imei, table, *args) for table in ("tIFolder", "tVFolder")])
        self.enter(name, imei, args[0])
        if suffix == "IsFolderSelected":
            return 1 if any([self.is_folder_selected(imei, view, *args) for view in ("vIFolder", "vVFolder")]) else 0
        return 1 if all([self.is_folder_deleted(imei, view, *args) for view in ("vIFolder", "vVFolder")]) else 0

    def _gallery_folders(self, name, imei, target):
        self.empty(target)
        self.trace.line(f"Enter {name}(IMEI: {plain(imei)}).")
        videos = ListSlot("FolderRecord")
        results = [self.get_folders(imei, "tIFolder", target, ordered=False),
                   self.get_folders(imei, "tVFolder", videos, ordered=False)]
        if not any(results) and videos.count:
            self._replace(target, bin_sort(merged((target.items or [])[:target.count], videos.items[:videos.count])))
        self.empty(videos)
        return 1 if any(results) else 0

    def _replace(self, target, found):
        """How the copies between the old array and the new one show in the trace is not settled: only what is alive
        in the end is compared."""
        self.loose_memory = True
        self.empty(target)
        self.allocate(target, len(found))
        target.count = len(found)
        for i, record in enumerate(found):
            item = target.items[i] = Slot("FolderRecord")
            item.update(record)
            if record["Path"] is not None:
                item.owned["Path"] = self.trace.new()
