// Which folders of the PC are synced to a phone, and which files lie on it.
using System;
using System.Collections.Generic;
using KestaDb.Interop;

namespace KestaDb
{
    public enum Category { Music, Images, Videos, Documents }

    /// <summary>A folder of the PC that is synced to a phone.</summary>
    public sealed class Folder
    {
        public string Path { get; set; }
        public int Count { get; set; }
        public long Size { get; set; }
        public long TotalSize { get; set; }
        public bool Sized { get; set; }
        public bool Selected { get; internal set; } = true;
        public bool Deleted { get; internal set; }
        public DateTime? Added { get; internal set; }
        public long RowId { get; internal set; }

        internal static Folder From(FolderRecord record) => new Folder
        {
            Path = Texts.At(record.Path),
            Count = record.Count,
            Size = record.Size,
            TotalSize = record.TotalSize,
            Sized = record.Sized != 0,
            Selected = record.Selected != 0,
            Deleted = record.Deleted != 0,
            Added = Dates.To(record.AddTime),
            RowId = record.RowId
        };
    }

    /// <summary>A file that has been synced to a phone.</summary>
    public sealed class SyncedFile
    {
        /// <summary>On the PC.</summary>
        public string Path { get; set; }
        /// <summary>The folder, or the playlist, that it belongs to.</summary>
        public string BasePath { get; set; } = "";
        public string PhonePath { get; set; } = "";
        public DateTime? Modified { get; set; }

        internal static SyncedFile From(SyncedFileRecord record) => new SyncedFile
        {
            Path = Texts.At(record.Path),
            BasePath = Texts.At(record.BasePath),
            PhonePath = Texts.At(record.PhonePath),
            Modified = Dates.To(record.ModifiedTime)
        };

        internal SyncedFileRecord ToRecord(Texts texts) => new SyncedFileRecord
        {
            ModifiedTime = Dates.From(Modified),
            Path = texts.Add(Path),
            BasePath = texts.Add(BasePath),
            PhonePath = texts.Add(PhonePath)
        };
    }

    internal delegate int FolderCall(string imei, ref FolderRecord folder);
    internal delegate int FolderLookUp(string imei, string path, ref FolderRecord folder);
    internal delegate int FolderListing(string imei, ref FolderList list);
    internal delegate int FolderState(string imei, string path, int state);
    internal delegate int FileCall(string imei, ref SyncedFileRecord file);
    internal delegate int FileListing(string imei, string folder, ref SyncedFileList list);

    /// The functions of one category.
    internal sealed class CategoryCalls
    {
        public FolderCall AddFolder;
        public FolderLookUp GetFolder;
        public FolderListing GetFolders;
        public FolderState SetFolderSelected, SetFolderDeleted;
        public Func<string, string, int> SetDeletedFolder;
        public FileListing GetSyncedFiles;
        public FileCall SetAddedFile, SetUpdatedFile, SetDeletedFile;

        public static readonly CategoryCalls[] All =
        {
            new CategoryCalls
            {
                AddFolder = Native.DB_MUSIC_AddFolder, GetFolder = Native.DB_MUSIC_GetFolder,
                GetFolders = Native.DB_MUSIC_GetFolders, SetFolderSelected = Native.DB_MUSIC_SetFolderSelected,
                SetFolderDeleted = Native.DB_MUSIC_SetFolderDeleted, SetDeletedFolder = Native.DB_MUSIC_SetDeletedFolder,
                GetSyncedFiles = Native.DB_MUSIC_GetSyncedFiles, SetAddedFile = Native.DB_MUSIC_SetAddedFile,
                SetUpdatedFile = Native.DB_MUSIC_SetUpdatedFile, SetDeletedFile = Native.DB_MUSIC_SetDeletedFile
            },
            new CategoryCalls
            {
                AddFolder = Native.DB_IMAGE_AddFolder, GetFolder = Native.DB_IMAGE_GetFolder,
                GetFolders = Native.DB_IMAGE_GetFolders, SetFolderSelected = Native.DB_IMAGE_SetFolderSelected,
                SetFolderDeleted = Native.DB_IMAGE_SetFolderDeleted, SetDeletedFolder = Native.DB_IMAGE_SetDeletedFolder,
                GetSyncedFiles = Native.DB_IMAGE_GetSyncedFiles, SetAddedFile = Native.DB_IMAGE_SetAddedFile,
                SetUpdatedFile = Native.DB_IMAGE_SetUpdatedFile, SetDeletedFile = Native.DB_IMAGE_SetDeletedFile
            },
            new CategoryCalls
            {
                AddFolder = Native.DB_VIDEO_AddFolder, GetFolder = Native.DB_VIDEO_GetFolder,
                GetFolders = Native.DB_VIDEO_GetFolders, SetFolderSelected = Native.DB_VIDEO_SetFolderSelected,
                SetFolderDeleted = Native.DB_VIDEO_SetFolderDeleted, SetDeletedFolder = Native.DB_VIDEO_SetDeletedFolder,
                GetSyncedFiles = Native.DB_VIDEO_GetSyncedFiles, SetAddedFile = Native.DB_VIDEO_SetAddedFile,
                SetUpdatedFile = Native.DB_VIDEO_SetUpdatedFile, SetDeletedFile = Native.DB_VIDEO_SetDeletedFile
            },
            new CategoryCalls
            {
                AddFolder = Native.DB_DOCUMENT_AddFolder, GetFolder = Native.DB_DOCUMENT_GetFolder,
                GetFolders = Native.DB_DOCUMENT_GetFolders, SetFolderSelected = Native.DB_DOCUMENT_SetFolderSelected,
                SetFolderDeleted = Native.DB_DOCUMENT_SetFolderDeleted,
                SetDeletedFolder = Native.DB_DOCUMENT_SetDeletedFolder,
                GetSyncedFiles = Native.DB_DOCUMENT_GetSyncedFiles, SetAddedFile = Native.DB_DOCUMENT_SetAddedFile,
                SetUpdatedFile = Native.DB_DOCUMENT_SetUpdatedFile, SetDeletedFile = Native.DB_DOCUMENT_SetDeletedFile
            }
        };
    }

    /// <summary>Folders and files of one category on one phone, which must be known.</summary>
    public sealed class Media
    {
        private readonly string imei;
        private readonly CategoryCalls calls;

        internal Media(string imei, Category category)
        {
            this.imei = Texts.Identifier(imei);
            calls = CategoryCalls.All[(int)category];
        }

        /// <summary>In the order in which they were added.</summary>
        public IReadOnlyList<Folder> Folders()
        {
            var list = new FolderList();
            try
            {
                Lists.Read("GetFolders", () => calls.GetFolders(imei, ref list));
                return Lists.Convert<FolderRecord, Folder>(list.Count, list.Items, Folder.From);
            }
            finally
            {
                calls.GetFolders(Lists.Unknown, ref list);
            }
        }

        /// <summary>Path, Count, Size, TotalSize and Sized are stored; a known folder keeps its selection. Reads the folder
        /// back, for the library does not tell whether it was stored.</summary>
        public void AddFolder(Folder folder)
        {
            using (var texts = new Texts())
            {
                var record = new FolderRecord
                {
                    Path = texts.Add(folder.Path), Count = folder.Count, Size = folder.Size,
                    TotalSize = folder.TotalSize, Sized = folder.Sized ? 1 : 0
                };
                Result.Require("AddFolder", calls.AddFolder(imei, ref record));
                var stored = new FolderRecord();
                bool isStored = calls.GetFolder(imei, folder.Path, ref stored) == 0 && stored.Count == record.Count &&
                                stored.Size == record.Size && stored.TotalSize == record.TotalSize &&
                                stored.Sized == record.Sized;
                calls.GetFolder(Lists.Unknown, folder.Path, ref stored);  // gives the text back
                if (!isStored) throw new DatabaseException("AddFolder", Code.NotStored);
            }
        }

        public void SelectFolder(string path, bool selected) =>
            Result.Require("SetFolderSelected", calls.SetFolderSelected(imei, Texts.Plain(path), selected ? 1 : 0));

        /// <summary>Gone from the PC, or back.</summary>
        public void SetFolderDeleted(string path, bool deleted) =>
            Result.Require("SetFolderDeleted", calls.SetFolderDeleted(imei, Texts.Plain(path), deleted ? 1 : 0));

        /// <summary>With all files recorded under it.</summary>
        public void RemoveFolder(string path) =>
            Result.Require("SetDeletedFolder", calls.SetDeletedFolder(imei, Texts.Plain(path)));

        /// <summary>The files of all folders. An empty answer is a true one.</summary>
        public IReadOnlyList<SyncedFile> Files() => Listed("GetSyncedFiles", calls.GetSyncedFiles, imei);

        /// <summary>False when the file is recorded already; it is then left as it was.</summary>
        public bool AddFile(SyncedFile file) => Result.Added("SetAddedFile", Run(calls.SetAddedFile, imei, file));

        /// <summary>PhonePath and Modified of the file with that path.</summary>
        public void UpdateFile(SyncedFile file) =>
            Result.Require("SetUpdatedFile", Run(calls.SetUpdatedFile, imei, file));

        public void RemoveFile(string path) =>
            Result.Require("SetDeletedFile", Run(calls.SetDeletedFile, imei, new SyncedFile { Path = path }));

        internal static int Run(FileCall call, string imei, SyncedFile file)
        {
            using (var texts = new Texts())
            {
                SyncedFileRecord record = file.ToRecord(texts);
                return call(imei, ref record);
            }
        }

        internal static IReadOnlyList<SyncedFile> Listed(string name, FileListing call, string imei)
        {
            var list = new SyncedFileList();
            try
            {
                Lists.ReadCounted(name, () => call(imei, null, ref list), () => list.Count);
                return Lists.Convert<SyncedFileRecord, SyncedFile>(list.Count, list.Items, SyncedFile.From);
            }
            finally
            {
                call(Lists.Unknown, null, ref list);
            }
        }
    }
}
