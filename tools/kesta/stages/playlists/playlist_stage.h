// The playlists of one run: the lists on the phone, and the music that they need.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "stages/media/file_changes.h"
#include "stages/playlists/playlist_plan.h"
#include "sync/session.h"

namespace kesta {

/// The music that goes along with playlists.
class MemberRecords : public FileRecords {
public:
    explicit MemberRecords(kesta_db::Playlists& playlists) : playlists_(playlists) {}
    bool add(const FileChange& change) override { return playlists_.addFile(change.file); }
    void update(const FileChange& change) override { playlists_.updateFile(change.file); }
    void remove(const FileChange& change) override { playlists_.removeFile(change.file.path); }
    [[nodiscard]] bool holds(const FileChange& change) override { return IsAmong(change.file, playlists_.files()); }

private:
    kesta_db::Playlists& playlists_;
};

/// What the stages of playlists know of one run.
struct PlaylistRun {
    PlaylistRun(const Database& database, const std::string& imei) : records(database.playlists(imei)) {}

    kesta_db::Playlists records;
    MemberRecords fileRecords{records};
    PcPlaylists pc;
    std::vector<RecordedPlaylist> recorded;                   // once the lists of the PC have been confirmed
    std::map<std::string, std::vector<std::string>> members;  // of the recorded lists
    std::vector<RecordedFile> files;                          // recorded before
    MediaPhonePaths media;
    PlaylistPlan plan;
};

/// Confirms the lists of the PC and brings the music to the phone that media sync has not put there.
class PlaylistFileStage : public Stage {
public:
    PlaylistFileStage(PlaylistRun& state, const MediaPhonePaths& media) : state_(state), media_(media) {}
    [[nodiscard]] Plan plan(Session& session) override;
    /// What the planned playlists need: the confirmation of these lists of the PC, and the music.
    void addChanges(std::vector<RecordedPlaylist> lists, Plan& plan);

private:
    [[nodiscard]] bool readLists(Session& session);
    [[nodiscard]] std::vector<RecordedPlaylist> listsToConfirm();
    void confirm(const std::vector<RecordedPlaylist>& lists);
    void predictConfirmed(const std::vector<RecordedPlaylist>& lists);
    void takeInFilesOfThePhone(const PhoneFolder& phone);
    void reassign(const RecordedFile& file);

    PlaylistRun& state_;
    const MediaPhonePaths& media_;  // where media sync has put files
};

/// Brings the lists themselves to the phone, as its music lies there by now.
class PlaylistStage : public Stage {
public:
    explicit PlaylistStage(PlaylistRun& state) : state_(state) {}
    [[nodiscard]] Plan plan(Session& session) override;

private:
    PlaylistRun& state_;
};

/// The phone paths that the database has of lists and of their music.
[[nodiscard]] std::vector<std::string> PhonePathsOfPlaylists(const Database& database, const std::string& imei);

}  // namespace kesta
