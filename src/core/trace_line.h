// One line of the debug trace while it is being made. Short lines stay on the stack; a line for which memory runs out
// is not sent.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "core/dates.h"
#include "core/format.h"

namespace kesta {

class TraceLine {
public:
    TraceLine() = default;
    TraceLine(const TraceLine&) = delete;
    TraceLine& operator=(const TraceLine&) = delete;

    void literal(std::string_view text) noexcept;
    void put(const Name& name) noexcept { literal(name.text); }
    void put(const Plain& text) noexcept;
    void put(const Ansi& text) noexcept { put(Plain{text.text}); }
    void put(const Escaped& text) noexcept;
    void put(const DateText& date) noexcept { literal(date.view()); }
    void put(const LocaleDate& date) noexcept;
    template <class... Args>
    void put(const Formatted<Args...>& text) noexcept
    {
        text.write(*this);
    }
    void put(const Address& address) noexcept;
    void put(int32_t number) noexcept { put(int64_t{number}); }
    void put(int64_t number) noexcept;

    void send() noexcept;

private:
    bool reserve(size_t units) noexcept;
    void append(const DbChar* text, size_t units) noexcept;

    static constexpr size_t kShortLine = 512;

    DbChar short_[kShortLine];
    std::unique_ptr<DbChar[]> long_;
    DbChar* text_ = short_;
    size_t length_ = 0;
    size_t room_ = kShortLine;
    bool lost_ = false;
};

}  // namespace kesta
