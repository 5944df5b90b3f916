// The options that say what is synced to a phone: the same where they are given and where they are remembered.
#pragma once

#include <memory>

#include "state/sync_sources.h"

namespace CLI {  // NOLINT(readability-identifier-naming): not ours
class App;
class Option;
}  // namespace CLI

namespace kesta {

class SourceOptions {
public:
    void addTo(CLI::App& app);
    /// As given, with the rules in the order of the command line.
    [[nodiscard]] SyncSources given() const;

private:
    SyncSources sources_;  // without the rules
    std::vector<std::string> excluded_, included_;
    CLI::App* app_ = nullptr;
    CLI::Option* exclude_ = nullptr;
    CLI::Option* include_ = nullptr;
};

/// As they are remembered: absolute, and canonical as far as they are there.
[[nodiscard]] SyncSources WithRecordedPaths(SyncSources sources);

}  // namespace kesta
