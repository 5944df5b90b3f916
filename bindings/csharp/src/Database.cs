using System.Collections.Generic;
using KestaDb.Interop;

namespace KestaDb
{
    /// <summary>The open database, and the way to its parts. All of it may be used by several threads.</summary>
    public sealed class Database
    {
        /// <summary>Opens the database unless loading the library has done so.</summary>
        public Database() { Result.Require("DB_Open", Native.DB_Open()); }

        public Phones Phones { get; } = new Phones();
        public Backups Backups { get; } = new Backups();
        public PimStore PimStore { get; } = new PimStore();

        public Media Media(string imei, Category category) => new Media(imei, category);
        public Playlists Playlists(string imei) => new Playlists(imei);
        public Bookmarks Bookmarks(string imei) => new Bookmarks(imei);
        public PimSyncLog PimLog(string imei, int type) => new PimSyncLog(imei, type);

        /// <summary>Pictures and videos as one. Some folders may be missing, as the library's documentation says; Media has
        /// them all.</summary>
        public IReadOnlyList<Folder> Gallery(string imei)
        {
            Texts.Identifier(imei);
            var list = new FolderList();
            try
            {
                Lists.Read("DB_GALLERY_GetFolders", () => Native.DB_GALLERY_GetFolders(imei, ref list));
                return Lists.Convert<FolderRecord, Folder>(list.Count, list.Items, Folder.From);
            }
            finally
            {
                Native.DB_GALLERY_GetFolders(Lists.Unknown, ref list);
            }
        }
    }
}
