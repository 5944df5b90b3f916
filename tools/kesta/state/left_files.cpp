#include "state/left_files.h"

#include <utility>

#include "state/state_file.h"

namespace kesta {
namespace {

using nlohmann::json;

constexpr size_t kMostKept = 1000;

// No IMEI holds a blank, so that this is no other file's name.
std::string FileOf(const std::string& imei)
{
    return "left of " + imei + ".json";
}

KeptFile KeptFrom(const json& value)
{
    KeptFile file{value.at("path").get<std::string>(), value.at("phone_path").get<std::string>(),
                  value.at("kept_as").get<std::string>(), std::nullopt};
    if (!value.at("time").is_null()) {
        file.time = FromNumber(value.at("time").get<int64_t>());
    }
    return file;
}

}  // namespace

LeftFiles::LeftFiles(const std::string& imei) : imei_(imei)
{
    json state;
    if (!ReadStateFile(FileOf(imei), imei, state).ok() || state.is_null()) {
        return;
    }
    try {
        for (const auto& [phonePath, file] : state.at("left").items()) {
            left_[phonePath] = {file.at(0).get<uint64_t>(), file.at(1).get<int64_t>(),
                                file.size() > 2 ? file.at(2).get<std::string>() : std::string(),
                                file.size() > 3 ? std::optional(file.at(3).get<int32_t>()) : std::nullopt};
        }
        for (const json& file : state.at("kept")) {
            kept_.push_back(KeptFrom(file));
        }
    } catch (const json::exception&) {
        left_.clear();
        kept_.clear();
    }
}

const LeftFile* LeftFiles::find(const std::string& phonePath) const
{
    const auto found = left_.find(phonePath);
    return found == left_.end() ? nullptr : &found->second;
}

void LeftFiles::leave(const std::string& phonePath, LeftFile file)
{
    const auto [known, isNew] = left_.try_emplace(phonePath);
    hasChanged_ = hasChanged_ || isNew || known->second != file;
    known->second = std::move(file);
}

void LeftFiles::forget(const std::string& phonePath)
{
    hasChanged_ = left_.erase(phonePath) > 0 || hasChanged_;
}

void LeftFiles::keep(KeptFile file)
{
    std::erase_if(kept_, [&](const KeptFile& other) { return other.keptAs == file.keptAs; });
    kept_.push_back(std::move(file));
    if (kept_.size() > kMostKept) {
        kept_.erase(kept_.begin());
    }
    hasChanged_ = true;
}

os::Status LeftFiles::save()
{
    if (!hasChanged_ || imei_.empty()) {
        return {};
    }
    nlohmann::ordered_json left = json::object(), kept = json::array();
    for (const auto& [phonePath, file] : left_) {
        left[phonePath] = {file.size, file.modifiedSeconds};
        if (!file.digest.empty() || file.pcNanoseconds) {
            left[phonePath].push_back(file.digest);
        }
        if (file.pcNanoseconds) {
            left[phonePath].push_back(*file.pcNanoseconds);
        }
    }
    for (const KeptFile& file : kept_) {
        kept.push_back({{"path", file.path},
                        {"phone_path", file.phonePath},
                        {"kept_as", file.keptAs},
                        {"time", file.time ? json(ToNumber(*file.time)) : json(nullptr)}});
    }
    // Its name survives with the end of the run in the database.
    os::Status status = WriteStateFile(FileOf(imei_), imei_, {{"left", std::move(left)}, {"kept", std::move(kept)}},
                                       StateFlush::kContents);
    hasChanged_ = !status.ok();
    return status;
}

}  // namespace kesta
