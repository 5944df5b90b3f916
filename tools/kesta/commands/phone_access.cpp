#include "commands/phone_access.h"

#include <fmt/format.h>

namespace kesta {
namespace {

void Require(const os::Status& status, const std::string& what)
{
    if (!status.ok()) {
        throw StopRun(ExitCodeOf(status), fmt::format("{}: {}", what, status.text()));
    }
}

}  // namespace

PhoneFolder OpenPhone(const std::string& path)
{
    std::string root;
    Require(os::CanonicalPath(path, root), fmt::format("the phone folder {}", path));
    PhoneFolder phone(root);
    Require(phone.open(), fmt::format("the phone folder {}", path));
    return phone;
}

void LockPhone(os::DirectoryLock& lock, const PhoneFolder& phone)
{
    const os::Status status = lock.acquire(phone.root());
    if (status.failure() == os::Failure::kBusy) {
        throw StopRun(ExitCode::kAnotherSync, "another sync of this phone is running");
    }
    Require(status, "the phone cannot be locked");
    Require(os::CheckWritable(phone.root()), "the phone cannot be written");
}

}  // namespace kesta
