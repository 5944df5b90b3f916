#include "support/child_process.h"

#include <windows.h>

#include <stdexcept>
#include <thread>

namespace kesta::test {
namespace {

using Clock = std::chrono::steady_clock;

[[noreturn]] void Fail(const std::string& what)
{
    throw std::runtime_error(what + ": system error " + std::to_string(GetLastError()));
}

class Handle {
public:
    Handle() = default;
    ~Handle() { close(); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    void close()
    {
        if (handle_ != nullptr) {
            CloseHandle(handle_);
        }
        handle_ = nullptr;
    }
    HANDLE* out() { return &handle_; }
    operator HANDLE() const { return handle_; }

private:
    HANDLE handle_ = nullptr;
};

/// A pipe of which the child inherits one end.
void MakePipe(Handle& ours, Handle& childs, bool childReads)
{
    SECURITY_ATTRIBUTES inheritable = {sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    Handle& read = childReads ? childs : ours;
    Handle& write = childReads ? ours : childs;
    if (!CreatePipe(read.out(), write.out(), &inheritable, 0)) {
        Fail("pipe");
    }
    if (!SetHandleInformation(ours, HANDLE_FLAG_INHERIT, 0)) {
        Fail("pipe");
    }
}

}  // namespace

struct ChildProcess::Impl {
    Handle input;
    Handle output;
    Handle process;
    std::string unread;
    std::optional<int> exitCode;
};

ChildProcess::ChildProcess(const std::string& program, const std::vector<std::string>& arguments)
    : impl_(std::make_unique<Impl>())
{
    Handle childsInput;
    Handle childsOutput;
    MakePipe(impl_->input, childsInput, true);
    MakePipe(impl_->output, childsOutput, false);
    std::string command = '"' + program + '"';
    for (const std::string& argument : arguments) {
        command += " \"" + argument + '"';
    }
    STARTUPINFOA start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = childsInput;
    start.hStdOutput = childsOutput;
    start.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    PROCESS_INFORMATION started = {};
    if (!CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &started)) {
        Fail(program);
    }
    CloseHandle(started.hThread);
    *impl_->process.out() = started.hProcess;
}

ChildProcess::~ChildProcess()
{
    kill();
}

void ChildProcess::writeLine(const std::string& line)
{
    const std::string bytes = line + '\n';
    DWORD written = 0;
    if (!WriteFile(impl_->input, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) ||
        written != bytes.size()) {
        Fail("the program does not listen");
    }
}

std::optional<std::string> ChildProcess::readLine(milliseconds patience)
{
    const auto deadline = Clock::now() + patience;
    for (;;) {
        if (const size_t end = impl_->unread.find('\n'); end != std::string::npos) {
            std::string line = impl_->unread.substr(0, end);
            impl_->unread.erase(0, end + 1);
            if (line.ends_with('\r')) {
                line.pop_back();
            }
            return line;
        }
        DWORD waiting = 0;
        if (!PeekNamedPipe(impl_->output, nullptr, 0, nullptr, &waiting, nullptr)) {
            return std::nullopt;
        }
        if (waiting == 0) {
            if (Clock::now() >= deadline) {
                return std::nullopt;
            }
            std::this_thread::sleep_for(milliseconds(2));
            continue;
        }
        char bytes[4096];
        DWORD size = 0;
        if (!ReadFile(impl_->output, bytes, sizeof bytes, &size, nullptr) || size == 0) {
            return std::nullopt;
        }
        impl_->unread.append(bytes, size);
    }
}

void ChildProcess::kill()
{
    if (impl_->exitCode.has_value()) {
        return;
    }
    TerminateProcess(impl_->process, 137);
    (void)wait(milliseconds(60000));
}

std::optional<int> ChildProcess::wait(milliseconds patience)
{
    if (impl_->exitCode.has_value()) {
        return impl_->exitCode;
    }
    if (WaitForSingleObject(impl_->process, static_cast<DWORD>(patience.count())) != WAIT_OBJECT_0) {
        return std::nullopt;
    }
    DWORD code = 0;
    if (!GetExitCodeProcess(impl_->process, &code)) {
        Fail("exit code");
    }
    impl_->exitCode = static_cast<int>(code);
    return impl_->exitCode;
}

}  // namespace kesta::test
