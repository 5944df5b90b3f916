// The phone as planning sees it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kesta {

enum class PhoneEntry { kNothing, kFile, kOther };

/// FAT keeps times to two seconds only.
inline constexpr int64_t kPhoneTimeTolerance = 2;

/// What lies at a path on the phone.
struct PhoneFile {
    PhoneEntry entry = PhoneEntry::kNothing;
    uint64_t size = 0;
    int64_t modifiedSeconds = 0;
};

class PhoneView {
public:
    virtual ~PhoneView() = default;
    [[nodiscard]] virtual PhoneFile find(const std::string& phonePath) const = 0;
};

/// With a look into folders and files.
class Phone : public PhoneView {
public:
    /// The names of the files in a folder of the phone's root.
    [[nodiscard]] virtual std::vector<std::string> names(const std::string& folder) const = 0;
    /// Whether the file holds exactly this.
    [[nodiscard]] virtual bool holds(const std::string& phonePath, const std::string& text) const = 0;
    /// Whether it holds what the file of the PC does. False when either cannot be read.
    [[nodiscard]] virtual bool holdsFile(const std::string& phonePath, const std::string& pcPath) const = 0;
};

}  // namespace kesta
