// Announces a phone, records a synced folder, lists it, and takes a playlist through its life. In C#.
using System;
using System.Collections.Generic;
using KestaDb;

internal static class Example
{
    private const string Imei = "356938035643809";

    private static void ShowPlaylists(Playlists lists)
    {
        IReadOnlyList<Playlist> all = lists.All();
        foreach (Playlist list in all) Console.WriteLine("playlist " + list.Name + ": state " + (int)list.State);
        if (all.Count == 0) Console.WriteLine("no playlists");
    }

    private static void Main()
    {
        var db = new Database();
        db.Phones.Announce(Imei, "Ann's phone");

        Media music = db.Media(Imei, Category.Music);
        music.AddFolder(new Folder { Path = "/home/ann/Music", Count = 1, Size = 4000000 });
        music.AddFile(new SyncedFile
        {
            Path = "/home/ann/Music/song.mp3", BasePath = "/home/ann/Music", PhonePath = "Music/song.mp3",
            Modified = new DateTime(2024, 2, 29, 12, 0, 0)
        });
        foreach (SyncedFile file in music.Files()) Console.WriteLine(file.Path + " -> " + file.PhonePath);

        Playlists lists = db.Playlists(Imei);
        lists.BeginConfirming();
        lists.Confirm(new Playlist { Name = "Party", Digest = "c0ffee", Count = 1 });
        lists.SetMembers("Party", new[] { "/home/ann/Music/song.mp3" });
        ShowPlaylists(lists);
        lists.SetAdded("Party", "42");
        ShowPlaylists(lists);
        foreach (string member in lists.Members("Party")) Console.WriteLine("  " + member);
        lists.Forget("Party");
        ShowPlaylists(lists);
        lists.SetDeleted("Party");
        ShowPlaylists(lists);
    }
}
