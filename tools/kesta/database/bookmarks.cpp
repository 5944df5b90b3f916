#include "database/bookmarks.h"

#include "database/calls.h"

namespace kesta {
namespace {

using calls::Text;

struct BookmarkArguments {
    explicit BookmarkArguments(const RecordedBookmark& mark)
        : title(Text(mark.title)), url(Text(mark.url)), idOnPhone(Text(mark.idOnPhone))
    {
        record.Title = title.data();
        record.Path = url.data();
        record.PhoneMID = idOnPhone.data();
        record.Id = mark.id;
        record.Flag = mark.flag;
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

Result BookmarkRecords::add(const RecordedBookmark& mark)
{
    const BookmarkArguments arguments(mark);
    return DB_BOOKMARK_SetAddedMark(Text(imei_).c_str(), &arguments.record);
}

Result BookmarkRecords::update(const RecordedBookmark& mark)
{
    const BookmarkArguments arguments(mark);
    return DB_BOOKMARK_SetUpdatedMark(Text(imei_).c_str(), &arguments.record);
}

Result BookmarkRecords::remove(const std::string& url)
{
    return DB_BOOKMARK_SetDeletedMark(Text(imei_).c_str(), Text(url).c_str());
}

}  // namespace kesta
