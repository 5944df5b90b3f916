// Web bookmarks: adding, looking up, reading, listing.
#include <vector>

#include "families.h"
#include "work.h"

namespace kesta::bench {
namespace {

constexpr int32_t kFlag = 1;

std::string InsertText(const Mark& mark, size_t n)
{
    return "INSERT INTO tBFile ([PhoneID], [Title], [Path], [PhoneMID], [Id], [Flag], [Type]) VALUES (1, '" +
           Quoted(mark.title) + "', '" + Quoted(mark.url) + "', '" + Quoted(mark.phoneId) + "', " +
           std::to_string(n + 1) + ", " + std::to_string(kFlag) + ", 1);";
}

std::string Condition(const Mark& mark)
{
    return " FROM vBFile WHERE [IMEI] = '" + Utf8(kImei) + "' AND [Path] = '" + Quoted(mark.url) + "' AND [Type] = 1;";
}

std::string ListText(const char* columns)
{
    return std::string("SELECT ") + columns + " FROM vBFile WHERE [IMEI] = '" + Utf8(kImei) + "' AND [Type] = 1;";
}

std::vector<Mark> NewMarks(const Scene& scene, size_t count)
{
    std::vector<Mark> marks;
    for (size_t i = 0; i < count; ++i) {
        marks.push_back(MakeMark(scene.entries() + i, scene.letters()));
    }
    return marks;
}

std::vector<Mark> SomeMarks(const Scene& scene, size_t count)
{
    std::vector<Mark> marks;
    for (size_t i = 0; i < count; ++i) {
        marks.push_back(MakeMark(Scattered(i, scene.entries()), scene.letters()));
    }
    return marks;
}

std::string ForgetNewMarks(const Scene& scene)
{
    return "DELETE FROM tBFile WHERE [Id] > " + std::to_string(scene.entries()) + ";";
}

class LibraryAdd : public LibraryWork {
public:
    LibraryAdd(const Scene& scene, size_t count) : LibraryWork(scene), marks_(NewMarks(scene, count))
    {
        auto id = static_cast<int32_t>(scene.entries());
        for (Mark& mark : marks_) {
            records_.push_back({mark.title.data(), mark.url.data(), mark.phoneId.data(), ++id, kFlag, 0});
        }
    }
    void run(size_t i) override { Require(library_.SetAddedMark(kImei, &records_[i]) == 0, "adding a bookmark"); }
    void undo() override { change(ForgetNewMarks(scene_)); }

private:
    std::vector<Mark> marks_;
    std::vector<BookmarkRecord> records_;
};

class BareAdd : public BareWork {
public:
    BareAdd(const Scene& scene, Side side, size_t count)
        : BareWork(scene, side), type_(BookmarkTypeText(kImei)), phone_(PhoneText(kImei))
    {
        for (const Mark& mark : NewMarks(scene, count)) {
            texts_.push_back(InsertText(mark, scene.entries() + texts_.size()));
        }
    }
    void run(size_t i) override
    {
        Require(db_.firstInt(type_.c_str(), -1) == 1, "finding the bookmarks' type");
        Require(db_.firstInt(phone_.c_str(), -1) == 1, "finding the phone");
        db_.exec(texts_[i].c_str());
    }
    void undo() override { change(ForgetNewMarks(scene_)); }

private:
    std::string type_;
    std::string phone_;
    std::vector<std::string> texts_;
};

class LibraryLookUp : public LibraryWork {
public:
    LibraryLookUp(const Scene& scene, size_t count) : LibraryWork(scene), marks_(SomeMarks(scene, count)) {}
    void run(size_t i) override
    {
        Require(library_.IsSyncedMark(kImei, marks_[i % marks_.size()].url.c_str()) == 1, "looking a bookmark up");
    }

private:
    std::vector<Mark> marks_;
};

class BareLookUp : public BareWork {
public:
    BareLookUp(const Scene& scene, Side side, size_t count) : BareWork(scene, side), type_(BookmarkTypeText(kImei))
    {
        for (const Mark& mark : SomeMarks(scene, count)) {
            texts_.push_back("SELECT *" + Condition(mark));
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

class LibraryRead : public LibraryWork {
public:
    LibraryRead(const Scene& scene, size_t count) : LibraryWork(scene), marks_(SomeMarks(scene, count)) {}
    ~LibraryRead() override { (void)library_.GetSyncedMark(kImei, u"", &mark_); }
    void run(size_t i) override
    {
        const char16_t* url = marks_[i % marks_.size()].url.c_str();
        Require(library_.GetSyncedMark(kImei, url, &mark_) == 0 && mark_.Flag == kFlag, "reading a bookmark");
    }

private:
    std::vector<Mark> marks_;
    BookmarkRecord mark_ = {};
};

class BareRead : public BareWork {
public:
    BareRead(const Scene& scene, Side side, size_t count) : BareWork(scene, side), type_(BookmarkTypeText(kImei))
    {
        for (const Mark& mark : SomeMarks(scene, count)) {
            texts_.push_back("SELECT [Title], [PhoneMID], [Flag], [Id]" + Condition(mark));
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

class LibraryList : public LibraryWork {
public:
    explicit LibraryList(const Scene& scene) : LibraryWork(scene) {}
    ~LibraryList() override { LibraryList::dropList(); }
    void run(size_t /*i*/) override
    {
        Require(library_.GetSyncedMarks(kImei, &list_) == 0, "listing bookmarks");
        Require(static_cast<size_t>(list_.Count) == scene_.entries(), "all bookmarks in the list");
    }
    [[nodiscard]] ListSize list() const override
    {
        ListSize size;
        for (int32_t i = 0; i < list_.Count; ++i) {
            const BookmarkRecord& mark = list_.Items[i];
            size.bytes += sizeof mark;
            for (const char16_t* text : {mark.Title, mark.Path, mark.PhoneMID}) {
                AddText(size, text);
            }
        }
        return size;
    }
    void dropList() override { (void)library_.GetSyncedMarks(u"", &list_); }

private:
    BookmarkList list_ = {0, nullptr};
};

class BareList : public BareWork {
public:
    BareList(const Scene& scene, Side side)
        : BareWork(scene, side),
          type_(BookmarkTypeText(kImei)),
          count_(ListText("COUNT(*)")),
          list_(ListText("[Title], [Path], [PhoneMID], [Flag]"))
    {
    }
    void run(size_t /*i*/) override
    {
        Require(db_.firstInt(type_.c_str(), -1) == 1, "finding the bookmarks' type");
        const size_t count = static_cast<size_t>(db_.firstInt(count_.c_str(), -1));
        Require(count == scene_.entries(), "counting bookmarks");
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

void FillBookmarks(const Scene& scene, Bare& db)
{
    for (size_t n = 0; n < scene.entries(); ++n) {
        db.exec(InsertText(MakeMark(n, scene.letters()), n).c_str());
    }
}

std::unique_ptr<Work> MakeBookmarkWork(const Scene& scene, const OperationTraits& traits, Side side)
{
    switch (traits.operation) {
        case Operation::kAddMark:
            return Make<LibraryAdd, BareAdd>(side, scene, traits.perRun);
        case Operation::kLookUpMark:
            return Make<LibraryLookUp, BareLookUp>(side, scene, traits.perRun);
        case Operation::kReadMark:
            return Make<LibraryRead, BareRead>(side, scene, traits.perRun);
        default:
            return Make<LibraryList, BareList>(side, scene);
    }
}

}  // namespace kesta::bench
