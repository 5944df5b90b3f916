// .asx: <entry> with <ref href="...">, <title> and <duration value="h:mm:ss">.
#include <charconv>

#include "formats/ascii.h"
#include "formats/markup.h"
#include "formats/playlist_builder.h"

namespace kesta::formats {
namespace {

/// "1:02:03", "02:03.5"; std::nullopt if it is something else.
std::optional<int> SecondsOf(std::string_view value)
{
    constexpr int kMost = 1'000'000;
    int seconds = 0;
    for (;;) {
        int number = 0;
        const auto [stop, error] = std::from_chars(value.data(), value.data() + value.size(), number);
        if (error != std::errc() || number < 0 || number > kMost || seconds > kMost) {
            return {};
        }
        seconds = seconds * 60 + number;
        value.remove_prefix(static_cast<size_t>(stop - value.data()));
        if (value.empty() || value.front() != ':') {
            return seconds;
        }
        value.remove_prefix(1);
    }
}

class AsxReader {
public:
    Playlist run(std::string_view file) &&
    {
        const std::string text = MarkupText(file);
        MarkupReader reader(text);
        while (const auto part = reader.next()) {
            if (part->kind == MarkupPart::Kind::kBegin) {
                begin(*part);
            } else if (part->kind == MarkupPart::Kind::kEnd) {
                end(part->name);
            } else {
                text_ += part->text;
            }
        }
        endEntry();
        if (!isPlaylist_) {
            playlist_.problems.push_back({0, "not an ASX playlist"});
        }
        return std::move(playlist_);
    }

private:
    void begin(const MarkupPart& tag)
    {
        text_.clear();
        isPlaylist_ = isPlaylist_ || tag.name == "ASX";
        if (tag.name == "ENTRY") {
            endEntry();
            inEntry_ = true;
            entry_.line = tag.line;
        } else if (tag.name == "REF" && inEntry_ && location_.empty()) {
            location_ = tag.attribute("HREF");  // further ones are tried when it fails
        } else if (tag.name == "DURATION" && inEntry_) {
            entry_.seconds = SecondsOf(tag.attribute("VALUE"));
        } else if (tag.name == "ENTRYREF") {
            playlist_.problems.push_back({tag.line, "refers to another list, which is not followed"});
        }
    }

    void end(const std::string& name)
    {
        const std::string value = OneLine(text_);
        text_.clear();
        if (name == "ENTRY") {
            endEntry();
        } else if (name == "TITLE" && inEntry_) {
            entry_.title = value;
        } else if (name == "TITLE" && playlist_.title.empty()) {
            playlist_.title = value;
        }
    }

    void endEntry()
    {
        if (inEntry_) {
            AddEntry(playlist_, location_, false, std::move(entry_));
        }
        inEntry_ = false;
        entry_ = {};
        location_.clear();
    }

    Playlist playlist_;
    PlaylistEntry entry_;
    std::string location_, text_;
    bool inEntry_ = false, isPlaylist_ = false;
};

}  // namespace

Playlist ReadAsx(std::string_view file)
{
    return AsxReader().run(file);
}

}  // namespace kesta::formats
