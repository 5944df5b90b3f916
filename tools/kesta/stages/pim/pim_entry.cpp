#include "stages/pim/pim_entry.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "formats/digest.h"
#include "formats/icalendar.h"
#include "formats/vcard.h"
#include "os/local_time.h"

namespace kesta {
namespace {

constexpr size_t kShortDigest = 16;
constexpr size_t kDigest = 32;

std::string ShortDigest(std::string_view text)
{
    return formats::Digest(text).substr(0, kShortDigest);
}

bool IsDigest(std::string_view text, size_t length)
{
    return text.size() == length && std::all_of(text.begin(), text.end(), [](char c) {
               return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
           });
}

std::optional<LocalTime> TimeOf(const std::optional<int64_t>& utcSeconds)
{
    return utcSeconds ? os::ToLocalTime(*utcSeconds) : std::nullopt;
}

}  // namespace

std::string PimSourceId(PimKind kind, std::string_view path)
{
    return fmt::format("{}-{}", KeyOf(kind), ShortDigest(path));
}

std::string PimFolderId(const std::string& sourceId, std::string_view name)
{
    return fmt::format("{}-{}", sourceId, ShortDigest(name));
}

std::string PimEntryId(const std::string& folderId, std::string_view uid, size_t copy)
{
    const std::string id = fmt::format("{}-{}", folderId, formats::Digest(uid));
    return copy < 2 ? id : fmt::format("{}-{}", id, copy);
}

std::string FolderOfPimEntry(PimKind kind, const std::string& entryId)
{
    const std::string start = fmt::format("{}-", KeyOf(kind));
    const size_t length = start.size() + kShortDigest + 1 + kShortDigest;
    if (!entryId.starts_with(start) || entryId.size() <= length || entryId[length] != '-') {
        return {};
    }
    const std::string_view digests = std::string_view(entryId).substr(start.size(), length - start.size());
    if (!IsDigest(digests.substr(0, kShortDigest), kShortDigest) || digests[kShortDigest] != '-' ||
        !IsDigest(digests.substr(kShortDigest + 1), kShortDigest)) {
        return {};
    }
    return entryId.substr(0, length);
}

bool IsOfPimSource(const std::string& folderId, const std::string& sourceId)
{
    return folderId.size() > sourceId.size() && folderId.starts_with(sourceId) && folderId[sourceId.size()] == '-';
}

std::string PimFileDigest(std::string_view fileName)
{
    return ShortDigest(fileName);
}

std::string ToLuid(const PimCopy& copy)
{
    return fmt::format("{}-{}", copy.file, copy.digest);
}

PimCopy FromLuid(const std::string& luid)
{
    const std::string_view text(luid);
    if (text.size() != kShortDigest + 1 + kDigest || text[kShortDigest] != '-') {
        return {};
    }
    const std::string_view file = text.substr(0, kShortDigest), digest = text.substr(kShortDigest + 1);
    if (!IsDigest(file, kShortDigest) || !IsDigest(digest, kDigest)) {
        return {};
    }
    return {std::string(file), std::string(digest)};
}

PimEntry ReadStored(PimKind kind, PimItem item)
{
    PimEntry entry{std::move(item.id), std::move(item.data), {}, {}};
    entry.digest = formats::Digest(entry.bytes);  // of contents that cannot be read, and so no entry's
    if (kind == PimKind::kContacts) {
        const formats::Cards read = formats::ParseCards(entry.bytes);
        if (read.cards.size() != 1 || !read.problems.empty()) {
            return entry;
        }
        entry.digest = read.cards.front().digest;
        entry.modified = TimeOf(read.cards.front().revised);
    } else {
        const formats::Calendars read = formats::ParseCalendars(entry.bytes);
        if (read.entries.size() != 1 || !read.problems.empty()) {
            return entry;
        }
        entry.digest = read.entries.front().digest;
        entry.modified = TimeOf(read.entries.front().modified);
    }
    return entry;
}

std::string TitleOfEntry(PimKind kind, const std::string& bytes)
{
    if (kind == PimKind::kContacts) {
        const formats::Cards cards = formats::ParseCards(bytes);
        return cards.cards.empty() ? std::string() : cards.cards.front().name;
    }
    const formats::Calendars calendars = formats::ParseCalendars(bytes);
    return calendars.entries.empty() ? std::string() : calendars.entries.front().summary;
}

}  // namespace kesta
