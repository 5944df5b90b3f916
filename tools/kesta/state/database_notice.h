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
    /// By the library, which takes a file that it cannot use for none. Otherwise somebody has removed the database, and
    /// may mean to begin anew.
    bool isReplaced = false;
};

/// std::nullopt if the database is the known one.
[[nodiscard]] std::optional<DatabaseNotice> FindDatabaseNotice();

}  // namespace kesta
