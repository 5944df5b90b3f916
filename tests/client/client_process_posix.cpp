#include <fcntl.h>
#include <linux/capability.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "client_process.h"

namespace kesta::test {
namespace {

using namespace std::chrono_literals;

std::string Contents(const std::filesystem::path& file)
{
    std::ostringstream text;
    text << std::ifstream(file, std::ios::binary).rdbuf();
    return text.str();
}

void Redirect(const std::filesystem::path& file, int descriptor)
{
    const int opened = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (opened < 0 || dup2(opened, descriptor) < 0) {
        _exit(126);
    }
}

}  // namespace

struct ClientProcess::Impl {
    std::filesystem::path out, err;
    pid_t child = -1;
    bool ended = false;
    int status = 0;
};

ClientProcess::ClientProcess(const std::filesystem::path& folder, const std::vector<std::string>& arguments,
                             const Environment& environment)
    : impl_(std::make_unique<Impl>())
{
    static int number = 0;
    const std::string name = "client-" + std::to_string(++number);
    impl_->out = folder / (name + ".out");
    impl_->err = folder / (name + ".err");
    std::vector<std::string> texts{KESTA_CLIENT};
    texts.insert(texts.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);

    impl_->child = fork();
    if (impl_->child < 0) {
        throw std::runtime_error("fork failed");
    }
    if (impl_->child != 0) {
        return;
    }
    // Permissions are to count for root too.
    (void)prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE);
    (void)prctl(PR_CAPBSET_DROP, CAP_DAC_READ_SEARCH);
    for (const auto& [key, value] : environment) {
        (void)setenv(key.c_str(), value.c_str(), 1);
    }
    Redirect(impl_->out, STDOUT_FILENO);
    Redirect(impl_->err, STDERR_FILENO);
    (void)execv(KESTA_CLIENT, pointers.data());
    _exit(127);
}

ClientProcess::~ClientProcess()
{
    if (!hasEnded()) {
        kill();
        (void)wait();
    }
}

void ClientProcess::kill()
{
    if (!impl_->ended) {
        (void)::kill(impl_->child, SIGKILL);
    }
}

void ClientProcess::interrupt()
{
    if (!impl_->ended) {
        (void)::kill(impl_->child, SIGINT);
    }
}

std::string ClientProcess::outputSoFar() const
{
    return Contents(impl_->out);
}

bool ClientProcess::waitForOutput(const std::string& text)
{
    for (int attempt = 0; attempt < 6000; ++attempt) {
        const bool over = hasEnded();
        if ((Contents(impl_->out) + Contents(impl_->err)).find(text) != std::string::npos) {
            return true;
        }
        if (over) {
            return false;
        }
        std::this_thread::sleep_for(5ms);
    }
    return false;
}

bool ClientProcess::hasEnded()
{
    if (!impl_->ended) {
        impl_->ended = waitpid(impl_->child, &impl_->status, WNOHANG) == impl_->child;
    }
    return impl_->ended;
}

Ended ClientProcess::wait()
{
    if (!impl_->ended) {
        impl_->ended = waitpid(impl_->child, &impl_->status, 0) == impl_->child;
    }
    const int code = WIFEXITED(impl_->status) ? WEXITSTATUS(impl_->status) : -WTERMSIG(impl_->status);
    return {code, Contents(impl_->out), Contents(impl_->err)};
}

long ClientProcess::id() const
{
    return impl_->child;
}

}  // namespace kesta::test
