// The log of contact syncs: saving and reading as many entries as there are contacts.
#include <vector>

#include "cases.h"
#include "families.h"

namespace kesta::bench {
namespace {

// The data set's own log, the one that is saved, and a short one.
constexpr int32_t kFullLog = 1;
constexpr int32_t kSavedLog = 2;
constexpr int32_t kShortLog = 3;

constexpr char kForgetSavedLog[] =
    "DELETE FROM tPimLogItem WHERE [plID] = 2;"
    "UPDATE sqlite_sequence SET seq = (SELECT MAX([ptID]) FROM tPimLogItem) WHERE name = 'tPimLogItem';";
constexpr char kFindSavedLog[] = "SELECT [plID] FROM tPimLog WHERE [phoneID] = 1 AND [Type] = 2;";
constexpr char kCountEntries[] =
    "SELECT COUNT(*), [ptID], tPimLog.[plID] FROM tPimLogItem, tPimLog WHERE "
    "tPimLogItem.[plID] = tPimLog.[plID] AND [phoneID] = 1 AND [Type] = 1;";
constexpr char kEntries[] = "SELECT [Guid], [Luid], [PCTime], [PhoneTime] FROM tPimLogItem WHERE [plID] = 1;";

std::string InsertText(int32_t log, const LogEntry& entry)
{
    return "INSERT INTO tPimLogItem ([plID], [Guid], [Luid], [PCTime], [PhoneTime]) VALUES (" + std::to_string(log) +
           ", '" + Utf8(entry.onPc) + "', '" + Utf8(entry.onPhone) + "', '" + entry.changedOnPc.text + "', '" +
           entry.changedOnPhone.text + "');";
}

std::vector<LogEntry> Entries(const DataSet& dataSet)
{
    std::vector<LogEntry> entries;
    for (size_t n = 0; n < dataSet.entries(); ++n) {
        entries.push_back(MakeLogEntry(n, dataSet.letters()));
    }
    return entries;
}

class LibrarySave : public LibraryCase {
public:
    explicit LibrarySave(const DataSet& dataSet) : LibraryCase(dataSet), entries_(Entries(dataSet))
    {
        for (LogEntry& entry : entries_) {
            items_.push_back({entry.onPc.data(),
                              entry.onPhone.data(),
                              {entry.changedOnPc.days, kDateValid},
                              {entry.changedOnPhone.days, kDateValid}});
        }
        log_ = {kSavedLog, static_cast<int32_t>(items_.size()), items_.data()};
    }
    void run(size_t /*i*/) override { Require(library_.SaveLog(kImei, &log_) == 0, "saving the log"); }
    void undo() override { change(kForgetSavedLog); }

private:
    std::vector<LogEntry> entries_;
    std::vector<PimLogItem> items_;
    PimLog log_;
};

class BareSave : public BareCase {
public:
    BareSave(const DataSet& dataSet, Side side) : BareCase(dataSet, side), phone_(PhoneText(kImei))
    {
        for (const LogEntry& entry : Entries(dataSet)) {
            texts_.push_back(InsertText(kSavedLog, entry));
        }
    }
    void run(size_t /*i*/) override
    {
        Require(db_.firstInt(phone_.c_str(), -1) == 1, "finding the phone");
        Require(db_.firstInt(kFindSavedLog, -1) == kSavedLog, "finding the log");
        for (const std::string& text : texts_) {
            db_.exec(text.c_str());
        }
    }
    void undo() override { change(kForgetSavedLog); }

private:
    std::string phone_;
    std::vector<std::string> texts_;
};

class LibraryRead : public LibraryCase {
public:
    explicit LibraryRead(const DataSet& dataSet) : LibraryCase(dataSet) {}
    ~LibraryRead() override { LibraryRead::dropList(); }
    void run(size_t /*i*/) override
    {
        log_.Type = kFullLog;
        Require(library_.ReadLog(kImei, &log_) == 0, "reading the log");
        Require(static_cast<size_t>(log_.Count) == dataSet_.entries(), "all entries in the log");
    }
    [[nodiscard]] ListSize list() const override
    {
        ListSize size;
        for (int32_t i = 0; i < log_.Count; ++i) {
            const PimLogItem& item = log_.Items[i];
            size.bytes += sizeof item;
            for (const char16_t* text : {item.Guid, item.Luid}) {
                AddText(size, text);
            }
        }
        return size;
    }
    /// Nothing empties a log that has been read, but reading another makes it a short one.
    void dropList() override
    {
        log_.Type = kShortLog;
        Require(library_.ReadLog(kImei, &log_) == 0 && log_.Count == 1, "reading the short log");
    }

private:
    PimLog log_ = {kFullLog, 0, nullptr};
};

class BareRead : public BareCase {
public:
    BareRead(const DataSet& dataSet, Side side) : BareCase(dataSet, side), phone_(PhoneText(kImei)) {}
    void run(size_t /*i*/) override
    {
        Require(db_.firstInt(phone_.c_str(), -1) == 1, "finding the phone");
        size_t count = 0;
        db_.forEachRow(kCountEntries, [&count](sqlite3_stmt* row) {
            count = static_cast<size_t>(sqlite3_column_int(row, 0));
            Require(sqlite3_column_int(row, 2) == kFullLog, kCountEntries);
            return false;
        });
        Require(count == dataSet_.entries(), "counting the log's entries");
        constexpr int kColumns = 4;
        Require(db_.readTexts(kEntries, kColumns) == count, "reading the log");
    }

private:
    std::string phone_;
};

}  // namespace

void FillPimLog(const DataSet& dataSet, Bare& db)
{
    for (const int32_t log : {kFullLog, kSavedLog, kShortLog}) {
        db.exec(("INSERT INTO tPimLog ([phoneID], [Type]) VALUES (1, " + std::to_string(log) + ");").c_str());
    }
    db.exec(InsertText(kShortLog, MakeLogEntry(0, dataSet.letters())).c_str());
    for (const LogEntry& entry : Entries(dataSet)) {
        db.exec(InsertText(kFullLog, entry).c_str());
    }
}

std::unique_ptr<BenchmarkCase> MakePimLogCase(const DataSet& dataSet, const OperationTraits& traits, Side side)
{
    if (traits.operation == Operation::kReadPimLog) {
        return Make<LibraryRead, BareRead>(side, dataSet);
    }
    return Make<LibrarySave, BareSave>(side, dataSet);
}

}  // namespace kesta::bench
