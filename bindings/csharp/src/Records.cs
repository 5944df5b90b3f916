// The records of kesta_db.h, field for field. A test compares sizes and offsets with those of the header.
using System;
using System.Runtime.InteropServices;

namespace KestaDb.Interop
{
    // 12 bytes everywhere: the one packed record.
    [StructLayout(LayoutKind.Sequential, Pack = 4)]
    public struct DateValue
    {
        public double Days;
        public int Status;
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct MainFolderRecord
    {
        public int ID;
        public int Number;
        public long Size;
        public IntPtr Setting;
        public int Changed;
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct PhoneSettingRecord
    {
        public IntPtr IMEI;
        public IntPtr Name;
        public IntPtr PhotoPath;
        public IntPtr DocPath;
        public IntPtr WifiMAC;
        public int AutoSync;
        public int AutoBackup;
        public int AllowWifi;
        public int ContactPreferSide;
        public int CalendarPreferSide;
        public int ContactPim;
        public int CalPim;
        public int CalPeriod;
        public IntPtr CalPeriodStr;
        public DateValue CalStart;
        public DateValue CalEnd;
        public int BookMarkType;
        public int SyncDocFromFolder;
        public int SyncDocFromPhone;
        public int SyncPhotoFromFolder;
        public int SyncPhotoFromPhone;
        public int SyncMusicFromFolder;
        public int SyncMusicFromPlayer;
        public int SyncMusicAll;
        public int NeedMount;
        public IntPtr ContactFolderId;
        public IntPtr CalendarFolderId;
        public IntPtr ContactProfile;
        public IntPtr CalendarProfile;
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct FolderRecord
    {
        public long RowId;
        public IntPtr Path;
        public int Count;
        public long Size;
        public long TotalSize;
        public int Selected;
        public int Deleted;
        public int Reserved;
        public DateValue AddTime;
        public int Sized;
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct SyncedFileRecord
    {
        public DateValue ModifiedTime;
        public IntPtr Path;
        public IntPtr BasePath;
        public IntPtr PhonePath;
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct PlaylistRecord
    {
        public long RowId;
        public IntPtr Name;
        public IntPtr Digest;
        public IntPtr IdInPhone;
        public int Type;
        public int Flag;
        public int Count;
        public long Size;
        public long TotalSize;
        public int Selected;
        public int Sized;
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct FileNameArray
    {
        public int Count;
        public IntPtr Items;
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct BookmarkRecord
    {
        public IntPtr Title;
        public IntPtr Path;
        public IntPtr PhoneMID;
        public int Id;
        public int Flag;
        public int Type;
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct BackupRecord
    {
        public int bcID;
        public long Size;
        public DateValue ModifiedTime;
        public IntPtr Path;
        public IntPtr PhonePath;
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct PimLogItem
    {
        public IntPtr Guid;
        public IntPtr Luid;
        public DateValue PCTime;
        public DateValue PhoneTime;
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct PimLog
    {
        public int Type;
        public int Count;
        public IntPtr Items;
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct PimFolderRecord
    {
        public IntPtr PimID;
        public IntPtr ParentPimID;
        public IntPtr Path;
        public int Type;
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct PimItemRecord
    {
        public IntPtr PimID;
        public int Type;
        public int DataLength;
        public IntPtr Data;
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct MainFolderList
    {
        public int Count;
        public IntPtr Items;
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct PhoneList
    {
        public int Count;
        public IntPtr Items;
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct FolderList
    {
        public int Count;
        public IntPtr Items;
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct SyncedFileList
    {
        public int Count;
        public IntPtr Items;
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct PlaylistList
    {
        public int Count;
        public IntPtr Items;
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct BookmarkList
    {
        public int Count;
        public IntPtr Items;
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct BackupList
    {
        public int Count;
        public IntPtr Items;
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct PimFolderList
    {
        public int Count;
        public IntPtr Items;
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct PimItemList
    {
        public int Count;
        public IntPtr Items;
    }
}
