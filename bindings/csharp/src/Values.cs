// Texts, dates and lists on their way to the library and back.
using System;
using System.Collections.Generic;
using System.Runtime.InteropServices;
using KestaDb.Interop;

namespace KestaDb
{
    /// Texts of one call, as the library reads them. Dispose() frees them.
    internal sealed class Texts : IDisposable
    {
        private readonly List<IntPtr> texts = new List<IntPtr>();

        public IntPtr Add(string text)
        {
            IntPtr address = Marshal.StringToHGlobalUni(Plain(text));
            texts.Add(address);
            return address;
        }

        public IntPtr AddIdentifier(string text) => Add(Identifier(text));

        public void Dispose()
        {
            foreach (IntPtr text in texts) Marshal.FreeHGlobal(text);
            texts.Clear();
        }

        /// What may be passed on as a text.
        public static string Plain(string text)
        {
            if (text == null) throw new ArgumentNullException(nameof(text));
            if (text.IndexOf('\0') >= 0)
                throw new DatabaseException("A call with a text that holds a zero character", Code.InvalidText);
            return text;
        }

        /// A text that goes into statements without quotes: printable ASCII without an apostrophe.
        public static string Identifier(string text)
        {
            foreach (char c in Plain(text))
                if (c < ' ' || c > '~' || c == '\'')
                    throw new DatabaseException("A call with an identifier that is not ASCII without apostrophes",
                                                Code.InvalidText);
            return text;
        }

        /// Null is the empty text.
        public static string At(IntPtr address) =>
            address == IntPtr.Zero ? "" : Marshal.PtrToStringUni(address);
    }

    internal static class Dates
    {
        private const int Valid = 0, Null = 2;
        private static readonly DateTime DayZero = new DateTime(1899, 12, 30);

        /// Local time, to the second; null is the null date.
        public static DateValue From(DateTime? time)
        {
            if (time == null) return new DateValue { Status = Null };
            DateTime local = time.Value.Kind == DateTimeKind.Utc ? time.Value.ToLocalTime() : time.Value;
            long seconds = (long)Math.Floor((local - DayZero).TotalSeconds);
            long days = seconds >= 0 ? seconds / 86400 : -((-seconds + 86399) / 86400);
            double fraction = (seconds - days * 86400) / 86400.0;
            // The fraction runs forward in the day also where the day number is negative.
            return new DateValue { Days = days < 0 ? days - fraction : days + fraction, Status = Valid };
        }

        /// Null for a date that is not valid.
        public static DateTime? To(DateValue date)
        {
            if (date.Status != Valid || !(Math.Abs(date.Days) < 3e6)) return null;
            double day = Math.Truncate(date.Days);
            double seconds = Math.Round(Math.Abs(date.Days - day) * 86400);
            try
            {
                return DayZero.AddDays(day).AddSeconds(seconds);
            }
            catch (ArgumentOutOfRangeException)
            {
                return null;
            }
        }
    }

    internal static class Lists
    {
        /// Names no phone and no folder: asking for something of it makes the library take back what a list holds.
        public const string Unknown = "no such";

        private static readonly object MainFoldersLock = new object();
        private static MainFolderList mainFolders;  // no argument makes the library empty it

        /// Another process may add a row between the library's count and its query; the list is then asked for again.
        public static void Read(string call, Func<int> read)
        {
            int result = read();
            for (int again = 0; result == (int)Code.MoreRows && again < 10; ++again) result = read();
            Result.Require(call, result);
        }

        /// Reads a list whose count may break off without a word: an empty one is believed only when it is empty once more
        /// after other rows could be read.
        public static void ReadCounted(string call, Func<int> read, Func<int> count)
        {
            Read(call, read);
            if (count() != 0) return;
            RequireReadable(call);
            Read(call, read);
        }

        /// Throws unless rows that every database has can be read now.
        public static void RequireReadable(string call) => MainFolders(call, record => true);

        public static IReadOnlyList<T> MainFolders<T>(string call, Func<MainFolderRecord, T> convert)
        {
            lock (MainFoldersLock)
            {
                Read(call, () => Native.DB_LIB_GetAllMainFolders(ref mainFolders));
                if (mainFolders.Count == 0) throw new DatabaseException(call, Code.Unreadable);
                return Convert(mainFolders.Count, mainFolders.Items, convert);
            }
        }

        public static T At<T>(IntPtr items, int index) =>
            (T)Marshal.PtrToStructure(items + index * Marshal.SizeOf(typeof(T)), typeof(T));

        public static IReadOnlyList<TValue> Convert<TRecord, TValue>(int count, IntPtr items, Func<TRecord, TValue> convert)
        {
            var values = new TValue[count];
            for (int i = 0; i < count; ++i) values[i] = convert(At<TRecord>(items, i));
            return values;
        }
    }
}
