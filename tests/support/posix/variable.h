// A variable of the environment, for one test.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace kesta::test {

/// Sets a variable, or takes it away, until the end of the test.
class Variable {
public:
    Variable(const char* name, const char* value) : name_(name)
    {
        if (const char* before = std::getenv(name)) {
            before_ = before;
        }
        set(value);
    }
    ~Variable() { set(before_.has_value() ? before_->c_str() : nullptr); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    void set(const char* value) const { value != nullptr ? setenv(name_, value, 1) : unsetenv(name_); }

    const char* name_;
    std::optional<std::string> before_;
};

}  // namespace kesta::test
