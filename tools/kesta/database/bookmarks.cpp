#include "database/bookmarks.h"

#include "database/calls.h"

namespace kesta {
namespace {

using calls::Text;

struct BookmarkArguments {
    explicit BookmarkArguments(const RecordedBookmark& bookmark)
        : title(Text(bookmark.title)), url(Text(bookmark.url)), idOnPhone(Text(bookmark.idOnPhone))
    {
        record.Title = title.data();
        record.Path = url.data();
        record.PhoneMID = idOnPhone.data();
        record.Id = bookmark.id;
        record.Flag = bookmark.flag;
    }
    BookmarkArguments(const BookmarkArguments&) = delete;
    BookmarkArguments& operator=(const BookmarkArguments&) = delete;

    DbText title, url, idOnPhone;
    BookmarkRecord record{};
};

}  // namespace

std::vector<RecordedBookmark> BookmarkRecords::bookmarks()
{
    calls::OwnedList<BookmarkList> list(
        [](BookmarkList* record) { (void)DB_BOOKMARK_GetSyncedMarks(calls::kNoPhone, record); });
    const DbText phone = Text(imei_);
    calls::ReadList(
        "DB_BOOKMARK_GetSyncedMarks", [&] { return DB_BOOKMARK_GetSyncedMarks(phone.c_str(), list.get()); },
        list.get()->Count);
    std::vector<RecordedBookmark> bookmarks;
    bookmarks.reserve(list.size());
    for (const BookmarkRecord& record : list) {
        bookmarks.push_back(
            {FromDbText(record.Title), FromDbText(record.Path), FromDbText(record.PhoneMID), record.Id, record.Flag});
    }
    return bookmarks;
}

Result BookmarkRecords::add(const RecordedBookmark& bookmark)
{
    const BookmarkArguments arguments(bookmark);
    return DB_BOOKMARK_SetAddedMark(Text(imei_).c_str(), &arguments.record);
}

Result BookmarkRecords::update(const RecordedBookmark& bookmark)
{
    const BookmarkArguments arguments(bookmark);
    return DB_BOOKMARK_SetUpdatedMark(Text(imei_).c_str(), &arguments.record);
}

Result BookmarkRecords::remove(const std::string& url)
{
    return DB_BOOKMARK_SetDeletedMark(Text(imei_).c_str(), Text(url).c_str());
}

}  // namespace kesta
