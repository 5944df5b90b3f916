#include "mounts/phone_mount.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <thread>

namespace kesta::test {
namespace {

namespace fs = std::filesystem;

pid_t Start(std::vector<std::string> command)
{
    std::vector<char*> pointers;
    for (std::string& text : command) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        const int nowhere = open("/dev/null", O_RDWR);
        (void)dup2(nowhere, STDOUT_FILENO);
        (void)dup2(nowhere, STDERR_FILENO);
        (void)execv(pointers.front(), pointers.data());
        _exit(127);
    }
    return child;
}

dev_t DeviceOf(const fs::path& path)
{
    struct stat info {};
    return stat(path.c_str(), &info) == 0 ? info.st_dev : 0;
}

}  // namespace

PhoneMount::PhoneMount(const fs::path& work, const std::vector<std::string>& refusals)
    : phone_(work / "phone"), held_(work / "held")
{
    if (access("/dev/fuse", R_OK | W_OK) != 0) {
        problem_ = "needs /dev/fuse";
        return;
    }
    fs::rename(phone_, held_);
    fs::create_directory(phone_);
    std::vector<std::string> command{KESTA_PHONE_MOUNT, held_.string(), phone_.string()};
    command.insert(command.end(), refusals.begin(), refusals.end());
    const dev_t before = DeviceOf(phone_);
    server_ = Start(std::move(command));
    for (int attempt = 0; attempt < 2000; ++attempt) {
        if (const dev_t device = DeviceOf(phone_); device != 0 && device != before) {
            isThere_ = true;
            return;
        }
        if (waitpid(server_, nullptr, WNOHANG) == server_) {
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    problem_ = "needs python3-fusepy, fuse3 and the right to mount";
    unmount();
}

int PhoneMount::countCalls(const std::string& beginning) const
{
    std::ifstream log(held_.string() + ".log");
    int count = 0;
    for (std::string line; std::getline(log, line);) {
        count += line.starts_with(beginning) ? 1 : 0;
    }
    return count;
}

void PhoneMount::unmount()
{
    if (!fs::exists(held_)) {
        return;
    }
    if (isThere_ && umount2(phone_.c_str(), MNT_DETACH) != 0) {
        (void)waitpid(Start({"/usr/bin/fusermount", "-uz", phone_.string()}), nullptr, 0);
    }
    isThere_ = false;
    if (server_ > 0) {
        // It ends with the mount; one that could not mount has ended.
        (void)kill(server_, SIGTERM);
        (void)waitpid(server_, nullptr, 0);
        server_ = -1;
    }
    std::error_code ignored;  // A mount that stays shows in the test.
    fs::remove(phone_, ignored);
    fs::rename(held_, phone_, ignored);
}

}  // namespace kesta::test
