// What every command says when the database is not the one that the client knows.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kesta {

struct DatabaseNotice {
    std::string text;                // what has happened, and which snapshot there is
    std::string advice;              // the commands that help
    std::vector<std::string> files;  // what the library keeps of the former database
    /// Whether the library has replaced it, and there is something to go back to. Whoever has removed the database may
    /// mean to begin anew.
    bool isToStop = false;
};

/// std::nullopt if the database is the known one.
[[nodiscard]] std::optional<DatabaseNotice> FindDatabaseNotice();

}  // namespace kesta
