// The database's playlists of one phone: the lists with their state, the music that went along, and each list's
// members.
#pragma once

#include <kesta_db/kesta_db.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "database/database.h"

namespace kesta {

/// The library's PlaylistFlag.
enum class PlaylistState : int32_t {
    kCurrent = 0,         // on the phone
    kNew = 1,             // to be added to the phone
    kUnconfirmed = 3,     // not seen again on the PC: to be removed from the phone
    kDeletedOnPhone = 4,  // the phone's user deleted it; kept in the database so that it does not come back
};

struct RecordedPlaylist {
    std::string name;
    std::string digest;
    std::optional<std::string> idInPhone;  // nothing: it is not on the phone, or under an empty name
    int32_t type = 0;
    PlaylistState state = PlaylistState::kNew;  // other programs may have stored any other number, too
    int32_t count = 0;
    int64_t size = 0, totalSize = 0;
    bool selected = true, sized = false;
};

/// Methods that return a code leave it to the caller what follows from it: 0 is success.
class PlaylistRecords {
public:
    PlaylistRecords(Database&, std::string imei) : imei_(std::move(imei)) {}

    /// The phone must be known, here and below.
    [[nodiscard]] std::vector<RecordedPlaylist> lists();
    /// Every list but those deleted on the phone becomes unconfirmed.
    Result beginConfirming();
    /// Confirms a list of the PC, or enters it. The code does not tell whether the statements succeeded; lists() does.
    Result confirm(const RecordedPlaylist& list);
    Result setAdded(const std::string& name, const std::string& idInPhone);
    Result setUpdated(const std::string& name);
    /// Takes an unconfirmed list out of the database, with the records of all files that name it as theirs.
    Result setDeleted(const std::string& name);
    /// The list is gone from the PC: what is not on the phone leaves the database.
    Result forget(const std::string& name);

    /// The music that was copied for playlists. A file's basePath is the list that it came with.
    [[nodiscard]] std::vector<RecordedFile> files();
    Result addFile(const RecordedFile& file);
    Result updateFile(const RecordedFile& file);
    Result removeFile(const std::string& path);

    /// A list's members, in no particular order.
    [[nodiscard]] std::vector<std::string> members(const std::string& list);
    /// Replaces them; what is given twice is stored once. The code does not tell whether all were stored.
    Result setMembers(const std::string& list, const std::vector<std::string>& members);

private:
    std::string imei_;
};

}  // namespace kesta
