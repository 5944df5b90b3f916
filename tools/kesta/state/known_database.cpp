#include "state/known_database.h"

#include <algorithm>

#include "database/database_file.h"
#include "state/state_file.h"

namespace kesta {
namespace {

using nlohmann::json;

// No IMEI holds a blank, so that this is no phone's file. It is about all of them.
constexpr const char* kFile = "known database.json";
constexpr const char* kNoImei = "";

json Load()
{
    json state;
    (void)ReadStateFile(kFile, kNoImei, state);  // One that is damaged says nothing.
    return state;
}

std::vector<std::string> TextsOf(const json& state, const char* key)
{
    std::vector<std::string> texts;
    const auto found = state.find(key);
    if (found == state.end() || !found->is_array()) {
        return texts;
    }
    for (const json& text : *found) {
        if (text.is_string()) {
            texts.push_back(text.get<std::string>());
        }
    }
    return texts;
}

// std::nullopt if they cannot be read now.
std::optional<std::vector<std::string>> PhonesOfDatabase()
{
    SqliteFile database;
    std::vector<PhoneRow> rows;
    if (!database.open(DatabasePath(), SqliteFile::Access::kRead).ok() || !ReadPhoneRows(database, rows).ok()) {
        return std::nullopt;
    }
    std::vector<std::string> imeis;
    imeis.reserve(rows.size());
    for (PhoneRow& row : rows) {
        imeis.push_back(std::move(row.imei));
    }
    return imeis;
}

std::vector<std::string> NotAmong(const std::vector<std::string>& some, const std::vector<std::string>& all)
{
    std::vector<std::string> others;
    std::copy_if(some.begin(), some.end(), std::back_inserter(others),
                 [&](const std::string& text) { return std::find(all.begin(), all.end(), text) == all.end(); });
    return others;
}

}  // namespace

DatabaseLoss FindDatabaseLoss()
{
    const json state = Load();
    DatabaseLoss loss;
    // One that nobody has taken note of yet may have been replaced long before it was filled.
    if (state.is_null() && !PhonesOfDatabase().value_or(std::vector<std::string>()).empty()) {
        return loss;
    }
    loss.replaced = NotAmong(ReplacedDatabases(), TextsOf(state, "replaced"));
    // The library has no way to remove a phone.
    if (const std::vector<std::string> known = TextsOf(state, "phones"); !known.empty()) {
        if (const auto phones = PhonesOfDatabase()) {
            loss.missingPhones = NotAmong(known, *phones);
        }
    }
    return loss;
}

os::Status RememberDatabase(const std::string& snapshot, const os::FileInfo& file)
{
    nlohmann::ordered_json state{{"snapshot", snapshot},
                                 {"size", file.size},
                                 {"seconds", file.modified.seconds},
                                 {"nanoseconds", file.modified.nanoseconds},
                                 {"replaced", ReplacedDatabases()},
                                 {"phones", PhonesOfDatabase().value_or(std::vector<std::string>())}};
    // Without it the next run makes a snapshot that it need not make.
    return WriteStateFile(kFile, kNoImei, std::move(state), StateFlush::kNothing);
}

bool IsAsInSnapshot(const std::string& snapshot, const os::FileInfo& file)
{
    const json state = Load();
    return state.is_object() && state.value("snapshot", json()) == snapshot &&
           state.value("size", json()) == file.size && state.value("seconds", json()) == file.modified.seconds &&
           state.value("nanoseconds", json()) == file.modified.nanoseconds;
}

}  // namespace kesta
