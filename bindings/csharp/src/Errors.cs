using System;

namespace KestaDb
{
    /// <summary>A result code of the library, or why the library was not asked at all.</summary>
    public enum Code
    {
        /// <summary>What was found is not all that there is: reading it broke off.</summary>
        Unreadable = -3,
        /// <summary>The library answered success, but the row is not as it was given.</summary>
        NotStored = -2,
        /// <summary>A text with a zero character, or one that must not stand in a statement.</summary>
        InvalidText = -1,
        /// <summary>Unknown phone, closed database, or a statement that failed.</summary>
        Failed = 1,
        Busy = 5,
        NoMemory = 7,
        ReadOnly = 8,
        IoError = 10,
        Damaged = 11,
        DiskFull = 13,
        TooLong = 18,
        Exists = 19,
        Refused = 23,
        MoreRows = 100,
        FileInTheWay = 8398
    }

    /// <summary>Every failure of this assembly.</summary>
    public sealed class DatabaseException : Exception
    {
        public DatabaseException(string call, Code code) : base(call + " failed: " + code) { Code = code; }

        public Code Code { get; }
    }

    internal static class Result
    {
        public static void Require(string call, int result)
        {
            if (result != 0) throw new DatabaseException(call, (Code)result);
        }

        /// True when it was recorded now, false when it was before.
        public static bool Added(string call, int result)
        {
            if (result == (int)Code.Exists) return false;
            Require(call, result);
            return true;
        }
    }
}
