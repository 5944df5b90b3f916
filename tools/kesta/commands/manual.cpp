#include "commands/manual.h"

#include <kesta_db/kesta_db.h>

#include <fmt/format.h>

#include "commands/command.h"

namespace kesta {
namespace {

// As roff takes it for text: hyphens that can be copied, no line that looks like a request.
std::string Roff(std::string_view text)
{
    std::string roff;
    bool atBegin = true;
    for (const char character : text) {
        if (atBegin && (character == '.' || character == '\'')) {
            roff += "\\&";
        }
        roff += character == '-' ? "\\-" : character == '\\' ? "\\e" : std::string(1, character);
        atBegin = character == '\n';
    }
    return roff;
}

std::string Heading(const std::string& page, const std::string& about)
{
    std::string upper = page;
    for (char& character : upper) {
        character = character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
    }
    return fmt::format(".TH {} 1 \"\" \"kesta {}\" \"User Commands\"\n.SH NAME\n{} \\- {}\n", upper, KESTA_DB_VERSION,
                       Roff(page), Roff(about));
}

std::string AsItIs(std::string_view text)
{
    return ".nf\n" + Roff(text) + (text.ends_with('\n') ? "" : "\n") + ".fi\n";
}

std::string Describe(const ListedOption& option)
{
    std::string names;
    for (const std::string& name : option.names) {
        names += (names.empty() ? "\\fB" : ", \\fB") + Roff(name) + "\\fR";
    }
    if (!option.type.empty()) {
        names += (names.empty() ? "\\fI" : " \\fI") + Roff(option.type) + "\\fR";
    }
    return ".TP\n" + names + "\n" + Roff(option.about) + "\n";
}

}  // namespace

std::string CommandManual(const ListedCommand& command)
{
    std::string page = Heading("kesta-" + command.name, command.about);
    page += fmt::format(".SH SYNOPSIS\n.B kesta {}\n.RI [ OPTIONS ]\n.SH OPTIONS\n", Roff(command.name));
    for (const ListedOption& option : command.options) {
        page += Describe(option);
    }
    const size_t codes = command.footer.find(kExitCodeHelp);
    page += ".SH EXAMPLES AND NOTES\n" + AsItIs(command.footer.substr(0, codes));
    page += ".SH EXIT STATUS\n" + AsItIs(kExitCodeHelp);
    return page + ".SH SEE ALSO\n.BR kesta (1)\n";
}

std::string MainManual(const std::vector<ListedCommand>& commands)
{
    std::string page = Heading("kesta", "bring a phone up to date with the PC");
    page +=
        ".SH SYNOPSIS\n.B kesta\n.I COMMAND\n.RI [ OPTIONS ]\n.SH DESCRIPTION\n.B kesta\ncopies folders, playlists, "
        "bookmarks, contacts and calendars to a phone that is mounted as a folder, records what is on it, and\nshows "
        "what is recorded.\n.SH COMMANDS\n";
    for (const ListedCommand& command : commands) {
        page += fmt::format(".TP\n.BR kesta\\-{} (1)\n{}\n", Roff(command.name), Roff(command.about));
    }
    page += ".SH EXIT STATUS\n" + AsItIs(kExitCodeHelp);
    page +=
        ".SH FILES\n.TP\n.I $XDG_DATA_HOME/NORVIK/NORVIK Sync/Database/KESTA_DB.s3db\nThe database;\n.I "
        "~/.local/share\nwithout that variable.\n.SH SEE ALSO\n";
    for (const ListedCommand& command : commands) {
        page += fmt::format(".BR kesta\\-{} (1){}\n", Roff(command.name), &command == &commands.back() ? "" : ",");
    }
    return page;
}

}  // namespace kesta
