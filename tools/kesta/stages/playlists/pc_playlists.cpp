#include "stages/playlists/pc_playlists.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>

#include "base/text.h"
#include "formats/ascii.h"
#include "formats/charset.h"
#include "os/local_time.h"

namespace kesta {
namespace {

// A list of a hundred thousand entries takes about ten megabytes. What is larger is no list.
constexpr uint64_t kLargestList = 64'000'000;

std::string StemOf(const std::string& fileName)
{
    return fileName.substr(0, fileName.rfind('.'));
}

// Players often save a list in several formats, as .m3u and as .m3u8, say. The one that is read best gets the name.
std::map<std::string, std::string> NamesOf(std::vector<std::string> files)
{
    std::sort(files.begin(), files.end(), [&](const std::string& a, const std::string& b) {
        return std::pair(formats::RankOfFormat(a), a) < std::pair(formats::RankOfFormat(b), b);
    });
    std::map<std::string, std::string> fileOfName;
    for (const std::string& file : files) {
        if (!fileOfName.emplace(StemOf(file), file).second) {
            fileOfName.emplace(file, file);
        }
    }
    return fileOfName;
}

std::string Native(std::string path)
{
    std::replace(path.begin(), path.end(), '/', os::kSeparator);
    return path;
}

// Whether the system has paths of that kind at all: elsewhere "C:/a.mp3" would be a file in the current folder.
bool HasPath(formats::LocationKind kind)
{
    if (kind == formats::LocationKind::kRelative) {
        return true;
    }
    return (kind == formats::LocationKind::kAbsolute) == (os::kSeparator == '/');
}

// What a list may mean by an entry, best first: some players write names as in a URL, others pad lines with blanks. A
// file that is there by the name as it stands is what is meant.
std::vector<formats::Location> Candidates(const formats::Location& location)
{
    std::vector<formats::Location> candidates{location};
    const std::string trimmed(formats::Trimmed(location.text));
    for (const std::string& text : {trimmed, formats::FromUtf8OrLatin1(formats::HexDecoded(location.text, '%')),
                                    formats::FromUtf8OrLatin1(formats::HexDecoded(trimmed, '%'))}) {
        const auto other = formats::ParseLocation(text);
        const bool isNew = other && other->kind != formats::LocationKind::kUrl &&
                           std::find(candidates.begin(), candidates.end(), *other) == candidates.end();
        if (isNew) {
            candidates.push_back(*other);
        }
    }
    return candidates;
}

class ListReader {
public:
    ListReader(PcPlaylists& result, std::string folder) : result_(result), folder_(std::move(folder)) {}

    void read(const std::string& name, const std::string& file)
    {
        PcPlaylist list;
        list.name = name;
        list.path = os::Join(folder_, file);
        list.title = name;
        std::string text;
        if (os::Status status = os::ReadTextOf("a playlist", kLargestList, list.path, text); !status.ok()) {
            result_.problems.push_back({list.path, "it cannot be read: " + status.text()});
            list.readable = list.complete = false;
        } else {
            formats::Playlist parsed = formats::ParsePlaylistFile(file, text);
            list.complete = parsed.problems.empty();
            for (const formats::Problem& problem : parsed.problems) {
                report(list, problem.line, problem.text);
            }
            if (!parsed.title.empty()) {
                list.title = parsed.title;
            }
            for (formats::PlaylistEntry& entry : parsed.entries) {
                list.members.push_back(resolve(list, std::move(entry)));
            }
        }
        result_.lists.push_back(std::move(list));
    }

private:
    void report(const PcPlaylist& list, size_t line, const std::string& text)
    {
        result_.problems.push_back({list.path, line == 0 ? text : fmt::format("line {}: {}", line, text)});
    }

    ListMember resolve(const PcPlaylist& list, formats::PlaylistEntry entry)
    {
        ListMember member;
        member.entry = std::move(entry);
        if (member.isUrl()) {
            return member;
        }
        const formats::Location location = find(member.entry.location);
        member.path = member.namedPath = Native(*formats::PathOf(location, folder_));
        if (!HasPath(location.kind)) {
            report(list, member.entry.line, fmt::format("{} is a path of another system", location.text));
            return member;
        }
        os::FileInfo info;
        os::Status status = os::ReadInfo(member.path, info);
        if (status.ok() && info.kind != os::FileKind::kFile) {
            status = {os::Failure::kOther, "it is not a file"};
        }
        std::string canonical;
        if (status.ok()) {
            status = os::CanonicalPath(member.path, canonical);
        }
        if (status.ok() && !IsValidUtf8(canonical)) {
            status = {os::Failure::kOther, "its path is not valid text"};
        }
        if (!status.ok()) {
            member.path = withoutFile(member.path);
            for (const formats::Location& other : Candidates(location)) {
                member.otherPaths.push_back(withoutFile(Native(*formats::PathOf(other, folder_))));
            }
            report(list, member.entry.line, fmt::format("{}: {}", member.path, status.text()));
            return member;
        }
        member.path = std::move(canonical);
        member.found = true;
        member.size = info.size;
        member.modified = info.modified;
        member.localTime = os::ToLocalTime(info.modified.seconds);
        return member;
    }

    // As it is meant, as far as that shows; else as it stands there.
    [[nodiscard]] formats::Location find(const formats::Location& named) const
    {
        for (const formats::Location& location : Candidates(named)) {
            os::FileInfo info;
            if (HasPath(location.kind) && os::ReadInfo(Native(*formats::PathOf(location, folder_)), info).ok() &&
                info.kind == os::FileKind::kFile) {
                return location;
            }
        }
        return named;
    }

    // A missing file's path as it was when the file was there, as far as its folder still is.
    static std::string withoutFile(const std::string& path)
    {
        std::string folder;
        if (os::CanonicalPath(os::ParentOf(path), folder).ok()) {
            return os::Join(folder, os::NameOf(path));
        }
        return os::AbsolutePath(path);
    }

    PcPlaylists& result_;
    std::string folder_;
};

}  // namespace

PcPlaylists ReadPlaylists(const std::string& folder, const std::function<bool()>& keepGoing)
{
    PcPlaylists result;
    std::vector<os::DirectoryEntry> entries;
    if (os::Status status = os::ListDirectory(folder, entries); !status.ok()) {
        result.problems.push_back({folder, "the folder cannot be read: " + status.text()});
        return result;
    }
    result.found = true;
    std::vector<std::string> files;
    for (const os::DirectoryEntry& entry : entries) {
        if (!formats::IsPlaylistName(entry.name)) {
            result.otherFormats += formats::IsOtherPlaylistName(entry.name) ? 1u : 0u;
            continue;
        }
        os::FileInfo info;
        const std::string path = os::Join(folder, entry.name);
        if (!entry.valid) {
            result.problems.push_back({path, "the name is not valid text"});
        } else if (!os::ReadInfo(path, info).ok() || info.kind != os::FileKind::kDirectory) {
            files.push_back(entry.name);
        }
    }
    ListReader reader(result, folder);
    for (const auto& [name, file] : NamesOf(std::move(files))) {
        if (!keepGoing()) {
            break;
        }
        reader.read(name, file);
    }
    return result;
}

}  // namespace kesta
