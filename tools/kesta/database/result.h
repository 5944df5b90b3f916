// How a call of the library ended.
#pragma once

#include <cstdint>
#include <string>

namespace kesta {

/// A method that returns one leaves it to the caller what follows from it.
class [[nodiscard]] Result {
public:
    Result() = default;
    Result(int32_t code) : code_(code) {}  // NOLINT(google-explicit-constructor): what the exports return

    [[nodiscard]] bool ok() const { return code_ == 0; }
    [[nodiscard]] int32_t code() const { return code_; }
    /// The statement with the texts in it is longer than the library takes: the matter of that one record.
    [[nodiscard]] bool isTooLong() const { return code_ == kTooLong; }
    /// A row with that key is there, or the row was refused for another reason: the library does not tell these apart.
    [[nodiscard]] bool isRecordedAlready() const { return code_ == kRecordedAlready; }
    /// Another process has added a row between the library's count and its query: the list is to be asked for again.
    [[nodiscard]] bool isOneRowTooMany() const { return code_ == kOneRowTooMany; }
    /// What it means, in words.
    [[nodiscard]] std::string text() const;

private:
    static constexpr int32_t kTooLong = 18;
    static constexpr int32_t kRecordedAlready = 19;
    static constexpr int32_t kOneRowTooMany = 100;

    int32_t code_ = 0;
};

}  // namespace kesta
