// What the client left on a phone, where the database cannot tell it: sizes, the times that the phone has given, and
// the contents of the texts that the client writes itself. Besides, what somebody has changed there and was kept.
//
//     LeftFiles left(imei);
//     if (left.find(path) && left.find(path)->size != there.size) ...   // changed since
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "base/dates.h"
#include "os/status.h"

namespace kesta {

/// A file that was changed on the phone, and is the user's now.
struct KeptFile {
    std::string path;       // of the file on the PC whose copy it was; of another one its phone path
    std::string phonePath;  // where it was
    std::string keptAs;     // where it is, as far as the client knows
    std::optional<LocalTime> time;
};

struct LeftFile {
    uint64_t size = 0;
    int64_t modifiedSeconds = 0;
    std::string digest;  // of a text's contents; empty for any other file
    /// The part of a second of the time that the PC's file had: the database keeps whole seconds.
    std::optional<int32_t> pcNanoseconds = {};

    bool operator==(const LeftFile&) const = default;
};

class LeftFiles {
public:
    LeftFiles() = default;
    /// With what earlier runs have noted. A damaged state file counts as none.
    explicit LeftFiles(const std::string& imei);

    /// How the file was left; null if there is no note.
    [[nodiscard]] const LeftFile* find(const std::string& phonePath) const;
    void leave(const std::string& phonePath, LeftFile file);
    void forget(const std::string& phonePath);

    void keep(KeptFile file);
    [[nodiscard]] const std::vector<KeptFile>& kept() const { return kept_; }

    /// To be called before the journal goes that names the files in question.
    os::Status save();

private:
    std::string imei_;
    std::map<std::string, LeftFile> left_;  // by phone path
    std::vector<KeptFile> kept_;            // the latest ones last
    bool hasChanged_ = false;
};

}  // namespace kesta
