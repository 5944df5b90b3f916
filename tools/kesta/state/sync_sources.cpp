#include "state/sync_sources.h"

#include <algorithm>

#include "state/state_file.h"

namespace kesta {
namespace {

using Json = nlohmann::ordered_json;

// No IMEI holds a blank, so that this is no other file's name.
std::string FileOf(const std::string& imei)
{
    return "sync of " + imei + ".json";
}

// A rule that is given again counts as the last one.
template <class Item>
void AddAll(std::vector<Item>& items, const std::vector<Item>& others, bool toTheEnd)
{
    for (const Item& other : others) {
        if (toTheEnd) {
            std::erase(items, other);
        }
        if (std::find(items.begin(), items.end(), other) == items.end()) {
            items.push_back(other);
        }
    }
}

void Take(std::optional<std::string>& item, const std::optional<std::string>& other)
{
    item = other ? other : item;
}

bool DropFrom(std::optional<std::string>& item, const std::string& what)
{
    const bool isThere = item == what;
    if (isThere) {
        item.reset();
    }
    return isThere;
}

std::vector<std::string> TextsOf(const nlohmann::json& state, const std::string& key)
{
    std::vector<std::string> texts;
    const auto list = state.find(key);
    if (list == state.end() || !list->is_array()) {
        return texts;
    }
    for (const nlohmann::json& text : *list) {
        if (text.is_string()) {
            texts.push_back(text.get<std::string>());
        }
    }
    return texts;
}

std::optional<std::string> TextOf(const nlohmann::json& state, const char* key)
{
    const auto text = state.find(key);
    return text != state.end() && text->is_string() ? std::optional(text->get<std::string>()) : std::nullopt;
}

std::vector<FilterRule> RulesOf(const nlohmann::json& state)
{
    std::vector<FilterRule> rules;
    const auto list = state.find("rules");
    if (list == state.end() || !list->is_array()) {
        return rules;
    }
    for (const nlohmann::json& rule : *list) {
        for (const char* kind : {"exclude", "include"}) {
            if (const auto glob = rule.is_object() ? TextOf(rule, kind) : std::nullopt) {
                rules.push_back({std::string_view(kind) == "include", *glob});
            }
        }
    }
    return rules;
}

void Put(Json& json, const char* key, const std::optional<std::string>& text)
{
    if (text) {
        json[key] = *text;
    }
}

}  // namespace

bool SyncSources::hasAny() const
{
    return playlists || bookmarks || backup || !contacts.empty() || !calendars.empty() ||
           std::any_of(folders.begin(), folders.end(), [](const auto& ofCategory) { return !ofCategory.empty(); });
}

void SyncSources::add(const SyncSources& other)
{
    for (size_t category = 0; category < folders.size(); ++category) {
        AddAll(folders[category], other.folders[category], false);
    }
    Take(playlists, other.playlists);
    Take(bookmarks, other.bookmarks);
    Take(backup, other.backup);
    AddAll(contacts, other.contacts, false);
    AddAll(calendars, other.calendars, false);
    AddAll(rules, other.rules, true);
}

bool SyncSources::drop(const std::string& what)
{
    size_t dropped = 0;
    for (auto& ofCategory : folders) {
        dropped += std::erase(ofCategory, what);
    }
    dropped += std::erase(contacts, what) + std::erase(calendars, what);
    dropped += std::erase_if(rules, [&](const FilterRule& rule) { return rule.glob == what; });
    for (std::optional<std::string>* item : {&playlists, &bookmarks, &backup}) {
        dropped += DropFrom(*item, what) ? 1u : 0u;
    }
    return dropped > 0;
}

os::Status ReadSyncSources(const std::string& imei, SyncSources& sources)
{
    sources = {};
    nlohmann::json state;
    if (os::Status status = ReadStateFile(FileOf(imei), imei, state); !status.ok() || state.is_null()) {
        return status;
    }
    for (const Category category : kCategories) {
        sources.folders[static_cast<size_t>(category)] = TextsOf(state, std::string(KeyOf(category)));
    }
    sources.playlists = TextOf(state, "playlists");
    sources.bookmarks = TextOf(state, "bookmarks");
    sources.backup = TextOf(state, "backup");
    sources.contacts = TextsOf(state, "contacts");
    sources.calendars = TextsOf(state, "calendar");
    sources.rules = RulesOf(state);
    return {};
}

os::Status WriteSyncSources(const std::string& imei, const SyncSources& sources)
{
    Json state = Json::object();
    for (const Category category : kCategories) {
        state[std::string(KeyOf(category))] = sources.folders[static_cast<size_t>(category)];
    }
    Put(state, "playlists", sources.playlists);
    Put(state, "bookmarks", sources.bookmarks);
    Put(state, "backup", sources.backup);
    state["contacts"] = sources.contacts;
    state["calendar"] = sources.calendars;
    state["rules"] = Json::array();
    for (const FilterRule& rule : sources.rules) {
        state["rules"].push_back({{rule.isInclude ? "include" : "exclude", rule.glob}});
    }
    return WriteStateFile(FileOf(imei), imei, std::move(state));
}

}  // namespace kesta
