// The database's bookmarks of one phone, as its bookmark type has them: every function works on the bookmarks of that
// type only.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "database/database.h"

namespace kesta {

struct RecordedBookmark {
    std::string title, url;
    std::string idOnPhone;
    int32_t id = 0;  // reading all bookmarks leaves it 0
    int32_t flag = 0;
};

/// Methods that return a code leave it to the caller what follows from it: 0 is success.
class BookmarkRecords {
public:
    BookmarkRecords(Database&, std::string imei) : imei_(std::move(imei)) {}

    [[nodiscard]] std::vector<RecordedBookmark> bookmarks();
    /// The phone must be known, here and below.
    Result add(const RecordedBookmark& bookmark);
    /// The title, the id on the phone and the flag.
    Result update(const RecordedBookmark& bookmark);
    Result remove(const std::string& url);

private:
    std::string imei_;
};

}  // namespace kesta
