// The phone's folder of a test behind a FUSE file system that refuses what phones refuse: phone_mount.py tells what.
//
//     PhoneMount mount(work(), {"rename"});
//     if (!mount.isThere()) { GTEST_SKIP() << mount.problem(); }
//     EXPECT_EQ(sync(...).exitCode, 0);
//     mount.unmount();    // the folder holds now what the phone held
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace kesta::test {

class PhoneMount {
public:
    /// work: the folder in which the phone's lies.
    PhoneMount(const std::filesystem::path& work, const std::vector<std::string>& refusals);
    ~PhoneMount() { unmount(); }
    PhoneMount(const PhoneMount&) = delete;
    PhoneMount& operator=(const PhoneMount&) = delete;

    [[nodiscard]] bool isThere() const { return isThere_; }
    /// Why it is not there.
    [[nodiscard]] const std::string& problem() const { return problem_; }
    /// How often the phone was asked for such a change, such as "rename /Music".
    [[nodiscard]] int countCalls(const std::string& beginning) const;
    void unmount();

private:
    std::filesystem::path phone_, held_;
    pid_t server_ = -1;
    bool isThere_ = false;
    std::string problem_;
};

}  // namespace kesta::test
