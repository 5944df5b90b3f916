// The store of contacts and calendar entries, and each phone's log of what has been put on it. Identifiers are ASCII
// without apostrophes.
using System;
using System.Collections.Generic;
using System.Linq;
using System.Runtime.InteropServices;
using KestaDb.Interop;

namespace KestaDb
{
    public sealed class PimFolder
    {
        public string Id { get; set; }
        /// <summary>Empty: a root.</summary>
        public string ParentId { get; set; } = "";
        /// <summary>What it is called; items are added by it.</summary>
        public string Path { get; set; }
        /// <summary>The kind of data, the caller's own number.</summary>
        public int Type { get; set; }
    }

    public sealed class PimItem
    {
        public string Id { get; set; }
        public int Type { get; set; }
        public byte[] Data { get; set; } = new byte[0];
    }

    /// <summary>One synced entry: the PC's and the phone's name for it, and when either last changed it.</summary>
    public sealed class PimLogRow
    {
        public string Guid { get; set; }
        public string Luid { get; set; }
        public DateTime? PcTime { get; set; }
        public DateTime? PhoneTime { get; set; }
    }

    /// <summary>The store, which all phones share.</summary>
    public sealed class PimStore
    {
        private delegate int ItemCall(ref PimItemRecord item);

        internal PimStore() { }

        /// <summary>The folders of a type right below the parent, or at the root when it is empty; all of them when
        /// recursive. At most 1,023.</summary>
        public IReadOnlyList<PimFolder> Folders(int type, string parentId = "", bool recursive = false)
        {
            Texts.Identifier(parentId);
            var list = new PimFolderList();
            try
            {
                Lists.ReadCounted("DB_PIM_GetFolders",
                                  () => Native.DB_PIM_GetFolders(ref list, parentId, type, recursive ? 1 : 0),
                                  () => list.Count);
                return Lists.Convert<PimFolderRecord, PimFolder>(list.Count, list.Items, ToFolder);
            }
            finally
            {
                Native.DB_PIM_GetFolders(ref list, Lists.Unknown, 0, 0);
            }
        }

        public void AddFolder(PimFolder folder)
        {
            using (var texts = new Texts())
            {
                PimFolderRecord record = ToRecord(folder, texts);
                Result.Require("DB_PIM_AddFolder",
                               Native.DB_PIM_AddFolder(ref record, Texts.Identifier(folder.ParentId)));
            }
        }

        /// <summary>Path and type; the folder stays where it is.</summary>
        public void UpdateFolder(PimFolder folder)
        {
            using (var texts = new Texts())
            {
                PimFolderRecord record = ToRecord(folder, texts);
                Result.Require("DB_PIM_UpdateFolder", Native.DB_PIM_UpdateFolder(ref record));
            }
        }

        /// <summary>What lies below it stays, and is no longer reached from the root.</summary>
        public void RemoveFolder(string id) =>
            Result.Require("DB_PIM_DeleteFolder", Native.DB_PIM_DeleteFolder(Texts.Identifier(id)));

        /// <summary>The items of a folder, which must be known; of the folders of that type below it too when recursive.
        /// </summary>
        public IReadOnlyList<PimItem> Items(string folderId, int type = 0, bool recursive = false)
        {
            Texts.Identifier(folderId);
            var list = new PimItemList();
            try
            {
                Lists.ReadCounted("DB_PIM_GetItems",
                                  () => Native.DB_PIM_GetItems(ref list, folderId, type, recursive ? 1 : 0),
                                  () => list.Count);
                return Lists.Convert<PimItemRecord, PimItem>(list.Count, list.Items, ToItem);
            }
            finally
            {
                Native.DB_PIM_GetItems(ref list, Lists.Unknown, 0, 0);
            }
        }

        /// <summary>Into the folder of that path (not id); the root level when it is empty.</summary>
        public void AddItem(string folderPath, PimItem item) => Write("DB_PIM_AddItem", item, (ref PimItemRecord record) =>
            Native.DB_PIM_AddItem(ref record, Texts.Plain(folderPath)));

        /// <summary>The data; type and folder stay.</summary>
        public void UpdateItem(PimItem item) => Write("DB_PIM_UpdateItem", item, Native.DB_PIM_UpdateItem);

        public void RemoveItem(string id) =>
            Result.Require("DB_PIM_DeleteItem", Native.DB_PIM_DeleteItem(Texts.Identifier(id)));

        /// <summary>All items of a type, and its folders too unless they are to be kept.</summary>
        public void RemoveAll(int type, bool keepFolders = false) =>
            Result.Require("DB_PIM_ClearAll", Native.DB_PIM_ClearAll(type, keepFolders ? 1 : 0));

        private static void Write(string name, PimItem item, ItemCall call)
        {
            GCHandle data = GCHandle.Alloc(item.Data, GCHandleType.Pinned);
            try
            {
                using (var texts = new Texts())
                {
                    var record = new PimItemRecord
                    {
                        PimID = texts.AddIdentifier(item.Id), Type = item.Type, DataLength = item.Data.Length,
                        Data = data.AddrOfPinnedObject()
                    };
                    Result.Require(name, call(ref record));
                }
            }
            finally
            {
                data.Free();
            }
        }

        private static PimFolderRecord ToRecord(PimFolder folder, Texts texts) => new PimFolderRecord
        {
            PimID = texts.AddIdentifier(folder.Id), Path = texts.Add(folder.Path), Type = folder.Type
        };

        private static PimFolder ToFolder(PimFolderRecord record)
        {
            if (record.PimID == IntPtr.Zero) throw new DatabaseException("DB_PIM_GetFolders", Code.Unreadable);
            return new PimFolder
            {
                Id = Texts.At(record.PimID), ParentId = Texts.At(record.ParentPimID), Path = Texts.At(record.Path),
                Type = record.Type
            };
        }

        private static PimItem ToItem(PimItemRecord record)
        {
            if (record.PimID == IntPtr.Zero) throw new DatabaseException("DB_PIM_GetItems", Code.Unreadable);
            var data = new byte[Math.Max(0, record.DataLength)];
            if (data.Length > 0) Marshal.Copy(record.Data, data, 0, data.Length);
            return new PimItem { Id = Texts.At(record.PimID), Type = record.Type, Data = data };
        }
    }

    /// <summary>The log of one phone, which must be known, and one kind of data.</summary>
    public sealed class PimSyncLog
    {
        private static readonly object LogLock = new object();
        private static PimLog log;  // no argument makes the library empty it: one for the whole program
        private readonly string imei;
        private readonly int type;

        internal PimSyncLog(string imei, int type)
        {
            this.imei = Texts.Identifier(imei);
            this.type = type;
        }

        /// <summary>An empty answer is a true one.</summary>
        public IReadOnlyList<PimLogRow> Rows()
        {
            lock (LogLock)
            {
                log.Type = type;
                Lists.ReadCounted("DB_PIMLOG_ReadLog", () =>
                {
                    log.Count = 0;  // a log without items leaves the record as it is
                    return Native.DB_PIMLOG_ReadLog(imei, ref log);
                }, () => log.Count);
                return Lists.Convert<PimLogItem, PimLogRow>(log.Count, log.Items, item => new PimLogRow
                {
                    Guid = Texts.At(item.Guid), Luid = Texts.At(item.Luid), PcTime = Dates.To(item.PCTime),
                    PhoneTime = Dates.To(item.PhoneTime)
                });
            }
        }

        /// <summary>The library does not tell whether each row was stored: Rows does.</summary>
        public void Append(IEnumerable<PimLogRow> rows)
        {
            using (var texts = new Texts())
            {
                PimLogItem[] items = rows.Select(row => new PimLogItem
                {
                    Guid = texts.AddIdentifier(row.Guid), Luid = texts.AddIdentifier(row.Luid),
                    PCTime = Dates.From(row.PcTime), PhoneTime = Dates.From(row.PhoneTime)
                }).ToArray();
                GCHandle pinned = GCHandle.Alloc(items, GCHandleType.Pinned);
                try
                {
                    var saved = new PimLog { Type = type, Count = items.Length, Items = pinned.AddrOfPinnedObject() };
                    Result.Require("DB_PIMLOG_SaveLog", Native.DB_PIMLOG_SaveLog(imei, ref saved));
                }
                finally
                {
                    pinned.Free();
                }
            }
        }

        /// <summary>Rows and profile.</summary>
        public void Clear() => Result.Require("DB_PIMLOG_ClearAll", Native.DB_PIMLOG_ClearAll(imei, type));

        /// <summary>Empty when there is none.</summary>
        public string Profile
        {
            get
            {
                // The library writes as much as there is, and no statement with which it was stored can have held more.
                const int LongestStatement = 40960;
                IntPtr buffer = Marshal.AllocHGlobal((LongestStatement + 1) * 2);
                try
                {
                    Marshal.WriteInt16(buffer, 0);
                    Result.Require("DB_PIMLOG_GetPimProfile", Native.DB_PIMLOG_GetPimProfile(imei, buffer, type));
                    return Texts.At(buffer);
                }
                finally
                {
                    Marshal.FreeHGlobal(buffer);
                }
            }
            set => Result.Require("DB_PIMLOG_SetPimProfile",
                                  Native.DB_PIMLOG_SetPimProfile(imei, Texts.Plain(value), type));
        }
    }
}
