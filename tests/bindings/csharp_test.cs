// The C# assembly over the built library: each family once through its life. With --layout it prints its records as
// header_layout.py does those of the header.
using System;
using System.Collections.Generic;
using System.Linq;
using System.Reflection;
using System.Runtime.InteropServices;
using KestaDb;
using KestaDb.Interop;

internal static class Program
{
    private const string Imei = "352099001761481";
    private static readonly DateTime Noon = new DateTime(2024, 2, 29, 12, 34, 56);
    private static int failures;

    private static int Main(string[] arguments)
    {
        if (arguments.Contains("--layout")) return PrintLayout();
        var db = new Database();
        db.Phones.Announce(Imei, "Ann's phone \u260E");
        db.Phones.ForgetSyncedFiles(Imei);
        Action<Database>[] tests = { Phone, Media, Playlist, Bookmark, Backup, Pim, Log, Dates, Refusals };
        foreach (Action<Database> test in tests)
        {
            try
            {
                test(db);
            }
            catch (Exception failure)
            {
                Check(false, test.Method.Name + ": " + failure);
            }
        }
        Console.WriteLine(tests.Length + " tests, " + failures + " failures");
        return failures == 0 ? 0 : 1;
    }

    private static void Phone(Database db)
    {
        Phone phone = db.Phones.Find(Imei);
        Check(phone.Name == "Ann's phone \u260E", "name");
        phone.PhotoPath = "/home/ann/Photos \U0001F3B5";
        phone.AutoSync = true;
        phone.CalendarStart = Noon;
        db.Phones.Update(phone);
        Phone read = db.Phones.All().Single(one => one.Imei == Imei);
        foreach (PropertyInfo property in typeof(Phone).GetProperties())
            Check(Equals(property.GetValue(read), property.GetValue(phone)), property.Name);
        Check(db.Phones.Find("000") == null, "unknown phone");
        db.Phones.SetLastSync(Imei, Noon);
        Check(db.Phones.LastSync(Imei) == Noon, "last sync");
        Check(db.Phones.MainFolders().Count == 7, "main folders");
        db.Phones.Select(Imei, MainFolder.Music, true);
        Check(db.Phones.IsSelected(Imei, MainFolder.Music), "selected");
    }

    private static void Media(Database db)
    {
        Media music = db.Media(Imei, Category.Music);
        music.AddFolder(new Folder { Path = "/m/Rock 'n' Roll", Count = 2, Size = 5000000000 });
        var file = new SyncedFile
        {
            Path = "/m/Rock 'n' Roll/\U0001F3B5.mp3", BasePath = "/m/Rock 'n' Roll", PhonePath = "Music/1.mp3",
            Modified = Noon
        };
        Check(music.AddFile(file), "added");
        Check(!music.AddFile(file), "added twice");
        SyncedFile read = music.Files().Single();
        Check(read.Path == file.Path && read.BasePath == file.BasePath && read.PhonePath == file.PhonePath &&
              read.Modified == Noon, "file");
        file.Modified = null;
        music.UpdateFile(file);
        Check(music.Files().Single().Modified == null, "no date");
        Folder folder = music.Folders().Single();
        Check(folder.Path == "/m/Rock 'n' Roll" && folder.Size == 5000000000 && folder.Selected, "folder");
        Check(db.Media(Imei, Category.Videos).Files().Count == 0, "other category");
        music.RemoveFile(file.Path);
        Check(music.Files().Count == 0, "removed");
        music.RemoveFolder("/m/Rock 'n' Roll");
        Check(music.Folders().Count == 0, "folder removed");
        Check(CodeOf(() => music.AddFolder(new Folder { Path = new string('x', 50000) })) == Code.NotStored, "too long");
    }

    private static void Playlist(Database db)
    {
        Playlists lists = db.Playlists(Imei);
        lists.BeginConfirming();
        lists.Confirm(new Playlist { Name = "Party", Digest = "c0ffee", Count = 2 });
        lists.SetMembers("Party", new[] { "/m/b.mp3", "/m/\u00E4.mp3", "/m/b.mp3" });
        Check(lists.Members("Party").SequenceEqual(new[] { "/m/b.mp3", "/m/\u00E4.mp3" }), "members");
        Check(lists.All().Single().State == PlaylistState.New && lists.All().Single().IdInPhone == null, "new");
        lists.SetAdded("Party", "42");
        Check(lists.All().Single().State == PlaylistState.Current && lists.All().Single().IdInPhone == "42", "current");
        lists.Forget("Party");
        Check(lists.All().Single().State == PlaylistState.Unconfirmed, "unconfirmed");
        lists.SetDeleted("Party");
        Check(lists.All().Count == 0, "deleted");
    }

    private static void Bookmark(Database db)
    {
        Bookmarks bookmarks = db.Bookmarks(Imei);
        bookmarks.RemoveAll();
        var bookmark = new Bookmark { Url = "https://example.org/\u00E9", Title = "A 'title'", IdOnPhone = "m1", Flag = 2 };
        Check(bookmarks.Add(bookmark) && !bookmarks.Add(bookmark), "added once");
        bookmark.Title = "Another";
        bookmarks.Update(bookmark);
        Bookmark read = bookmarks.All().Single();
        Check(read.Url == bookmark.Url && read.Title == "Another" && read.IdOnPhone == "m1" && read.Flag == 2, "bookmark");
        bookmarks.Remove(bookmark.Url);
        Check(bookmarks.All().Count == 0, "removed");
    }

    private static void Backup(Database db)
    {
        Check(CodeOf(() => db.Backups.All()) == Code.Failed, "no table");
        Check(CodeOf(() => db.Backups.Add(Imei, new Backup { Path = "/b.zip" })) == Code.Failed, "no table to add to");
    }

    private static void Pim(Database db)
    {
        const int Kind = 99;
        PimStore store = db.PimStore;
        store.RemoveAll(Kind);
        store.AddFolder(new PimFolder { Id = "cs-f", Path = "Friends", Type = Kind });
        byte[] data = { 66, 0, 255 };
        store.AddItem("Friends", new PimItem { Id = "cs-i", Type = Kind, Data = data });
        Check(store.Items("cs-f").Single().Data.SequenceEqual(data), "data");
        store.UpdateItem(new PimItem { Id = "cs-i", Type = Kind });
        Check(store.Items("cs-f").Single().Data.Length == 0, "no data");
        Check(store.Folders(Kind, "", true).Single().Path == "Friends", "folder");
        store.RemoveAll(Kind);
        Check(store.Folders(Kind).Count == 0, "removed");
    }

    private static void Log(Database db)
    {
        PimSyncLog log = db.PimLog(Imei, 1500);
        log.Clear();
        log.Append(new[]
        {
            new PimLogRow { Guid = "g1", Luid = "l1", PcTime = Noon },
            new PimLogRow { Guid = "g2", Luid = "l2", PhoneTime = Noon }
        });
        IReadOnlyList<PimLogRow> rows = log.Rows();
        Check(rows.Count == 2 && rows[0].PcTime == Noon && rows[0].PhoneTime == null && rows[1].Luid == "l2", "rows");
        log.Profile = "by 'hand'";
        Check(log.Profile == "by 'hand'", "profile");
        log.Clear();
        Check(log.Rows().Count == 0 && log.Profile == "", "cleared");
    }

    private static void Dates(Database db)
    {
        DateTime[] times = { Noon, new DateTime(1895, 3, 4, 5, 6, 7), new DateTime(9999, 12, 31, 23, 59, 59) };
        foreach (DateTime time in times)
        {
            db.Phones.SetLastSync(Imei, time);
            Check(db.Phones.LastSync(Imei) == time, time.ToString("s"));
        }
    }

    private static void Refusals(Database db)
    {
        Check(CodeOf(() => db.Phones.Announce("x' OR 1 --", "")) == Code.InvalidText, "apostrophe");
        Check(CodeOf(() => db.Phones.Announce("\u00E9", "")) == Code.InvalidText, "not ASCII");
        Check(CodeOf(() => db.Media(Imei, Category.Music).RemoveFolder("a\0b")) == Code.InvalidText, "zero character");
        Check(CodeOf(() => db.Phones.LastSync("000")) == Code.Failed, "unknown phone");
    }

    private static int PrintLayout()
    {
        foreach (Type record in typeof(Native).Assembly.GetTypes().Where(IsRecord))
        {
            Console.WriteLine(record.Name + " " + Marshal.SizeOf(record));
            foreach (FieldInfo field in record.GetFields(BindingFlags.Public | BindingFlags.Instance))
                Console.WriteLine(record.Name + "." + field.Name + " " + Marshal.OffsetOf(record, field.Name));
        }
        return 0;
    }

    private static bool IsRecord(Type type) => type.IsValueType && type.Namespace == typeof(Native).Namespace;

    /// The code of the exception that the call throws; null when it throws none.
    private static Code? CodeOf(Action call)
    {
        try
        {
            call();
        }
        catch (DatabaseException failure)
        {
            return failure.Code;
        }
        return null;
    }

    private static void Check(bool condition, string what)
    {
        if (condition) return;
        ++failures;
        Console.WriteLine("failed: " + what);
    }
}
