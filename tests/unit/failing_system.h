// System calls that fail when a test says so. The linker puts them in the place of the C library's, see CMakeLists.txt.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace kesta::test {

/// What the next calls of a function answer on this thread: an error each, 0 for a call that goes through. Those after
/// them go through as well.
class FailingSystem {
public:
    using Plan = std::map<std::string, std::vector<int>>;

    explicit FailingSystem(Plan plan);
    ~FailingSystem();
    FailingSystem(const FailingSystem&) = delete;
    FailingSystem& operator=(const FailingSystem&) = delete;

    /// Whether all errors of the plan were given.
    [[nodiscard]] bool allStruck() const;

    /// From now on a write takes one byte.
    void writeByteByByte() { oneByte_ = true; }
    [[nodiscard]] bool writesByteByByte() const { return oneByte_; }

    /// The error for this call, which is then used up; 0 for none.
    int next(const char* function);

private:
    Plan plan_;
    bool oneByte_ = false;
};

}  // namespace kesta::test
