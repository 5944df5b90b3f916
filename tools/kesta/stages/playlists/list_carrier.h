// Brings the lists themselves to the phone and takes them off it: the phone first, then the database.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "database/playlists.h"
#include "phone/phone_folder.h"
#include "phone/phone_paths.h"
#include "report/progress.h"
#include "report/summary.h"
#include "stages/playlists/list_text.h"
#include "stages/playlists/playlist_plan.h"

namespace kesta {

/// A list whose copy on the phone is to be written.
struct ListWork {
    ListToBring bring;
    ListText contents;
    std::string place;
    bool isNew = false;    // the place is not recorded yet
    bool isThere = false;  // the very same list lies there already
};

class ListCarrier {
public:
    ListCarrier(PlaylistRecords& database, PhoneFolder& phone, Progress& progress, Summary& summary,
                FamilyCounts& counts)
        : database_(database), phone_(phone), progress_(progress), summary_(summary), counts_(counts)
    {
    }

    /// The lists of the plan that are not on the phone as they should be.
    [[nodiscard]] std::vector<ListWork> findWork(const PlaylistPlan& plan,
                                                 const std::vector<RecordedPlaylist>& recorded,
                                                 const std::function<std::string(const ListMember&)>& placeOf);
    /// members: what the database has for each list. Answers whether every list got there.
    bool write(const std::vector<ListWork>& work, const std::map<std::string, std::vector<std::string>>& members);
    /// Lists whose files are still recorded stay for the next run.
    void remove(const std::vector<const RecordedPlaylist*>& leaving, const std::vector<RecordedFile>& files);
    /// Takes lists that the phone does not have out of the database.
    void forget(const std::vector<const RecordedPlaylist*>& lists, const std::vector<RecordedFile>& files);

private:
    [[nodiscard]] bool isOnPhone(const ListWork& work) const;
    bool writeOne(const ListWork& work, const std::vector<std::string>& formerMembers);
    void removeOne(const RecordedPlaylist& list);
    [[nodiscard]] std::int32_t record(const ListWork& work, const std::vector<std::string>& formerMembers);
    bool requireDatabase(std::int32_t code, const std::string& name, const char* what);
    [[nodiscard]] bool mayGoOn();

    PlaylistRecords& database_;
    PhoneFolder& phone_;
    Progress& progress_;
    Summary& summary_;
    FamilyCounts& counts_;
    std::set<std::string> placesInUse_;  // case keys
};

}  // namespace kesta
