// Adding a playlist: four statements, each tried whatever became of the one before, and each retried while the database
// is busy. Together they confirm a row that ClearAll left unconfirmed, refresh one that is there, or insert a new one.
#include "library/main_folders.h"
#include "library/phone_lookup.h"
#include "playlists/playlists.h"

namespace kesta::playlists {
namespace {

/// The lines of one step.
struct StepLines {
    Format<Name> done;
    Format<Name> busy;
    Format<Name> error;
    Format<Name> failed;
    bool constraintIsFailure;
};

constexpr StepLines kSyncedRecord = {
    "Information in %s(), Updated synced record.\n", "Information in %s(), Busy when update synced record.\n",
    "Information in %s(), Not synced record or error.\n", "Error in %s(), Update synced record failed.\n", true};
constexpr StepLines kUnsyncedRecord = {
    "Information in %s(), Updated unsynced record.\n", "Information in %s(), Busy when update unsynced record.\n",
    "Information in %s(), Not unsynced record or error.\n", "Error in %s(), Update unsynced record failed.\n", true};
constexpr StepLines kInformation = {
    "Information in %s(), Updated information.\n", "Information in %s(), Busy when update information.\n",
    "Information in %s(), Update information error.\n", "Error in %s(), Update information failed.\n", true};
// For a known playlist the insert fails on the key, which is as it should be.
constexpr StepLines kInsert = {
    "Information in %s(), New playlist inserted.\n", "Information in %s(), Busy when insert new playlist.\n",
    "Information in %s(), Not new playlist or error.\n", "Error in %s(), Insert new playlist failed.\n", false};

/// Up to ten attempts while the database is busy, each followed by a longer sleep, on top of what the connection itself
/// waits. `last` is the code that counts should an exception end the call.
void ExecWithRetry(Connection& db, Name self, const Sql& sql, const StepLines& lines, SqliteCode& last)
{
    constexpr uint32_t kAttempts = 10;
    for (uint32_t i = 0; i == 0 || (i < kAttempts && last == SqliteCode::kBusy); ++i) {
        last = db.exec(sql);
        if (last == SqliteCode::kBusy) {
            DbTrace(lines.busy, self);
            platform::services.sleep(567 + 123 * i);  // after the last attempt too
        }
    }
    if (last == SqliteCode::kOk) {
        return DbTrace(lines.done, self);
    }
    if (last != SqliteCode::kBusy) {
        DbTrace(lines.error, self);
    }
    if (last != SqliteCode::kConstraint || lines.constraintIsFailure) {
        DbTrace(lines.failed, self);
    }
}

/// One playlist on its way through the steps.
class Addition {
public:
    explicit Addition(Routine self) : db_(self.db), self_{self.trail.routine()} {}

    template <class... Args>
    void step(const StepLines& lines, const FormatFor<Args...>& format, const Args&... args)
    {
        DbTrace("Information in %s(), Exec SQL: %s.\n", self_, Formatted<Args...>{format, {args...}});
        ExecWithRetry(db_, self_, WideSql(format, args...), lines, last_);
    }

    [[nodiscard]] SqliteCode last() const { return last_; }

private:
    Connection& db_;
    Name self_;
    SqliteCode last_ = SqliteCode::kError;
};

constexpr int32_t Number(PlaylistFlag flag)
{
    return static_cast<int32_t>(flag);
}

void RunSteps(Addition& addition, int32_t phoneId, const PlaylistRecord& list)
{
    // Deliberate: the digest goes in as it is; it is the caller's own and no user's text.
    const Plain digest = {list.Digest};
    const Escaped name = {list.Name};
    addition.step(
        kSyncedRecord,
        "UPDATE tPFolder SET [Flag] = %d, [Digest] = '%s', [Count] = %d, [Size] = %I64d, [TotalSize] = %I64d, "
        "[Sized] = %d WHERE [PhoneID] = %d AND [Path] = '%s' AND [Flag] = %d AND [IdInPhone] NOTNULL AND "
        "[IdInPhone] <> '(null)';",
        Number(PlaylistFlag::kCurrent), digest, list.Count, list.Size, list.TotalSize, list.Sized, phoneId, name,
        Number(PlaylistFlag::kUnconfirmed));
    addition.step(
        kUnsyncedRecord,
        "UPDATE tPFolder SET [Flag] = %d, [Digest] = '%s', [Count] = %d, [Size] = %I64d, [TotalSize] = %I64d, "
        "[Sized] = %d WHERE [PhoneID] = %d AND [Path] = '%s' AND [Flag] = %d AND ([IdInPhone] ISNULL OR "
        "[IdInPhone] = '(null)');",
        Number(PlaylistFlag::kNew), digest, list.Count, list.Size, list.TotalSize, list.Sized, phoneId, name,
        Number(PlaylistFlag::kUnconfirmed));
    addition.step(
        kInformation,
        "UPDATE tPFolder SET [Digest] = '%s', [Count] = %d, [Size] = %I64d, [TotalSize] = %I64d, [Sized] = %d "
        "WHERE [PhoneID] = %d AND [Path] = '%s';",
        digest, list.Count, list.Size, list.TotalSize, list.Sized, phoneId, name);
    addition.step(kInsert,
                  "INSERT INTO tPFolder ([PhoneID], [Path], [Digest], [Type], [Flag], [Count], [Size], [TotalSize], "
                  "[Sized], [AddTime]) VALUES (%d, '%s', '%s', %d, %d, %d, %I64d, %I64d, %d, '%s');",
                  phoneId, name, digest, list.Type, Number(PlaylistFlag::kNew), list.Count, list.Size, list.TotalSize,
                  list.Sized, FormatDateTime(Now()));
}

}  // namespace

ResultCode AddPlaylist(Routine self, const DbChar* imei, const PlaylistRecord& playlist)
{
    return ForPhone(self, imei, [&](int32_t phoneId) {
        MainFolderChangeFlags.music.store(1, std::memory_order_relaxed);
        Addition addition(self);
        try {
            RunSteps(addition, phoneId, playlist);
        } catch (...) {
            self.trail.exception();
            return PassThrough(addition.last());
        }
        return ResultCode::kSuccess;
    });
}

}  // namespace kesta::playlists
