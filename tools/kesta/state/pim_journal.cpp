#include "state/pim_journal.h"

#include <nlohmann/json.hpp>

#include "base/names.h"
#include "state/client_folder.h"

namespace kesta {
namespace {

using nlohmann::json;

// No IMEI holds a blank, so that this is no other note's name.
std::string JournalPath(const std::string& imei)
{
    return os::Join(ClientFolder(), SafeName("pim of " + imei + ".json"));
}

json ToJson(const std::optional<LocalTime>& time)
{
    return time ? json(*time) : json(nullptr);
}

std::optional<LocalTime> TimeFrom(const json& value)
{
    return value.is_null() ? std::nullopt : std::optional(value.get<LocalTime>());
}

std::vector<PimLogRow> RowsFrom(const json& values)
{
    std::vector<PimLogRow> rows;
    for (const json& value : values)
        rows.push_back({value.at(0).get<std::string>(), value.at(1).get<std::string>(), TimeFrom(value.at(2)),
                        TimeFrom(value.at(3))});
    return rows;
}

}  // namespace

os::Status WritePimJournal(const std::string& imei, const PimJournal& journal)
{
    json text{{"imei", imei}, {"places", journal.places}};
    for (const PimKind kind : kPimKinds) {
        if (!journal.rowsOf(kind)) continue;
        json& rows = text[std::string(KeyOf(kind))] = json::array();
        for (const PimLogRow& row : *journal.rowsOf(kind))
            rows.push_back({row.guid, row.luid, ToJson(row.pcTime), ToJson(row.phoneTime)});
    }
    return WriteStateFile(JournalPath(imei), text.dump(-1, ' ', false, json::error_handler_t::replace) + "\n");
}

os::Status ReadPimJournal(const std::string& imei, std::optional<PimJournal>& journal)
{
    journal.reset();
    std::string text;
    if (os::Status status = os::ReadText(JournalPath(imei), text); !status.ok())
        return status.failure() == os::Failure::kMissing ? os::Status() : status;
    try {
        const json read = json::parse(text);
        PimJournal found;
        found.places = read.at("places").get<std::set<std::string>>();
        for (const PimKind kind : kPimKinds)
            if (const auto rows = read.find(KeyOf(kind)); rows != read.end()) found.rowsOf(kind) = RowsFrom(*rows);
        // Case-insensitive file systems may give another phone's.
        if (read.at("imei").get<std::string>() == imei) journal = std::move(found);
    } catch (const json::exception& failure) {
        return {os::Failure::kOther, std::string("it is damaged: ") + failure.what()};
    }
    return {};
}

os::Status RemovePimJournal(const std::string& imei)
{
    os::Status status = os::RemoveFile(JournalPath(imei));
    return status.failure() == os::Failure::kMissing ? os::Status() : status;
}

}  // namespace kesta
