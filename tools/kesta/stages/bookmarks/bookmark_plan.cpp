#include "stages/bookmarks/bookmark_plan.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "phone/names.h"
#include "phone/phone_layout.h"
#include "sync/compare.h"

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
int32_t NumberOf(const RecordedBookmark& bookmark, const std::string& phonePath)
{
    const std::string_view id = bookmark.idOnPhone;
    if (!id.starts_with(phonePath) || !id.substr(phonePath.size()).starts_with("#b")) {
        return 0;
    }
    const std::string_view digits = id.substr(phonePath.size() + 2);
    int32_t number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return error == std::errc() && end == digits.data() + digits.size() && number > 0 ? number : 0;
}

std::string IdOf(const std::string& phonePath, int32_t number)
{
    return fmt::format("{}#b{}", phonePath, number);
}

class BookmarkRules : public CompareRules {
public:
    BookmarkRules(const BookmarkPlanInput& input, const std::unordered_set<std::string_view>& tooLong)
        : input_(input), tooLong_(tooLong)
    {
    }
    [[nodiscard]] static std::string_view key(const RecordedBookmark& bookmark) { return bookmark.url; }
    [[nodiscard]] static std::string_view key(const formats::Bookmark* bookmark) { return bookmark->url; }
    [[nodiscard]] bool isSame(const RecordedBookmark& recorded, const formats::Bookmark* wanted) const
    {
        return recorded.title == wanted->title && hasItsId(recorded);
    }
    [[nodiscard]] bool isGone(const RecordedBookmark& recorded) const
    {
        return input_.file.problems.empty() && !tooLong_.contains(recorded.url);
    }
    [[nodiscard]] bool defers(size_t removals) const
    {
        return input_.file.problems.empty() && input_.guard.defers("bookmarks", removals, input_.recorded.size());
    }
    /// Whether the record says where in the phone's file the bookmark stands.
    [[nodiscard]] bool hasItsId(const RecordedBookmark& recorded) const
    {
        const int32_t number = NumberOf(recorded, input_.phonePath);
        return number > 0 && recorded.idOnPhone == IdOf(input_.phonePath, number) && recorded.flag == kOnThePhone;
    }

private:
    const BookmarkPlanInput& input_;
    const std::unordered_set<std::string_view>& tooLong_;
};

class Planner {
public:
    explicit Planner(const BookmarkPlanInput& input) : input_(input)
    {
        for (const RecordedBookmark& bookmark : input.recorded) {
            lastNumber_ = std::max(lastNumber_, NumberOf(bookmark, input.phonePath));
        }
    }

    BookmarkPlan run() &&
    {
        const std::vector<const formats::Bookmark*> wanted = wantedBookmarks();
        const BookmarkRules rules(input_, tooLong_);
        const auto diff = Compare(input_.recorded, wanted, rules);
        std::unordered_map<const formats::Bookmark*, std::string> ids;
        for (const auto& item : diff.items) {
            const formats::Bookmark& bookmark = **item.wanted;
            ids.emplace(&bookmark, enter(item.state, bookmark.title, bookmark.url, item.recorded));
        }
        for (const formats::Bookmark& bookmark : input_.file.bookmarks) {
            if (isForThePhone(bookmark)) {
                const auto id = ids.find(&bookmark);  // none for a URL that stood there before
                plan_.contents.push_back({bookmark.title, bookmark.url, bookmark.folders, bookmark.added,
                                          id == ids.end() ? std::string() : id->second});
            }
        }
        std::vector<const RecordedBookmark*> staying = diff.deferred;
        std::copy_if(diff.kept.begin(), diff.kept.end(), std::back_inserter(staying),
                     [&](const RecordedBookmark* bookmark) { return !tooLong_.contains(bookmark->url); });
        keep(staying, rules);
        for (const RecordedBookmark* bookmark : diff.removed) {
            plan_.removed.push_back(*bookmark);
        }
        plan_.deferred = diff.deferred.size();
        return std::move(plan_);
    }

private:
    // Those that are to be recorded: each URL once.
    std::vector<const formats::Bookmark*> wantedBookmarks()
    {
        std::vector<const formats::Bookmark*> wanted;
        std::unordered_set<std::string_view> seen;
        for (const formats::Bookmark& bookmark : input_.file.bookmarks) {
            if (bookmark.kind != formats::LinkKind::kWeb) {
                ++plan_.notOfTheWeb;
            } else if (!seen.insert(bookmark.url).second) {
                continue;
            } else if (FitsTheDatabase(bookmark.title, bookmark.url)) {
                wanted.push_back(&bookmark);
            } else {
                plan_.tooLong.push_back(bookmark.url);
                tooLong_.insert(bookmark.url);
            }
        }
        return wanted;
    }

    [[nodiscard]] bool isForThePhone(const formats::Bookmark& bookmark) const
    {
        return bookmark.kind == formats::LinkKind::kWeb && !tooLong_.contains(bookmark.url);
    }

    // What is not to be removed yet stays in the phone's file, where it stands now.
    void keep(const std::vector<const RecordedBookmark*>& staying, const BookmarkRules& rules)
    {
        const auto add = [&](const RecordedBookmark& record, const std::vector<std::string>& folders,
                             std::optional<int64_t> added) {
            const Comparison state = rules.hasItsId(record) ? Comparison::kSame : Comparison::kChanged;
            plan_.contents.push_back(
                {record.title, record.url, folders, added, enter(state, record.title, record.url, &record)});
        };
        std::unordered_map<std::string_view, const RecordedBookmark*> missing;
        for (const RecordedBookmark* bookmark : staying) {
            missing.emplace(bookmark->url, bookmark);
        }
        for (const formats::Bookmark& bookmark : input_.onPhone.bookmarks) {
            if (const auto found = missing.find(bookmark.url); found != missing.end()) {
                add(*found->second, bookmark.folders, bookmark.added);
                missing.erase(found);
            }
        }
        for (const RecordedBookmark* bookmark : staying) {
            if (missing.contains(bookmark->url)) {
                add(*bookmark, {}, {});
            }
        }
    }

    // Sees to the bookmark's record; the id of its element.
    std::string enter(Comparison state, const std::string& title, const std::string& url,
                      const RecordedBookmark* recorded)
    {
        int32_t number = recorded == nullptr ? 0 : NumberOf(*recorded, input_.phonePath);
        if (number == 0) {
            number = ++lastNumber_;
        }
        if (state == Comparison::kSame) {
            ++plan_.unchanged;
        } else {
            (state == Comparison::kNew ? plan_.added : plan_.updated)
                .push_back({title, url, IdOf(input_.phonePath, number), number, kOnThePhone});
        }
        return fmt::format("b{}", number);
    }

    const BookmarkPlanInput& input_;
    BookmarkPlan plan_;
    std::unordered_set<std::string_view> tooLong_;
    int32_t lastNumber_ = 0;
};

}  // namespace

BookmarkPlan PlanBookmarks(const BookmarkPlanInput& input)
{
    return Planner(input).run();
}

std::string PhonePathOf(const RecordedBookmark& bookmark)
{
    const std::string path = bookmark.idOnPhone.substr(0, bookmark.idOnPhone.rfind('#'));
    return IsPhonePath(path, kBookmarkFolder) ? path : std::string();
}

}  // namespace kesta
