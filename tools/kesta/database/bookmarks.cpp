#include "database/bookmarks.h"

#include "database/calls.h"

namespace kesta {
namespace {

using calls::Text;

struct MarkArguments {
    explicit MarkArguments(const RecordedMark& mark)
        : title(Text(mark.title)), url(Text(mark.url)), idOnPhone(Text(mark.idOnPhone))
    {
        record.Title = title.data();
        record.Path = url.data();
        record.PhoneMID = idOnPhone.data();
        record.Id = mark.id;
        record.Flag = mark.flag;
    }
    MarkArguments(const MarkArguments&) = delete;
    MarkArguments& operator=(const MarkArguments&) = delete;

    DbText title, url, idOnPhone;
    BookmarkRecord record{};
};

}  // namespace

std::vector<RecordedMark> BookmarkBooks::marks()
{
    calls::OwnedList<BookmarkList> list(
        [](BookmarkList* record) { (void)DB_BOOKMARK_GetSyncedMarks(calls::kNoPhone, record); });
    const DbText phone = Text(imei_);
    calls::ReadList("DB_BOOKMARK_GetSyncedMarks",
                    [&] { return DB_BOOKMARK_GetSyncedMarks(phone.c_str(), list.get()); });
    std::vector<RecordedMark> marks;
    marks.reserve(list.size());
    for (const BookmarkRecord& record : list)
        marks.push_back(
            {FromDbText(record.Title), FromDbText(record.Path), FromDbText(record.PhoneMID), record.Id, record.Flag});
    return marks;
}

std::int32_t BookmarkBooks::add(const RecordedMark& mark)
{
    const MarkArguments arguments(mark);
    return DB_BOOKMARK_SetAddedMark(Text(imei_).c_str(), &arguments.record);
}

std::int32_t BookmarkBooks::update(const RecordedMark& mark)
{
    const MarkArguments arguments(mark);
    return DB_BOOKMARK_SetUpdatedMark(Text(imei_).c_str(), &arguments.record);
}

std::int32_t BookmarkBooks::remove(const std::string& url)
{
    return DB_BOOKMARK_SetDeletedMark(Text(imei_).c_str(), Text(url).c_str());
}

}  // namespace kesta
