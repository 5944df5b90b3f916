// .xspf: <track> with <location>, <title>, <creator> and <duration> in milliseconds. Locations are URLs.
#include <charconv>

#include "formats/ascii.h"
#include "formats/markup.h"
#include "formats/playlist_builder.h"

namespace kesta::formats {
namespace {

class XspfReader {
public:
    Playlist run(std::string_view file) &&
    {
        const std::string text = MarkupText(file);
        MarkupReader reader(text);
        while (const auto part = reader.next()) {
            switch (part->kind) {
                case MarkupPart::Kind::kBegin:
                    begin(*part);
                    break;
                case MarkupPart::Kind::kEnd:
                    end(part->name);
                    break;
                case MarkupPart::Kind::kText:
                    text_ += part->text;
                    break;
            }
        }
        if (inTrack_) {
            playlist_.problems.push_back({entry_.line, "a track without its end"});
        }
        if (!isPlaylist_) {
            playlist_.problems.push_back({0, "not an XSPF playlist"});
        }
        return std::move(playlist_);
    }

private:
    void begin(const MarkupPart& tag)
    {
        text_.clear();
        isPlaylist_ = isPlaylist_ || tag.name == "PLAYLIST";
        if (tag.name == "TRACK") {
            inTrack_ = true;
            location_.clear();
            creator_.clear();
            entry_ = {};
            entry_.line = tag.line;
        }
    }

    void end(const std::string& name)
    {
        const std::string value = OneLine(text_);
        text_.clear();
        if (name == "TRACK") {
            endTrack();
        } else if (!inTrack_) {
            playlist_.title = name == "TITLE" && playlist_.title.empty() ? value : playlist_.title;
        } else if (name == "LOCATION") {
            location_ = location_.empty() ? value : location_;  // further ones are the same elsewhere
        } else if (name == "TITLE") {
            entry_.title = value;
        } else if (name == "CREATOR") {
            creator_ = value;
        } else if (name == "DURATION") {
            int64_t milliseconds = 0;
            const auto [stop, error] = std::from_chars(value.data(), value.data() + value.size(), milliseconds);
            if (error == std::errc() && milliseconds >= 0 && milliseconds < int64_t{1} << 31) {
                entry_.seconds = static_cast<int>(milliseconds / 1000);
            }
        }
    }

    void endTrack()
    {
        if (!inTrack_) {
            return;
        }
        inTrack_ = false;
        if (!creator_.empty() && !entry_.title.empty()) {
            entry_.title = creator_ + " - " + entry_.title;
        }
        AddEntry(playlist_, location_, true, std::move(entry_));
    }

    Playlist playlist_;
    PlaylistEntry entry_;
    std::string location_, creator_, text_;
    bool inTrack_ = false, isPlaylist_ = false;
};

}  // namespace

Playlist ReadXspf(std::string_view file)
{
    return XspfReader().run(file);
}

}  // namespace kesta::formats
