#include "formats/vcard.h"

#include <utility>

#include "formats/ascii.h"
#include "formats/charset.h"
#include "formats/content_line.h"
#include "formats/digest.h"
#include "formats/entry_uids.h"
#include "formats/timestamp.h"

namespace kesta::formats {
namespace {

/// The given name first: prefix, given, further, family, suffix.
std::string SpokenName(const std::string& structured)
{
    const std::vector<std::string> parts = SplitUnescaped(structured, ';');
    std::string name;
    for (const size_t index : {3U, 1U, 2U, 0U, 4U}) {
        if (index >= parts.size()) {
            continue;
        }
        for (const std::string& value : SplitUnescaped(parts[index], ',')) {
            const std::string text = Unescaped(value);
            if (Trimmed(text).empty()) {
                continue;
            }
            if (!name.empty()) {
                name += ' ';
            }
            name += Trimmed(text);
        }
    }
    return name;
}

std::string Organisation(const std::string& structured)
{
    std::string name;
    for (const std::string& unit : SplitUnescaped(structured, ';')) {
        if (Trimmed(unit).empty()) {
            continue;
        }
        if (!name.empty()) {
            name += ", ";
        }
        name += Trimmed(Unescaped(unit));
    }
    return name;
}

/// The places a name is taken from, best first.
struct Names {
    std::string formatted, spoken, organisation, email;

    [[nodiscard]] std::string best() const
    {
        for (const std::string* name : {&formatted, &spoken, &organisation, &email}) {
            if (!name->empty()) {
                return *name;
            }
        }
        return {};
    }
};

void KeepFirst(std::string& kept, std::string_view found)
{
    if (kept.empty()) {
        kept = Trimmed(found);
    }
}

/// Reads one card out of its own bytes.
Card ReadCard(std::string_view bytes, std::string_view version, EntryUids& uids)
{
    Card card;
    card.version = version;
    card.bytes = bytes;
    Names names;
    std::string canonical;
    int depth = 0;  // a 2.1 card may hold another one, its agent's
    ContentLineReader reader(bytes, version == "2.1" ? Folding::kKeepBlank : Folding::kDropBlank);
    while (const auto line = reader.next()) {
        if (line->is("BEGIN", "VCARD")) {
            ++depth;
        }
        if (line->is("END", "VCARD")) {
            --depth;
        }
        if (line->name != "REV" && line->name != "PRODID") {
            AppendCanonical(canonical, *line);
        }
        if (depth != 1) {
            continue;
        }
        if (line->name == "UID") {
            KeepFirst(card.uid, TextValue(*line));
        }
        if (line->name == "FN") {
            KeepFirst(names.formatted, TextValue(*line));
        }
        if (line->name == "N") {
            KeepFirst(names.spoken, SpokenName(DecodedValue(*line)));
        }
        if (line->name == "ORG") {
            KeepFirst(names.organisation, Organisation(DecodedValue(*line)));
        }
        if (line->name == "EMAIL") {
            KeepFirst(names.email, TextValue(*line));
        }
        if (line->name == "REV" && !card.revised) {
            card.revised = ParseTimestamp(line->value);
        }
        if (line->name == "CATEGORIES") {
            for (const std::string& category : SplitUnescaped(DecodedValue(*line), ',')) {
                if (!Trimmed(category).empty()) {
                    card.categories.emplace_back(Trimmed(Unescaped(category)));
                }
            }
        }
    }
    card.name = names.best();
    card.digest = Digest(canonical);
    card.uidDerived = card.uid.empty();
    if (card.uidDerived) {
        card.uid = uids.derive(card.digest);
    }
    return card;
}

/// Finds where the cards of a file begin and end.
class CardFinder {
public:
    explicit CardFinder(std::string_view file) : file_(file) {}

    Cards run() &&
    {
        ContentLineReader reader(file_);
        while (const auto line = reader.next()) {
            take(*line);
        }
        if (depth_ > 0) {
            giveUp();
        }
        if (result_.cards.empty() && result_.problems.empty()) {
            result_.problems.push_back({0, "no card in the file"});
        }
        return std::move(result_);
    }

private:
    void take(const ContentLine& line)
    {
        if (line.is("BEGIN", "VCARD")) {
            takeBegin(line);
        } else if (depth_ == 0) {
            takeStray(line);
        } else if (line.is("END", "VCARD")) {
            takeEnd(line);
        } else if (line.name == "VERSION" && depth_ == 1 && version_.empty()) {
            version_ = Trimmed(line.value);
        }
        agentFollows_ = line.name == "AGENT" && Trimmed(line.value).empty();
    }

    void takeBegin(const ContentLine& line)
    {
        strayText_ = false;
        // A card within a card is its agent's, and stands right behind the line that says so.
        if (depth_ > 0 && !agentFollows_) {
            giveUp();
            depth_ = 0;
        }
        if (depth_++ > 0) {
            return;
        }
        begin_ = line.begin;
        beginLine_ = line.number;
        version_.clear();
    }

    void takeEnd(const ContentLine& line)
    {
        if (--depth_ > 0) {
            return;
        }
        Card card = ReadCard(file_.substr(begin_, line.end - begin_), version_, uids_);
        card.line = beginLine_;
        result_.cards.push_back(std::move(card));
    }

    /// One problem for as many lines as follow each other.
    void takeStray(const ContentLine& line)
    {
        if (!strayText_) {
            result_.problems.push_back({line.number, "text outside of any card"});
        }
        strayText_ = true;
    }

    void giveUp() { result_.problems.push_back({beginLine_, "the card has no end"}); }

    std::string_view file_;
    Cards result_;
    EntryUids uids_;
    int depth_ = 0;
    bool strayText_ = false;
    bool agentFollows_ = false;
    size_t begin_ = 0;
    size_t beginLine_ = 0;
    std::string version_;
};

}  // namespace

Cards ParseCards(std::string_view file)
{
    const std::string text = WithoutByteOrderMark(file);
    return CardFinder(text).run();
}

}  // namespace kesta::formats
