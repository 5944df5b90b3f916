// Web bookmarks: adding, looking up, reading, listing.
#include <vector>

#include "cases.h"
#include "families.h"

namespace kesta::bench {
namespace {

constexpr int32_t kFlag = 1;

std::string InsertText(const BookmarkTexts& bookmark, size_t n)
{
    return "INSERT INTO tBFile ([PhoneID], [Title], [Path], [PhoneMID], [Id], [Flag], [Type]) VALUES (1, '" +
           Quoted(bookmark.title) + "', '" + Quoted(bookmark.url) + "', '" + Quoted(bookmark.phoneId) + "', " +
           std::to_string(n + 1) + ", " + std::to_string(kFlag) + ", 1);";
}

std::string Condition(const BookmarkTexts& bookmark)
{
    return " FROM vBFile WHERE [IMEI] = '" + Utf8(kImei) + "' AND [Path] = '" + Quoted(bookmark.url) +
           "' AND [Type] = 1;";
}

std::string ListText(const char* columns)
{
    return std::string("SELECT ") + columns + " FROM vBFile WHERE [IMEI] = '" + Utf8(kImei) + "' AND [Type] = 1;";
}

std::vector<BookmarkTexts> NewBookmarks(const DataSet& dataSet, size_t count)
{
    std::vector<BookmarkTexts> bookmarks;
    for (size_t i = 0; i < count; ++i) {
        bookmarks.push_back(MakeBookmark(dataSet.entries() + i, dataSet.letters()));
    }
    return bookmarks;
}

std::vector<BookmarkTexts> SomeBookmarks(const DataSet& dataSet, size_t count)
{
    std::vector<BookmarkTexts> bookmarks;
    for (size_t i = 0; i < count; ++i) {
        bookmarks.push_back(MakeBookmark(Scattered(i, dataSet.entries()), dataSet.letters()));
    }
    return bookmarks;
}

std::string ForgetNewBookmarks(const DataSet& dataSet)
{
    return "DELETE FROM tBFile WHERE [Id] > " + std::to_string(dataSet.entries()) + ";";
}

class LibraryAdd : public LibraryCase {
public:
    LibraryAdd(const DataSet& dataSet, size_t count) : LibraryCase(dataSet), bookmarks_(NewBookmarks(dataSet, count))
    {
        auto id = static_cast<int32_t>(dataSet.entries());
        for (BookmarkTexts& bookmark : bookmarks_) {
            records_.push_back({bookmark.title.data(), bookmark.url.data(), bookmark.phoneId.data(), ++id, kFlag, 0});
        }
    }
    void run(size_t i) override { Require(library_.SetAddedMark(kImei, &records_[i]) == 0, "adding a bookmark"); }
    void undo() override { change(ForgetNewBookmarks(dataSet_)); }

private:
    std::vector<BookmarkTexts> bookmarks_;
    std::vector<BookmarkRecord> records_;
};

class BareAdd : public BareCase {
public:
    BareAdd(const DataSet& dataSet, Side side, size_t count)
        : BareCase(dataSet, side), type_(BookmarkTypeText(kImei)), phone_(PhoneText(kImei))
    {
        for (const BookmarkTexts& bookmark : NewBookmarks(dataSet, count)) {
            texts_.push_back(InsertText(bookmark, dataSet.entries() + texts_.size()));
        }
    }
    void run(size_t i) override
    {
        Require(db_.firstInt(type_.c_str(), -1) == 1, "finding the bookmarks' type");
        Require(db_.firstInt(phone_.c_str(), -1) == 1, "finding the phone");
        db_.exec(texts_[i].c_str());
    }
    void undo() override { change(ForgetNewBookmarks(dataSet_)); }

private:
    std::string type_;
    std::string phone_;
    std::vector<std::string> texts_;
};

class LibraryLookUp : public LibraryCase {
public:
    LibraryLookUp(const DataSet& dataSet, size_t count)
        : LibraryCase(dataSet), bookmarks_(SomeBookmarks(dataSet, count))
    {
    }
    void run(size_t i) override
    {
        Require(library_.IsSyncedMark(kImei, bookmarks_[i % bookmarks_.size()].url.c_str()) == 1,
                "looking a bookmark up");
    }

private:
    std::vector<BookmarkTexts> bookmarks_;
};

class BareLookUp : public BareCase {
public:
    BareLookUp(const DataSet& dataSet, Side side, size_t count)
        : BareCase(dataSet, side), type_(BookmarkTypeText(kImei))
    {
        for (const BookmarkTexts& bookmark : SomeBookmarks(dataSet, count)) {
            texts_.push_back("SELECT *" + Condition(bookmark));
        }
    }
    void run(size_t i) override
    {
        Require(db_.firstInt(type_.c_str(), -1) == 1, "finding the bookmarks' type");
        bool known = false;
        db_.forEachRow(texts_[i % texts_.size()].c_str(), [&known](sqlite3_stmt* /*row*/) {
            known = true;
            return false;
        });
        Require(known, "looking a bookmark up");
    }

private:
    std::string type_;
    std::vector<std::string> texts_;
};

class LibraryRead : public LibraryCase {
public:
    LibraryRead(const DataSet& dataSet, size_t count) : LibraryCase(dataSet), bookmarks_(SomeBookmarks(dataSet, count))
    {
    }
    ~LibraryRead() override { (void)library_.GetSyncedMark(kImei, u"", &bookmark_); }
    void run(size_t i) override
    {
        const char16_t* url = bookmarks_[i % bookmarks_.size()].url.c_str();
        Require(library_.GetSyncedMark(kImei, url, &bookmark_) == 0 && bookmark_.Flag == kFlag, "reading a bookmark");
    }

private:
    std::vector<BookmarkTexts> bookmarks_;
    BookmarkRecord bookmark_ = {};
};

class BareRead : public BareCase {
public:
    BareRead(const DataSet& dataSet, Side side, size_t count) : BareCase(dataSet, side), type_(BookmarkTypeText(kImei))
    {
        for (const BookmarkTexts& bookmark : SomeBookmarks(dataSet, count)) {
            texts_.push_back("SELECT [Title], [PhoneMID], [Flag], [Id]" + Condition(bookmark));
        }
    }
    void run(size_t i) override
    {
        Require(db_.firstInt(type_.c_str(), -1) == 1, "finding the bookmarks' type");
        bool known = false;
        db_.forEachRow(texts_[i % texts_.size()].c_str(), [&](sqlite3_stmt* row) {
            known = db_.text(row, 0) && db_.text(row, 1) && sqlite3_column_int(row, 2) == kFlag &&
                    sqlite3_column_int(row, 3) > 0;
            return false;
        });
        Require(known, "reading a bookmark");
    }

private:
    std::string type_;
    std::vector<std::string> texts_;
};

class LibraryList : public LibraryCase {
public:
    explicit LibraryList(const DataSet& dataSet) : LibraryCase(dataSet) {}
    ~LibraryList() override { LibraryList::dropList(); }
    void run(size_t /*i*/) override
    {
        Require(library_.GetSyncedMarks(kImei, &list_) == 0, "listing bookmarks");
        Require(static_cast<size_t>(list_.Count) == dataSet_.entries(), "all bookmarks in the list");
    }
    [[nodiscard]] ListSize list() const override
    {
        ListSize size;
        for (int32_t i = 0; i < list_.Count; ++i) {
            const BookmarkRecord& bookmark = list_.Items[i];
            size.bytes += sizeof bookmark;
            for (const char16_t* text : {bookmark.Title, bookmark.Path, bookmark.PhoneMID}) {
                AddText(size, text);
            }
        }
        return size;
    }
    void dropList() override { (void)library_.GetSyncedMarks(u"", &list_); }

private:
    BookmarkList list_ = {0, nullptr};
};

class BareList : public BareCase {
public:
    BareList(const DataSet& dataSet, Side side)
        : BareCase(dataSet, side),
          type_(BookmarkTypeText(kImei)),
          count_(ListText("COUNT(*)")),
          list_(ListText("[Title], [Path], [PhoneMID], [Flag]"))
    {
    }
    void run(size_t /*i*/) override
    {
        Require(db_.firstInt(type_.c_str(), -1) == 1, "finding the bookmarks' type");
        const size_t count = static_cast<size_t>(db_.firstInt(count_.c_str(), -1));
        Require(count == dataSet_.entries(), "counting bookmarks");
        const size_t rows = db_.forEachRow(list_.c_str(), [this](sqlite3_stmt* row) {
            Require(db_.text(row, 0) && db_.text(row, 1) && db_.text(row, 2), "a bookmark's texts");
            Require(sqlite3_column_int(row, 3) == kFlag, "a bookmark's flag");
            return true;
        });
        Require(rows == count, "listing bookmarks");
    }

private:
    std::string type_;
    std::string count_;
    std::string list_;
};

}  // namespace

void FillBookmarks(const DataSet& dataSet, Bare& db)
{
    for (size_t n = 0; n < dataSet.entries(); ++n) {
        db.exec(InsertText(MakeBookmark(n, dataSet.letters()), n).c_str());
    }
}

std::unique_ptr<BenchmarkCase> MakeBookmarkCase(const DataSet& dataSet, const OperationTraits& traits, Side side)
{
    switch (traits.operation) {
        case Operation::kAddBookmark:
            return Make<LibraryAdd, BareAdd>(side, dataSet, traits.perRun);
        case Operation::kLookUpBookmark:
            return Make<LibraryLookUp, BareLookUp>(side, dataSet, traits.perRun);
        case Operation::kReadBookmark:
            return Make<LibraryRead, BareRead>(side, dataSet, traits.perRun);
        default:
            return Make<LibraryList, BareList>(side, dataSet);
    }
}

}  // namespace kesta::bench
