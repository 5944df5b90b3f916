#include "stages/bookmarks/bookmark_plan.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <unordered_map>
#include <unordered_set>

#include "phone/names.h"
#include "phone/phone_layout.h"

namespace kesta {
namespace {

constexpr int32_t kOnThePhone = 0;

// A record's statement ends at 40960 bytes; each apostrophe counts twice in it.
constexpr size_t kLongestBookmark = 40'000;

bool FitsTheDatabase(const std::string& title, const std::string& url)
{
    const auto inStatement = [](const std::string& text) {
        return text.size() + static_cast<size_t>(std::count(text.begin(), text.end(), '\''));
    };
    return inStatement(title) + inStatement(url) <= kLongestBookmark;
}

// "Bookmarks/bookmarks.html#b12" is the element b12 in that page; 0 for any other id.
int32_t NumberOf(const RecordedBookmark& bookmark, const std::string& place)
{
    const std::string_view id = bookmark.idOnPhone;
    if (!id.starts_with(place) || !id.substr(place.size()).starts_with("#b")) {
        return 0;
    }
    const std::string_view digits = id.substr(place.size() + 2);
    int32_t number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return error == std::errc() && end == digits.data() + digits.size() && number > 0 ? number : 0;
}

class Planner {
public:
    explicit Planner(const BookmarkPlanInput& input) : input_(input)
    {
        for (const RecordedBookmark& bookmark : input.recorded) {
            recorded_.emplace(bookmark.url, &bookmark);
            lastNumber_ = std::max(lastNumber_, NumberOf(bookmark, input.place));
        }
    }

    BookmarkPlan run() &&
    {
        for (const formats::Bookmark& bookmark : input_.file.bookmarks) {
            take(bookmark);
        }
        std::vector<RecordedBookmark> gone;
        for (const RecordedBookmark& bookmark : input_.recorded) {
            if (!seen_.contains(bookmark.url)) {
                gone.push_back(bookmark);
            }
        }
        if (!input_.file.problems.empty()) {
            keep(gone);
        } else if (input_.guard.defers("bookmarks", gone.size(), input_.recorded.size())) {
            plan_.deferred = gone.size();
            keep(gone);
        } else {
            plan_.removed = std::move(gone);
        }
        return std::move(plan_);
    }

private:
    void take(const formats::Bookmark& bookmark)
    {
        if (bookmark.kind != formats::LinkKind::kWeb) {
            ++plan_.notOfTheWeb;
            return;
        }
        FileBookmark entry{bookmark.title, bookmark.url, bookmark.folders, bookmark.added, {}};
        if (seen_.insert(bookmark.url).second) {
            if (!FitsTheDatabase(bookmark.title, bookmark.url)) {
                plan_.tooLong.push_back(bookmark.url);
                tooLong_.insert(bookmark.url);
            } else {
                entry.id = enter(bookmark.title, bookmark.url);
            }
        }
        if (!tooLong_.contains(bookmark.url)) {
            plan_.contents.push_back(std::move(entry));
        }
    }

    // What is not to be removed yet stays in the phone's file, where it stands now.
    void keep(const std::vector<RecordedBookmark>& gone)
    {
        std::unordered_map<std::string, const RecordedBookmark*> kept;
        for (const RecordedBookmark& bookmark : gone) {
            kept.emplace(bookmark.url, &bookmark);
        }
        for (const formats::Bookmark& bookmark : input_.onPhone.bookmarks) {
            const auto found = kept.find(bookmark.url);
            if (found == kept.end()) {
                continue;
            }
            const RecordedBookmark& record = *found->second;
            plan_.contents.push_back(
                {record.title, record.url, bookmark.folders, bookmark.added, enter(record.title, record.url)});
            kept.erase(found);
        }
        for (const RecordedBookmark& bookmark : gone) {
            if (kept.contains(bookmark.url)) {
                plan_.contents.push_back({bookmark.title, bookmark.url, {}, {}, enter(bookmark.title, bookmark.url)});
            }
        }
    }

    // Sees to the bookmark's record; the id of its element.
    std::string enter(const std::string& title, const std::string& url)
    {
        const auto known = recorded_.find(url);
        int32_t number = known == recorded_.end() ? 0 : NumberOf(*known->second, input_.place);
        if (number == 0) {
            number = ++lastNumber_;
        }
        RecordedBookmark bookmark{title, url, fmt::format("{}#b{}", input_.place, number), number, kOnThePhone};
        if (known == recorded_.end()) {
            plan_.added.push_back(bookmark);
        } else if (known->second->title != title || known->second->idOnPhone != bookmark.idOnPhone ||
                   known->second->flag != kOnThePhone) {
            plan_.updated.push_back(bookmark);
        } else {
            ++plan_.unchanged;
        }
        return fmt::format("b{}", number);
    }

    const BookmarkPlanInput& input_;
    BookmarkPlan plan_;
    std::unordered_map<std::string, const RecordedBookmark*> recorded_;
    std::unordered_set<std::string> seen_, tooLong_;
    int32_t lastNumber_ = 0;
};

}  // namespace

BookmarkPlan PlanBookmarks(const BookmarkPlanInput& input)
{
    return Planner(input).run();
}

std::string PhonePathOf(const RecordedBookmark& bookmark)
{
    const std::string place = bookmark.idOnPhone.substr(0, bookmark.idOnPhone.rfind('#'));
    return IsPhonePath(place, kBookmarkFolder) ? place : std::string();
}

}  // namespace kesta
