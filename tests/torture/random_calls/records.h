// Records that calls read, filled at random, and what every record that the library fills has to be.
#pragma once

#include "kesta_db/kesta_db.h"
#include "torture/random_calls/call_bytes.h"
#include "torture/random_calls/texts.h"

namespace kesta::test {

void Fill(FolderRecord& record, CallBytes& bytes, Texts& texts);
void Fill(SyncedFileRecord& record, CallBytes& bytes, Texts& texts);
void Fill(MainFolderRecord& record, CallBytes& bytes, Texts& texts);
void Fill(PhoneSettingRecord& record, CallBytes& bytes, Texts& texts);
void Fill(PlaylistRecord& record, CallBytes& bytes, Texts& texts);
void Fill(BookmarkRecord& record, CallBytes& bytes, Texts& texts);
void Fill(BackupRecord& record, CallBytes& bytes, Texts& texts);
void Fill(PimFolderRecord& record, CallBytes& bytes, Texts& texts);
void Fill(PimItemRecord& record, CallBytes& bytes, Texts& texts);
void Fill(PimLogItem& record, CallBytes& bytes, Texts& texts);

/// Fails the input unless every text of the record can be read to its end.
void Check(const FolderRecord& record);
void Check(const SyncedFileRecord& record);
void Check(const MainFolderRecord& record);
void Check(const PhoneSettingRecord& record);
void Check(const PlaylistRecord& record);
void Check(const BookmarkRecord& record);
void Check(const BackupRecord& record);
void Check(const PimFolderRecord& record);
void Check(const PimItemRecord& record);
void Check(const PimLogItem& record);

/// As above, and unless the list has elements where it counts some, and no array where it has none to count.
template <class List>
void CheckList(const List& list);

/// Ends the input as a failure, saying why.
[[noreturn]] void Fail(const char* format, ...) __attribute__((format(printf, 1, 2)));

template <class List>
void CheckList(const List& list)
{
    if (list.Count < 0) {
        Fail("a list counts %d elements", list.Count);
    }
    if (list.Count > 0 && list.Items == nullptr) {
        Fail("a list counts %d elements and has none", list.Count);
    }
    for (int32_t i = 0; i < list.Count; ++i) {
        Check(list.Items[i]);
    }
}

}  // namespace kesta::test
