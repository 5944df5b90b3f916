// Media files: recording, looking up, listing.
#include <vector>

#include "cases.h"
#include "families.h"

namespace kesta::bench {
namespace {

constexpr int kColumns = 4;
constexpr char kForgetNewFiles[] = "DELETE FROM tMFile WHERE [Path] GLOB '*/[1-9][0-9][0-9]* *.mp3';";

std::string InsertText(const File& file)
{
    return "INSERT INTO tMFile ([PhoneID], [Path], [BasePath], [PhonePath], [ModifiedTime]) VALUES (1, '" +
           Quoted(file.path) + "', '" + Quoted(file.basePath) + "', '" + Quoted(file.phonePath) + "', '" +
           file.modified.text + "');";
}

std::string FlagText(const File& file)
{
    return "UPDATE tMFolder SET [Flag] = 0 WHERE [PhoneID] = 1 AND [PATH] = '" + Quoted(file.basePath) + "';";
}

std::string LookUpText(const File& file)
{
    return "SELECT [Path], [BasePath], [PhonePath], DATETIME([ModifiedTime]) FROM vMFile WHERE [IMEI] = '" +
           Utf8(kImei) + "' AND [Path] = '" + Quoted(file.path) + "';";
}

std::string CountAllText()
{
    return "SELECT COUNT(*) FROM vMFile WHERE [IMEI] = '" + Utf8(kImei) + "';";
}

std::string ListAllText()
{
    return "SELECT [Path], [BasePath], [PhonePath], DATETIME([ModifiedTime]) FROM vMFile WHERE [IMEI] = '" +
           Utf8(kImei) + "';";
}

std::string CountFolderText(const std::u16string& folder)
{
    return "SELECT COUNT(*) FROM vMFile WHERE [IMEI] = '" + Utf8(kImei) + "'AND [BasePath] = '" + Quoted(folder) + "';";
}

std::string ListFolderText(const std::u16string& folder)
{
    return "SELECT [Path], [BasePath], [PhonePath], DATETIME([ModifiedTime]) FROM vMFile WHERE [IMEI] = '" +
           Utf8(kImei) + "'AND [BasePath] = '" + Quoted(folder) + "';";
}

size_t FoldersOf(const DataSet& dataSet)
{
    return (dataSet.entries() + kFilesPerFolder - 1) / kFilesPerFolder;
}

std::vector<File> SomeFiles(const DataSet& dataSet, size_t count)
{
    std::vector<File> files;
    for (size_t i = 0; i < count; ++i) {
        files.push_back(MakeFile(Scattered(i, dataSet.entries()), dataSet.letters()));
    }
    return files;
}

std::vector<File> NewFiles(const DataSet& dataSet, size_t count)
{
    std::vector<File> files;
    for (size_t i = 0; i < count; ++i) {
        files.push_back(MakeNewFile(i, dataSet.entries(), dataSet.letters()));
    }
    return files;
}

std::vector<std::u16string> SomeFolders(const DataSet& dataSet, size_t count)
{
    std::vector<std::u16string> folders;
    for (size_t i = 0; i < count; ++i) {
        folders.push_back(MakeFile(Scattered(i, FoldersOf(dataSet)) * kFilesPerFolder, dataSet.letters()).basePath);
    }
    return folders;
}

// Recording a synced file.

class LibraryRecord : public LibraryCase {
public:
    LibraryRecord(const DataSet& dataSet, size_t count) : LibraryCase(dataSet), files_(NewFiles(dataSet, count))
    {
        for (File& file : files_) {
            records_.push_back(
                {{file.modified.days, kDateValid}, file.path.data(), file.basePath.data(), file.phonePath.data()});
        }
    }
    void run(size_t i) override { Require(library_.SetAddedFile(kImei, &records_[i]) == 0, "recording a file"); }
    void undo() override { change(kForgetNewFiles); }

private:
    std::vector<File> files_;
    std::vector<SyncedFileRecord> records_;
};

class BareRecord : public BareCase {
public:
    BareRecord(const DataSet& dataSet, Side side, size_t count) : BareCase(dataSet, side), phone_(PhoneText(kImei))
    {
        for (const File& file : NewFiles(dataSet, count)) {
            texts_.push_back({InsertText(file), FlagText(file)});
        }
    }
    void run(size_t i) override
    {
        Require(db_.firstInt(phone_.c_str(), -1) == 1, "finding the phone");
        db_.exec(texts_[i].insert.c_str());
        db_.exec(texts_[i].flag.c_str());
    }
    void undo() override { change(kForgetNewFiles); }

private:
    struct Texts {
        std::string insert;
        std::string flag;
    };
    std::string phone_;
    std::vector<Texts> texts_;
};

// Looking up whether a file is synced.

class LibraryLookUp : public LibraryCase {
public:
    LibraryLookUp(const DataSet& dataSet, size_t count) : LibraryCase(dataSet), files_(SomeFiles(dataSet, count)) {}
    void run(size_t i) override
    {
        SyncedFileRecord found = {};
        const int32_t known = library_.IsSyncedFile(kImei, files_[i % files_.size()].path.c_str(), &found);
        Require(known == 1 && found.ModifiedTime.Status == kDateValid, "looking a file up");
    }

private:
    std::vector<File> files_;
};

class BareLookUp : public BareCase {
public:
    BareLookUp(const DataSet& dataSet, Side side, size_t count) : BareCase(dataSet, side)
    {
        for (const File& file : SomeFiles(dataSet, count)) {
            texts_.push_back(LookUpText(file));
        }
    }
    void run(size_t i) override
    {
        Require(db_.readTexts(texts_[i % texts_.size()].c_str(), kColumns) == 1, "looking a file up");
    }

private:
    std::vector<std::string> texts_;
};

// Listing all files of the phone, and those of one folder.

class LibraryList : public LibraryCase {
public:
    /// All folders' files for no folder.
    LibraryList(const DataSet& dataSet, std::vector<std::u16string> folders)
        : LibraryCase(dataSet),
          folders_(std::move(folders)),
          expected_(folders_.empty() ? dataSet.entries() : kFilesPerFolder)
    {
    }
    ~LibraryList() override { LibraryList::dropList(); }
    void run(size_t i) override
    {
        const char16_t* folder = folders_.empty() ? nullptr : folders_[i % folders_.size()].c_str();
        Require(library_.GetSyncedFiles(kImei, folder, &list_) == 0, "listing files");
        Require(static_cast<size_t>(list_.Count) == expected_, "all files in the list");
    }
    [[nodiscard]] ListSize list() const override
    {
        ListSize size;
        for (int32_t i = 0; i < list_.Count; ++i) {
            const SyncedFileRecord& file = list_.Items[i];
            size.bytes += sizeof file;
            for (const char16_t* text : {file.Path, file.BasePath, file.PhonePath}) {
                AddText(size, text);
            }
        }
        return size;
    }
    void dropList() override { (void)library_.GetSyncedFiles(u"", nullptr, &list_); }

private:
    std::vector<std::u16string> folders_;
    size_t expected_;
    SyncedFileList list_ = {0, nullptr};
};

/// Lists every folder once, each time.
class LibraryListFolders : public LibraryList {
public:
    explicit LibraryListFolders(const DataSet& dataSet)
        : LibraryList(dataSet, SomeFolders(dataSet, FoldersOf(dataSet))), count_(FoldersOf(dataSet))
    {
    }
    void run(size_t /*i*/) override
    {
        for (size_t folder = 0; folder < count_; ++folder) {
            LibraryList::run(folder);
        }
    }

private:
    size_t count_;
};

class BareList : public BareCase {
public:
    BareList(const DataSet& dataSet, Side side, const std::vector<std::u16string>& folders)
        : BareCase(dataSet, side), expected_(folders.empty() ? dataSet.entries() : kFilesPerFolder)
    {
        if (folders.empty()) {
            texts_.push_back({CountAllText(), ListAllText()});
        }
        for (const std::u16string& folder : folders) {
            texts_.push_back({CountFolderText(folder), ListFolderText(folder)});
        }
    }
    void run(size_t i) override
    {
        const Texts& texts = texts_[i % texts_.size()];
        Require(static_cast<size_t>(db_.firstInt(texts.count.c_str(), -1)) == expected_, "counting files");
        Require(db_.readTexts(texts.list.c_str(), kColumns) == expected_, "listing files");
    }

private:
    struct Texts {
        std::string count;
        std::string list;
    };
    std::vector<Texts> texts_;
    size_t expected_;
};

}  // namespace

void FillMedia(const DataSet& dataSet, Bare& db)
{
    for (size_t n = 0; n < dataSet.entries(); ++n) {
        const File file = MakeFile(n, dataSet.letters());
        if (n % kFilesPerFolder == 0) {
            db.exec(("INSERT INTO tMFolder ([PhoneID],[Path],[AddTime]) VALUES (1,'" + Quoted(file.basePath) +
                     "','2026-03-01 10:00:00')")
                        .c_str());
        }
        db.exec(InsertText(file).c_str());
    }
}

std::unique_ptr<BenchmarkCase> MakeMediaCase(const DataSet& dataSet, const OperationTraits& traits, Side side)
{
    switch (traits.operation) {
        case Operation::kRecord:
            return Make<LibraryRecord, BareRecord>(side, dataSet, traits.perRun);
        case Operation::kLookUp:
            return Make<LibraryLookUp, BareLookUp>(side, dataSet, traits.perRun);
        case Operation::kListAll:
            return Make<LibraryList, BareList>(side, dataSet, std::vector<std::u16string>());
        case Operation::kListFolders:
            if (side == Side::kLibrary) {
                return std::make_unique<LibraryListFolders>(dataSet);
            }
            return std::make_unique<BareList>(dataSet, side, std::vector<std::u16string>());
        default:
            return Make<LibraryList, BareList>(side, dataSet, SomeFolders(dataSet, traits.perRun));
    }
}

}  // namespace kesta::bench
