// Media files: recording, looking up, listing.
#include <vector>

#include "families.h"
#include "work.h"

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

size_t FoldersOf(const Scene& scene)
{
    return (scene.entries() + kFilesPerFolder - 1) / kFilesPerFolder;
}

std::vector<File> SomeFiles(const Scene& scene, size_t count)
{
    std::vector<File> files;
    for (size_t i = 0; i < count; ++i) {
        files.push_back(MakeFile(Scattered(i, scene.entries()), scene.letters()));
    }
    return files;
}

std::vector<File> NewFiles(const Scene& scene, size_t count)
{
    std::vector<File> files;
    for (size_t i = 0; i < count; ++i) {
        files.push_back(MakeNewFile(i, scene.entries(), scene.letters()));
    }
    return files;
}

std::vector<std::u16string> SomeFolders(const Scene& scene, size_t count)
{
    std::vector<std::u16string> folders;
    for (size_t i = 0; i < count; ++i) {
        folders.push_back(MakeFile(Scattered(i, FoldersOf(scene)) * kFilesPerFolder, scene.letters()).basePath);
    }
    return folders;
}

// Recording a synced file.

class LibraryRecord : public LibraryWork {
public:
    LibraryRecord(const Scene& scene, size_t count) : LibraryWork(scene), files_(NewFiles(scene, count))
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

class BareRecord : public BareWork {
public:
    BareRecord(const Scene& scene, Side side, size_t count) : BareWork(scene, side), phone_(PhoneText(kImei))
    {
        for (const File& file : NewFiles(scene, count)) {
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

class LibraryLookUp : public LibraryWork {
public:
    LibraryLookUp(const Scene& scene, size_t count) : LibraryWork(scene), files_(SomeFiles(scene, count)) {}
    void run(size_t i) override
    {
        SyncedFileRecord found = {};
        const int32_t known = library_.IsSyncedFile(kImei, files_[i % files_.size()].path.c_str(), &found);
        Require(known == 1 && found.ModifiedTime.Status == kDateValid, "looking a file up");
    }

private:
    std::vector<File> files_;
};

class BareLookUp : public BareWork {
public:
    BareLookUp(const Scene& scene, Side side, size_t count) : BareWork(scene, side)
    {
        for (const File& file : SomeFiles(scene, count)) {
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

class LibraryList : public LibraryWork {
public:
    /// All folders' files for no folder.
    LibraryList(const Scene& scene, std::vector<std::u16string> folders)
        : LibraryWork(scene),
          folders_(std::move(folders)),
          expected_(folders_.empty() ? scene.entries() : kFilesPerFolder)
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
    explicit LibraryListFolders(const Scene& scene)
        : LibraryList(scene, SomeFolders(scene, FoldersOf(scene))), count_(FoldersOf(scene))
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

class BareList : public BareWork {
public:
    BareList(const Scene& scene, Side side, const std::vector<std::u16string>& folders)
        : BareWork(scene, side), expected_(folders.empty() ? scene.entries() : kFilesPerFolder)
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

void FillMedia(const Scene& scene, Bare& db)
{
    for (size_t n = 0; n < scene.entries(); ++n) {
        const File file = MakeFile(n, scene.letters());
        if (n % kFilesPerFolder == 0) {
            db.exec(("INSERT INTO tMFolder ([PhoneID],[Path],[AddTime]) VALUES (1,'" + Quoted(file.basePath) +
                     "','2026-03-01 10:00:00')")
                        .c_str());
        }
        db.exec(InsertText(file).c_str());
    }
}

std::unique_ptr<Work> MakeMediaWork(const Scene& scene, const OperationTraits& traits, Side side)
{
    switch (traits.operation) {
        case Operation::kRecord:
            return Make<LibraryRecord, BareRecord>(side, scene, traits.perRun);
        case Operation::kLookUp:
            return Make<LibraryLookUp, BareLookUp>(side, scene, traits.perRun);
        case Operation::kListAll:
            return Make<LibraryList, BareList>(side, scene, std::vector<std::u16string>());
        case Operation::kListFolders:
            if (side == Side::kLibrary) {
                return std::make_unique<LibraryListFolders>(scene);
            }
            return std::make_unique<BareList>(scene, side, std::vector<std::u16string>());
        default:
            return Make<LibraryList, BareList>(side, scene, SomeFolders(scene, traits.perRun));
    }
}

}  // namespace kesta::bench
