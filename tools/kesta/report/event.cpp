#include "report/event.h"

#include <nlohmann/json.hpp>

namespace kesta {

std::string JsonLine(const Event& event)
{
    nlohmann::ordered_json json{{"event", event.name}};
    for (const auto& [key, field] : event.fields) {
        std::visit([&json, key = key](const auto& value) { json[key] = value; }, field);
    }
    // Paths of the PC need not be text.
    return json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

}  // namespace kesta
