#include "stages/media/file_changes.h"

#include <algorithm>

namespace kesta {
namespace {

void Add(const FileChange& file, FileRecords& records)
{
    if (records.add(file)) {
        return;
    }
    // Recorded in the meantime by somebody else, as a rule: what counts is what lies on the phone now. But the row can
    // also have been refused for another reason, and updating a row that is not there succeeds.
    records.update(file);
    if (!records.holds(file)) {
        throw kesta_db::Error("SetAddedFile", kesta_db::Code::kExists);
    }
}

void Enter(FileChange file, FileRecords& records, const Written& written)
{
    if (written.isWritten) {
        file.size = written.size;
        file.file.modified = written.modified;
    }
    if (file.kind == ChangeKind::kRemove) {
        return records.remove(file);
    }
    if (file.kind == ChangeKind::kMove) {
        Add(file, records);
        FileChange old = file;
        old.file.path = file.oldPath;
        return records.remove(old);
    }
    if (file.kind == ChangeKind::kReplace || file.kind == ChangeKind::kRecord) {
        return records.update(file);
    }
    Add(file, records);
}

}  // namespace

bool MediaRecords::add(const FileChange& change)
{
    return database_.media(imei_, change.category).addFile(change.file);
}

void MediaRecords::update(const FileChange& change)
{
    database_.media(imei_, change.category).updateFile(change.file);
}

void MediaRecords::remove(const FileChange& change)
{
    database_.media(imei_, change.category).removeFile(change.file.path);
}

bool MediaRecords::holds(const FileChange& change)
{
    return IsAmong(change.file, database_.media(imei_, change.category).files());
}

bool IsAmong(const RecordedFile& row, const std::vector<RecordedFile>& recorded)
{
    return std::any_of(recorded.begin(), recorded.end(), [&](const RecordedFile& other) {
        return other.path == row.path && other.phonePath == row.phonePath && other.modified == row.modified;
    });
}

Change ToChange(const FileChange& file, FileRecords& records)
{
    Change change;
    change.kind = file.kind;
    change.phonePath = file.file.phonePath;
    change.subject = file.file.path;
    change.keepAs = file.keepAs;
    switch (file.kind) {
        case ChangeKind::kRemove:
            change.verb = kRemoved;
            change.counts.removed = 1;
            break;
        case ChangeKind::kMove:
            if (file.oldPhonePath == file.file.phonePath) {
                change.kind = ChangeKind::kRecord;
            } else {
                change.movedFrom = file.oldPhonePath;
            }
            change.verb = kMoved;
            change.counts.moved = 1;
            break;
        case ChangeKind::kAdopt:
            change.verb = kRecorded;
            change.counts.adopted = 1;
            break;
        case ChangeKind::kRecord:
            change.counts.unchanged = 1;
            break;
        case ChangeKind::kReplace:
            change.verb = kUpdated;
            change.counts.updated = 1;
            break;
        default:
            change.verb = kCopied;
            change.counts.added = 1;
            break;
    }
    if (change.isToWrite()) {
        change.pcFile = file.file.path;
        change.size = file.size;
    }
    change.record = [file, &records](const Written& written) { Enter(file, records, written); };
    return change;
}

}  // namespace kesta
