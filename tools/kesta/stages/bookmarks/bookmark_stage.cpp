#include "stages/bookmarks/bookmark_stage.h"

#include <fmt/format.h>

#include "base/text.h"
#include "phone/phone_layout.h"
#include "phone/phone_paths.h"
#include "phone/unique_name.h"

namespace kesta {
namespace {

constexpr int32_t kDefaultType = 1;
constexpr uint64_t kLargestFile = 64'000'000;

}  // namespace

Plan BookmarkStage::plan(Session& session)
{
    Plan plan(session.report.summary.beginFamily("Bookmarks", "bookmark"));
    if (const auto settings = session.database.phones().find(session.imei)) {
        type_ = settings->bookmarkType;
        recorded_ = records_.all();
    }
    if (!readFile(session)) {
        return plan;
    }
    choosePhonePath();
    if (!readPhone(session)) {
        return plan;
    }
    BookmarkPlan bookmarks = PlanBookmarks({file_, recorded_, onPhone_, phonePath_, session.guard});
    std::string text = BookmarkFileText(bookmarks.contents);
    if (!isOurs_ && isThere_ && text != phoneText_) {  // Somebody else's file.
        moveAside(session.phone);
        bookmarks = PlanBookmarks({file_, recorded_, {}, phonePath_, session.guard});
        text = BookmarkFileText(bookmarks.contents);
    }
    plan.found.unchanged = bookmarks.unchanged;
    plan.found.deferred = bookmarks.deferred;
    for (const std::string& url : bookmarks.tooLong) {
        session.report.fail(url.substr(0, 60) + "...", "too long for the database");
    }
    session.report.leaveOut("Bookmarks", "with addresses outside the web", bookmarks.notOfTheWeb);
    addChanges(bookmarks, std::move(text), session, plan);
    return plan;
}

bool BookmarkStage::readFile(Session& session)
{
    const std::string& path = *session.options.bookmarks;
    std::string text;
    if (os::Status status = os::ReadTextOf("a file of bookmarks", kLargestFile, path, text); !status.ok()) {
        session.report.fail(path, "it cannot be read: " + status.text());
        return false;
    }
    file_ = formats::ParseBookmarks(text);
    for (const formats::Problem& problem : file_.problems) {
        session.report.fail(path,
                            problem.line == 0 ? problem.text : fmt::format("line {}: {}", problem.line, problem.text));
    }
    if (!file_.problems.empty()) {
        session.report.note(fmt::format("{} could not be read completely: no bookmark is removed.", Printable(path)));
    }
    return true;
}

// Each bookmark type is a set of bookmarks of its own, and so has a file of its own.
void BookmarkStage::choosePhonePath()
{
    for (const RecordedBookmark& bookmark : recorded_) {
        phonePath_ = PhonePathOf(bookmark);
        isOurs_ = !phonePath_.empty();
        if (isOurs_) {
            return;
        }
    }
    phonePath_ = fmt::format("{}/{}", kBookmarkFolder, defaultName());
}

std::string BookmarkStage::defaultName() const
{
    return type_ == kDefaultType ? "bookmarks.html" : fmt::format("bookmarks-{}.html", type_);
}

void BookmarkStage::moveAside(const Phone& phone)
{
    const std::string name = defaultName();
    (void)UniqueName(name, name, [&](const std::string& other) {
        phonePath_ = fmt::format("{}/{}", kBookmarkFolder, other);
        return phone.find(phonePath_).entry == PhoneEntry::kNothing;
    });
    isThere_ = false;
}

bool BookmarkStage::readPhone(Session& session)
{
    const PhoneFile there = session.phone.find(phonePath_);
    if (there.entry == PhoneEntry::kNothing) {
        return true;
    }
    if (there.entry == PhoneEntry::kOther) {
        moveAside(session.phone);
        return true;
    }
    if (os::Status status = os::ReadText(session.folder.native(phonePath_), phoneText_); !status.ok()) {
        session.report.fail(phonePath_, "it cannot be read on the phone: " + status.text());
        return false;
    }
    isThere_ = true;
    onPhone_ = formats::ParseBookmarks(phoneText_);
    return true;
}

Change BookmarkStage::toChange(ChangeKind kind, const RecordedBookmark& bookmark)
{
    Change change;
    change.subject = bookmark.url;
    change.needsAllBefore = true;  // nothing is recorded of a file that did not get there
    switch (kind) {
        case ChangeKind::kPut:
            change.verb = kAdded;
            change.counts.added = 1;
            change.record = [this, bookmark](const Written&) {
                if (!records_.add(bookmark)) {
                    records_.update(bookmark);
                }
            };
            break;
        case ChangeKind::kReplace:
            change.verb = kUpdated;
            change.counts.updated = 1;
            change.record = [this, bookmark](const Written&) { records_.update(bookmark); };
            break;
        default:
            change.kind = ChangeKind::kRemove;
            change.verb = kRemoved;
            change.counts.removed = 1;
            change.record = [this, url = bookmark.url](const Written&) { records_.remove(url); };
    }
    return change;
}

void BookmarkStage::addChanges(const BookmarkPlan& bookmarks, std::string text, Session& session, Plan& plan)
{
    std::vector<Change> rows;
    for (const RecordedBookmark& bookmark : bookmarks.added) {
        rows.push_back(toChange(ChangeKind::kPut, bookmark));
    }
    for (const RecordedBookmark& bookmark : bookmarks.updated) {
        rows.push_back(toChange(ChangeKind::kReplace, bookmark));
    }
    for (const RecordedBookmark& bookmark : bookmarks.removed) {
        rows.push_back(toChange(ChangeKind::kRemove, bookmark));
    }
    Change file;
    if (bookmarks.contents.empty()) {
        if (isThere_ && isOurs_) {
            file.kind = ChangeKind::kRemove;
            file.phonePath = phonePath_;
        }
    } else if (!isThere_ || text != phoneText_) {
        file.kind = isThere_ ? ChangeKind::kReplace : ChangeKind::kPut;
        file.phonePath = phonePath_;
        file.size = text.size();
        file.text = std::move(text);
    }
    if (isThere_ && ChangesOf(session).isChanged(phonePath_, session.phone.find(phonePath_))) {
        file.keepAs = KeptPath(phonePath_, [&](const std::string& path) {
            return session.phone.find(path).entry == PhoneEntry::kNothing;
        });
    }
    auto next = rows.begin();
    if (file.kind == ChangeKind::kPut && bookmarks.added.size() + bookmarks.updated.size() > 0) {
        // The first row says whose file it is: without it the file goes again.
        Change first = std::move(*next++);
        first.kind = file.kind;
        first.shown = first.subject;
        first.phonePath = std::move(file.phonePath);
        first.size = file.size;
        first.text = std::move(file.text);
        plan.add(std::move(first));
    } else if (!file.phonePath.empty()) {
        plan.add(std::move(file));
    }
    plan.changes.insert(plan.changes.end(), std::make_move_iterator(next), std::make_move_iterator(rows.end()));
}

std::vector<std::string> PhonePathsOfBookmarks(const Database& database, const std::string& imei)
{
    std::vector<std::string> paths;
    for (const RecordedBookmark& bookmark : database.bookmarks(imei).all()) {
        std::string path = PhonePathOf(bookmark);
        if (!path.empty() && (paths.empty() || paths.back() != path)) {
            paths.push_back(std::move(path));
        }
    }
    return paths;
}

}  // namespace kesta
