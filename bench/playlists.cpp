// Playlists: adding new, unchanged and changed ones after the player's list has been begun anew, and listing.
#include <array>
#include <vector>

#include "cases.h"
#include "families.h"

namespace kesta::bench {
namespace {

std::string Values(const Playlist& list)
{
    return "[Digest] = '" + Utf8(list.digest) + "', [Count] = " + std::to_string(list.count) +
           ", [Size] = " + std::to_string(list.size) + ", [TotalSize] = " + std::to_string(list.size) + ", [Sized] = 1";
}

std::string Key(const Playlist& list)
{
    return " WHERE [PhoneID] = 1 AND [Path] = '" + Quoted(list.name) + "'";
}

constexpr char kCountPlaylists[] = "SELECT COUNT(*) FROM tPFolder WHERE [PhoneID] = 1;";
constexpr char kPlaylists[] =
    "SELECT ROWID, [Path], [Digest], [IdInPhone], [Type], [Flag], [Count], [Size], [TotalSize], [Sized], "
    "[Selected] FROM tPFolder WHERE [PhoneID] = 1;";

/// The four statements of an addition.
std::array<std::string, 4> AddTexts(const Playlist& list)
{
    const std::string name = Quoted(list.name);
    const std::string size = std::to_string(list.size);
    return {"UPDATE tPFolder SET [Flag] = 0, " + Values(list) + Key(list) +
                " AND [Flag] = 3 AND [IdInPhone] NOTNULL AND [IdInPhone] <> '(null)';",
            "UPDATE tPFolder SET [Flag] = 1, " + Values(list) + Key(list) +
                " AND [Flag] = 3 AND ([IdInPhone] ISNULL OR [IdInPhone] = '(null)');",
            "UPDATE tPFolder SET " + Values(list) + Key(list) + ";",
            "INSERT INTO tPFolder ([PhoneID], [Path], [Digest], [Type], [Flag], [Count], [Size], [TotalSize], "
            "[Sized], [AddTime]) VALUES (1, '" +
                name + "', '" + Utf8(list.digest) + "', 1, 1, " + std::to_string(list.count) + ", " + size + ", " +
                size + ", 1, '2026-03-01 10:00:00');"};
}

void AddAll(const DataSet& dataSet, Bare& db)
{
    for (size_t n = 0; n < dataSet.entries(); ++n) {
        const Playlist list = MakePlaylist(n, 0, dataSet.letters());
        const std::string size = std::to_string(list.size);
        const std::string id = list.idInPhone.empty() ? "NULL" : "'" + Quoted(list.idInPhone) + "'";
        db.exec(("INSERT INTO tPFolder ([PhoneID], [Path], [Digest], [IdInPhone], [Type], [Flag], [Count], [Size], "
                 "[TotalSize], [Sized], [AddTime]) VALUES (1, '" +
                 Quoted(list.name) + "', '" + Utf8(list.digest) + "', " + id + ", 1, 3, " + std::to_string(list.count) +
                 ", " + size + ", " + size + ", 1, '2026-03-01 10:00:00');")
                    .c_str());
    }
}

/// As they were before anything was added: all of them are unconfirmed.
void BeginAnew(const DataSet& dataSet, const std::filesystem::path& database)
{
    Bare db(database);
    db.exec("BEGIN; DELETE FROM tPFolder;");
    AddAll(dataSet, db);
    db.exec("COMMIT;");
}

std::vector<Playlist> Additions(const DataSet& dataSet, Operation operation, size_t count)
{
    Require(count <= dataSet.entries(), "as many playlists as are added");
    std::vector<Playlist> lists;
    for (size_t i = 0; i < count; ++i) {
        const size_t n =
            operation == Operation::kAddNewPlaylist ? dataSet.entries() + i : Scattered(i, dataSet.entries());
        lists.push_back(MakePlaylist(n, operation == Operation::kAddChangedPlaylist ? 1 : 0, dataSet.letters()));
    }
    return lists;
}

class LibraryAdd : public LibraryCase {
public:
    LibraryAdd(const DataSet& dataSet, Operation operation, size_t count)
        : LibraryCase(dataSet), lists_(Additions(dataSet, operation, count))
    {
        for (Playlist& list : lists_) {
            PlaylistRecord record = {};
            record.Name = list.name.data();
            record.Digest = list.digest.data();
            record.Type = 1;
            record.Count = list.count;
            record.Size = list.size;
            record.TotalSize = list.size;
            record.Sized = 1;
            records_.push_back(record);
        }
    }
    void run(size_t i) override { Require(library_.AddPlaylist(kImei, &records_[i]) == 0, "adding a playlist"); }
    void undo() override { BeginAnew(dataSet_, dataSet_.database()); }

private:
    std::vector<Playlist> lists_;
    std::vector<PlaylistRecord> records_;
};

class BareAdd : public BareCase {
public:
    BareAdd(const DataSet& dataSet, Side side, Operation operation, size_t count)
        : BareCase(dataSet, side),
          phone_(PhoneText(kImei)),
          inserted_(operation == Operation::kAddNewPlaylist ? SQLITE_OK : SQLITE_CONSTRAINT)
    {
        for (const Playlist& list : Additions(dataSet, operation, count)) {
            texts_.push_back(AddTexts(list));
        }
    }
    void run(size_t i) override
    {
        Require(db_.firstInt(phone_.c_str(), -1) == 1, "finding the phone");
        const std::array<std::string, 4>& texts = texts_[i];
        for (size_t step = 0; step < 3; ++step) {
            db_.exec(texts[step].c_str());
        }
        Require(db_.tryExec(texts[3].c_str()) == inserted_, "inserting a playlist");
    }
    void undo() override { BeginAnew(dataSet_, dataSet_.bareDatabase()); }

private:
    std::string phone_;
    int inserted_;
    std::vector<std::array<std::string, 4>> texts_;
};

class LibraryList : public LibraryCase {
public:
    explicit LibraryList(const DataSet& dataSet) : LibraryCase(dataSet) {}
    ~LibraryList() override { LibraryList::dropList(); }
    void run(size_t /*i*/) override
    {
        Require(library_.GetPlaylists(kImei, &list_) == 0, "listing playlists");
        Require(static_cast<size_t>(list_.Count) == dataSet_.entries(), "all playlists in the list");
    }
    [[nodiscard]] ListSize list() const override
    {
        ListSize size;
        for (int32_t i = 0; i < list_.Count; ++i) {
            const PlaylistRecord& record = list_.Items[i];
            size.bytes += sizeof record;
            for (const char16_t* text : {record.Name, record.Digest, record.IdInPhone}) {
                AddText(size, text);
            }
        }
        return size;
    }
    void dropList() override { (void)library_.GetPlaylists(u"", &list_); }

private:
    PlaylistList list_ = {0, nullptr};
};

class BareList : public BareCase {
public:
    BareList(const DataSet& dataSet, Side side) : BareCase(dataSet, side), phone_(PhoneText(kImei)) {}
    void run(size_t /*i*/) override
    {
        Require(db_.firstInt(phone_.c_str(), -1) == 1, "finding the phone");
        const size_t count = static_cast<size_t>(db_.firstInt(kCountPlaylists, -1));
        Require(count == dataSet_.entries(), "counting playlists");
        const size_t rows = db_.forEachRow(kPlaylists, [this](sqlite3_stmt* row) {
            Require(sqlite3_column_int64(row, 0) > 0, kPlaylists);
            Require(db_.text(row, 1) && db_.text(row, 2), kPlaylists);
            (void)db_.text(row, 3);
            for (const int column : {4, 5, 6, 9, 10}) {
                Require(sqlite3_column_int(row, column) > 0, kPlaylists);
            }
            Require(sqlite3_column_int64(row, 7) > 0 && sqlite3_column_int64(row, 8) > 0, kPlaylists);
            return true;
        });
        Require(rows == count, "listing playlists");
    }

private:
    std::string phone_;
};

}  // namespace

void FillPlaylists(const DataSet& dataSet, Bare& db)
{
    AddAll(dataSet, db);
}

std::unique_ptr<BenchmarkCase> MakePlaylistCase(const DataSet& dataSet, const OperationTraits& traits, Side side)
{
    if (traits.operation == Operation::kListPlaylists) {
        return Make<LibraryList, BareList>(side, dataSet);
    }
    return Make<LibraryAdd, BareAdd>(side, dataSet, traits.operation, traits.perRun);
}

}  // namespace kesta::bench
