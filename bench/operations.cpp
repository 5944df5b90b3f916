#include "operations.h"

#include <array>
#include <functional>
#include <string>

#include "bare.h"
#include "library.h"

namespace kesta::bench {
namespace {

constexpr size_t kMainFolderCount = 7;
constexpr int kColumns = 4;
constexpr char kForgetNewFiles[] = "DELETE FROM tMFile WHERE [Path] GLOB '*/[1-9][0-9][0-9]* *.mp3';";
constexpr char kForgetNewPhones[] =
    "DELETE FROM tSyncContents WHERE [phoneID] > 1; DELETE FROM tPhone WHERE [ID] > 1;"
    "UPDATE sqlite_sequence SET seq = 1 WHERE name = 'tPhone';";

/// Files of the collection far from each other, as look-ups of different files have them.
std::vector<File> SomeFiles(const Scene& scene, size_t count)
{
    std::vector<File> files;
    for (size_t i = 0; i < count; ++i) files.push_back(MakeFile(i * 7919 % scene.files(), scene.letters()));
    return files;
}

std::vector<File> NewFiles(const Scene& scene, size_t count)
{
    std::vector<File> files;
    for (size_t i = 0; i < count; ++i) files.push_back(MakeNewFile(i, scene.files(), scene.letters()));
    return files;
}

std::vector<std::u16string> SomeFolders(const Scene& scene, size_t count)
{
    std::vector<std::u16string> folders;
    for (size_t i = 0; i < count; ++i) {
        folders.push_back(MakeFile(i * 7919 % scene.folders() * kFilesPerFolder, scene.letters()).basePath);
    }
    return folders;
}

std::u16string NewImei(size_t i)
{
    std::u16string imei = u"490154203200000";
    for (size_t place = imei.size(); i != 0; i /= 10) imei[--place] = static_cast<char16_t>(u'0' + i % 10);
    return imei;
}

const char16_t* NameOf(Letters letters)
{
    return letters == Letters::kAscii ? u"Anna's phone" : u"Zoë's Télefono 📱";
}

class LibraryWork : public Work {
protected:
    explicit LibraryWork(const Scene& scene) : scene_(scene), library_(scene) {}
    /// By a connection of its own, so that the library's stays as it is.
    void forget(const char* sql) const { Bare(scene_.database()).exec(sql); }

    const Scene& scene_;
    const Library library_;
};

class BareWork : public Work {
protected:
    explicit BareWork(const Scene& scene) : scene_(scene), db_(scene.bareDatabase()) {}
    void forget(const char* sql) const { Bare(scene_.bareDatabase()).exec(sql); }

    const Scene& scene_;
    Bare db_;
};

// Recording a synced file.

class LibraryRecord : public LibraryWork {
public:
    LibraryRecord(const Scene& scene, size_t count) : LibraryWork(scene), files_(NewFiles(scene, count))
    {
        for (File& file : files_) {
            records_.push_back(
                {{file.modified, kDateValid}, file.path.data(), file.basePath.data(), file.phonePath.data()});
        }
    }
    void run(size_t i) override { Require(library_.SetAddedFile(kImei, &records_[i]) == 0, "recording a file"); }
    void undo() override { forget(kForgetNewFiles); }

private:
    std::vector<File> files_;
    std::vector<SyncedFileRecord> records_;
};

class BareRecord : public BareWork {
public:
    BareRecord(const Scene& scene, size_t count) : BareWork(scene), phone_(PhoneText(kImei))
    {
        for (const File& file : NewFiles(scene, count)) texts_.push_back({InsertText(file), FlagText(file)});
    }
    void run(size_t i) override
    {
        Require(db_.firstInt(phone_.c_str(), -1) == 1, "finding the phone");
        db_.exec(texts_[i].insert.c_str());
        db_.exec(texts_[i].flag.c_str());
    }
    void undo() override { forget(kForgetNewFiles); }

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
    BareLookUp(const Scene& scene, size_t count) : BareWork(scene)
    {
        for (const File& file : SomeFiles(scene, count)) texts_.push_back(LookUpText(file));
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
          expected_(folders_.empty() ? scene.files() : kFilesPerFolder)
    {
    }
    ~LibraryList() override { (void)library_.GetSyncedFiles(u"", nullptr, &list_); }
    void run(size_t i) override
    {
        const char16_t* folder = folders_.empty() ? nullptr : folders_[i % folders_.size()].c_str();
        Require(library_.GetSyncedFiles(kImei, folder, &list_) == 0, "listing files");
        Require(static_cast<size_t>(list_.Count) == expected_, "all files in the list");
    }

private:
    std::vector<std::u16string> folders_;
    size_t expected_;
    SyncedFileList list_ = {0, nullptr};
};

class BareList : public BareWork {
public:
    BareList(const Scene& scene, const std::vector<std::u16string>& folders)
        : BareWork(scene), expected_(folders.empty() ? scene.files() : kFilesPerFolder)
    {
        if (folders.empty()) texts_.push_back({CountAllText(), ListAllText()});
        for (const std::u16string& folder : folders)
            texts_.push_back({CountFolderText(folder), ListFolderText(folder)});
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

// Announcing a phone.

class LibraryAnnounceKnown : public LibraryWork {
public:
    explicit LibraryAnnounceKnown(const Scene& scene) : LibraryWork(scene) {}
    void run(size_t /*i*/) override
    {
        Require(library_.PhoneDetected(kImei, NameOf(scene_.letters())) == 1, "announcing a known phone");
    }
};

class BareAnnounceKnown : public BareWork {
public:
    explicit BareAnnounceKnown(const Scene& scene) : BareWork(scene), phone_(PhoneText(kImei)) {}
    void run(size_t /*i*/) override { Require(db_.firstInt(phone_.c_str(), -1) == 1, "finding the phone"); }

private:
    std::string phone_;
};

class LibraryAnnounceNew : public LibraryWork {
public:
    LibraryAnnounceNew(const Scene& scene, size_t count) : LibraryWork(scene)
    {
        for (size_t i = 0; i < count; ++i) imeis_.push_back(NewImei(i));
    }
    void run(size_t i) override
    {
        const int32_t id = library_.PhoneDetected(imeis_[i].c_str(), NameOf(scene_.letters()));
        Require(id == static_cast<int32_t>(i) + 2, "announcing a new phone");
    }
    void undo() override { forget(kForgetNewPhones); }

private:
    std::vector<std::u16string> imeis_;
};

class BareAnnounceNew : public BareWork {
public:
    BareAnnounceNew(const Scene& scene, size_t count) : BareWork(scene)
    {
        for (size_t i = 0; i < count; ++i) {
            Texts texts = {PhoneText(NewImei(i)), NewPhoneText(NewImei(i), NameOf(scene.letters())), {}};
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
        Require(db_.readMainFolders(kMainFolders) == kMainFolderCount, "listing main folders");
        for (const std::string& text : texts.contents) db_.exec(text.c_str());
    }
    void undo() override { forget(kForgetNewPhones); }

private:
    struct Texts {
        std::string phone;
        std::string insert;
        std::array<std::string, kMainFolderCount> contents;
    };
    std::vector<Texts> texts_;
};

template <class OfLibrary, class OfFloor, class... Args>
std::unique_ptr<Work> Make(Side side, const Scene& scene, const Args&... args)
{
    if (side == Side::kLibrary) return std::make_unique<OfLibrary>(scene, args...);
    return std::make_unique<OfFloor>(scene, args...);
}

}  // namespace

std::unique_ptr<Work> MakeWork(const Scene& scene, const OperationTraits& traits, Side side)
{
    const std::vector<std::u16string> noFolder;
    switch (traits.operation) {
        case Operation::kRecord:
            return Make<LibraryRecord, BareRecord>(side, scene, traits.perRun);
        case Operation::kLookUp:
            return Make<LibraryLookUp, BareLookUp>(side, scene, traits.perRun);
        case Operation::kListAll:
            return Make<LibraryList, BareList>(side, scene, noFolder);
        case Operation::kListFolder:
            return Make<LibraryList, BareList>(side, scene, SomeFolders(scene, traits.perRun));
        case Operation::kAnnounceKnown:
            return Make<LibraryAnnounceKnown, BareAnnounceKnown>(side, scene);
        case Operation::kAnnounceNew:
            return Make<LibraryAnnounceNew, BareAnnounceNew>(side, scene, traits.perRun);
    }
    return nullptr;
}

}  // namespace kesta::bench
