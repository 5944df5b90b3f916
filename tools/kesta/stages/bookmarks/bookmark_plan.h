// What a sync has to do about bookmarks, from the file of the PC, the database and the file on the phone. Changes
// nothing.
#pragma once

#include <string>
#include <vector>

#include "database/database.h"
#include "formats/bookmarks.h"
#include "stages/bookmarks/bookmark_file.h"
#include "sync/deletion_guard.h"

namespace kesta {

struct BookmarkPlanInput {
    const formats::Bookmarks& file;  // of the PC
    const std::vector<RecordedBookmark>& recorded;
    const formats::Bookmarks& onPhone;  // what the phone's file holds now; empty when there is none
    std::string phonePath;              // of the phone's file
    DeletionGuard& guard;
};

struct BookmarkPlan {
    std::vector<FileBookmark> contents;  // of the phone's file
    std::vector<RecordedBookmark> added, updated;
    std::vector<RecordedBookmark> removed;
    size_t unchanged = 0;
    size_t deferred = 0;               // removals left out, since they are more than half of what is recorded
    size_t notOfTheWeb = 0;            // bookmarks that are no addresses of pages: of no use on another machine
    std::vector<std::string> tooLong;  // URLs that the database cannot take, or not with their title
};

/// A URL that the file has several times is recorded once, under its first title. While the file has problems, what it
/// lacks is not taken for removed.
[[nodiscard]] BookmarkPlan PlanBookmarks(const BookmarkPlanInput& input);

/// The phone path of the file in which the bookmark stands; empty when the id is not one of this client's.
[[nodiscard]] std::string PhonePathOf(const RecordedBookmark& bookmark);

}  // namespace kesta
