// The database file between inputs: what each of them starts with, put back without unloading the library.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

#include "support/library.h"

namespace kesta::test {

class Database {
public:
    /// Keeps what the library has just made, then fills it: through the library, and as other programs do.
    explicit Database(const Library& library);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    /// Puts the file of that number back: fresh, filled, or with values that no call stores.
    void restore(size_t which);

    /// Whether any lock is held on the file. Between calls there may be none: it would keep other programs out.
    [[nodiscard]] bool isLocked() const;

    static constexpr size_t kFiles = 3;

private:
    using Bytes = std::vector<uint8_t>;
    [[nodiscard]] Bytes read() const;

    int file_;
    Bytes files_[kFiles];
    size_t last_ = 0;
    uint32_t counter_ = 0;
};

}  // namespace kesta::test
