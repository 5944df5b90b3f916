// The bookmarks of one run: one file on the phone that any browser opens, and a record of each bookmark.
#pragma once

#include <string>
#include <vector>

#include "stages/bookmarks/bookmark_plan.h"
#include "sync/session.h"

namespace kesta {

/// Brings the phone's bookmark file in line with the file that the options name.
class BookmarkStage : public Stage {
public:
    BookmarkStage(const Database& database, const std::string& imei) : records_(database.bookmarks(imei)) {}
    [[nodiscard]] Plan plan(Session& session) override;

private:
    [[nodiscard]] bool readFile(Session& session);
    void choosePhonePath();
    [[nodiscard]] std::string defaultName() const;
    void moveAside(const Phone& phone);
    [[nodiscard]] bool readPhone(Session& session);
    void addChanges(const BookmarkPlan& bookmarks, std::string text, Session& session, Plan& plan);
    [[nodiscard]] Change toChange(ChangeKind kind, const RecordedBookmark& bookmark);

    kesta_db::Bookmarks records_;
    int32_t type_ = 1;  // of a phone that is new to the database
    std::vector<RecordedBookmark> recorded_;
    formats::Bookmarks file_, onPhone_;
    std::string phonePath_, phoneText_;
    bool isOurs_ = false;   // the database knows the phone path
    bool isThere_ = false;  // a file is there
};

/// The phone paths that the database has of bookmark files.
[[nodiscard]] std::vector<std::string> PhonePathsOfBookmarks(const Database& database, const std::string& imei);

}  // namespace kesta
