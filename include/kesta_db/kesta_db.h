/**
 * @file
 * @brief KESTA_DB: which phones this PC has met, what has been synced to them and in which state, in one SQLite file.
 *
 * The library opens its database when it is loaded and closes it when it is unloaded; there is nothing to initialise
 * and nothing to shut down. The file lies in the user's own application data:
 *
 *     Windows   %APPDATA%\NORVIK\NORVIK Sync\Database\KESTA_DB.s3db
 *     Linux     $XDG_DATA_HOME/NORVIK/NORVIK Sync/Database/KESTA_DB.s3db   (~/.local/share without that variable)
 *
 * THREADS AND PROCESSES. Every function may be called from any thread. All calls of all threads and processes are
 * serialised by one named mutex, so a call may wait for another one: on Linux one mutex for each user, on Windows one
 * for each session, whoever the user is. Two sessions of one Windows user meet only at SQLite's own locks. A database
 * locked by another program is waited for up to about ten seconds per statement. A process may be forked at any time,
 * also while other threads call: the fork waits for the call that runs, and the child opens the database anew at its
 * first call.
 *
 * TEXTS are zero-terminated UTF-16. A null pointer where a text is expected is taken as the empty text where the text
 * is quoted into the database, and as the six characters "(null)" where it stands for itself (every IMEI that chooses a
 * phone does). In what the library hands out, an empty text and a text that was never stored are both null.
 *
 * ASCII ONLY. On Windows some texts reach SQLite through the ANSI code page, while the column they are compared with is
 * UTF-8. These must be ASCII there: the IMEI of every function, the URL of DB_BOOKMARK_GetSyncedMark, the name given to
 * DB_PLAYERMUSIC_SetDeletedPlaylist and DB_PLAYERMUSIC_DeleteList, every PimID, Guid and Luid. A row is not found
 * otherwise, or comes back as another text; DB_LIB_PhoneDetected registers a phone with such an IMEI anew at each call.
 * On Linux any text will do.
 *
 * LENGTH. A statement may be 40,960 UTF-8 bytes long, with the texts in it. A longer one is not run: the call goes on
 * as for any statement that failed. Which answers do not tell of a failed statement is said at the functions; of those
 * that store something they are the four AddFolder, DB_PLAYERMUSIC_AddPlaylist, DB_PLAYERMUSIC_SetListFilesname and the
 * items of DB_PIMLOG_SaveLog: 0 although nothing was stored.
 *
 * RESULTS. Unless its comment says otherwise a function returns 0 for success and 1 for failure; 1 is also the answer
 * when the database is not open, when a record, list or out pointer is null, and after an internal failure (no memory).
 * The last two hold for functions that answer a truth value too: 1 then means nothing, and an out record was not
 * filled. "A query failed" means that it could not be prepared: it was refused or too long, or the file could not be
 * read. "An SQLite code" is the plain result code of the statement that failed (5 busy, 7 no memory, 8 read-only, 9
 * ended, 10 I/O error, 11 damaged file, 13 disk full, 18 statement too long, 19 the row exists already or was refused
 * by a rule of its table, 23 refused, 100 one more row was there than had been counted: ask again). The library opens
 * no transaction: what an earlier step of the same call has changed stays changed when a later one fails.
 *
 * DURABILITY. What a call has acknowledged survives the end of the process at any moment. A loss of power may undo the
 * very last change that was acknowledged, never more, and never damages the file.
 *
 * AN EMPTY ANSWER MAY BE A FAILED ONE. A list is counted before it is read. Where a comment says "counted silently", a
 * count that breaks off (the file locked for more than ten seconds, an I/O error, no memory) gives 0 and an empty list.
 * A phone that cannot be looked up is taken for one that is not known. Who would remove something because a list is
 * empty makes sure first: DB_LIB_GetAllMainFolders lists seven rows of every database that can be read, so 0 with rows
 * says that the file is readable now; then ask for the list again, and believe it when it is empty once more. Damage
 * within the one table stays hidden even so.
 *
 * STATEMENTS. A text that is not quoted, as every IMEI that chooses a phone, is part of its statement: it must come
 * from a source that may read and change every row. More than that it cannot do: once the database is open, statements
 * that begin or end transactions, change the schema or the settings, or reach other files are refused with code 23. A
 * statement that takes more than a thousand million of SQLite's steps (some ten seconds) is ended with code 9. In seven
 * places such a text can even bring a second statement along: the IMEI of DB_LIB_SetLastSyncTime, DB_LIB_SetSDType and
 * DB_PLAYERMUSIC_SetListFilesname, the Digest of DB_PLAYERMUSIC_AddPlaylist, Guid and Luid of DB_PIMLOG_SaveLog and the
 * PimID of DB_PIM_AddFolder.
 *
 * MEMORY. Records that the caller fills stay the caller's, texts included. A list record starts as {0, NULL}; the
 * library fills it, owns the array and its texts, and frees them when the same record is passed to a function with
 * a list of that kind again: before it looks at the other arguments, so none of these may be a text out of that list or
 * record. The contents must not be freed or changed by the caller. A caller gives a list back by asking for something
 * that is not known:
 *
 *     of a phone that is not known    folders, synced files, playlists, bookmarks, backups (DB_BACKUP_GetPhoneBackups)
 *     of a folder that is not known   PIM folders (DB_PIM_GetFolders) and PIM items (DB_PIM_GetItems)
 *
 * Four are never emptied by a call that finds nothing, and are best kept as one record for the whole program: the lists
 * of main folders and of phones, a PimLog, and the slot of DB_PIM_GetProfile. Texts in a single record that the library
 * filled belong to the library too; who frees them is said at the function.
 *
 * TRACE. Each call writes its steps as lines that start with "DB TRACE >> " to the debug output: OutputDebugStringW on
 * Windows; elsewhere one datagram a line, in UTF-8, to the Unix socket $XDG_RUNTIME_DIR/kesta_db.trace (without
 * that variable /tmp/kesta_db-UID.trace), if a viewer has bound it. `kesta trace` is such a viewer.
 */
#ifndef KESTA_DB_KESTA_DB_H
#define KESTA_DB_KESTA_DB_H

#include <stddef.h>
#include <stdint.h>
#if !defined(_WIN32) && !defined(__cplusplus)
#include <uchar.h>
#endif

/** @name Version
 * The version of this header. Within one major version programs run with any library that is not older than the header
 * that they were compiled with.
 * @{ */
#define KESTA_DB_VERSION_MAJOR 1 /**< changes when programs have to be compiled anew */
#define KESTA_DB_VERSION_MINOR 0 /**< changes when something was added */
#define KESTA_DB_VERSION_PATCH 0 /**< changes when something was mended */
/** One number to compare with: 1.2.3 is 10203. */
#define KESTA_DB_VERSION_NUMBER (KESTA_DB_VERSION_MAJOR * 10000 + KESTA_DB_VERSION_MINOR * 100 + KESTA_DB_VERSION_PATCH)
/** "1.2.3" */
#define KESTA_DB_VERSION "1.0.0"
/** @} */

#if defined(_WIN32)
/** The calling convention of every function. */
#define KESTA_DB_CALL __cdecl
#if defined(KESTA_DB_BUILD)
#define KESTA_DB_API
#else
/** How a caller sees the library's symbols. */
#define KESTA_DB_API __declspec(dllimport)
#endif
#else
/** The calling convention of every function. */
#define KESTA_DB_CALL
/** How a caller sees the library's symbols. */
#define KESTA_DB_API __attribute__((visibility("default")))
#endif

#define KESTA_DB_OFFSET(type, field) offsetof(type, field)
#if defined(__cplusplus)
#define KESTA_DB_STATIC_ASSERT(condition) static_assert(condition, #condition)
extern "C" {
#else
#define KESTA_DB_STATIC_ASSERT(condition) _Static_assert(condition, #condition)
#endif
/* clang-format off */
/** One UTF-16 code unit. */
#if defined(_WIN32)
typedef wchar_t DbChar;
#else
typedef char16_t DbChar;
#endif

/** State of a DateValue. */
enum {
    kDateValid = 0,   /**< Days holds a point in time */
    kDateInvalid = 1, /**< Days holds nothing */
    kDateNull = 2     /**< no date; what a caller passes for one that is not known */
};

#pragma pack(push, 4)
/**
 * A point in local time: days since 30 December 1899 00:00, the fraction being the time of day (forward in the day for
 * negative values too). Times are kept to the second; the years 100 to 9999 can be stored.
 * A null date is stored as an empty text; an invalid one, a day number outside those years or one that is no number as
 * the text "Invalid DateTime". All of these read back as invalid: kDateNull is never handed out.
 */
typedef struct DateValue {
    double Days;    /**< days since 30 December 1899 00:00 */
    int32_t Status; /**< kDateValid, kDateInvalid or kDateNull */
} DateValue;
#pragma pack(pop)
KESTA_DB_STATIC_ASSERT(sizeof(DateValue) == 12);
KESTA_DB_STATIC_ASSERT(KESTA_DB_OFFSET(DateValue, Status) == 8);

/* ---- Main library folders --------------------------------------------------------------------------------------- */
/**
 * @defgroup main_folders Main folders
 * The main folders of the library, their figures and whether they changed.
 * @{
 */

/** The main library folders: the IDs of MainFolderRecord and the folderId arguments. */
enum {
    kMainFolderMusic = 1000,       /**< music */
    kMainFolderGallery = 1100,     /**< pictures and videos */
    kMainFolderDocument = 1400,    /**< documents */
    kMainFolderPeople = 1500,      /**< contacts */
    kMainFolderCalendar = 1600,    /**< calendar */
    kMainFolderWebBookmark = 1900, /**< web bookmarks */
    kMainFolderMap = 2200          /**< maps */
};

/** One main library folder. */
typedef struct MainFolderRecord {
    int32_t ID;      /**< kMainFolderMusic ... kMainFolderMap */
    int32_t Number;  /**< items in it; negative in an update: leave as it is */
    int64_t Size;    /**< bytes; negative in an update: leave as it is */
    DbChar *Setting; /**< free text; null or empty in an update: leave as it is; null when there is none */
    int32_t Changed; /**< 1 when it changed since DB_LIB_MainFoldersChanged last asked, else 0 */
} MainFolderRecord;
KESTA_DB_STATIC_ASSERT(sizeof(MainFolderRecord) == (sizeof(void *) == 8 ? 32 : 24));
KESTA_DB_STATIC_ASSERT(KESTA_DB_OFFSET(MainFolderRecord, Size) == 8);
KESTA_DB_STATIC_ASSERT(KESTA_DB_OFFSET(MainFolderRecord, Setting) == 16);
KESTA_DB_STATIC_ASSERT(KESTA_DB_OFFSET(MainFolderRecord, Changed) == (sizeof(void *) == 8 ? 24 : 20));

/** A list of main folders. */
typedef struct MainFolderList {
    int32_t Count;           /**< elements in Items */
    MainFolderRecord *Items; /**< the library's array, or null */
} MainFolderList;
KESTA_DB_STATIC_ASSERT(sizeof(MainFolderList) == 2 * sizeof(void *));

/** @} */

/* ---- Phones ----------------------------------------------------------------------------------------------------- */
/**
 * @defgroup phones Phones
 * The registry of phones and how each is set up.
 * @{
 */

/** What is known of one phone and how it is to be synced. Truth values are 0 or 1. */
typedef struct PhoneSettingRecord {
    DbChar *IMEI;                /**< identifies the phone */
    DbChar *Name;                /**< display name */
    DbChar *PhotoPath;           /**< PC folder for photos */
    DbChar *DocPath;             /**< PC folder for documents */
    DbChar *WifiMAC;             /**< the phone's Wi-Fi MAC address */
    int32_t AutoSync;            /**< a new phone has 0 */
    int32_t AutoBackup;          /**< a new phone has 0 */
    int32_t AllowWifi;           /**< a new phone has 1 */
    int32_t ContactPreferSide;   /**< a new phone has 2 */
    int32_t CalendarPreferSide;  /**< a new phone has 2 */
    int32_t ContactPim;          /**< the caller's number of the contact program */
    int32_t CalPim;              /**< the caller's number of the calendar program */
    int32_t CalPeriod;           /**< the caller's number of the calendar period */
    DbChar *CalPeriodStr;        /**< the calendar period as text */
    DateValue CalStart;          /**< first day of the calendar to sync */
    DateValue CalEnd;            /**< last day of the calendar to sync */
    int32_t BookMarkType;        /**< which set of bookmarks is synced; a new phone has 1 */
    int32_t SyncDocFromFolder;   /**< a new phone has 0 */
    int32_t SyncDocFromPhone;    /**< a new phone has 1 */
    int32_t SyncPhotoFromFolder; /**< a new phone has 0 */
    int32_t SyncPhotoFromPhone;  /**< a new phone has 1 */
    int32_t SyncMusicFromFolder; /**< a new phone has 0 */
    int32_t SyncMusicFromPlayer; /**< a new phone has 0 */
    int32_t SyncMusicAll;        /**< a new phone has 1 */
    int32_t NeedMount;           /**< set by DB_LIB_SetLastSyncTime; a new phone has 1 */
    DbChar *ContactFolderId;     /**< the contact program's folder */
    DbChar *CalendarFolderId;    /**< the calendar program's folder */
    DbChar *ContactProfile;      /**< the contact program's profile */
    DbChar *CalendarProfile;     /**< the calendar program's profile */
} PhoneSettingRecord;
KESTA_DB_STATIC_ASSERT(sizeof(PhoneSettingRecord) == (sizeof(void *) == 8 ? 176 : 132));
KESTA_DB_STATIC_ASSERT(KESTA_DB_OFFSET(PhoneSettingRecord, AutoSync) == 5 * sizeof(void *));
KESTA_DB_STATIC_ASSERT(KESTA_DB_OFFSET(PhoneSettingRecord, CalPeriodStr) == (sizeof(void *) == 8 ? 72 : 52));
KESTA_DB_STATIC_ASSERT(KESTA_DB_OFFSET(PhoneSettingRecord, CalStart) == (sizeof(void *) == 8 ? 80 : 56));
KESTA_DB_STATIC_ASSERT(KESTA_DB_OFFSET(PhoneSettingRecord, BookMarkType) == (sizeof(void *) == 8 ? 104 : 80));
KESTA_DB_STATIC_ASSERT(KESTA_DB_OFFSET(PhoneSettingRecord, NeedMount) == (sizeof(void *) == 8 ? 136 : 112));
KESTA_DB_STATIC_ASSERT(KESTA_DB_OFFSET(PhoneSettingRecord, ContactFolderId) == (sizeof(void *) == 8 ? 144 : 116));

/** A list of phones. */
typedef struct PhoneList {
    int32_t Count;             /**< elements in Items */
    PhoneSettingRecord *Items; /**< the library's array, or null */
} PhoneList;
KESTA_DB_STATIC_ASSERT(sizeof(PhoneList) == 2 * sizeof(void *));

/** @} */

/* ---- Media folders and synced files ----------------------------------------------------------------------------- */
/**
 * @defgroup media Media folders and files
 * Which folders of the PC are synced to a phone, and which files lie on it.
 * @{
 */

/** One PC folder that is synced to a phone. */
typedef struct FolderRecord {
    int64_t RowId;     /**< the row's number in the database */
    DbChar *Path;      /**< the folder on the PC; the key within a phone and category */
    int32_t Count;     /**< files in it */
    int64_t Size;      /**< bytes, by the caller's own count */
    int64_t TotalSize; /**< bytes, by the caller's own count */
    int32_t Selected;  /**< 1: the user wants it synced */
    int32_t Deleted;   /**< 1: gone from the PC, its row is kept */
    int32_t Reserved;  /**< neither read nor written */
    DateValue AddTime; /**< when it was first added */
    int32_t Sized;     /**< 1: Size and TotalSize hold a measured value */
} FolderRecord;
KESTA_DB_STATIC_ASSERT(sizeof(FolderRecord) == (sizeof(void *) == 8 ? 72 : 64));
KESTA_DB_STATIC_ASSERT(KESTA_DB_OFFSET(FolderRecord, Path) == 8);
KESTA_DB_STATIC_ASSERT(KESTA_DB_OFFSET(FolderRecord, Count) == (sizeof(void *) == 8 ? 16 : 12));
KESTA_DB_STATIC_ASSERT(KESTA_DB_OFFSET(FolderRecord, Size) == (sizeof(void *) == 8 ? 24 : 16));
KESTA_DB_STATIC_ASSERT(KESTA_DB_OFFSET(FolderRecord, TotalSize) == (sizeof(void *) == 8 ? 32 : 24));
KESTA_DB_STATIC_ASSERT(KESTA_DB_OFFSET(FolderRecord, Selected) == (sizeof(void *) == 8 ? 40 : 32));
KESTA_DB_STATIC_ASSERT(KESTA_DB_OFFSET(FolderRecord, AddTime) == (sizeof(void *) == 8 ? 52 : 44));
KESTA_DB_STATIC_ASSERT(KESTA_DB_OFFSET(FolderRecord, Sized) == (sizeof(void *) == 8 ? 64 : 56));

/** A list of folders. */
typedef struct FolderList {
    int32_t Count;       /**< elements in Items */
    FolderRecord *Items; /**< the library's array, or null */
} FolderList;
KESTA_DB_STATIC_ASSERT(sizeof(FolderList) == 2 * sizeof(void *));

/** One file that has been synced to a phone. */
typedef struct SyncedFileRecord {
    DateValue ModifiedTime; /**< the file's time when it was synced */
    DbChar *Path;           /**< the file on the PC; the key within a phone and category */
    DbChar *BasePath;       /**< the folder it belongs to: the Path of a FolderRecord */
    DbChar *PhonePath;      /**< where it lies on the phone */
} SyncedFileRecord;
KESTA_DB_STATIC_ASSERT(sizeof(SyncedFileRecord) == (sizeof(void *) == 8 ? 40 : 24));
KESTA_DB_STATIC_ASSERT(KESTA_DB_OFFSET(SyncedFileRecord, Path) == (sizeof(void *) == 8 ? 16 : 12));
KESTA_DB_STATIC_ASSERT(KESTA_DB_OFFSET(SyncedFileRecord, BasePath) == (sizeof(void *) == 8 ? 24 : 16));
KESTA_DB_STATIC_ASSERT(KESTA_DB_OFFSET(SyncedFileRecord, PhonePath) == (sizeof(void *) == 8 ? 32 : 20));

/** A list of synced files. */
typedef struct SyncedFileList {
    int32_t Count;           /**< elements in Items */
    SyncedFileRecord *Items; /**< the library's array, or null */
} SyncedFileList;
KESTA_DB_STATIC_ASSERT(sizeof(SyncedFileList) == 2 * sizeof(void *));

/** @} */

/* ---- Playlists -------------------------------------------------------------------------------------------------- */
/**
 * @defgroup playlists Playlists
 * The playlists of the music player, their files, and the files copied because of them.
 * @{
 */

/** Sync state of a playlist. */
enum {
    kPlaylistCurrent = 0,     /**< on the phone as it is on the PC */
    kPlaylistNew = 1,         /**< to be added to the phone */
    kPlaylistUnconfirmed = 3, /**< gone from the PC, or not seen again yet: to be removed from the phone */
    kPlaylistDeleted = 4      /**< removed from the phone; its row is kept */
};

/** One playlist of the PC's music player. */
typedef struct PlaylistRecord {
    int64_t RowId;      /**< the row's number in the database; not read */
    DbChar *Name;       /**< the key within a phone */
    DbChar *Digest;     /**< the caller's digest of the contents; stored unescaped: it must hold no apostrophe */
    DbChar *IdInPhone;  /**< the phone's name for it. "(null)": it is not on the phone; null in a list: it is not, or it
                             is under an empty name, which counts as on the phone */
    int32_t Type;       /**< the caller's own number */
    int32_t Flag;       /**< kPlaylistCurrent ... kPlaylistDeleted */
    int32_t Count;      /**< entries */
    int64_t Size;       /**< bytes, by the caller's own count */
    int64_t TotalSize;  /**< bytes, by the caller's own count */
    int32_t Selected;   /**< 1: the user wants it synced */
    int32_t Sized;      /**< 1: Size and TotalSize hold a measured value */
} PlaylistRecord;
KESTA_DB_STATIC_ASSERT(sizeof(PlaylistRecord) == (sizeof(void *) == 8 ? 72 : 56));
KESTA_DB_STATIC_ASSERT(KESTA_DB_OFFSET(PlaylistRecord, Type) == 8 + 3 * sizeof(void *));
KESTA_DB_STATIC_ASSERT(KESTA_DB_OFFSET(PlaylistRecord, Size) == (sizeof(void *) == 8 ? 48 : 32));
KESTA_DB_STATIC_ASSERT(KESTA_DB_OFFSET(PlaylistRecord, Sized) == (sizeof(void *) == 8 ? 68 : 52));

/** A list of playlists. */
typedef struct PlaylistList {
    int32_t Count;         /**< elements in Items */
    PlaylistRecord *Items; /**< the library's array, or null */
} PlaylistList;
KESTA_DB_STATIC_ASSERT(sizeof(PlaylistList) == 2 * sizeof(void *));

/**
 * An array of texts that is the caller's own. Items and every text in it are allocated with CoTaskMemAlloc on Windows
 * and malloc elsewhere, by whoever adds them, and freed by the caller.
 */
typedef struct FileNameArray {
    int32_t Count;  /**< elements in Items; a negative one counts as 0 */
    DbChar **Items; /**< may be null when Count is 0 */
} FileNameArray;
KESTA_DB_STATIC_ASSERT(sizeof(FileNameArray) == 2 * sizeof(void *));

/** @} */

/* ---- Bookmarks -------------------------------------------------------------------------------------------------- */
/**
 * @defgroup bookmarks Bookmarks
 * The web bookmarks synced to a phone. Every function but DB_BOOKMARK_ClearAll sees and writes only the bookmarks of the
 * phone's present BookMarkType. When that cannot be read, type 0 is taken, and the result does not show it.
 * @{
 */

/** One web bookmark that has been synced to a phone. */
typedef struct BookmarkRecord {
    DbChar *Title;    /**< what it is called */
    DbChar *Path;     /**< its URL; the key within a phone and bookmark type */
    DbChar *PhoneMID; /**< the phone's name for it */
    int32_t Id;       /**< the caller's own number */
    int32_t Flag;     /**< the caller's own sync state */
    int32_t Type;     /**< the phone's bookmark type (PhoneSettingRecord); not read */
} BookmarkRecord;
KESTA_DB_STATIC_ASSERT(sizeof(BookmarkRecord) == (sizeof(void *) == 8 ? 40 : 24));
KESTA_DB_STATIC_ASSERT(KESTA_DB_OFFSET(BookmarkRecord, Id) == 3 * sizeof(void *));

/** A list of bookmarks. */
typedef struct BookmarkList {
    int32_t Count;         /**< elements in Items */
    BookmarkRecord *Items; /**< the library's array, or null */
} BookmarkList;
KESTA_DB_STATIC_ASSERT(sizeof(BookmarkList) == 2 * sizeof(void *));

/** @} */

/* ---- Backups ---------------------------------------------------------------------------------------------------- */
/**
 * @defgroup backups Backups
 * The backups made of phones. A database made by this library has no table for them: there every function of this family
 * fails as its comment says for a failed statement. They work where another program has created the table tBackups with
 * the columns bcID (INTEGER PRIMARY KEY), phoneID, Path, PhonePath, Size and ModifiedTime.
 * @{
 */

/** One backup file made of a phone. */
typedef struct BackupRecord {
    int32_t bcID;           /**< the record's id; -1: none */
    int64_t Size;           /**< bytes */
    DateValue ModifiedTime; /**< the backup's time */
    DbChar *Path;           /**< the backup on the PC; the key over all phones */
    DbChar *PhonePath;      /**< what on the phone it was made of */
} BackupRecord;
KESTA_DB_STATIC_ASSERT(sizeof(BackupRecord) == (sizeof(void *) == 8 ? 48 : 40));
KESTA_DB_STATIC_ASSERT(KESTA_DB_OFFSET(BackupRecord, Size) == 8);
KESTA_DB_STATIC_ASSERT(KESTA_DB_OFFSET(BackupRecord, ModifiedTime) == 16);
KESTA_DB_STATIC_ASSERT(KESTA_DB_OFFSET(BackupRecord, Path) == (sizeof(void *) == 8 ? 32 : 28));

/** A list of backups. */
typedef struct BackupList {
    int32_t Count;       /**< elements in Items */
    BackupRecord *Items; /**< the library's array, or null */
} BackupList;
KESTA_DB_STATIC_ASSERT(sizeof(BackupList) == 2 * sizeof(void *));

/** @} */

/* ---- Contacts and calendar (PIM) -------------------------------------------------------------------------------- */
/**
 * @defgroup pim Contacts and calendar
 * The store of contacts and calendar entries, and the log of their syncs.
 * @{
 */

/** One synced entry: the PC's and the phone's name for it, and when either side last changed it. */
typedef struct PimLogItem {
    DbChar *Guid;        /**< on the PC; stored unescaped: no apostrophe, and ASCII on Windows */
    DbChar *Luid;        /**< on the phone; stored unescaped: no apostrophe, and ASCII on Windows */
    DateValue PCTime;    /**< last change on the PC */
    DateValue PhoneTime; /**< last change on the phone */
} PimLogItem;
KESTA_DB_STATIC_ASSERT(sizeof(PimLogItem) == (sizeof(void *) == 8 ? 40 : 32));
KESTA_DB_STATIC_ASSERT(KESTA_DB_OFFSET(PimLogItem, PCTime) == 2 * sizeof(void *));

/** The log of one phone and kind of data. */
typedef struct PimLog {
    int32_t Type;      /**< the kind of data, the caller's own number; chooses the log */
    int32_t Count;     /**< elements in Items */
    PimLogItem *Items; /**< the caller's array when saving, the library's after reading */
} PimLog;
KESTA_DB_STATIC_ASSERT(sizeof(PimLog) == 8 + sizeof(void *));

/** One folder of the PIM store. */
typedef struct PimFolderRecord {
    DbChar *PimID;       /**< names the folder, unique; no apostrophe, and ASCII on Windows */
    DbChar *ParentPimID; /**< names the folder above; null for a root; filled only */
    DbChar *Path;        /**< what it is called; items are added by it */
    int32_t Type;        /**< the kind of data, the caller's own number */
} PimFolderRecord;
KESTA_DB_STATIC_ASSERT(sizeof(PimFolderRecord) == 4 * sizeof(void *));

/** A list of PIM folders. */
typedef struct PimFolderList {
    int32_t Count;          /**< elements in Items */
    PimFolderRecord *Items; /**< the library's array, or null */
} PimFolderList;
KESTA_DB_STATIC_ASSERT(sizeof(PimFolderList) == 2 * sizeof(void *));

/** One item of the PIM store. */
typedef struct PimItemRecord {
    DbChar *PimID;      /**< names the item, unique; no apostrophe, and ASCII on Windows */
    int32_t Type;       /**< the kind of data, the caller's own number */
    int32_t DataLength; /**< bytes in Data */
    uint8_t *Data;      /**< the contents, opaque; null when there are none. Null stores none, whatever DataLength */
} PimItemRecord;
KESTA_DB_STATIC_ASSERT(sizeof(PimItemRecord) == (sizeof(void *) == 8 ? 24 : 16));
KESTA_DB_STATIC_ASSERT(KESTA_DB_OFFSET(PimItemRecord, DataLength) == sizeof(void *) + 4);
KESTA_DB_STATIC_ASSERT(KESTA_DB_OFFSET(PimItemRecord, Data) == sizeof(void *) + 8);

/** A list of PIM items. */
typedef struct PimItemList {
    int32_t Count;        /**< elements in Items */
    PimItemRecord *Items; /**< the library's array, or null */
} PimItemList;
KESTA_DB_STATIC_ASSERT(sizeof(PimItemList) == 2 * sizeof(void *));

/** @} */

/* ---- Connection ------------------------------------------------------------------------------------------------- */
/**
 * @defgroup connection Connection
 * Whether the database is open.
 * @{
 */

/**
 * Opens the database, unless it is open already. The library calls this itself when it is loaded, so that a program
 * needs it only to learn whether that worked, or to try again after it did not. A missing file is created: under the
 * name KESTA_DB.part in the same folder, and renamed when it is complete. A file of another version, or one that is not
 * a database, is deleted and created afresh; before that it gets a second name beside it,
 * KESTA_DB.s3db.replaced-YYYYMMDD-HHMMSS (local time), its journal too, where that can be done, and the three newest of
 * these are kept. A file counts as not a database only when every byte of it and of its journal can be read. A file
 * that another process holds is waited for up to two seconds.
 *
 * Without an application-data folder (no home, or one that cannot be made) the answer is 0 all the same, on a private
 * temporary database without tables: every call that needs one fails.
 *
 * @return 0 open; 19 the file is read-only; 8398 the file is of another version and cannot be deleted, or its version
 *         cannot be told for now (locked, unreadable): it is left as it is; 1 or an SQLite code: it could not be
 *         created or opened
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_Open(void);

/**
 * Does nothing: the database stays open until the library is unloaded.
 *
 * @return always 0
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_Close(void);

/** @} */

/* ---- DB_LIB_*: main folders ------------------------------------------------------------------------------------- */
/** @addtogroup main_folders
 * @{ */

/**
 * Writes number of items, size and setting of one main folder.
 *
 * @param record  ID selects; a negative Number or Size and a null or empty Setting leave their column as it is
 * @return 0 written, also when no folder has that ID; 1 nothing to write, or the update failed
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_LIB_UpdateMainFolderInfo(const MainFolderRecord *record);

/**
 * Counts the music, gallery, document and web bookmark libraries anew and writes number and size of their main folders.
 * The counts come from the tables tMusicFiles, tMediaFiles, tDocuments and tWebBookmarks, which another program may
 * keep in the file. A database made by this library has none of them; the answer is then 1 and nothing changes.
 *
 * @return 0 all four were refreshed; 1 at least one was not
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_LIB_RefreshStatistics(void);

/**
 * Lists the main folders. Changed tells whether a folder changed since DB_LIB_MainFoldersChanged last asked (always 1
 * for people, calendar and map); this function does not reset it.
 *
 * @param list  emptied, then filled
 * @return 0; 1 a query failed; an SQLite code when reading the rows ended with it. Counted silently: 0 with an empty
 *         list says that the count broke off, for the library's databases have seven of them
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_LIB_GetAllMainFolders(MainFolderList *list);

/**
 * Tells which of the music, gallery, document and web bookmark folders changed since the last call, and resets that.
 * Only ID and Changed of the four elements are filled. Adding a media folder of any category changes music.
 * Takes no lock and writes no entry or exit line: a change made by another thread at this very moment may be missed.
 *
 * @param list  emptied, then filled with four elements; untouched when the database is not open
 * @return 0; 1 the database is not open
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_LIB_MainFoldersChanged(MainFolderList *list);

/** @} */

/* ---- DB_LIB_*: phones ------------------------------------------------------------------------------------------- */
/** @addtogroup phones
 * @{ */

/**
 * Announces a phone. An unknown one is registered, with every main folder unselected; a known one is left as it is, its
 * name too. Everything else that is kept per phone needs this first.
 *
 * @param imei  identifies the phone; of two identities joined by a colon the first is kept as the second IMEI as well.
 *              An IMEI is looked up as it stands, so it must hold no apostrophe, and be ASCII on Windows
 * @param name  display name
 * @return the phone's number, 1 or more, whether its main folders could be noted or not; -1 when it could not be
 *         registered, or the database is not open. A phone whose look-up fails is registered once more. After an
 *         internal failure (no memory) 1, which cannot be told from the first phone's number
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_LIB_PhoneDetected(const DbChar *imei, const DbChar *name);

/**
 * Writes the settings of the phone with the record's IMEI. All numbers and both dates are written, except NeedMount,
 * which DB_LIB_SetLastSyncTime writes. A null text leaves its column as it is, an empty one empties it.
 *
 * @param record  read only; the texts stay the caller's
 * @return 0 written, also when no phone has that IMEI; 1 the update failed
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_LIB_SetPhoneSetting(const PhoneSettingRecord *record);

/**
 * Reads the settings of a phone.
 *
 * @param imei    the phone, as announced to DB_LIB_PhoneDetected
 * @param record  emptied first, whatever the result: texts that an earlier call put there are freed, so it must start
 *                zeroed. None of them may be passed as imei. To free the texts, pass it again with an IMEI that is not
 *                known
 * @return 0 filled; 1 unknown phone, or the query failed: the record is all zero
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_LIB_GetPhoneSetting(const DbChar *imei, PhoneSettingRecord *record);

/**
 * Lists all phones ever announced. NeedMount and the last four texts of the elements are not filled: NeedMount is 0 and
 * the texts are null.
 *
 * @param list  emptied, then filled
 * @return 0; 1 a query failed; an SQLite code when reading the rows ended with it. Counted silently
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_LIB_GetAllPhones(PhoneList *list);

/** @} */

/* ---- DB_LIB_*: sync state of a phone ---------------------------------------------------------------------------- */
/**
 * @defgroup sync_state Sync state
 * What is kept for a phone between two runs.
 * @{
 */

/**
 * Tells whether the user has chosen a main folder for a phone.
 *
 * @param folderId  the main folder, kMainFolderMusic ... kMainFolderMap
 * @return 0 or 1 as stored; 1 also when nothing is stored, the phone is unknown, the query failed, or the database is
 *         not open
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_LIB_IsFolderSelected(const DbChar *imei, int32_t folderId);

/**
 * Chooses a main folder for a phone, or takes the choice back.
 *
 * @param folderId  the main folder; any number is taken
 * @param selected  1 or 0
 * @return 0 stored; 1 unknown phone, or a statement failed
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_LIB_SetFolderSelected(const DbChar *imei, int32_t folderId, int32_t selected);

/**
 * Notes the end of a sync run.
 *
 * @param lastTime   when; a day number of exactly 0 leaves the stored time as it is, whatever its Status
 * @param errCode    the caller's own code of the run's outcome
 * @param needMount  1: the phone's storage must be mounted for the next run
 * @return 0 stored, also when the phone is unknown; 1 the update failed
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_LIB_SetLastSyncTime(const DbChar *imei, const DateValue *lastTime,
                                                          int32_t errCode, int32_t needMount);

/**
 * Tells when a phone was last synced.
 *
 * @param lastTime  the time, invalid when there was no run yet; untouched when the result is 1
 * @return 0 the phone is known; 1 it is not, or the query failed
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_LIB_GetLastSyncTime(const DbChar *imei, DateValue *lastTime);

/**
 * Stores the type of a phone's SD card and the type before it, in the caller's own numbers.
 *
 * @return 0 stored, also when the phone is unknown; 1 the update failed
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_LIB_SetSDType(const DbChar *imei, int32_t type, int32_t oldType);

/**
 * Reads what DB_LIB_SetSDType stored (0 and 0 for a new phone).
 *
 * @return 0 both are filled; 1 unknown phone or the query failed: both are untouched
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_LIB_GetSDType(const DbChar *imei, int32_t *type, int32_t *oldType);

/**
 * Forgets which files of all categories and playlists have been synced to a phone. Folders, selections and settings
 * stay. Writes no exit line to the trace.
 *
 * @return always 0, also for an unknown phone or a closed database (1 after an internal failure)
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_LIB_ClearSyncHistory(const DbChar *imei);

/** @} */

/* ---- DB_MUSIC_*, DB_IMAGE_*, DB_VIDEO_*, DB_DOCUMENT_*: folders and files synced per phone ---------------------- */
/** @addtogroup media
 * @{ */

/**
 * Adds a music folder to a phone, or refreshes it: a known folder gets the new Count, Size, TotalSize and Sized and is
 * no longer deleted; it keeps its selection. A new one is selected. Marks the music main folder as changed.
 *
 * @param imei    the phone, as announced to DB_LIB_PhoneDetected
 * @param folder  Path, Count, Size, TotalSize and Sized are read; the text stays the caller's
 * @return 0; 1 unknown phone or closed database. Whether the statements succeeded does not show in the result: who
 *         needs to know reads the folder with DB_MUSIC_GetFolder
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_MUSIC_AddFolder(const DbChar *imei, const FolderRecord *folder);

/**
 * Marks all music folders of a phone as deleted. Nothing is removed, and the files stay recorded.
 *
 * @return 0; 1 unknown phone, or the update failed
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_MUSIC_ClearAll(const DbChar *imei);

/**
 * Lists the music folders of a phone in the order in which they were added.
 *
 * @param list  emptied, then filled
 * @return 0; 1 unknown phone, or the folders could not be counted or queried; an SQLite code when reading the rows
 *         ended with it
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_MUSIC_GetFolders(const DbChar *imei, FolderList *list);

/**
 * Reads one music folder of a phone.
 *
 * @param path    the folder's Path; it must not be the text that folder->Path points to
 * @param folder  its Path is freed and, like Count, Size, TotalSize and Sized, zeroed first, whatever the result, so it
 *                must start zeroed; AddTime is never filled. To free the Path, pass the record again with an unknown
 *                path
 * @return 0 filled; 1 not found, unknown phone, or the query failed
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_MUSIC_GetFolder(const DbChar *imei, const DbChar *path, FolderRecord *folder);

/**
 * Tells whether the user wants a music folder synced.
 *
 * @return 0 or 1 as stored; 1 also for an unknown folder or phone, and when the query failed or the database is not
 *         open
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_MUSIC_IsFolderSelected(const DbChar *imei, const DbChar *path);

/**
 * Stores whether the user wants a music folder synced.
 *
 * @param selected  1 or 0
 * @return 0 stored, also when the folder is unknown; 1 unknown phone, or the update failed
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_MUSIC_SetFolderSelected(const DbChar *imei, const DbChar *path, int32_t selected);

/**
 * Always answers 1 and writes an error line to the trace: it cannot tell a deleted folder from a live one. Read the
 * Deleted field with DB_MUSIC_GetFolder or DB_MUSIC_GetFolders instead.
 *
 * @return 1
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_MUSIC_IsFolderDeleted(const DbChar *imei, const DbChar *path);

/**
 * Notes that a music folder is gone from the PC (1) or back (0). A folder of which no file was ever recorded is removed
 * at once, and whatever is recorded under it.
 *
 * @param deleted  1 or 0
 * @return 0 done, also when the folder is unknown; 1 unknown phone, or a statement failed. Whether the row of a folder
 *         that was never synced went does not show
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_MUSIC_SetFolderDeleted(const DbChar *imei, const DbChar *path, int32_t deleted);

/**
 * Tells whether a music file has been synced to a phone.
 *
 * @param path  the file on the PC
 * @param file  filled when it has; the texts it held before are not freed, and nothing frees the new ones: to look at
 *              many files use DB_MUSIC_GetSyncedFiles
 * @return 1 recorded; 0 not recorded, the query failed, or the database is not open. 1 with a file that was not filled
 *         says that there was no memory, or that the pointer is null
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_MUSIC_IsSyncedFile(const DbChar *imei, const DbChar *path,
                                                        SyncedFileRecord *file);

/**
 * Lists the music files synced to a phone, all of them or those of one folder.
 * The file has no index on the folder: each call with a folder reads through all files of the phone. Who needs them
 * folder by folder lists all once and groups by BasePath.
 *
 * @param folder  the BasePath wanted; null or empty: all
 * @param list    emptied, then filled
 * @return 0, also for an unknown phone (no files); 1 a query failed; an SQLite code when reading the rows ended with
 *         it. Counted silently
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_MUSIC_GetSyncedFiles(const DbChar *imei, const DbChar *folder,
                                                          SyncedFileList *list);

/**
 * Records that a file of a music folder has been copied to the phone, and clears the folder's flag "nothing synced
 * yet". A file already recorded is left as it was.
 *
 * @param file  Path, BasePath, PhonePath and ModifiedTime are read; the texts stay the caller's
 * @return 0 recorded, whether the folder's state could be changed or not; 1 unknown phone or closed database; 19
 *         already recorded; any other SQLite code as the insert gave it
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_MUSIC_SetAddedFile(const DbChar *imei, const SyncedFileRecord *file);

/**
 * Records that a music file has been removed from the phone. Its folder is left as it is.
 *
 * @param file  only Path is read
 * @return 0 done, also when the file was not recorded; 1 unknown phone, or the statement failed
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_MUSIC_SetDeletedFile(const DbChar *imei, const SyncedFileRecord *file);

/**
 * Records that a changed music file has been copied to the phone again.
 *
 * @param file  Path selects; PhonePath and ModifiedTime are written, BasePath is not
 * @return 0 done, also when the file was not recorded; 1 unknown phone, or the statement failed
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_MUSIC_SetUpdatedFile(const DbChar *imei, const SyncedFileRecord *file);

/**
 * Removes a music folder of a phone and all files recorded under it.
 *
 * @return 0 done, also when the folder was not known; 1 unknown phone, or the files could not be removed. Two
 *         statements: whether the folder's own row went does not show
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_MUSIC_SetDeletedFolder(const DbChar *imei, const DbChar *path);

/** As DB_MUSIC_AddFolder, for pictures. Marks the music main folder as changed, not the gallery one. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_IMAGE_AddFolder(const DbChar *imei, const FolderRecord *folder);
/** As DB_MUSIC_ClearAll, for pictures. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_IMAGE_ClearAll(const DbChar *imei);
/** As DB_MUSIC_GetFolders, for pictures. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_IMAGE_GetFolders(const DbChar *imei, FolderList *list);
/** As DB_MUSIC_GetFolder, for pictures. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_IMAGE_GetFolder(const DbChar *imei, const DbChar *path, FolderRecord *folder);
/** As DB_MUSIC_IsFolderSelected, for pictures. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_IMAGE_IsFolderSelected(const DbChar *imei, const DbChar *path);
/** As DB_MUSIC_SetFolderSelected, for pictures. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_IMAGE_SetFolderSelected(const DbChar *imei, const DbChar *path, int32_t selected);
/** As DB_MUSIC_IsFolderDeleted, for pictures. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_IMAGE_IsFolderDeleted(const DbChar *imei, const DbChar *path);
/** As DB_MUSIC_SetFolderDeleted, for pictures. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_IMAGE_SetFolderDeleted(const DbChar *imei, const DbChar *path, int32_t deleted);
/** As DB_MUSIC_IsSyncedFile, for pictures. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_IMAGE_IsSyncedFile(const DbChar *imei, const DbChar *path,
                                                         SyncedFileRecord *file);
/** As DB_MUSIC_GetSyncedFiles, for pictures. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_IMAGE_GetSyncedFiles(const DbChar *imei, const DbChar *folder,
                                                           SyncedFileList *list);
/** As DB_MUSIC_SetAddedFile, for pictures. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_IMAGE_SetAddedFile(const DbChar *imei, const SyncedFileRecord *file);
/** As DB_MUSIC_SetDeletedFile, for pictures. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_IMAGE_SetDeletedFile(const DbChar *imei, const SyncedFileRecord *file);
/** As DB_MUSIC_SetUpdatedFile, for pictures. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_IMAGE_SetUpdatedFile(const DbChar *imei, const SyncedFileRecord *file);
/** As DB_MUSIC_SetDeletedFolder, for pictures. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_IMAGE_SetDeletedFolder(const DbChar *imei, const DbChar *path);

/** As DB_MUSIC_AddFolder, for videos. Marks the music main folder as changed, not the gallery one. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_VIDEO_AddFolder(const DbChar *imei, const FolderRecord *folder);
/** As DB_MUSIC_ClearAll, for videos. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_VIDEO_ClearAll(const DbChar *imei);
/** As DB_MUSIC_GetFolders, for videos. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_VIDEO_GetFolders(const DbChar *imei, FolderList *list);
/** As DB_MUSIC_GetFolder, for videos. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_VIDEO_GetFolder(const DbChar *imei, const DbChar *path, FolderRecord *folder);
/** As DB_MUSIC_IsFolderSelected, for videos. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_VIDEO_IsFolderSelected(const DbChar *imei, const DbChar *path);
/** As DB_MUSIC_SetFolderSelected, for videos. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_VIDEO_SetFolderSelected(const DbChar *imei, const DbChar *path, int32_t selected);
/** As DB_MUSIC_IsFolderDeleted, for videos. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_VIDEO_IsFolderDeleted(const DbChar *imei, const DbChar *path);
/** As DB_MUSIC_SetFolderDeleted, for videos. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_VIDEO_SetFolderDeleted(const DbChar *imei, const DbChar *path, int32_t deleted);
/** As DB_MUSIC_IsSyncedFile, for videos. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_VIDEO_IsSyncedFile(const DbChar *imei, const DbChar *path,
                                                         SyncedFileRecord *file);
/** As DB_MUSIC_GetSyncedFiles, for videos. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_VIDEO_GetSyncedFiles(const DbChar *imei, const DbChar *folder,
                                                           SyncedFileList *list);
/** As DB_MUSIC_SetAddedFile, for videos. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_VIDEO_SetAddedFile(const DbChar *imei, const SyncedFileRecord *file);
/** As DB_MUSIC_SetDeletedFile, for videos. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_VIDEO_SetDeletedFile(const DbChar *imei, const SyncedFileRecord *file);
/** As DB_MUSIC_SetUpdatedFile, for videos. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_VIDEO_SetUpdatedFile(const DbChar *imei, const SyncedFileRecord *file);
/** As DB_MUSIC_SetDeletedFolder, for videos. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_VIDEO_SetDeletedFolder(const DbChar *imei, const DbChar *path);

/** As DB_MUSIC_AddFolder, for documents. Marks the music main folder as changed, not the document one. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_DOCUMENT_AddFolder(const DbChar *imei, const FolderRecord *folder);
/** As DB_MUSIC_ClearAll, for documents. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_DOCUMENT_ClearAll(const DbChar *imei);
/** As DB_MUSIC_GetFolders, for documents. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_DOCUMENT_GetFolders(const DbChar *imei, FolderList *list);
/** As DB_MUSIC_GetFolder, for documents. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_DOCUMENT_GetFolder(const DbChar *imei, const DbChar *path, FolderRecord *folder);
/** As DB_MUSIC_IsFolderSelected, for documents. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_DOCUMENT_IsFolderSelected(const DbChar *imei, const DbChar *path);
/** As DB_MUSIC_SetFolderSelected, for documents. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_DOCUMENT_SetFolderSelected(const DbChar *imei, const DbChar *path,
                                                                 int32_t selected);
/** As DB_MUSIC_IsFolderDeleted, for documents. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_DOCUMENT_IsFolderDeleted(const DbChar *imei, const DbChar *path);
/** As DB_MUSIC_SetFolderDeleted, for documents. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_DOCUMENT_SetFolderDeleted(const DbChar *imei, const DbChar *path,
                                                                int32_t deleted);
/** As DB_MUSIC_IsSyncedFile, for documents. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_DOCUMENT_IsSyncedFile(const DbChar *imei, const DbChar *path,
                                                            SyncedFileRecord *file);
/** As DB_MUSIC_GetSyncedFiles, for documents. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_DOCUMENT_GetSyncedFiles(const DbChar *imei, const DbChar *folder,
                                                              SyncedFileList *list);
/** As DB_MUSIC_SetAddedFile, for documents. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_DOCUMENT_SetAddedFile(const DbChar *imei, const SyncedFileRecord *file);
/** As DB_MUSIC_SetDeletedFile, for documents. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_DOCUMENT_SetDeletedFile(const DbChar *imei, const SyncedFileRecord *file);
/** As DB_MUSIC_SetUpdatedFile, for documents. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_DOCUMENT_SetUpdatedFile(const DbChar *imei, const SyncedFileRecord *file);
/** As DB_MUSIC_SetDeletedFolder, for documents. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_DOCUMENT_SetDeletedFolder(const DbChar *imei, const DbChar *path);

/** @} */

/* ---- DB_GALLERY_*: pictures and videos as one ------------------------------------------------------------------- */
/**
 * @defgroup gallery Gallery
 * Pictures and videos as one.
 * @{
 */

/**
 * Lists picture and video folders of a phone as one. A folder tracked for both appears once where the walk through the
 * two lists pairs them, with summed figures; it is selected when either is, and deleted when both are. The walk ends
 * when either list is used up: folders of the other that sort behind are left out. With no folders of one kind those of
 * the other come whole. The order is fixed, but neither by path nor by time. Who needs all folders asks
 * DB_IMAGE_GetFolders and DB_VIDEO_GetFolders.
 *
 * @param list  emptied, then filled
 * @return 0; 1 one of the two could not be read (the picture folders alone are listed when it was the videos), or
 *         unknown phone
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_GALLERY_GetFolders(const DbChar *imei, FolderList *list);

/**
 * Tells whether the user wants a folder synced, for pictures or for videos.
 *
 * @return 1 when either is selected or not recorded, or could not be asked for; else 0
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_GALLERY_IsFolderSelected(const DbChar *imei, const DbChar *path);

/**
 * Stores whether the user wants a folder synced, for pictures and for videos.
 *
 * @return how many of the two failed, 0 to 2
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_GALLERY_SetFolderSelected(const DbChar *imei, const DbChar *path,
                                                                int32_t selected);

/**
 * Always answers 1, as DB_MUSIC_IsFolderDeleted does.
 *
 * @return 1
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_GALLERY_IsFolderDeleted(const DbChar *imei, const DbChar *path);

/**
 * As DB_MUSIC_SetFolderDeleted, for pictures and for videos.
 *
 * @return how many of the two failed, 0 to 2
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_GALLERY_SetFolderDeleted(const DbChar *imei, const DbChar *path, int32_t deleted);

/** @} */

/* ---- DB_PLAYERMUSIC_*: playlists -------------------------------------------------------------------------------- */
/** @addtogroup playlists
 * @{ */

/**
 * Adds or confirms a playlist. The usual round: DB_PLAYERMUSIC_ClearAll, this for every playlist of the PC, then
 * DB_PLAYERMUSIC_GetPlaylists; whatever is kPlaylistNew goes to the phone, what is still kPlaylistUnconfirmed is
 * removed. A known playlist gets the new Digest, Count, Size, TotalSize and Sized; an unconfirmed one becomes
 * kPlaylistCurrent when the phone has it and kPlaylistNew when not. Marks the music main folder as changed. While the
 * database is busy each of the four statements is tried ten times, so that a call may take minutes.
 *
 * @param playlist  Name, Digest, Type, Count, Size, TotalSize and Sized are read; the texts stay the caller's
 * @return 0, whether the statements succeeded or not: who needs to know reads the playlists; 1 unknown phone or closed
 *         database. After an internal failure (no memory) the SQLite code of the statement before, which may be 0 as
 *         well
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_PLAYERMUSIC_AddPlaylist(const DbChar *imei, const PlaylistRecord *playlist);

/**
 * Marks every playlist of a phone as kPlaylistUnconfirmed, except those that are kPlaylistDeleted. Writes no exit line.
 *
 * @return 0; 1 unknown phone, or the update failed
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_PLAYERMUSIC_ClearAll(const DbChar *imei);

/**
 * Lists the playlists of a phone, by name (in the byte order of UTF-8).
 *
 * @param list  emptied, then filled; without playlists it holds an array of no elements
 * @return 0; 1 unknown phone, or a query failed; an SQLite code when reading the rows ended with it: also when they
 *         could not be counted, for then the rows are read without room for one
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_PLAYERMUSIC_GetPlaylists(const DbChar *imei, PlaylistList *list);

/** As DB_MUSIC_IsFolderSelected, for the playlist of that name. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_PLAYERMUSIC_IsListSelected(const DbChar *imei, const DbChar *name);

/** As DB_MUSIC_SetFolderSelected, for the playlist of that name. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_PLAYERMUSIC_SetListSelected(const DbChar *imei, const DbChar *name,
                                                                  int32_t selected);

/** As DB_MUSIC_IsSyncedFile, for files that went to the phone because of playlists. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_PLAYERMUSIC_IsSyncedFile(const DbChar *imei, const DbChar *path,
                                                              SyncedFileRecord *file);

/**
 * Lists all files that went to a phone because of playlists.
 *
 * @param list   shown in the trace and not used: the files of all playlists come
 * @param files  emptied, then filled
 * @return as DB_MUSIC_GetSyncedFiles
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_PLAYERMUSIC_GetSyncedFiles(const DbChar *imei, const DbChar *list,
                                                                SyncedFileList *files);

/** As DB_MUSIC_SetAddedFile; BasePath is the playlist's name, and the playlist becomes kPlaylistCurrent. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_PLAYERMUSIC_SetAddedFile(const DbChar *imei, const SyncedFileRecord *file);

/** As DB_MUSIC_SetDeletedFile, for files that went to the phone because of playlists. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_PLAYERMUSIC_SetDeletedFile(const DbChar *imei, const SyncedFileRecord *file);

/** As DB_MUSIC_SetUpdatedFile, for files that went to the phone because of playlists. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_PLAYERMUSIC_SetUpdatedFile(const DbChar *imei, const SyncedFileRecord *file);

/**
 * Notes that the phone has taken a playlist: it becomes kPlaylistCurrent.
 *
 * @param playlist  Name selects; IdInPhone is written, an empty text for null, which counts as on the phone
 * @return 0 stored, also when the playlist is unknown; 1 unknown phone, or the update failed
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_PLAYERMUSIC_SetAddedPlaylist(const DbChar *imei, const PlaylistRecord *playlist);

/**
 * Notes that a playlist has been removed from the phone: an unconfirmed one is forgotten with its files, a current one
 * becomes kPlaylistDeleted.
 *
 * @param playlist  only Name is read. On Windows one outside ASCII is taken for a current one, whatever its state
 * @return 0 done, also when the playlist is unknown; 1 the playlist is in another state, unknown phone, or a statement
 *         failed. Whether an unconfirmed playlist's own row went with its files does not show
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_PLAYERMUSIC_SetDeletedPlaylist(const DbChar *imei,
                                                                     const PlaylistRecord *playlist);

/**
 * Notes that a changed playlist has been written to the phone again: it becomes kPlaylistCurrent.
 *
 * @param playlist  only Name is read
 * @return 0 stored, also when the playlist is unknown; 1 unknown phone, or the update failed
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_PLAYERMUSIC_SetUpdatedPlaylist(const DbChar *imei,
                                                                     const PlaylistRecord *playlist);

/**
 * Reads the file names of a playlist, by file name (in the byte order of UTF-8); the order in which they were stored is
 * not kept.
 *
 * @param names  the caller's array: the names are appended to what it holds, and the caller frees all of it
 * @return 0, also when reading the names broke off early; 1 the query failed
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_PLAYERMUSIC_GetListFilesname(const DbChar *imei, const DbChar *list,
                                                                  FileNameArray *names);

/**
 * Replaces the file names of a playlist. A name that occurs twice is stored once. The phone need not be known.
 *
 * @param names  read only; null elements are stored as empty names. Null Items with a Count above 0 is a mistake that
 *               removes the names stored before all the same
 * @return 0, whether the statements succeeded or not; 1 closed database, or null Items with a Count above 0
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_PLAYERMUSIC_SetListFilesname(const DbChar *imei, const DbChar *list,
                                                                  const FileNameArray *names);

/**
 * Reacts to a playlist deleted on the PC: one that never was on the phone, or is no more, is forgotten with its files;
 * one that is becomes kPlaylistUnconfirmed and waits for its removal.
 *
 * @param name  on Windows one outside ASCII is taken for a current one, whatever its state
 * @return 0 done, also when the playlist is unknown; 1 unknown phone, unknown state, or a statement failed. Whether the
 *         playlist's own row went with its files does not show
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_PLAYERMUSIC_DeleteList(const DbChar *imei, const DbChar *name);

/** @} */

/* ---- DB_BACKUP_*: backups --------------------------------------------------------------------------------------- */
/** @addtogroup backups
 * @{ */

/**
 * Records a backup. A path recorded already, for whichever phone, gets the new PhonePath, Size and ModifiedTime.
 *
 * @param backup  Path, PhonePath, Size and ModifiedTime are read; bcID becomes the record's id, -1 on failure
 * @return 0 recorded; 183 the path was recorded already (bcID is -1 when refreshing it failed); 1 unknown phone, or a
 *         statement failed
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_BACKUP_AddBackup(const DbChar *imei, BackupRecord *backup);

/**
 * Forgets the backups of all phones.
 *
 * @return 0; 1 closed database; else the SQLite code of the failed statement
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_BACKUP_ClearAll(void);

/**
 * Forgets the backups of a phone.
 *
 * @return 0; 1 unknown phone or closed database; else the SQLite code of the failed statement
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_BACKUP_DeleteBackups(const DbChar *imei);

/**
 * Forgets a backup.
 *
 * @return 0 done, also when there is none of that id; 1 closed database; else the SQLite code of the failed statement
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_BACKUP_DeleteBackup(int32_t bcID);

/**
 * Tells whether a backup is recorded for a path.
 *
 * @return 1 it is; 0 it is not, the query failed, or the database is not open
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_BACKUP_FileExist(const DbChar *path);

/**
 * Lists the backups of all phones.
 *
 * @param list  emptied, then filled
 * @return 0; 1 a query failed; an SQLite code when reading the rows ended with it. Counted silently
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_BACKUP_GetAllBackups(BackupList *list);

/** As DB_BACKUP_GetAllBackups, for one phone; 1 also when it is unknown. */
KESTA_DB_API int32_t KESTA_DB_CALL DB_BACKUP_GetPhoneBackups(const DbChar *imei, BackupList *list);

/** @} */

/* ---- DB_BOOKMARK_*: web bookmarks ------------------------------------------------------------------------------- */
/** @addtogroup bookmarks
 * @{ */

/**
 * Forgets all bookmarks of a phone, of every type.
 *
 * @return 0; 1 unknown phone, or the statement failed
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_BOOKMARK_ClearAll(const DbChar *imei);

/**
 * Tells whether a bookmark has been synced.
 *
 * @return 1 recorded; 0 not recorded, unknown phone, the query failed, or the database is not open
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_BOOKMARK_IsSyncedMark(const DbChar *imei, const DbChar *url);

/**
 * Lists the bookmarks synced to a phone. Id and Type of the elements are not filled.
 *
 * @param list  emptied, then filled
 * @return 0, also for an unknown phone (no bookmarks); 1 a query failed; an SQLite code when reading the rows ended
 *         with it. Counted silently
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_BOOKMARK_GetSyncedMarks(const DbChar *imei, BookmarkList *list);

/**
 * Reads one bookmark.
 *
 * @param url   ASCII on Windows: another one is not found. DB_BOOKMARK_GetSyncedMarks has them all
 * @param bookmark  its texts are freed first, whatever the result, so it must start zeroed; Id, Flag and Type stay as they
 *              are when nothing is found. To free the texts, pass it again with an unknown URL; none of them may be
 *              passed as imei or url
 * @return 0 filled; 1 not recorded, or the query failed
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_BOOKMARK_GetSyncedMark(const DbChar *imei, const DbChar *url,
                                                             BookmarkRecord *bookmark);

/**
 * Records that a bookmark has been synced.
 *
 * @param bookmark  Title, Path, PhoneMID, Id and Flag are read; the texts stay the caller's
 * @return 0 recorded; 1 unknown phone or closed database; 19 already recorded; any other SQLite code as the insert gave
 *         it
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_BOOKMARK_SetAddedMark(const DbChar *imei, const BookmarkRecord *bookmark);

/**
 * Records that a bookmark has been removed.
 *
 * @return 0 done, also when it was not recorded; 1 unknown phone, or the statement failed
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_BOOKMARK_SetDeletedMark(const DbChar *imei, const DbChar *url);

/**
 * Records that a bookmark has been changed.
 *
 * @param bookmark  Path selects; Title, PhoneMID and Flag are written
 * @return 0 done, also when it was not recorded; 1 unknown phone, or the statement failed
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_BOOKMARK_SetUpdatedMark(const DbChar *imei, const BookmarkRecord *bookmark);

/** @} */

/* ---- DB_PIMLOG_*: the log of contact and calendar syncs, per phone ---------------------------------------------- */
/** @addtogroup pim
 * @{ */

/**
 * Reads the profile that a phone's contacts or calendar were last synced with.
 *
 * @param buffer  receives the text, however long it is: the caller makes room for the longest it ever stored; empty
 *                when the log has no profile, untouched when there is no log
 * @param type    the kind of data, the caller's own number
 * @return 0 read, or no log; 1 unknown phone, or the query failed; else an SQLite code
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_PIMLOG_GetPimProfile(const DbChar *imei, DbChar *buffer, int32_t type);

/**
 * Stores the profile, creating the log if there is none.
 *
 * @return 0 stored; 1 unknown phone, or a statement failed
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_PIMLOG_SetPimProfile(const DbChar *imei, const DbChar *profile, int32_t type);

/**
 * Removes a log: its items and its profile.
 *
 * @return 0 removed, or no log; 1 unknown phone, or a statement failed; else an SQLite code
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_PIMLOG_ClearAll(const DbChar *imei, int32_t type);

/**
 * Reads the items of a log.
 *
 * @param log  Type chooses. Items that an earlier call put there are freed and replaced when the log has any; otherwise
 *             the record stays as it is, and keeps its memory. It must start with Count 0 and Items null; set Count,
 *             and Count alone, to 0 before each further call to see whether the log has items
 * @return 0; 1 unknown phone, or a query failed; an SQLite code when reading the rows ended with it. Counted silently
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_PIMLOG_ReadLog(const DbChar *imei, PimLog *log);

/**
 * Appends items to a log, creating it if there is none. To replace a log, clear it first. An unknown phone's items are
 * kept under no phone's number.
 *
 * @param log  read only; Items and the texts stay the caller's
 * @return 0, whether each item could be stored or not, and a phone whose look-up fails is an unknown one; 1 the log
 *         could not be found or created, or Items is null though Count is above 0 (a log without items is then left)
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_PIMLOG_SaveLog(const DbChar *imei, const PimLog *log);

/** @} */

/* ---- DB_PIM_*: the store of contacts and calendar entries ------------------------------------------------------- */
/** @addtogroup pim
 * @{ */

/**
 * Lists the folders of one type below a folder: level by level when recursive, at most 1,023.
 *
 * @param list         emptied, then filled
 * @param parentPimID  the folder; null or empty: the root level
 * @param recursive    0: only the next level. A folder of another type hides what is below it
 * @return 0, also when reading broke off early: what was found by then is listed, and a folder that could not be read
 *         is an element whose PimID is null; 1 unknown folder, or its look-up failed
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_PIM_GetFolders(PimFolderList *list, const DbChar *parentPimID, int32_t type,
                                                    int32_t recursive);

/**
 * Adds a folder.
 *
 * @param folder       PimID, Path and Type are read
 * @param parentPimID  the folder above; null or empty: a root
 * @return 0 added; 1 unknown parent, the PimID exists already, or the statement failed
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_PIM_AddFolder(const PimFolderRecord *folder, const DbChar *parentPimID);

/**
 * Reads one folder.
 *
 * @param folder  its texts are freed first, whatever the result, so it must start zeroed; none of them may be passed as
 *                pimID. To free the texts, pass it again with an empty one
 * @return 0 filled; 101 filled, but the folder above is gone; 1 unknown or empty PimID, or a query failed; else an
 *         SQLite code
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_PIM_GetFolder(PimFolderRecord *folder, const DbChar *pimID);

/**
 * Writes path and type of a folder; it stays where it is.
 *
 * @param folder  PimID selects; Path and Type are read
 * @return 0 written, or nothing to write for an empty PimID; 1 unknown folder, or the statement failed
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_PIM_UpdateFolder(const PimFolderRecord *folder);

/**
 * Removes a folder. The folders below it and its items stay, and are no longer reached from the root.
 *
 * @return 0 removed, or nothing to remove for an empty PimID; 1 unknown folder, or the statement failed
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_PIM_DeleteFolder(const DbChar *pimID);

/**
 * Lists the items of a folder, folder by folder when recursive: at most 1,048,575 items of 1,023 folders.
 *
 * @param list         emptied, then filled
 * @param folderPimID  the folder; null or empty: the root level
 * @param type         the type of the folders below that count when recursive; the items' own types do not matter
 * @param recursive    0: only this folder
 * @return 0, also when reading broke off early: what was found by then is listed, and an item that could not be read is
 *         an element whose PimID is null; 1 unknown folder, or its look-up failed
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_PIM_GetItems(PimItemList *list, const DbChar *folderPimID, int32_t type,
                                                  int32_t recursive);

/**
 * Adds an item.
 *
 * @param item        PimID, Type, Data and DataLength are read; the memory stays the caller's
 * @param folderPath  the folder's Path (not its PimID); null or empty: the root level
 * @return 0 added; 1 unknown folder, the PimID exists already, a negative DataLength, or the statement failed
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_PIM_AddItem(const PimItemRecord *item, const DbChar *folderPath);

/**
 * Writes the contents of an item; type and folder stay.
 *
 * @param item  PimID selects; Data and DataLength are read
 * @return 0 written; 1 unknown item, a negative DataLength, or the statement failed
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_PIM_UpdateItem(const PimItemRecord *item);

/**
 * Removes an item.
 *
 * @return 0 removed; 1 unknown item, or the statement failed
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_PIM_DeleteItem(const DbChar *pimID);

/**
 * Reads the profile of the store.
 *
 * @param slot  holds null or what an earlier call put there, which is freed; receives a text of the library's, or null
 *              when there is none. Nothing but a further call frees it: keep one slot for the whole program
 * @return 0 read, or none stored; 1 the query failed; else an SQLite code
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_PIM_GetProfile(DbChar **slot);

/**
 * Stores the profile of the store, in the place of the one before.
 *
 * @param slot  holds the text, which stays the caller's
 * @return 0 stored; 1 a statement failed. Two statements: when only the removal of the one before fails, there are two,
 *         and the result is 0
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_PIM_SetProfile(DbChar *const *slot);

/**
 * Removes all items of a type, and its folders too unless they are to be kept. The profile stays.
 *
 * @param keepFolders  0: the folders go too
 * @return 0 removed; 1 a statement failed
 */
KESTA_DB_API int32_t KESTA_DB_CALL DB_PIM_ClearAll(int32_t type, int32_t keepFolders);

/** @} */

#if defined(__cplusplus)
} /* extern "C" */
#endif

#undef KESTA_DB_STATIC_ASSERT
#undef KESTA_DB_OFFSET

#endif /* KESTA_DB_KESTA_DB_H */
