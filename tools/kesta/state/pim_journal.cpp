#include "state/pim_journal.h"

#include "state/state_file.h"

namespace kesta {
namespace {

using nlohmann::json;

// No IMEI holds a blank, so that this is no other file's name.
std::string FileOf(const std::string& imei)
{
    return "pim of " + imei + ".json";
}

json ToJson(const std::optional<LocalTime>& time)
{
    return time ? json(ToNumber(*time)) : json(nullptr);
}

std::optional<LocalTime> TimeFrom(const json& value)
{
    return value.is_null() ? std::nullopt : std::optional(FromNumber(value.get<int64_t>()));
}

std::vector<PimLogRow> RowsFrom(const json& values)
{
    std::vector<PimLogRow> rows;
    for (const json& value : values) {
        rows.push_back({value.at(0).get<std::string>(), value.at(1).get<std::string>(), TimeFrom(value.at(2)),
                        TimeFrom(value.at(3))});
    }
    return rows;
}

}  // namespace

os::Status WritePimJournal(const std::string& imei, const PimJournal& journal)
{
    nlohmann::ordered_json state{{"places", journal.paths}};
    for (const PimKind kind : kPimKinds) {
        if (!journal.rowsOf(kind)) {
            continue;
        }
        auto& rows = state[std::string(KeyOf(kind))] = json::array();
        for (const PimLogRow& row : *journal.rowsOf(kind)) {
            rows.push_back({row.guid, row.luid, ToJson(row.pcTime), ToJson(row.phoneTime)});
        }
    }
    return WriteStateFile(FileOf(imei), imei, std::move(state));
}

os::Status ReadPimJournal(const std::string& imei, std::optional<PimJournal>& journal)
{
    journal.reset();
    json state;
    if (os::Status status = ReadStateFile(FileOf(imei), imei, state); !status.ok() || state.is_null()) {
        return status;
    }
    try {
        PimJournal found;
        found.paths = state.at("places").get<std::set<std::string>>();
        for (const PimKind kind : kPimKinds) {
            if (const auto rows = state.find(KeyOf(kind)); rows != state.end()) {
                found.rowsOf(kind) = RowsFrom(*rows);
            }
        }
        journal = std::move(found);
    } catch (const json::exception& failure) {
        return {os::Failure::kOther, std::string("it is damaged: ") + failure.what()};
    }
    return {};
}

os::Status RemovePimJournal(const std::string& imei)
{
    return RemoveStateFile(FileOf(imei));
}

}  // namespace kesta
