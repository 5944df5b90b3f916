// Tells a plan instead of executing it, and keeps in mind what the phone would look like then.
#pragma once

#include <map>

#include "sync/session.h"

namespace kesta {

/// The phone after changes that have not been made.
class PlannedPhone : public Phone {
public:
    explicit PlannedPhone(const PhoneFolder& phone) : phone_(phone) {}
    void make(const Change& change);

    [[nodiscard]] PhoneFile find(const std::string& phonePath) const override;
    [[nodiscard]] std::vector<std::string> names(const std::string& folder) const override
    {
        return phone_.names(folder);
    }
    [[nodiscard]] bool holds(const std::string& phonePath, const std::string& text) const override
    {
        return !changed_.contains(phonePath) && phone_.holds(phonePath, text);
    }

private:
    const PhoneFolder& phone_;
    std::map<std::string, PhoneFile> changed_;
};

class Preview : public Runner {
public:
    Preview(const PhoneFolder& phone, Report& report) : phone_(phone), report_(report) {}

    [[nodiscard]] const Phone& phone() const override { return phone_; }
    void run(const Plan& plan) override;

private:
    PlannedPhone phone_;
    Report& report_;
};

}  // namespace kesta
