// A connection's files, watched: did the system fail in anything that SQLite asked of it? SQLite reports some failing
// reads as damage, and takes a journal that it failed to look for as one that is not there.
//
//   Witness witness;
//   db.open(path, witness);
//   ... statements ...
//   if (witness.sawFailure()) ...   // what the statements told of the file is not to be trusted
#pragma once

namespace kesta {

/// One at a time, under the access lock. Connections opened with it are closed before it goes.
class Witness {
public:
    Witness() noexcept;
    ~Witness();
    Witness(const Witness&) = delete;
    Witness& operator=(const Witness&) = delete;

    [[nodiscard]] bool sawFailure() const;
    /// The name under which SQLite knows it.
    [[nodiscard]] const char* vfsName() const;
};

}  // namespace kesta
