// What a run tells to programs: one JSON object a line.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace kesta {

struct Event {
    const char* name = "";  // none: it is only told to people
    std::vector<std::pair<const char*, std::variant<std::string, uint64_t, bool>>> fields;
};

/// {"event":"copied","path":"Music/a.mp3"}, without an end of line.
[[nodiscard]] std::string JsonLine(const Event& event);

}  // namespace kesta
