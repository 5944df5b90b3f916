// The functions of the library. Each returns a result code unless kesta_db.h says otherwise.
using System;
using System.Runtime.InteropServices;

namespace KestaDb.Interop
{
    public static class Native
    {
        private const string Library = "KESTA_DB";

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_Open();
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_Close();
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_LIB_UpdateMainFolderInfo(ref MainFolderRecord record);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_LIB_RefreshStatistics();
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_LIB_GetAllMainFolders(ref MainFolderList list);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_LIB_MainFoldersChanged(ref MainFolderList list);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_LIB_PhoneDetected(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, [MarshalAs(UnmanagedType.LPWStr)] string name);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_LIB_SetPhoneSetting(ref PhoneSettingRecord record);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_LIB_GetPhoneSetting(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref PhoneSettingRecord record);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_LIB_GetAllPhones(ref PhoneList list);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_LIB_IsFolderSelected([MarshalAs(UnmanagedType.LPWStr)] string imei, int folderId);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_LIB_SetFolderSelected(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, int folderId, int selected);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_LIB_SetLastSyncTime(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref DateValue lastTime, int errCode, int needMount);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_LIB_GetLastSyncTime(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref DateValue lastTime);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_LIB_SetSDType([MarshalAs(UnmanagedType.LPWStr)] string imei, int type, int oldType);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_LIB_GetSDType(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref int type, ref int oldType);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_LIB_ClearSyncHistory([MarshalAs(UnmanagedType.LPWStr)] string imei);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_MUSIC_AddFolder(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref FolderRecord folder);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_MUSIC_ClearAll([MarshalAs(UnmanagedType.LPWStr)] string imei);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_MUSIC_GetFolders(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref FolderList list);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_MUSIC_GetFolder(
            [MarshalAs(UnmanagedType.LPWStr)] string imei,
            [MarshalAs(UnmanagedType.LPWStr)] string path,
            ref FolderRecord folder);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_MUSIC_IsFolderSelected(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, [MarshalAs(UnmanagedType.LPWStr)] string path);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_MUSIC_SetFolderSelected(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, [MarshalAs(UnmanagedType.LPWStr)] string path, int selected);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_MUSIC_IsFolderDeleted(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, [MarshalAs(UnmanagedType.LPWStr)] string path);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_MUSIC_SetFolderDeleted(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, [MarshalAs(UnmanagedType.LPWStr)] string path, int deleted);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_MUSIC_IsSyncedFile(
            [MarshalAs(UnmanagedType.LPWStr)] string imei,
            [MarshalAs(UnmanagedType.LPWStr)] string path,
            ref SyncedFileRecord file);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_MUSIC_GetSyncedFiles(
            [MarshalAs(UnmanagedType.LPWStr)] string imei,
            [MarshalAs(UnmanagedType.LPWStr)] string folder,
            ref SyncedFileList list);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_MUSIC_SetAddedFile(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref SyncedFileRecord file);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_MUSIC_SetDeletedFile(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref SyncedFileRecord file);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_MUSIC_SetUpdatedFile(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref SyncedFileRecord file);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_MUSIC_SetDeletedFolder(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, [MarshalAs(UnmanagedType.LPWStr)] string path);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_IMAGE_AddFolder(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref FolderRecord folder);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_IMAGE_ClearAll([MarshalAs(UnmanagedType.LPWStr)] string imei);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_IMAGE_GetFolders(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref FolderList list);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_IMAGE_GetFolder(
            [MarshalAs(UnmanagedType.LPWStr)] string imei,
            [MarshalAs(UnmanagedType.LPWStr)] string path,
            ref FolderRecord folder);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_IMAGE_IsFolderSelected(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, [MarshalAs(UnmanagedType.LPWStr)] string path);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_IMAGE_SetFolderSelected(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, [MarshalAs(UnmanagedType.LPWStr)] string path, int selected);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_IMAGE_IsFolderDeleted(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, [MarshalAs(UnmanagedType.LPWStr)] string path);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_IMAGE_SetFolderDeleted(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, [MarshalAs(UnmanagedType.LPWStr)] string path, int deleted);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_IMAGE_IsSyncedFile(
            [MarshalAs(UnmanagedType.LPWStr)] string imei,
            [MarshalAs(UnmanagedType.LPWStr)] string path,
            ref SyncedFileRecord file);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_IMAGE_GetSyncedFiles(
            [MarshalAs(UnmanagedType.LPWStr)] string imei,
            [MarshalAs(UnmanagedType.LPWStr)] string folder,
            ref SyncedFileList list);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_IMAGE_SetAddedFile(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref SyncedFileRecord file);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_IMAGE_SetDeletedFile(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref SyncedFileRecord file);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_IMAGE_SetUpdatedFile(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref SyncedFileRecord file);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_IMAGE_SetDeletedFolder(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, [MarshalAs(UnmanagedType.LPWStr)] string path);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_VIDEO_AddFolder(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref FolderRecord folder);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_VIDEO_ClearAll([MarshalAs(UnmanagedType.LPWStr)] string imei);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_VIDEO_GetFolders(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref FolderList list);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_VIDEO_GetFolder(
            [MarshalAs(UnmanagedType.LPWStr)] string imei,
            [MarshalAs(UnmanagedType.LPWStr)] string path,
            ref FolderRecord folder);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_VIDEO_IsFolderSelected(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, [MarshalAs(UnmanagedType.LPWStr)] string path);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_VIDEO_SetFolderSelected(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, [MarshalAs(UnmanagedType.LPWStr)] string path, int selected);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_VIDEO_IsFolderDeleted(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, [MarshalAs(UnmanagedType.LPWStr)] string path);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_VIDEO_SetFolderDeleted(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, [MarshalAs(UnmanagedType.LPWStr)] string path, int deleted);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_VIDEO_IsSyncedFile(
            [MarshalAs(UnmanagedType.LPWStr)] string imei,
            [MarshalAs(UnmanagedType.LPWStr)] string path,
            ref SyncedFileRecord file);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_VIDEO_GetSyncedFiles(
            [MarshalAs(UnmanagedType.LPWStr)] string imei,
            [MarshalAs(UnmanagedType.LPWStr)] string folder,
            ref SyncedFileList list);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_VIDEO_SetAddedFile(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref SyncedFileRecord file);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_VIDEO_SetDeletedFile(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref SyncedFileRecord file);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_VIDEO_SetUpdatedFile(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref SyncedFileRecord file);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_VIDEO_SetDeletedFolder(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, [MarshalAs(UnmanagedType.LPWStr)] string path);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_DOCUMENT_AddFolder(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref FolderRecord folder);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_DOCUMENT_ClearAll([MarshalAs(UnmanagedType.LPWStr)] string imei);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_DOCUMENT_GetFolders(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref FolderList list);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_DOCUMENT_GetFolder(
            [MarshalAs(UnmanagedType.LPWStr)] string imei,
            [MarshalAs(UnmanagedType.LPWStr)] string path,
            ref FolderRecord folder);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_DOCUMENT_IsFolderSelected(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, [MarshalAs(UnmanagedType.LPWStr)] string path);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_DOCUMENT_SetFolderSelected(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, [MarshalAs(UnmanagedType.LPWStr)] string path, int selected);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_DOCUMENT_IsFolderDeleted(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, [MarshalAs(UnmanagedType.LPWStr)] string path);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_DOCUMENT_SetFolderDeleted(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, [MarshalAs(UnmanagedType.LPWStr)] string path, int deleted);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_DOCUMENT_IsSyncedFile(
            [MarshalAs(UnmanagedType.LPWStr)] string imei,
            [MarshalAs(UnmanagedType.LPWStr)] string path,
            ref SyncedFileRecord file);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_DOCUMENT_GetSyncedFiles(
            [MarshalAs(UnmanagedType.LPWStr)] string imei,
            [MarshalAs(UnmanagedType.LPWStr)] string folder,
            ref SyncedFileList list);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_DOCUMENT_SetAddedFile(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref SyncedFileRecord file);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_DOCUMENT_SetDeletedFile(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref SyncedFileRecord file);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_DOCUMENT_SetUpdatedFile(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref SyncedFileRecord file);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_DOCUMENT_SetDeletedFolder(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, [MarshalAs(UnmanagedType.LPWStr)] string path);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_GALLERY_GetFolders(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref FolderList list);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_GALLERY_IsFolderSelected(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, [MarshalAs(UnmanagedType.LPWStr)] string path);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_GALLERY_SetFolderSelected(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, [MarshalAs(UnmanagedType.LPWStr)] string path, int selected);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_GALLERY_IsFolderDeleted(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, [MarshalAs(UnmanagedType.LPWStr)] string path);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_GALLERY_SetFolderDeleted(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, [MarshalAs(UnmanagedType.LPWStr)] string path, int deleted);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_PLAYERMUSIC_AddPlaylist(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref PlaylistRecord playlist);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_PLAYERMUSIC_ClearAll([MarshalAs(UnmanagedType.LPWStr)] string imei);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_PLAYERMUSIC_GetPlaylists(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref PlaylistList list);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_PLAYERMUSIC_IsListSelected(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, [MarshalAs(UnmanagedType.LPWStr)] string name);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_PLAYERMUSIC_SetListSelected(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, [MarshalAs(UnmanagedType.LPWStr)] string name, int selected);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_PLAYERMUSIC_IsSyncedFile(
            [MarshalAs(UnmanagedType.LPWStr)] string imei,
            [MarshalAs(UnmanagedType.LPWStr)] string path,
            ref SyncedFileRecord file);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_PLAYERMUSIC_GetSyncedFiles(
            [MarshalAs(UnmanagedType.LPWStr)] string imei,
            [MarshalAs(UnmanagedType.LPWStr)] string list,
            ref SyncedFileList files);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_PLAYERMUSIC_SetAddedFile(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref SyncedFileRecord file);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_PLAYERMUSIC_SetDeletedFile(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref SyncedFileRecord file);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_PLAYERMUSIC_SetUpdatedFile(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref SyncedFileRecord file);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_PLAYERMUSIC_SetAddedPlaylist(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref PlaylistRecord playlist);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_PLAYERMUSIC_SetDeletedPlaylist(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref PlaylistRecord playlist);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_PLAYERMUSIC_SetUpdatedPlaylist(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref PlaylistRecord playlist);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_PLAYERMUSIC_GetListFilesname(
            [MarshalAs(UnmanagedType.LPWStr)] string imei,
            [MarshalAs(UnmanagedType.LPWStr)] string list,
            ref FileNameArray names);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_PLAYERMUSIC_SetListFilesname(
            [MarshalAs(UnmanagedType.LPWStr)] string imei,
            [MarshalAs(UnmanagedType.LPWStr)] string list,
            ref FileNameArray names);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_PLAYERMUSIC_DeleteList(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, [MarshalAs(UnmanagedType.LPWStr)] string name);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_BACKUP_AddBackup(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref BackupRecord backup);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_BACKUP_ClearAll();
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_BACKUP_DeleteBackups([MarshalAs(UnmanagedType.LPWStr)] string imei);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_BACKUP_DeleteBackup(int bcID);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_BACKUP_FileExist([MarshalAs(UnmanagedType.LPWStr)] string path);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_BACKUP_GetAllBackups(ref BackupList list);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_BACKUP_GetPhoneBackups(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref BackupList list);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_BOOKMARK_ClearAll([MarshalAs(UnmanagedType.LPWStr)] string imei);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_BOOKMARK_IsSyncedMark(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, [MarshalAs(UnmanagedType.LPWStr)] string url);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_BOOKMARK_GetSyncedMarks(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref BookmarkList list);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_BOOKMARK_GetSyncedMark(
            [MarshalAs(UnmanagedType.LPWStr)] string imei,
            [MarshalAs(UnmanagedType.LPWStr)] string url,
            ref BookmarkRecord bookmark);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_BOOKMARK_SetAddedMark(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref BookmarkRecord bookmark);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_BOOKMARK_SetDeletedMark(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, [MarshalAs(UnmanagedType.LPWStr)] string url);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_BOOKMARK_SetUpdatedMark(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, ref BookmarkRecord bookmark);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_PIMLOG_GetPimProfile(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, IntPtr buffer, int type);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_PIMLOG_SetPimProfile(
            [MarshalAs(UnmanagedType.LPWStr)] string imei, [MarshalAs(UnmanagedType.LPWStr)] string profile, int type);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_PIMLOG_ClearAll([MarshalAs(UnmanagedType.LPWStr)] string imei, int type);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_PIMLOG_ReadLog([MarshalAs(UnmanagedType.LPWStr)] string imei, ref PimLog log);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_PIMLOG_SaveLog([MarshalAs(UnmanagedType.LPWStr)] string imei, ref PimLog log);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_PIM_GetFolders(
            ref PimFolderList list, [MarshalAs(UnmanagedType.LPWStr)] string parentPimID, int type, int recursive);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_PIM_AddFolder(
            ref PimFolderRecord folder, [MarshalAs(UnmanagedType.LPWStr)] string parentPimID);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_PIM_GetFolder(
            ref PimFolderRecord folder, [MarshalAs(UnmanagedType.LPWStr)] string pimID);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_PIM_UpdateFolder(ref PimFolderRecord folder);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_PIM_DeleteFolder([MarshalAs(UnmanagedType.LPWStr)] string pimID);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_PIM_GetItems(
            ref PimItemList list, [MarshalAs(UnmanagedType.LPWStr)] string folderPimID, int type, int recursive);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_PIM_AddItem(
            ref PimItemRecord item, [MarshalAs(UnmanagedType.LPWStr)] string folderPath);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_PIM_UpdateItem(ref PimItemRecord item);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_PIM_DeleteItem([MarshalAs(UnmanagedType.LPWStr)] string pimID);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_PIM_GetProfile(ref IntPtr slot);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_PIM_SetProfile(ref IntPtr slot);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int DB_PIM_ClearAll(int type, int keepFolders);
    }
}
