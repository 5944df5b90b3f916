#include "stages/bookmarks/sync_bookmarks.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/names.h"
#include "base/text.h"
#include "os/system.h"
#include "phone/phone_failure.h"
#include "phone/phone_layout.h"
#include "stages/bookmarks/bookmark_plan.h"
#include "sync/journal.h"

namespace kesta {
namespace {

constexpr std::int32_t kRecordedAlready = 19;
constexpr std::int32_t kDefaultType = 1;  // of a phone that is new to the database

os::Status ReadBookmarkFile(const std::string& path, std::string& text)
{
    constexpr std::uint64_t kLargest = 64'000'000;
    os::FileInfo info;
    if (os::Status status = os::ReadInfo(path, info); !status.ok()) return status;
    if (info.kind != os::FileKind::kFile) return {os::Failure::kOther, "it is not a file"};
    if (info.size > kLargest) return {os::Failure::kOther, "it is too large for a file of bookmarks"};
    return os::ReadText(path, text);
}

class BookmarkSync {
public:
    BookmarkSync(Database& database, const std::string& imei, PhoneFolder& phone, const SyncOptions& options,
                 DeletionGuard& guard, Progress& progress, Summary& summary)
        : marks_(database, imei),
          phone_(phone),
          options_(options),
          guard_(guard),
          progress_(progress),
          summary_(summary),
          counts_(summary.beginFamily("Bookmarks", "bookmark"))
    {
        if (const auto settings = database.phone(imei)) {
            type_ = settings->bookmarkType;
            recorded_ = marks_.bookmarks();
        }
    }

    void run()
    {
        if (!readFile()) return;
        choosePlace();
        if (!readPhone()) return;
        BookmarkPlan plan = PlanBookmarks({file_, recorded_, onPhone_, place_, guard_});
        std::string text = BookmarkFileText(plan.contents);
        if (!isOurs_ && isThere_ && text != phoneText_) {  // Somebody else's file.
            moveAside();
            plan = PlanBookmarks({file_, recorded_, {}, place_, guard_});
            text = BookmarkFileText(plan.contents);
        }
        tell(plan);
        if (options_.dryRun)
            preview(plan);
        else
            execute(plan, text);
    }

private:
    bool readFile()
    {
        std::string text;
        if (os::Status status = ReadBookmarkFile(*options_.bookmarks, text); !status.ok()) {
            summary_.fail(*options_.bookmarks, "it cannot be read: " + status.text());
            return false;
        }
        file_ = formats::ParseBookmarks(text);
        for (const formats::Problem& problem : file_.problems)
            summary_.fail(*options_.bookmarks,
                          problem.line == 0 ? problem.text : fmt::format("line {}: {}", problem.line, problem.text));
        if (!file_.problems.empty())
            summary_.notes.push_back(fmt::format("{} could not be read completely: no bookmark is removed.",
                                                 Printable(*options_.bookmarks)));
        return true;
    }

    // Each bookmark type is a set of marks of its own, and so has a file of its own.
    void choosePlace()
    {
        for (const RecordedBookmark& mark : recorded_) {
            place_ = PhonePathOf(mark);
            isOurs_ = !place_.empty();
            if (isOurs_) return;
        }
        place_ = fmt::format("{}/{}", kBookmarkFolder, defaultName());
    }

    [[nodiscard]] std::string defaultName() const
    {
        return type_ == kDefaultType ? "bookmarks.html" : fmt::format("bookmarks-{}.html", type_);
    }

    void moveAside()
    {
        const std::string name = defaultName();
        for (unsigned attempt = 0; phone_.find(place_).entry != PhoneEntry::kNothing; ++attempt)
            place_ = fmt::format("{}/{}", kBookmarkFolder, SuffixedName(name, name, attempt));
        isThere_ = false;
    }

    bool readPhone()
    {
        const PhoneFile there = phone_.find(place_);
        if (there.entry == PhoneEntry::kNothing) return true;
        if (there.entry == PhoneEntry::kOther) {
            moveAside();
            return true;
        }
        if (os::Status status = os::ReadText(phone_.native(place_), phoneText_); !status.ok()) {
            summary_.fail(place_, "it cannot be read on the phone: " + status.text());
            return false;
        }
        isThere_ = true;
        onPhone_ = formats::ParseBookmarks(phoneText_);
        return true;
    }

    void tell(const BookmarkPlan& plan)
    {
        counts_.unchanged = plan.unchanged;
        counts_.deferred = plan.deferred;
        for (const std::string& url : plan.tooLong)
            summary_.fail(url.substr(0, 60) + "...", "too long for the database");
        if (plan.notOfTheWeb > 0)
            summary_.notes.push_back(fmt::format("{} left out that {} no page of the web.",
                                                 Counted(plan.notOfTheWeb, "bookmark"),
                                                 plan.notOfTheWeb == 1 ? "is" : "are"));
    }

    void preview(const BookmarkPlan& plan)
    {
        const auto say = [&](const char* verb, const std::vector<RecordedBookmark>& marks, std::size_t& count) {
            count = marks.size();
            for (const RecordedBookmark& mark : marks)
                if (!options_.quiet) progress_.say(fmt::format("{:<9} {}", verb, Printable(mark.url)));
        };
        say("add", plan.added, counts_.added);
        say("update", plan.updated, counts_.updated);
        say("remove", plan.removed, counts_.removed);
    }

    // The phone first, then the database.
    void execute(const BookmarkPlan& plan, const std::string& text)
    {
        if (os::Interrupted()) return summary_.stopWith(ExitCode::kInterrupted, "interrupted");
        if (!phone_.isStillThere()) return summary_.stopWith(ExitCode::kPhoneGone, "the phone went away");
        guard_.save(summary_);
        if (!bringToPhone(plan, text)) return;
        progress_.start(plan.added.size() + plan.updated.size() + plan.removed.size(), 0);
        const bool isRecorded = record(plan);
        progress_.finish();
        // Without a record nobody would know whose file it is; the next run looks for it by the journal.
        if (!isRecorded && !isOurs_ && counts_.added + counts_.updated == 0) return;
        if (os::Status status = RemoveJournal(phone_); !status.ok())
            summary_.fail(std::string(kJournalName), "it cannot be removed from the phone: " + status.text());
    }

    bool bringToPhone(const BookmarkPlan& plan, const std::string& text)
    {
        os::Status status;
        if (plan.contents.empty()) {
            if (isThere_ && isOurs_) status = phone_.removeFile(place_);
        } else if (!isThere_ || text != phoneText_) {
            status = phone_.makeFolders(place_);
            if (status.ok()) status = WriteJournal(phone_, {place_});
            if (status.ok()) status = os::WriteText(phone_.native(place_), temporaryPath(), text);
        }
        if (status.ok()) return true;
        summary_.fail(place_, "it cannot be written to the phone: " + status.text());
        StopOnPhoneFailure(phone_, status, summary_);
        (void)RemoveJournal(phone_);  // What cannot be removed, the next run comes by again.
        return false;
    }

    [[nodiscard]] std::string temporaryPath() const
    {
        return phone_.native(fmt::format("{}/{}", kBookmarkFolder, kTemporaryName));
    }

    bool record(const BookmarkPlan& plan)
    {
        for (const RecordedBookmark& mark : plan.added)
            if (!enter(add(mark), "added", mark, counts_.added)) return false;
        for (const RecordedBookmark& mark : plan.updated)
            if (!enter(marks_.update(mark), "updated", mark, counts_.updated)) return false;
        for (const RecordedBookmark& mark : plan.removed)
            if (!enter(marks_.remove(mark.url), "removed", mark, counts_.removed)) return false;
        return true;
    }

    std::int32_t add(const RecordedBookmark& mark)
    {
        const std::int32_t code = marks_.add(mark);
        return code == kRecordedAlready ? marks_.update(mark) : code;
    }

    // False when the run is to end here.
    bool enter(std::int32_t code, const char* verb, const RecordedBookmark& mark, std::size_t& count)
    {
        if (code != 0) {
            summary_.fail(mark.url, "it cannot be recorded in the database: " + ResultText(code));
            summary_.stopWith(ExitCode::kDatabase, "the database cannot be written");
            return false;
        }
        ++count;
        progress_.endFile(verb, mark.url, 0);
        if (!os::Interrupted()) return true;
        summary_.stopWith(ExitCode::kInterrupted, "interrupted");
        return false;
    }

    BookmarkRecords marks_;
    PhoneFolder& phone_;
    const SyncOptions& options_;
    DeletionGuard& guard_;
    Progress& progress_;
    Summary& summary_;
    FamilyCounts& counts_;
    std::int32_t type_ = kDefaultType;
    std::vector<RecordedBookmark> recorded_;
    formats::Bookmarks file_, onPhone_;
    std::string place_, phoneText_;
    bool isOurs_ = false;   // the database knows the place
    bool isThere_ = false;  // a file is in it
};

}  // namespace

void SyncBookmarks(Database& database, const std::string& imei, PhoneFolder& phone, const SyncOptions& options,
                   DeletionGuard& guard, Progress& progress, Summary& summary)
{
    BookmarkSync(database, imei, phone, options, guard, progress, summary).run();
}

std::vector<std::string> PhonePathsOfBookmarks(Database& database, const std::string& imei)
{
    std::vector<std::string> places;
    for (const RecordedBookmark& mark : BookmarkRecords(database, imei).bookmarks()) {
        std::string place = PhonePathOf(mark);
        if (!place.empty() && (places.empty() || places.back() != place)) places.push_back(std::move(place));
    }
    return places;
}

}  // namespace kesta
