// What else the client needs of the operating system: arguments, clock, interrupts, the terminal.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kesta::os {

/// The program's arguments in UTF-8, without its own name.
std::vector<std::string> Arguments(int argc, char** argv);

/// Seconds since 1970, UTC.
int64_t Now();
/// The user's local calendar time as seconds since 30 December 1899; std::nullopt when the system cannot tell it.
std::optional<int64_t> LocalSeconds(int64_t utcSeconds);

/// As file systems that ignore case see the character.
char32_t UpperCase(char32_t character);
uint64_t RandomNumber();

/// The folder for the user's application data, where the library keeps its database too; empty when there is none.
std::string DataDirectory();
/// Creates the folder and those above it, for this user alone.
bool MakePrivateDirectories(const std::string& path);

/// From here on Ctrl-C and a request to end only set the flag that Interrupted() reads.
void CatchInterrupts();
bool Interrupted();

/// Makes standard output take UTF-8.
void PrepareOutput();
bool IsTerminal();
size_t TerminalWidth();

}  // namespace kesta::os
