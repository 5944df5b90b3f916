#include <windows.h>

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "client_process.h"
#include "os/windows/wide_text.h"

namespace kesta::test {
namespace {

using namespace std::chrono_literals;

std::string Contents(const std::filesystem::path& file)
{
    std::ostringstream text;
    text << std::ifstream(file, std::ios::binary).rdbuf();
    std::string contents = text.str();
    std::erase(contents, '\r');
    return contents;
}

HANDLE Create(const std::filesystem::path& file)
{
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    return CreateFileW(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, CREATE_ALWAYS,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
}

// Backslashes count only in front of a quote.
std::wstring Quoted(const std::string& argument)
{
    std::wstring text = L"\"";
    size_t backslashes = 0;
    const std::wstring units = os::ToWide(argument).value();
    for (const wchar_t c : units) {
        if (c == L'"') {
            text.append(backslashes + 1, L'\\');
        }
        backslashes = c == L'\\' ? backslashes + 1 : 0;
        text += c;
    }
    return text.append(backslashes, L'\\') + L"\"";
}

std::filesystem::path Client()
{
    wchar_t path[MAX_PATH];
    (void)GetModuleFileNameW(nullptr, path, MAX_PATH);
    return std::filesystem::path(path).parent_path() / KESTA_CLIENT;
}

}  // namespace

struct ClientProcess::Impl {
    std::filesystem::path out, err;
    PROCESS_INFORMATION process{};
};

ClientProcess::ClientProcess(const std::filesystem::path& folder, const std::vector<std::string>& arguments,
                             const Environment& environment)
    : impl_(std::make_unique<Impl>())
{
    static int number = 0;
    const std::string name = "client-" + std::to_string(++number);
    impl_->out = folder / (name + ".out");
    impl_->err = folder / (name + ".err");
    std::wstring commandLine = L"\"" + Client().wstring() + L"\"";
    for (const std::string& argument : arguments) {
        commandLine += L" " + Quoted(argument);
    }
    for (const auto& [key, value] : environment) {
        (void)SetEnvironmentVariableW(os::ToWide(key).value().c_str(), os::ToWide(value).value().c_str());
    }

    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = Create(impl_->out);
    startup.hStdError = Create(impl_->err);
    const BOOL started = CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                                        &startup, &impl_->process);
    const DWORD error = GetLastError();
    (void)CloseHandle(startup.hStdOutput);
    (void)CloseHandle(startup.hStdError);
    for (const auto& [key, value] : environment) {
        (void)SetEnvironmentVariableW(os::ToWide(key).value().c_str(), nullptr);
    }
    if (!started) {
        throw std::runtime_error("the client cannot be started: error " + std::to_string(error));
    }
}

ClientProcess::~ClientProcess()
{
    if (!hasEnded()) {
        kill();
        (void)wait();
    }
    (void)CloseHandle(impl_->process.hThread);
    (void)CloseHandle(impl_->process.hProcess);
}

void ClientProcess::kill()
{
    (void)TerminateProcess(impl_->process.hProcess, 259 + 1);
}

void ClientProcess::interrupt()
{
    throw std::logic_error("not on this system");
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
    return WaitForSingleObject(impl_->process.hProcess, 0) == WAIT_OBJECT_0;
}

Ended ClientProcess::wait()
{
    (void)WaitForSingleObject(impl_->process.hProcess, INFINITE);
    DWORD code = 0;
    (void)GetExitCodeProcess(impl_->process.hProcess, &code);
    return {static_cast<int>(code), Contents(impl_->out), Contents(impl_->err)};
}

long ClientProcess::id() const
{
    return static_cast<long>(impl_->process.dwProcessId);
}

}  // namespace kesta::test
