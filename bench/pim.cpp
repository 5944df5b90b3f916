// The store of contacts: adding, and listing a folder of them.
#include <vector>

#include "cases.h"
#include "families.h"

namespace kesta::bench {
namespace {

constexpr char16_t kFolderId[] = u"contacts";
constexpr char16_t kFolderPath[] = u"Personal/Contacts";
constexpr int32_t kType = 1;

constexpr char kFolderById[] = "SELECT [pfID] FROM tPimFolder WHERE [PimID] = 'contacts';";
constexpr char kFolderByPath[] = "SELECT [pfID] FROM tPimFolder WHERE [Path] = 'Personal/Contacts';";
constexpr char kItems[] = "SELECT [piID] FROM tPimItem WHERE [pfID] = 1;";

std::string InsertText(const Contact& contact)
{
    return "INSERT INTO tPimItem ([pfID], [PimID], [Data], [Type]) VALUES (1, '" + Utf8(contact.id) + "', ?, 1);";
}

std::string ItemText(size_t row)
{
    return "SELECT [PimID], [Data], [Type] FROM tPimItem WHERE [piID] = " + std::to_string(row) + ";";
}

std::vector<Contact> NewContacts(const DataSet& dataSet, size_t count)
{
    std::vector<Contact> contacts;
    for (size_t i = 0; i < count; ++i) {
        contacts.push_back(MakeContact(dataSet.entries() + i, dataSet.letters()));
    }
    return contacts;
}

std::string ForgetNewItems(const DataSet& dataSet)
{
    const std::string entries = std::to_string(dataSet.entries());
    return "DELETE FROM tPimItem WHERE [piID] > " + entries + ";UPDATE sqlite_sequence SET seq = " + entries +
           " WHERE name = 'tPimItem';";
}

class LibraryAdd : public LibraryCase {
public:
    LibraryAdd(const DataSet& dataSet, size_t count) : LibraryCase(dataSet), contacts_(NewContacts(dataSet, count))
    {
        for (Contact& contact : contacts_) {
            records_.push_back(
                {contact.id.data(), kType, static_cast<int32_t>(contact.data.size()), contact.data.data()});
        }
    }
    void run(size_t i) override { Require(library_.AddItem(&records_[i], kFolderPath) == 0, "adding a contact"); }
    void undo() override { change(ForgetNewItems(dataSet_)); }

private:
    std::vector<Contact> contacts_;
    std::vector<PimItemRecord> records_;
};

class BareAdd : public BareCase {
public:
    BareAdd(const DataSet& dataSet, Side side, size_t count)
        : BareCase(dataSet, side), contacts_(NewContacts(dataSet, count))
    {
        for (const Contact& contact : contacts_) {
            texts_.push_back(InsertText(contact));
        }
    }
    void run(size_t i) override
    {
        Require(db_.firstInt(kFolderByPath, -1) == 1, "finding the folder");
        db_.execWith(texts_[i].c_str(), contacts_[i].data);
    }
    void undo() override { change(ForgetNewItems(dataSet_)); }

private:
    std::vector<Contact> contacts_;
    std::vector<std::string> texts_;
};

class LibraryList : public LibraryCase {
public:
    explicit LibraryList(const DataSet& dataSet) : LibraryCase(dataSet) {}
    ~LibraryList() override { LibraryList::dropList(); }
    void run(size_t /*i*/) override
    {
        Require(library_.GetItems(&list_, kFolderId, kType, 0) == 0, "listing contacts");
        Require(static_cast<size_t>(list_.Count) == dataSet_.entries(), "all contacts in the list");
    }
    [[nodiscard]] ListSize list() const override
    {
        ListSize size;
        for (int32_t i = 0; i < list_.Count; ++i) {
            const PimItemRecord& item = list_.Items[i];
            size.bytes += sizeof item + static_cast<size_t>(item.DataLength);
            ++size.pieces;
            AddText(size, item.PimID);
        }
        return size;
    }
    void dropList() override { (void)library_.GetItems(&list_, u"no such folder", kType, 0); }

private:
    PimItemList list_ = {0, nullptr};
};

class BareList : public BareCase {
public:
    BareList(const DataSet& dataSet, Side side) : BareCase(dataSet, side)
    {
        for (size_t n = 0; n < dataSet.entries(); ++n) {
            texts_.push_back(ItemText(n + 1));
        }
        rows_.reserve(dataSet.entries());
    }
    void run(size_t /*i*/) override
    {
        Require(db_.firstInt(kFolderById, -1) == 1, "finding the folder");
        rows_.clear();
        db_.forEachRow(kItems, [this](sqlite3_stmt* row) {
            rows_.push_back(static_cast<size_t>(sqlite3_column_int(row, 0)));
            return true;
        });
        Require(rows_.size() == dataSet_.entries(), "finding the contacts");
        for (const size_t id : rows_) {
            readItem(texts_[id - 1].c_str());
        }
    }

private:
    void readItem(const char* sql)
    {
        const size_t rows = db_.forEachRow(sql, [this, sql](sqlite3_stmt* row) {
            Require(db_.text(row, 0) && sqlite3_column_blob(row, 1) != nullptr, sql);
            Require(sqlite3_column_bytes(row, 1) == kContactBytes && sqlite3_column_int(row, 2) == kType, sql);
            return true;
        });
        Require(rows == 1, sql);
    }

    std::vector<std::string> texts_;
    std::vector<size_t> rows_;
};

}  // namespace

void FillPim(const DataSet& dataSet, Bare& db)
{
    Require(Utf8(kFolderId) == "contacts" && Utf8(kFolderPath) == "Personal/Contacts", "the folder's names");
    db.exec(
        "INSERT INTO tPimFolder ([parentID], [PimID], [Path], [Type]) VALUES (-2, 'contacts', "
        "'Personal/Contacts', 1);");
    for (size_t n = 0; n < dataSet.entries(); ++n) {
        const Contact contact = MakeContact(n, dataSet.letters());
        db.execWith(InsertText(contact).c_str(), contact.data);
    }
    FillPimLog(dataSet, db);
}

std::unique_ptr<BenchmarkCase> MakePimCase(const DataSet& dataSet, const OperationTraits& traits, Side side)
{
    if (traits.operation == Operation::kListPimItems) {
        return Make<LibraryList, BareList>(side, dataSet);
    }
    return Make<LibraryAdd, BareAdd>(side, dataSet, traits.perRun);
}

}  // namespace kesta::bench
