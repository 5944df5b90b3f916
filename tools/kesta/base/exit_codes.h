// What the client's exit code tells. docs/client.md and --help list them too.
#pragma once

namespace kesta {

enum class ExitCode {
    kSuccess = 0,
    kFailure = 1,        // the command could not do its work
    kUsage = 2,          // the command line is wrong
    kIncomplete = 3,     // finished, but some files or folders failed
    kDeferred = 4,       // finished, but removals wait for --force
    kPhoneFull = 5,      // not enough space on the phone
    kPhoneReadOnly = 6,  // the phone cannot be written
    kAnotherSync = 7,    // another run holds this phone
    kDatabase = 8,       // the database cannot be read or written
    kPhoneGone = 9,      // the phone went away
    kNotThePhone = 10,   // the folder is not the phone that it should be
    kInterrupted = 130   // Ctrl-C or a request to end
};

}  // namespace kesta
