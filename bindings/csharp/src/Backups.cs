// The backups made of phones. A database made by the library has no table for them.
using System;
using System.Collections.Generic;
using KestaDb.Interop;

namespace KestaDb
{
    public sealed class Backup
    {
        public int Id { get; internal set; } = -1;
        /// <summary>On the PC; the key over all phones.</summary>
        public string Path { get; set; }
        public string PhonePath { get; set; } = "";
        public long Size { get; set; }
        public DateTime? Modified { get; set; }
    }

    /// <summary>Where the database has no table for backups, every call throws Failed or that table's SQLite code.</summary>
    public sealed class Backups
    {
        private delegate int Listing(ref BackupList list);

        internal Backups() { }

        /// <summary>Of one phone, which must be known.</summary>
        public IReadOnlyList<Backup> Of(string imei)
        {
            Texts.Identifier(imei);
            return Read((ref BackupList list) => Native.DB_BACKUP_GetPhoneBackups(imei, ref list));
        }

        /// <summary>Of all phones.</summary>
        public IReadOnlyList<Backup> All() => Read(Native.DB_BACKUP_GetAllBackups);

        /// <summary>Records the backup, or refreshes the record of that path, and returns its id.</summary>
        public int Add(string imei, Backup backup)
        {
            const int Refreshed = 183;
            using (var texts = new Texts())
            {
                var record = new BackupRecord
                {
                    bcID = -1, Size = backup.Size, ModifiedTime = Dates.From(backup.Modified),
                    Path = texts.Add(backup.Path), PhonePath = texts.Add(backup.PhonePath)
                };
                int result = Native.DB_BACKUP_AddBackup(Texts.Identifier(imei), ref record);
                if (result != Refreshed) Result.Require("DB_BACKUP_AddBackup", result);
                if (record.bcID == -1) throw new DatabaseException("DB_BACKUP_AddBackup", Code.NotStored);
                return record.bcID;
            }
        }

        public void Remove(int id) => Result.Require("DB_BACKUP_DeleteBackup", Native.DB_BACKUP_DeleteBackup(id));

        private static IReadOnlyList<Backup> Read(Listing read)
        {
            var list = new BackupList();
            try
            {
                Lists.ReadCounted("Listing backups", () => read(ref list), () => list.Count);
                return Lists.Convert<BackupRecord, Backup>(list.Count, list.Items, record => new Backup
                {
                    Id = record.bcID,
                    Path = Texts.At(record.Path),
                    PhonePath = Texts.At(record.PhonePath),
                    Size = record.Size,
                    Modified = Dates.To(record.ModifiedTime)
                });
            }
            finally
            {
                Native.DB_BACKUP_GetPhoneBackups(Lists.Unknown, ref list);
            }
        }
    }
}
