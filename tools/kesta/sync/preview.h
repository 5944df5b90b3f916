// Tells a plan instead of executing it, and keeps in mind what the phone would look like then.
#pragma once

#include <map>

#include "sync/room.h"
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
    [[nodiscard]] bool holdsFile(const std::string& phonePath, const std::string& pcPath) const override
    {
        return !changed_.contains(phonePath) && phone_.holdsFile(phonePath, pcPath);
    }

private:
    const PhoneFolder& phone_;
    std::map<std::string, PhoneFile> changed_;
};

class Preview : public Runner {
public:
    Preview(PhoneFolder& phone, const SyncOptions& options, Report& report)
        : phone_(phone), folder_(phone), trash_(phone), options_(options), report_(report)
    {
    }

    [[nodiscard]] const Phone& phone() const override { return phone_; }
    void run(const Plan& plan) override;

private:
    PlannedPhone phone_;
    const PhoneFolder& folder_;
    const Trash trash_;
    const SyncOptions& options_;
    Report& report_;
};

}  // namespace kesta
