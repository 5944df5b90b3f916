// The changes that bring the lists themselves to the phone, and take them off it.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "phone/phone_layout.h"
#include "phone/phone_paths.h"
#include "phone/phone_view.h"
#include "report/report.h"
#include "stages/playlists/list_text.h"
#include "stages/playlists/playlist_stage.h"

namespace kesta {

class ListChanges {
public:
    ListChanges(PlaylistRun& state, Session& session, Plan& plan)
        : state_(state),
          phone_(session.phone),
          changes_(ChangesOf(session)),
          report_(session.report),
          plan_(plan),
          paths_(std::string(kPlaylistFolder), session.phone)
    {
    }

    /// Removals first. Where two lists have had one phone path, the file of the one that stays is not removed.
    void add();

private:
    /// A list whose file on the phone is to be written.
    struct Work {
        const ListToBring* bring = nullptr;
        ListText contents;
        std::string phonePath;
        std::string keepAs;
        bool isNew = false;    // the phone path is not recorded yet
        bool isThere = false;  // the very same list lies there already
    };

    void findWork();
    void addRemoval(const RecordedPlaylist& list);
    void addForgetting(const RecordedPlaylist& list);
    /// For a list that somebody has changed on the phone; empty for any other one.
    [[nodiscard]] std::string keptPathOf(const std::string& phonePath);
    [[nodiscard]] Change toChange(const Work& work);
    [[nodiscard]] bool isOnPhone(const Work& work) const;
    /// Where the member lies on the phone now; empty when it does not.
    [[nodiscard]] std::string pathOf(const ListMember& member) const;
    [[nodiscard]] std::set<std::string> listsWithFiles() const;

    PlaylistRun& state_;
    const Phone& phone_;
    PhoneChanges changes_;
    Report& report_;
    Plan& plan_;
    PhonePaths paths_;
    std::vector<Work> work_;
    std::set<std::string> pathsInUse_;  // case keys
};

}  // namespace kesta
