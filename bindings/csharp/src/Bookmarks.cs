// The web bookmarks synced to a phone.
using System.Collections.Generic;
using KestaDb.Interop;

namespace KestaDb
{
    public sealed class Bookmark
    {
        public string Url { get; set; }
        public string Title { get; set; } = "";
        public string IdOnPhone { get; set; } = "";
        /// <summary>The caller's own number; Bookmarks.All leaves it 0.</summary>
        public int Id { get; set; }
        public int Flag { get; set; }
    }

    /// <summary>The bookmarks of one phone, which must be known, of its present bookmark type.</summary>
    public sealed class Bookmarks
    {
        private readonly string imei;

        internal Bookmarks(string imei) { this.imei = Texts.Identifier(imei); }

        /// <summary>An empty answer is a true one.</summary>
        public IReadOnlyList<Bookmark> All()
        {
            var list = new BookmarkList();
            try
            {
                Lists.ReadCounted("DB_BOOKMARK_GetSyncedMarks", () => Native.DB_BOOKMARK_GetSyncedMarks(imei, ref list),
                                  () => list.Count);
                return Lists.Convert<BookmarkRecord, Bookmark>(list.Count, list.Items, record => new Bookmark
                {
                    Url = Texts.At(record.Path),
                    Title = Texts.At(record.Title),
                    IdOnPhone = Texts.At(record.PhoneMID),
                    Id = record.Id,
                    Flag = record.Flag
                });
            }
            finally
            {
                Native.DB_BOOKMARK_GetSyncedMarks(Lists.Unknown, ref list);
            }
        }

        /// <summary>False when the URL is recorded already; its bookmark is then left as it was.</summary>
        public bool Add(Bookmark bookmark)
        {
            using (var texts = new Texts())
            {
                BookmarkRecord record = ToRecord(bookmark, texts);
                return Result.Added("DB_BOOKMARK_SetAddedMark", Native.DB_BOOKMARK_SetAddedMark(imei, ref record));
            }
        }

        /// <summary>Title, IdOnPhone and Flag of the bookmark with that URL.</summary>
        public void Update(Bookmark bookmark)
        {
            using (var texts = new Texts())
            {
                BookmarkRecord record = ToRecord(bookmark, texts);
                Result.Require("DB_BOOKMARK_SetUpdatedMark", Native.DB_BOOKMARK_SetUpdatedMark(imei, ref record));
            }
        }

        public void Remove(string url) =>
            Result.Require("DB_BOOKMARK_SetDeletedMark", Native.DB_BOOKMARK_SetDeletedMark(imei, Texts.Plain(url)));

        /// <summary>Those of every bookmark type.</summary>
        public void RemoveAll() => Result.Require("DB_BOOKMARK_ClearAll", Native.DB_BOOKMARK_ClearAll(imei));

        private static BookmarkRecord ToRecord(Bookmark bookmark, Texts texts) => new BookmarkRecord
        {
            Title = texts.Add(bookmark.Title),
            Path = texts.Add(bookmark.Url),
            PhoneMID = texts.Add(bookmark.IdOnPhone),
            Id = bookmark.Id,
            Flag = bookmark.Flag
        };
    }
}
