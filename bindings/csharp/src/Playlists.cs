// The playlists of the music player on one phone.
using System;
using System.Collections.Generic;
using System.Linq;
using System.Runtime.InteropServices;
using KestaDb.Interop;

namespace KestaDb
{
    public enum PlaylistState
    {
        /// <summary>On the phone as it is on the PC.</summary>
        Current = 0,
        /// <summary>To be added to the phone.</summary>
        New = 1,
        /// <summary>Gone from the PC, or not seen again yet: to be removed from the phone.</summary>
        Unconfirmed = 3,
        /// <summary>Removed from the phone; its row is kept.</summary>
        Deleted = 4
    }

    public sealed class Playlist
    {
        public string Name { get; set; }
        /// <summary>The caller's digest of the contents: ASCII without apostrophes.</summary>
        public string Digest { get; set; } = "";
        /// <summary>Null: not on the phone, or there under an empty name.</summary>
        public string IdInPhone { get; internal set; }
        public int Type { get; set; }
        public PlaylistState State { get; internal set; } = PlaylistState.New;
        public int Count { get; set; }
        public long Size { get; set; }
        public long TotalSize { get; set; }
        public bool Selected { get; internal set; } = true;
        public bool Sized { get; set; }
    }

    /// <summary>The playlists of one phone, which must be known. A round: BeginConfirming, Confirm each list of the PC, All;
    /// what is New then goes to the phone, what is still Unconfirmed is removed from it.</summary>
    public sealed class Playlists
    {
        private readonly string imei;

        internal Playlists(string imei) { this.imei = Texts.Identifier(imei); }

        /// <summary>By name.</summary>
        public IReadOnlyList<Playlist> All()
        {
            var list = new PlaylistList();
            try
            {
                Lists.Read("DB_PLAYERMUSIC_GetPlaylists", () => Native.DB_PLAYERMUSIC_GetPlaylists(imei, ref list));
                return Lists.Convert<PlaylistRecord, Playlist>(list.Count, list.Items, ToPlaylist);
            }
            finally
            {
                Native.DB_PLAYERMUSIC_GetPlaylists(Lists.Unknown, ref list);
            }
        }

        /// <summary>Every list but those deleted on the phone becomes Unconfirmed.</summary>
        public void BeginConfirming() =>
            Result.Require("DB_PLAYERMUSIC_ClearAll", Native.DB_PLAYERMUSIC_ClearAll(imei));

        /// <summary>Confirms a list of the PC, or adds it. The library does not tell whether it was stored; All does.
        /// </summary>
        public void Confirm(Playlist list)
        {
            using (var texts = new Texts())
            {
                var record = new PlaylistRecord
                {
                    Name = texts.Add(list.Name), Digest = texts.AddIdentifier(list.Digest), Type = list.Type,
                    Count = list.Count, Size = list.Size, TotalSize = list.TotalSize, Sized = list.Sized ? 1 : 0
                };
                Result.Require("DB_PLAYERMUSIC_AddPlaylist", Native.DB_PLAYERMUSIC_AddPlaylist(imei, ref record));
            }
        }

        public void Select(string name, bool selected) =>
            Result.Require("DB_PLAYERMUSIC_SetListSelected",
                           Native.DB_PLAYERMUSIC_SetListSelected(imei, Texts.Plain(name), selected ? 1 : 0));

        /// <summary>The phone has taken the list, under its own name for it.</summary>
        public void SetAdded(string name, string idInPhone) => Named(name, idInPhone, (ref PlaylistRecord record) =>
            Result.Require("DB_PLAYERMUSIC_SetAddedPlaylist", Native.DB_PLAYERMUSIC_SetAddedPlaylist(imei, ref record)));

        /// <summary>The changed list has been written to the phone again.</summary>
        public void SetUpdated(string name) => Named(name, null, (ref PlaylistRecord record) => Result.Require(
            "DB_PLAYERMUSIC_SetUpdatedPlaylist", Native.DB_PLAYERMUSIC_SetUpdatedPlaylist(imei, ref record)));

        /// <summary>The list has been removed from the phone.</summary>
        public void SetDeleted(string name) => Named(name, null, (ref PlaylistRecord record) => Result.Require(
            "DB_PLAYERMUSIC_SetDeletedPlaylist", Native.DB_PLAYERMUSIC_SetDeletedPlaylist(imei, ref record)));

        /// <summary>The list is gone from the PC.</summary>
        public void Forget(string name) =>
            Result.Require("DB_PLAYERMUSIC_DeleteList", Native.DB_PLAYERMUSIC_DeleteList(imei, Texts.Plain(name)));

        /// <summary>The file names of a list, in the order of their bytes.</summary>
        public IReadOnlyList<string> Members(string name)
        {
            var names = new FileNameArray();
            try
            {
                Result.Require("DB_PLAYERMUSIC_GetListFilesname",
                               Native.DB_PLAYERMUSIC_GetListFilesname(imei, Texts.Plain(name), ref names));
                return Lists.Convert<IntPtr, string>(names.Count, names.Items, Texts.At);
            }
            finally
            {
                // The allocator that the library and its callers share: CoTaskMemAlloc on Windows, malloc elsewhere, which
                // is what the runtime's method stands for there.
                for (int i = 0; i < names.Count; ++i) Marshal.FreeCoTaskMem(Lists.At<IntPtr>(names.Items, i));
                Marshal.FreeCoTaskMem(names.Items);
            }
        }

        /// <summary>Replaces them; a name given twice is stored once. Reads them back, for the library does not tell whether
        /// all were stored.</summary>
        public void SetMembers(string name, IEnumerable<string> members)
        {
            string[] wanted = members.ToArray();
            using (var texts = new Texts())
            {
                IntPtr[] items = wanted.Select(texts.Add).ToArray();
                GCHandle pinned = GCHandle.Alloc(items, GCHandleType.Pinned);
                try
                {
                    var names = new FileNameArray { Count = items.Length, Items = pinned.AddrOfPinnedObject() };
                    Result.Require("DB_PLAYERMUSIC_SetListFilesname",
                                   Native.DB_PLAYERMUSIC_SetListFilesname(imei, Texts.Plain(name), ref names));
                }
                finally
                {
                    pinned.Free();
                }
            }
            if (!new HashSet<string>(wanted).SetEquals(Members(name)))
                throw new DatabaseException("DB_PLAYERMUSIC_SetListFilesname", Code.NotStored);
        }

        /// <summary>The files that were copied because of playlists. A file's BasePath is the list that it came with.
        /// </summary>
        public IReadOnlyList<SyncedFile> Files() =>
            Media.Listed("DB_PLAYERMUSIC_GetSyncedFiles", Native.DB_PLAYERMUSIC_GetSyncedFiles, imei);

        /// <summary>False when the file is recorded already.</summary>
        public bool AddFile(SyncedFile file) =>
            Result.Added("DB_PLAYERMUSIC_SetAddedFile", Media.Run(Native.DB_PLAYERMUSIC_SetAddedFile, imei, file));

        public void UpdateFile(SyncedFile file) =>
            Result.Require("DB_PLAYERMUSIC_SetUpdatedFile", Media.Run(Native.DB_PLAYERMUSIC_SetUpdatedFile, imei, file));

        public void RemoveFile(string path) =>
            Result.Require("DB_PLAYERMUSIC_SetDeletedFile",
                           Media.Run(Native.DB_PLAYERMUSIC_SetDeletedFile, imei, new SyncedFile { Path = path }));

        private delegate void RecordUse(ref PlaylistRecord record);

        private static void Named(string name, string idInPhone, RecordUse use)
        {
            using (var texts = new Texts())
            {
                var record = new PlaylistRecord { Name = texts.Add(name) };
                if (idInPhone != null) record.IdInPhone = texts.Add(idInPhone);
                use(ref record);
            }
        }

        private static Playlist ToPlaylist(PlaylistRecord record)
        {
            // Some programs write the word instead of leaving the column empty; the library takes it for nothing, too.
            string id = Texts.At(record.IdInPhone);
            return new Playlist
            {
                Name = Texts.At(record.Name),
                Digest = Texts.At(record.Digest),
                IdInPhone = id == "" || id == "(null)" ? null : id,
                Type = record.Type,
                State = (PlaylistState)record.Flag,
                Count = record.Count,
                Size = record.Size,
                TotalSize = record.TotalSize,
                Selected = record.Selected != 0,
                Sized = record.Sized != 0
            };
        }
    }
}
