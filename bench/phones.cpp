// Announcing a phone.
#include <array>
#include <vector>

#include "cases.h"
#include "families.h"

namespace kesta::bench {
namespace {

constexpr size_t kMainFolderCount = 7;
constexpr char kForgetNewPhones[] =
    "DELETE FROM tSyncContents WHERE [phoneID] > 1; DELETE FROM tPhone WHERE [ID] > 1;"
    "UPDATE sqlite_sequence SET seq = 1 WHERE name = 'tPhone';";
constexpr char kCountMainFolders[] = "SELECT COUNT(*) FROM tLibMainFolder;";
constexpr char kMainFolders[] = "SELECT [ID], [Number], [Size], [Setting] FROM tLibMainFolder;";

std::string NewPhoneText(const std::u16string& imei, const std::u16string& name)
{
    return "INSERT INTO tPhone ([IMEI], [IMEI2], [Name]) \t\t\t\tVALUES ('" + Quoted(imei) + "', '" +
           Quoted(imei.substr(0, imei.find(u':'))) + "', '" + Quoted(name) + "');";
}

std::u16string NewImei(size_t i)
{
    std::u16string imei = u"490154203200000";
    for (size_t place = imei.size(); i != 0; i /= 10) {
        imei[--place] = static_cast<char16_t>(u'0' + i % 10);
    }
    return imei;
}

const char16_t* NameOf(Letters letters)
{
    return letters == Letters::kAscii ? u"Anna's phone" : u"Zoë's Télefono 📱";
}

class LibraryAnnounceKnown : public LibraryCase {
public:
    explicit LibraryAnnounceKnown(const DataSet& dataSet) : LibraryCase(dataSet) {}
    void run(size_t /*i*/) override
    {
        Require(library_.PhoneDetected(kImei, NameOf(dataSet_.letters())) == 1, "announcing a known phone");
    }
};

class BareAnnounceKnown : public BareCase {
public:
    explicit BareAnnounceKnown(const DataSet& dataSet, Side side) : BareCase(dataSet, side), phone_(PhoneText(kImei)) {}
    void run(size_t /*i*/) override { Require(db_.firstInt(phone_.c_str(), -1) == 1, "finding the phone"); }

private:
    std::string phone_;
};

class LibraryAnnounceNew : public LibraryCase {
public:
    LibraryAnnounceNew(const DataSet& dataSet, size_t count) : LibraryCase(dataSet)
    {
        for (size_t i = 0; i < count; ++i) {
            imeis_.push_back(NewImei(i));
        }
    }
    void run(size_t i) override
    {
        const int32_t id = library_.PhoneDetected(imeis_[i].c_str(), NameOf(dataSet_.letters()));
        Require(id == static_cast<int32_t>(i) + 2, "announcing a new phone");
    }
    void undo() override { change(kForgetNewPhones); }

private:
    std::vector<std::u16string> imeis_;
};

class BareAnnounceNew : public BareCase {
public:
    BareAnnounceNew(const DataSet& dataSet, Side side, size_t count) : BareCase(dataSet, side)
    {
        for (size_t i = 0; i < count; ++i) {
            Texts texts = {PhoneText(NewImei(i)), NewPhoneText(NewImei(i), NameOf(dataSet.letters())), {}};
            constexpr std::array<int, kMainFolderCount> kMainFolderIds = {1000, 1100, 1400, 1500, 1600, 1900, 2200};
            for (size_t k = 0; k < kMainFolderCount; ++k) {
                texts.contents[k] = "INSERT INTO tSyncContents ([phoneID], [lfID], [Selected]) VALUES (" +
                                    std::to_string(i + 2) + ", " + std::to_string(kMainFolderIds[k]) + ", 0);";
            }
            texts_.push_back(std::move(texts));
        }
    }
    void run(size_t i) override
    {
        const Texts& texts = texts_[i];
        Require(db_.firstInt(texts.phone.c_str(), -1) == -1, "missing the phone");
        db_.exec(texts.insert.c_str());
        Require(db_.lastRowId() == static_cast<sqlite3_int64>(i) + 2, "the new phone's number");
        Require(db_.firstInt(kCountMainFolders, -1) == kMainFolderCount, "counting main folders");
        const size_t folders = db_.forEachRow(kMainFolders, [this](sqlite3_stmt* row) {
            Require(sqlite3_column_int(row, 0) != 0, kMainFolders);
            Require(sqlite3_column_int(row, 1) == 0 && sqlite3_column_int64(row, 2) == 0, kMainFolders);
            Require(db_.text(row, 3), kMainFolders);
            return true;
        });
        Require(folders == kMainFolderCount, "listing main folders");
        for (const std::string& text : texts.contents) {
            db_.exec(text.c_str());
        }
    }
    void undo() override { change(kForgetNewPhones); }

private:
    struct Texts {
        std::string phone;
        std::string insert;
        std::array<std::string, kMainFolderCount> contents;
    };
    std::vector<Texts> texts_;
};

}  // namespace

std::unique_ptr<BenchmarkCase> MakePhoneCase(const DataSet& dataSet, const OperationTraits& traits, Side side)
{
    if (traits.operation == Operation::kAnnounceKnown) {
        return Make<LibraryAnnounceKnown, BareAnnounceKnown>(side, dataSet);
    }
    return Make<LibraryAnnounceNew, BareAnnounceNew>(side, dataSet, traits.perRun);
}

}  // namespace kesta::bench
