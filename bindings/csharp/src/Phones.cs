// The registry of phones, how each is set up, and which main folders it takes part in.
using System;
using System.Collections.Generic;
using System.Linq;
using KestaDb.Interop;

namespace KestaDb
{
    public enum MainFolder
    {
        Music = 1000,
        Gallery = 1100,
        Documents = 1400,
        Contacts = 1500,
        Calendar = 1600,
        Bookmarks = 1900,
        Map = 2200
    }

    /// <summary>What the database holds of one main folder, whichever the phone.</summary>
    public sealed class MainFolderFigures
    {
        public MainFolder Folder { get; internal set; }
        public int Items { get; internal set; }
        public long Size { get; internal set; }
        public string Setting { get; internal set; }
        public bool Changed { get; internal set; }
    }

    /// <summary>How a phone is set up. What the library leaves to its callers' own numbers is left so here.</summary>
    public sealed class Phone
    {
        public string Imei { get; set; }
        public string Name { get; set; } = "";
        public string PhotoPath { get; set; } = "";
        public string DocPath { get; set; } = "";
        public string WifiMac { get; set; } = "";
        public bool AutoSync { get; set; }
        public bool AutoBackup { get; set; }
        public bool AllowWifi { get; set; } = true;
        public int ContactPreferSide { get; set; } = 2;
        public int CalendarPreferSide { get; set; } = 2;
        public int ContactProgram { get; set; }
        public int CalendarProgram { get; set; }
        public int CalendarPeriod { get; set; }
        public string CalendarPeriodText { get; set; } = "";
        public DateTime? CalendarStart { get; set; }
        public DateTime? CalendarEnd { get; set; }
        public int BookmarkType { get; set; } = 1;
        public bool SyncDocFromFolder { get; set; }
        public bool SyncDocFromPhone { get; set; } = true;
        public bool SyncPhotoFromFolder { get; set; }
        public bool SyncPhotoFromPhone { get; set; } = true;
        public bool SyncMusicFromFolder { get; set; }
        public bool SyncMusicFromPlayer { get; set; }
        public bool SyncMusicAll { get; set; } = true;
        /// <summary>Written by SetLastSync alone.</summary>
        public bool NeedMount { get; set; } = true;
        public string ContactFolder { get; set; } = "";
        public string CalendarFolder { get; set; } = "";
        public string ContactProfile { get; set; } = "";
        public string CalendarProfile { get; set; } = "";
    }

    /// <summary>The phones that this PC has met.</summary>
    public sealed class Phones
    {
        private static readonly object ListLock = new object();
        private static PhoneList list;  // no argument makes the library empty it: one for the whole program

        internal Phones() { }

        /// <summary>Registers the phone unless it is known, and returns its number. A known one keeps its name.</summary>
        public int Announce(string imei, string name)
        {
            int number = Native.DB_LIB_PhoneDetected(Texts.Identifier(imei), Texts.Plain(name));
            if (number < 1) throw new DatabaseException("DB_LIB_PhoneDetected", Code.Failed);
            return number;
        }

        /// <summary>Null if the phone is not known.</summary>
        public Phone Find(string imei)
        {
            Phone phone = Read(imei);
            if (phone != null) return phone;
            Lists.RequireReadable("DB_LIB_GetPhoneSetting");
            return Read(imei);
        }

        public IReadOnlyList<Phone> All()
        {
            IReadOnlyList<string> imeis;
            lock (ListLock)
            {
                Lists.ReadCounted("DB_LIB_GetAllPhones", () => Native.DB_LIB_GetAllPhones(ref list), () => list.Count);
                imeis = Lists.Convert<PhoneSettingRecord, string>(list.Count, list.Items, record => Texts.At(record.IMEI));
            }
            // One by one, for the list leaves some fields out. Another program may have stored an IMEI that cannot be
            // asked for.
            return imeis.Select(imei => IsIdentifier(imei) ? Find(imei) : new Phone { Imei = imei })
                .Where(phone => phone != null).ToArray();
        }

        /// <summary>Writes what differs from what is stored; the rest keeps its value to the letter. NeedMount is not
        /// written.</summary>
        public void Update(Phone phone)
        {
            var record = new PhoneSettingRecord();
            using (var texts = new Texts())
            {
                try
                {
                    Result.Require("DB_LIB_GetPhoneSetting",
                                   Native.DB_LIB_GetPhoneSetting(Texts.Identifier(phone.Imei), ref record));
                    Phone before = ToPhone(record);
                    PhoneSettingRecord after = record;
                    // Null leaves the column as it is.
                    Func<string, string, IntPtr> text = (old, now) => now == old ? IntPtr.Zero : texts.Add(now);
                    // A number other than 0 and 1 stays as it is.
                    Func<int, bool, int> truth = (old, now) => (old != 0) == now ? old : now ? 1 : 0;
                    after.Name = text(before.Name, phone.Name);
                    after.PhotoPath = text(before.PhotoPath, phone.PhotoPath);
                    after.DocPath = text(before.DocPath, phone.DocPath);
                    after.WifiMAC = text(before.WifiMac, phone.WifiMac);
                    after.AutoSync = truth(record.AutoSync, phone.AutoSync);
                    after.AutoBackup = truth(record.AutoBackup, phone.AutoBackup);
                    after.AllowWifi = truth(record.AllowWifi, phone.AllowWifi);
                    after.ContactPreferSide = phone.ContactPreferSide;
                    after.CalendarPreferSide = phone.CalendarPreferSide;
                    after.ContactPim = phone.ContactProgram;
                    after.CalPim = phone.CalendarProgram;
                    after.CalPeriod = phone.CalendarPeriod;
                    after.CalPeriodStr = text(before.CalendarPeriodText, phone.CalendarPeriodText);
                    after.CalStart = Dates.From(phone.CalendarStart);
                    after.CalEnd = Dates.From(phone.CalendarEnd);
                    after.BookMarkType = phone.BookmarkType;
                    after.SyncDocFromFolder = truth(record.SyncDocFromFolder, phone.SyncDocFromFolder);
                    after.SyncDocFromPhone = truth(record.SyncDocFromPhone, phone.SyncDocFromPhone);
                    after.SyncPhotoFromFolder = truth(record.SyncPhotoFromFolder, phone.SyncPhotoFromFolder);
                    after.SyncPhotoFromPhone = truth(record.SyncPhotoFromPhone, phone.SyncPhotoFromPhone);
                    after.SyncMusicFromFolder = truth(record.SyncMusicFromFolder, phone.SyncMusicFromFolder);
                    after.SyncMusicFromPlayer = truth(record.SyncMusicFromPlayer, phone.SyncMusicFromPlayer);
                    after.SyncMusicAll = truth(record.SyncMusicAll, phone.SyncMusicAll);
                    after.ContactFolderId = text(before.ContactFolder, phone.ContactFolder);
                    after.CalendarFolderId = text(before.CalendarFolder, phone.CalendarFolder);
                    after.ContactProfile = text(before.ContactProfile, phone.ContactProfile);
                    after.CalendarProfile = text(before.CalendarProfile, phone.CalendarProfile);
                    Result.Require("DB_LIB_SetPhoneSetting", Native.DB_LIB_SetPhoneSetting(ref after));
                }
                finally
                {
                    Native.DB_LIB_GetPhoneSetting(Lists.Unknown, ref record);  // gives the texts back
                }
            }
        }

        /// <summary>Null if the phone has not been synced yet. The phone must be known.</summary>
        public DateTime? LastSync(string imei)
        {
            var time = new DateValue();
            Result.Require("DB_LIB_GetLastSyncTime", Native.DB_LIB_GetLastSyncTime(Texts.Identifier(imei), ref time));
            return Dates.To(time);
        }

        public void SetLastSync(string imei, DateTime time, int errorCode = 0, bool needMount = true)
        {
            DateValue date = Dates.From(time);
            Result.Require("DB_LIB_SetLastSyncTime", Native.DB_LIB_SetLastSyncTime(Texts.Identifier(imei), ref date,
                                                                                  errorCode, needMount ? 1 : 0));
        }

        /// <summary>A folder of which nothing is stored for the phone counts as selected.</summary>
        public bool IsSelected(string imei, MainFolder folder) =>
            Native.DB_LIB_IsFolderSelected(Texts.Identifier(imei), (int)folder) != 0;

        public void Select(string imei, MainFolder folder, bool selected) =>
            Result.Require("DB_LIB_SetFolderSelected", Native.DB_LIB_SetFolderSelected(Texts.Identifier(imei), (int)folder,
                                                                                      selected ? 1 : 0));

        /// <summary>Forgets which files have been synced, of all categories and playlists.</summary>
        public void ForgetSyncedFiles(string imei) =>
            Result.Require("DB_LIB_ClearSyncHistory", Native.DB_LIB_ClearSyncHistory(Texts.Identifier(imei)));

        public IReadOnlyList<MainFolderFigures> MainFolders() =>
            Lists.MainFolders("DB_LIB_GetAllMainFolders", record => new MainFolderFigures
            {
                Folder = (MainFolder)record.ID,
                Items = record.Number,
                Size = record.Size,
                Setting = Texts.At(record.Setting),
                Changed = record.Changed != 0
            });

        private static bool IsIdentifier(string text) => text.All(c => c >= ' ' && c <= '~' && c != '\'');

        private static Phone Read(string imei)
        {
            var record = new PhoneSettingRecord();
            try
            {
                return Native.DB_LIB_GetPhoneSetting(Texts.Identifier(imei), ref record) == 0 ? ToPhone(record) : null;
            }
            finally
            {
                Native.DB_LIB_GetPhoneSetting(Lists.Unknown, ref record);  // gives the texts back
            }
        }

        private static Phone ToPhone(PhoneSettingRecord record) => new Phone
        {
            Imei = Texts.At(record.IMEI),
            Name = Texts.At(record.Name),
            PhotoPath = Texts.At(record.PhotoPath),
            DocPath = Texts.At(record.DocPath),
            WifiMac = Texts.At(record.WifiMAC),
            AutoSync = record.AutoSync != 0,
            AutoBackup = record.AutoBackup != 0,
            AllowWifi = record.AllowWifi != 0,
            ContactPreferSide = record.ContactPreferSide,
            CalendarPreferSide = record.CalendarPreferSide,
            ContactProgram = record.ContactPim,
            CalendarProgram = record.CalPim,
            CalendarPeriod = record.CalPeriod,
            CalendarPeriodText = Texts.At(record.CalPeriodStr),
            CalendarStart = Dates.To(record.CalStart),
            CalendarEnd = Dates.To(record.CalEnd),
            BookmarkType = record.BookMarkType,
            SyncDocFromFolder = record.SyncDocFromFolder != 0,
            SyncDocFromPhone = record.SyncDocFromPhone != 0,
            SyncPhotoFromFolder = record.SyncPhotoFromFolder != 0,
            SyncPhotoFromPhone = record.SyncPhotoFromPhone != 0,
            SyncMusicFromFolder = record.SyncMusicFromFolder != 0,
            SyncMusicFromPlayer = record.SyncMusicFromPlayer != 0,
            SyncMusicAll = record.SyncMusicAll != 0,
            NeedMount = record.NeedMount != 0,
            ContactFolder = Texts.At(record.ContactFolderId),
            CalendarFolder = Texts.At(record.CalendarFolderId),
            ContactProfile = Texts.At(record.ContactProfile),
            CalendarProfile = Texts.At(record.CalendarProfile)
        };
    }
}
