// Records with texts, as a caller holds them, and how their lists read in a test; what the trace says of memory.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "api/given.h"

namespace kesta::test {

/// An open database with a phone in it, whose number is 1.
class FamilyExports : public OpenDatabase {
protected:
    FamilyExports() { givenPhone(); }

    /// Changes the schema from outside. A statement compiled before the library notices would fail only when it is run,
    /// so a call makes it notice.
    void givenSchema(const std::string& statements)
    {
        sql.exec(statements);
        (void)lib.DB_LIB_IsFolderSelected(W(kImei), kMainFolderMusic);
        trace.take();
    }
};

class Playlist : public PlaylistRecord {
public:
    explicit Playlist(std::string_view name, std::string_view digest = "d1", std::string_view idInPhone = "P:/1")
        : PlaylistRecord{}, name_(name), digest_(digest), idInPhone_(idInPhone)
    {
        Name = name_.get();
        Digest = digest_.get();
        IdInPhone = idInPhone_.get();
        Type = 5;
        Count = 7;
        Size = 70'000'000'000;
        TotalSize = 700'000'000'000;
        Sized = 1;
    }
    Playlist(const Playlist&) = delete;
    Playlist& operator=(const Playlist&) = delete;

private:
    Text name_;
    Text digest_;
    Text idInPhone_;
};

class Bookmark : public BookmarkRecord {
public:
    explicit Bookmark(std::string_view url, std::string_view title = "A title", std::string_view phoneMid = "m1")
        : BookmarkRecord{}, title_(title), url_(url), phoneMid_(phoneMid)
    {
        Title = title_.get();
        Path = url_.get();
        PhoneMID = phoneMid_.get();
        Id = 11;
        Flag = 22;
    }
    Bookmark(const Bookmark&) = delete;
    Bookmark& operator=(const Bookmark&) = delete;

private:
    Text title_;
    Text url_;
    Text phoneMid_;
};

class Backup : public BackupRecord {
public:
    explicit Backup(std::string_view path, std::string_view phonePath = "P:/", int64_t size = 12'345'678'901,
                    const DateValue& modified = Date(2024, 2, 29, 12, 34, 56))
        : BackupRecord{}, path_(path), phonePath_(phonePath)
    {
        bcID = 77;
        Size = size;
        ModifiedTime = modified;
        Path = path_.get();
        PhonePath = phonePath_.get();
    }
    Backup(const Backup&) = delete;
    Backup& operator=(const Backup&) = delete;

private:
    Text path_;
    Text phonePath_;
};

class PimFolder : public PimFolderRecord {
public:
    explicit PimFolder(std::string_view pimId, std::string_view path = "Family", int32_t type = 1)
        : PimFolderRecord{}, pimId_(pimId), path_(path)
    {
        PimID = pimId_.get();
        Path = path_.get();
        Type = type;
    }
    PimFolder(const PimFolder&) = delete;
    PimFolder& operator=(const PimFolder&) = delete;

private:
    Text pimId_;
    Text path_;
};

class PimItem : public PimItemRecord {
public:
    explicit PimItem(std::string_view pimId, std::string_view data = "BEGIN", int32_t type = 1)
        : PimItemRecord{}, pimId_(pimId), data_(data.begin(), data.end())
    {
        PimID = pimId_.get();
        Type = type;
        DataLength = static_cast<int32_t>(data_.size());
        Data = data_.data();
    }
    PimItem(const PimItem&) = delete;
    PimItem& operator=(const PimItem&) = delete;

private:
    Text pimId_;
    std::vector<uint8_t> data_;
};

inline std::string ToString(const PlaylistRecord& playlist)
{
    return Utf8(playlist.Name) + "|" + Utf8(playlist.Digest) + "|" + Utf8(playlist.IdInPhone) + "|" +
           std::to_string(playlist.Type) + "|" + std::to_string(playlist.Flag) + "|" + std::to_string(playlist.Count) +
           "|" + std::to_string(playlist.Size) + "|" + std::to_string(playlist.TotalSize) + "|" +
           std::to_string(playlist.Selected) + "|" + std::to_string(playlist.Sized);
}

inline std::string ToString(const BookmarkRecord& bookmark)
{
    return Utf8(bookmark.Title) + "|" + Utf8(bookmark.Path) + "|" + Utf8(bookmark.PhoneMID) + "|" +
           std::to_string(bookmark.Id) + "|" + std::to_string(bookmark.Flag) + "|" + std::to_string(bookmark.Type);
}

inline std::string ToString(const BackupRecord& backup)
{
    return std::to_string(backup.bcID) + "|" + Utf8(backup.Path) + "|" + Utf8(backup.PhonePath) + "|" +
           std::to_string(backup.Size) + "|" + DateText(backup.ModifiedTime);
}

inline std::string ToString(const PimLogItem& item)
{
    return Utf8(item.Guid) + "|" + Utf8(item.Luid) + "|" + DateText(item.PCTime) + "|" + DateText(item.PhoneTime);
}

inline std::string ToString(const PimFolderRecord& folder)
{
    return Utf8(folder.PimID) + "|" + Utf8(folder.ParentPimID) + "|" + Utf8(folder.Path) + "|" +
           std::to_string(folder.Type);
}

inline std::string ToString(const PimItemRecord& item)
{
    const std::string data = item.Data == nullptr ? "<null>" : std::string(item.Data, item.Data + item.DataLength);
    return Utf8(item.PimID) + "|" + std::to_string(item.Type) + "|" + std::to_string(item.DataLength) + "|" + data;
}

/// Record for record what a list holds.
template <class List>
std::vector<std::string> Records(const List& list)
{
    std::vector<std::string> records;
    for (int32_t i = 0; i < list.Count; ++i) {
        records.push_back(ToString(list.Items[i]));
    }
    return records;
}

/// `count` lines "Memory NEW." after `lines`.
inline std::vector<std::string> WithNew(std::vector<std::string> lines, size_t count)
{
    lines.insert(lines.end(), count, "Memory NEW.");
    return lines;
}

/// The lines of an export without arguments in its entry line.
inline std::vector<std::string> Framed(const std::string& name, int result, std::vector<std::string> between = {})
{
    between.insert(between.begin(), "Enter " + name + "().");
    between.push_back("Exit " + name + "() with " + std::to_string(result) + ".");
    return between;
}

/// How many addresses the lines (taken with Addresses::kKept) leave alive. What is freed must have been alive, what is
/// new must not.
class AliveMemory {
public:
    size_t after(const std::vector<std::string>& lines)
    {
        for (const std::string& line : lines) {
            note(line);
        }
        return alive_.size();
    }

private:
    void note(const std::string& line)
    {
        if (!line.starts_with("Memory ")) {
            return;
        }
        const std::string address = line.substr(7, line.find(' ', 7) - 7);
        if (line.ends_with(" NEW.")) {
            EXPECT_TRUE(alive_.emplace(address, true).second) << line;
        } else {
            EXPECT_EQ(alive_.erase(address), 1u) << line;
        }
    }

    std::map<std::string, bool> alive_;
};

}  // namespace kesta::test
