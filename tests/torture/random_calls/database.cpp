#include "torture/random_calls/database.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <system_error>

#include "support/sql.h"
#include "torture/random_calls/records.h"
#include "torture/random_calls/texts.h"

namespace kesta::test {
namespace {

constexpr size_t kCounterAt = 24;       // in a database's header: changes whenever the file does
constexpr size_t kCounterAgainAt = 92;  // the counter for which the header's number of pages is true
constexpr int64_t kLockBytes = 0x40000000;
constexpr int64_t kLockLength = 512;

uint32_t Big(const uint8_t* bytes)
{
    return uint32_t{bytes[0]} << 24 | uint32_t{bytes[1]} << 16 | uint32_t{bytes[2]} << 8 | bytes[3];
}

void PutBig(uint8_t* bytes, uint32_t value)
{
    for (int i = 3; i >= 0; --i, value >>= 8) {
        bytes[i] = static_cast<uint8_t>(value);
    }
}

/// The tables that other programs keep in the file.
constexpr const char* kForeignTables =
    "CREATE TABLE tBackups (bcID INTEGER PRIMARY KEY, phoneID, Path, PhonePath, Size, ModifiedTime);"
    "CREATE TABLE tMusicFiles (Size); INSERT INTO tMusicFiles VALUES (1), (2);"
    "CREATE TABLE tMediaFiles (Size); INSERT INTO tMediaFiles VALUES (9223372036854775807);"
    "CREATE TABLE tDocuments (Size); INSERT INTO tDocuments VALUES (NULL);"
    "CREATE TABLE tWebBookmarks (Size);";

/// Values of other types, out of range, that are no text, and views that answer what no table holds.
constexpr const char* kOddValues =
    "UPDATE tMFolder SET Count = 'x', Size = 9e99, TotalSize = x'00ff', Selected = -2147483649, Flag = 7;"
    "UPDATE tIFolder SET AddTime = 'not a date', Sized = 'NaN';"
    "UPDATE tVFolder SET Path = x'ff00fe' WHERE rowid = 1;"
    "UPDATE tMFile SET PhonePath = CAST(x'c3' AS TEXT), ModifiedTime = 1e300;"
    "UPDATE tIFile SET BasePath = CAST(x'eda080' AS TEXT), ModifiedTime = 'Invalid DateTime';"
    "UPDATE tVFile SET PhonePath = CAST(x'7800780078' AS TEXT), ModifiedTime = '9999-12-31 23:59:60';"
    "UPDATE tDFile SET PhonePath = hex(zeroblob(60000)), ModifiedTime = '0000-00-00';"
    "UPDATE tPFolder SET IdInPhone = x'', Digest = 1e300, Type = 'x', Flag = 2;"
    "UPDATE tBFile SET Title = zeroblob(3000), PhoneMID = CAST(x'f5f6f7' AS TEXT);"
    "UPDATE tPhone SET Name = x'00', CalStart = '-4713-11-24 12:00:00', CalEnd = 5373484.5, BookMarkType = NULL,"
    " LastTime = x'ff', AutoSync = 9223372036854775807 WHERE ID = 2;"
    "INSERT INTO tPhone (ID, IMEI) VALUES (-1, '351111'), (4294967297, '352222'), (NULL, '');"
    "UPDATE tLibMainFolder SET Number = -1, Size = 1e300, Setting = x'00d8' WHERE ID < 1500;"
    "INSERT INTO tLibMainFolder VALUES (-9223372036854775808, '', NULL, NULL, NULL);"
    "UPDATE tPimFolder SET parentID = pfID; UPDATE tPimItem SET Data = 'text', Type = x'00';"
    "INSERT INTO tPimFolder (pfID, parentID, PimID, Path, Type) VALUES (8589934593, -1, 'far', NULL, 1),"
    " (-5, NULL, 'below', x'00', 1), (4294967296, 1, 'cut', '', 1);"
    "INSERT INTO tPimItem (pfID, PimID, Data, Type) VALUES (-1, 'numbers', 12.5, 1), (-1, 'none', NULL, NULL),"
    " (-1, 'empty', x'', 1), (-1, 'large', zeroblob(100000), 1);"
    "UPDATE tPimLog SET PimProfile = NULL; UPDATE tPimLogItem SET PCTime = 'x', PhoneTime = x'00', Guid = x'00';"
    "INSERT INTO tPimInfo VALUES (x'00'), (NULL), (CAST(x'fffe' AS TEXT));"
    "UPDATE tSyncContents SET Selected = 'x';"
    "INSERT INTO tBackups VALUES (-1, 1, x'00', NULL, 'x', 'x'), (5, 2, NULL, x'ff', NULL, 1e300);"
    "UPDATE tVersion SET Version = 5005;";

DbChar* T(const DbChar* text)
{
    return const_cast<DbChar*>(text);
}

void Must(int32_t result, const char* what)
{
    if (result != 0) {
        Fail("%s was answered by %d", what, result);
    }
}

struct Category {
    decltype(Exports::DB_MUSIC_AddFolder) addFolder;
    decltype(Exports::DB_MUSIC_SetAddedFile) setAddedFile;
};

void FillMedia(const Exports& lib, const DbChar* phone)
{
    const Category categories[] = {{lib.DB_MUSIC_AddFolder, lib.DB_MUSIC_SetAddedFile},
                                   {lib.DB_IMAGE_AddFolder, lib.DB_IMAGE_SetAddedFile},
                                   {lib.DB_VIDEO_AddFolder, lib.DB_VIDEO_SetAddedFile},
                                   {lib.DB_DOCUMENT_AddFolder, lib.DB_DOCUMENT_SetAddedFile}};
    for (const Category& category : categories) {
        for (const TextView name : kNames) {
            FolderRecord folder = {};
            folder.Path = T(name.data());
            Must(category.addFolder(phone, &folder), "AddFolder");
            const SyncedFileRecord file = {{45000.5, kDateValid}, folder.Path, T(kNames[0].data()), folder.Path};
            Must(category.setAddedFile(phone, &file), "SetAddedFile");
        }
    }
}

void FillPlaylists(const Exports& lib, const DbChar* phone)
{
    for (const TextView name : kNames) {
        PlaylistRecord playlist = {};
        playlist.Name = T(name.data());
        Must(lib.DB_PLAYERMUSIC_AddPlaylist(phone, &playlist), "AddPlaylist");
        DbChar* items[] = {T(kNames[0].data()), T(kNames[1].data())};
        const FileNameArray names = {2, items};
        Must(lib.DB_PLAYERMUSIC_SetListFilesname(phone, playlist.Name, &names), "SetListFilesname");
        const SyncedFileRecord file = {{45000.5, kDateValid}, playlist.Name, playlist.Name, playlist.Name};
        Must(lib.DB_PLAYERMUSIC_SetAddedFile(phone, &file), "SetAddedFile");
        const BookmarkRecord bookmark = {playlist.Name, playlist.Name, playlist.Name, 1, 1, 1};
        Must(lib.DB_BOOKMARK_SetAddedMark(phone, &bookmark), "SetAddedMark");
    }
}

void FillPim(const Exports& lib, const DbChar* phone)
{
    PimLogItem item = {T(u"g"), T(u"l"), {45000.5, kDateValid}, {45000.5, kDateValid}};
    const PimLog log = {1, 1, &item};
    Must(lib.DB_PIMLOG_SaveLog(phone, &log), "SaveLog");
    Must(lib.DB_PIMLOG_SetPimProfile(phone, u"profile", 1), "SetPimProfile");
    uint8_t data[] = {1, 2, 3};
    const PimFolderRecord folder = {T(phone), nullptr, T(u"C:\\Music"), 1};
    Must(lib.DB_PIM_AddFolder(&folder, nullptr), "AddFolder");
    const std::basic_string<DbChar> childId = std::basic_string<DbChar>(phone) + u"child";
    const PimFolderRecord child = {T(childId.c_str()), nullptr, T(u"C:\\Music\\Rock"), 1};
    Must(lib.DB_PIM_AddFolder(&child, phone), "AddFolder");
    const PimItemRecord entry = {T(phone), 1, 3, data};
    Must(lib.DB_PIM_AddItem(&entry, u"C:\\Music\\Rock"), "AddItem");
}

}  // namespace

Database::Database(const Library& library) : file_(open(library.databasePath().c_str(), O_RDWR | O_CLOEXEC))
{
    if (file_ < 0) {
        throw std::system_error(errno, std::generic_category(), "the database file");
    }
    files_[0] = read();

    for (const TextView phone : kPhones) {
        if (library.DB_LIB_PhoneDetected(phone.data(), u"Phone") < 1) {
            Fail("a phone was not registered");
        }
        FillMedia(library, phone.data());
        FillPlaylists(library, phone.data());
        FillPim(library, phone.data());
    }
    DbChar* const profile = T(u"profile");
    Must(library.DB_PIM_SetProfile(&profile), "SetProfile");
    const Sql sql(library.databasePath());
    sql.exec(kForeignTables);
    BackupRecord backup = {0, 7, {45000.5, kDateValid}, T(u"C:\\Music"), T(u"p1")};
    Must(library.DB_BACKUP_AddBackup(kPhones[0].data(), &backup), "AddBackup");
    files_[1] = read();

    sql.exec(kOddValues);
    files_[2] = read();
}

Database::~Database()
{
    close(file_);
}

void Database::restore(size_t which)
{
    uint8_t now[4] = {};
    if (pread(file_, now, sizeof now, kCounterAt) != sizeof now) {
        Fail("the database file is empty");
    }
    if (last_ == which && counter_ == Big(now)) {
        return;
    }
    // A counter that no file here had before, or the library would go on with what it has read.
    counter_ = std::max(counter_, Big(now)) + 1000;
    Bytes& file = files_[which];
    PutBig(&file[kCounterAt], counter_);
    PutBig(&file[kCounterAgainAt], counter_);
    const auto length = static_cast<ssize_t>(file.size());
    if (pwrite(file_, file.data(), file.size(), 0) != length || ftruncate(file_, length) != 0) {
        throw std::system_error(errno, std::generic_category(), "putting the database back");
    }
    last_ = which;
}

bool Database::isLocked() const
{
    // Asked by the open file, to which the locks of this very process are somebody else's.
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = kLockBytes;
    lock.l_len = kLockLength;
    if (fcntl(file_, F_OFD_GETLK, &lock) != 0) {
        throw std::system_error(errno, std::generic_category(), "F_OFD_GETLK");
    }
    return lock.l_type != F_UNLCK;
}

Database::Bytes Database::read() const
{
    struct stat status = {};
    if (fstat(file_, &status) != 0) {
        throw std::system_error(errno, std::generic_category(), "the database file");
    }
    Bytes bytes(static_cast<size_t>(status.st_size));
    if (pread(file_, bytes.data(), bytes.size(), 0) != status.st_size) {
        Fail("the database file could not be read");
    }
    return bytes;
}

}  // namespace kesta::test
