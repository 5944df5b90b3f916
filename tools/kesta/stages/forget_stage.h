// Takes what the user names off the phone and out of the database, although the PC still has it.
#pragma once

#include <string>

#include "stages/media/media_stage.h"
#include "stages/playlists/playlist_stage.h"
#include "sync/session.h"

namespace kesta {

/// The files of media that are the path, or lie below it, and the folders there.
class ForgetMediaStage : public Stage {
public:
    /// state: with what is recorded, as LeftoverStage leaves it.
    ForgetMediaStage(const MediaState& state, const Database& database, const std::string& imei, std::string path)
        : state_(state), records_(database, imei), path_(std::move(path))
    {
    }
    /// Whether anything of it is recorded.
    [[nodiscard]] bool isRecorded() const;
    [[nodiscard]] Plan plan(Session& session) override;

private:
    void addCategory(Category category, Session& session, Plan& plan);

    const MediaState& state_;
    MediaRecords records_;
    std::string path_;
};

/// A playlist, and the music that only it has brought. PlaylistStage takes the list itself off then.
class ForgetPlaylistStage : public Stage {
public:
    ForgetPlaylistStage(PlaylistRun& state, std::string name)
        : state_(state), files_(state, state.media), name_(std::move(name))
    {
    }
    [[nodiscard]] Plan plan(Session& session) override;

private:
    PlaylistRun& state_;
    PlaylistFileStage files_;
    std::string name_;
};

}  // namespace kesta
