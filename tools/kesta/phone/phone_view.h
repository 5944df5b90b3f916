// The phone as planning sees it.
#pragma once

#include <cstdint>
#include <string>

namespace kesta {

enum class PhoneEntry { kNothing, kFile, kOther };

/// What lies at a path on the phone.
struct PhoneFile {
    PhoneEntry entry = PhoneEntry::kNothing;
    std::uint64_t size = 0;
    std::int64_t modifiedSeconds = 0;
};

class PhoneView {
public:
    virtual ~PhoneView() = default;
    [[nodiscard]] virtual PhoneFile find(const std::string& phonePath) const = 0;
};

}  // namespace kesta
