// Contacts and calendar entries as the client handles them, and the names that the database knows them by.
//
// A folder's id is "<kind>-<digest of the file's path>-<digest of the calendar's name>", an entry's adds the digest of
// its UID: whatever paths, names and UIDs hold, the ids stay short, ASCII and without quotes.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "database/database.h"
#include "database/pim_kind.h"

namespace kesta {

struct PimEntry {
    std::string id;
    std::string bytes;
    std::string digest;                 // of what the entry says, however it is written
    std::optional<LocalTime> modified;  // as the entry says
};

/// Begins the ids of all folders and entries of one file. Takes the file's canonical path.
[[nodiscard]] std::string PimSourceId(PimKind kind, std::string_view path);
/// The name is empty for contacts and for a calendar without one.
[[nodiscard]] std::string PimFolderId(const std::string& sourceId, std::string_view name);
/// Copies of one UID in a folder are numbered from 1.
[[nodiscard]] std::string PimEntryId(const std::string& folderId, std::string_view uid, size_t copy);
/// The part of an entry's id that names its folder; empty for an id of another form.
[[nodiscard]] std::string FolderOfPimEntry(PimKind kind, const std::string& entryId);
[[nodiscard]] bool IsOfPimSource(const std::string& folderId, const std::string& sourceId);

/// What a phone has of an entry, as its log says: which file holds it, and what it holds.
struct PimCopy {
    std::string file;    // PimFileDigest of the file's name
    std::string digest;  // of the contents
};
[[nodiscard]] std::string PimFileDigest(std::string_view fileName);
[[nodiscard]] std::string ToLuid(const PimCopy& copy);
/// Empty fields for a text of another form.
[[nodiscard]] PimCopy FromLuid(const std::string& luid);

/// Reads digest and time out of a stored entry.
[[nodiscard]] PimEntry ReadStored(PimKind kind, PimItem item);

/// What the stored contents call themselves; empty when they cannot be read.
[[nodiscard]] std::string TitleOfEntry(PimKind kind, const std::string& bytes);

}  // namespace kesta
