// What a call does where it leaves the library, in its order: the access lock, the statements as SQLite receives them,
// the lines of the trace, and the end of a connection. The linker puts the recorder in front of those functions.
#pragma once

#include <string>
#include <vector>

namespace kesta::test {

class CallRecorder {
public:
    /// From here on what happens is noted: "lock", "unlock", "close", a statement to the character, or a line of the
    /// trace with its prefix "DB TRACE >> ". A statement that is run again without being compiled is noted too; one
    /// that stays compiled with the values bound to it.
    static void start();
    static std::vector<std::string> stop();

    /// SQLite refuses to compile the statement after the next `statements` ones; none for -1.
    static void refuseStatementAfter(int statements);

    /// The step after the next `steps` ones is not made and gives that code; none does for -1.
    static void endStepAfter(int steps, int code);

    /// The statement after the next `statements` ones finds no buffer to be made in; none does for -1.
    static void withholdBufferAfter(int statements);

    /// This statement gives `code` instead of being run; none does for the empty text.
    static void refuse(std::string statement, int code);
};

}  // namespace kesta::test
