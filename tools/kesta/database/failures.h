// What the user is told when the library fails.
#pragma once

#include <kesta_db/cpp/base.hpp>

#include <string>

namespace kesta {

/// "the database is damaged"
[[nodiscard]] std::string SentenceOf(kesta_db::Code code);
/// "DB_PIM_AddItem failed: the database is damaged"
[[nodiscard]] std::string TextOf(const kesta_db::Error& failure);

}  // namespace kesta
