#include "support/child_process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <thread>

namespace kesta::test {
namespace {

using Clock = std::chrono::steady_clock;

struct Pipe {
    int read = -1;
    int write = -1;

    Pipe()
    {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) {
            throw std::runtime_error(std::strerror(errno));
        }
        read = ends[0];
        write = ends[1];
    }
    ~Pipe()
    {
        closeRead();
        closeWrite();
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    void closeRead()
    {
        if (read >= 0) {
            close(read);
        }
        read = -1;
    }
    void closeWrite()
    {
        if (write >= 0) {
            close(write);
        }
        write = -1;
    }
};

}  // namespace

struct ChildProcess::Impl {
    Pipe input;
    Pipe output;
    pid_t process = -1;
    std::string unread;
    std::optional<int> exitCode;
};

ChildProcess::ChildProcess(const std::string& program, const std::vector<std::string>& arguments)
    : impl_(std::make_unique<Impl>())
{
    (void)signal(SIGPIPE, SIG_IGN);  // a program that has gone shows in its missing answer
    std::vector<char*> list{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments) {
        list.push_back(const_cast<char*>(argument.c_str()));
    }
    list.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, impl_->input.read, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, impl_->output.write, STDOUT_FILENO);
    const int result = posix_spawn(&impl_->process, program.c_str(), &actions, nullptr, list.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (result != 0) {
        throw std::runtime_error(program + ": " + std::strerror(result));
    }
    impl_->input.closeRead();
    impl_->output.closeWrite();
}

ChildProcess::~ChildProcess()
{
    kill();
}

void ChildProcess::writeLine(const std::string& line)
{
    const std::string bytes = line + '\n';
    if (write(impl_->input.write, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) {
        throw std::runtime_error(std::string("the program does not listen: ") + std::strerror(errno));
    }
}

std::optional<std::string> ChildProcess::readLine(milliseconds patience)
{
    const auto deadline = Clock::now() + patience;
    for (;;) {
        if (const size_t end = impl_->unread.find('\n'); end != std::string::npos) {
            std::string line = impl_->unread.substr(0, end);
            impl_->unread.erase(0, end + 1);
            return line;
        }
        const auto left = std::chrono::duration_cast<milliseconds>(deadline - Clock::now());
        pollfd event = {impl_->output.read, POLLIN, 0};
        if (left.count() <= 0 || poll(&event, 1, static_cast<int>(left.count())) <= 0) {
            return std::nullopt;
        }
        char bytes[4096];
        const ssize_t size = read(impl_->output.read, bytes, sizeof bytes);
        if (size <= 0) {
            return std::nullopt;
        }
        impl_->unread.append(bytes, static_cast<size_t>(size));
    }
}

void ChildProcess::kill()
{
    if (impl_->exitCode.has_value()) {
        return;
    }
    ::kill(impl_->process, SIGKILL);
    (void)wait(milliseconds(60000));
}

std::optional<int> ChildProcess::wait(milliseconds patience)
{
    const auto deadline = Clock::now() + patience;
    while (!impl_->exitCode.has_value()) {
        int status = 0;
        if (waitpid(impl_->process, &status, WNOHANG) == impl_->process) {
            impl_->exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
        } else if (Clock::now() >= deadline) {
            return std::nullopt;
        } else {
            std::this_thread::sleep_for(milliseconds(2));
        }
    }
    return impl_->exitCode;
}

}  // namespace kesta::test
