#include "os/system.h"

#include <fcntl.h>
#include <locale.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <wctype.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <random>

#include "os/files.h"
#include "os/native_path.h"

namespace kesta::os {
namespace {

std::atomic<bool> interrupted = false;  // lock-free, so that a signal may set it

void NoteInterrupt(int)
{
    interrupted = true;
}

}  // namespace

std::vector<std::string> Arguments(int argc, char** argv)
{
    std::vector<std::string> arguments;
    for (int i = 1; i < argc; ++i) {
        arguments.push_back(FromNativePath(argv[i]));
    }
    return arguments;
}

int64_t Now()
{
    return std::time(nullptr);
}

std::optional<int64_t> LocalSeconds(int64_t utcSeconds)
{
    const time_t time = utcSeconds;
    std::tm local{};
    if (localtime_r(&time, &local) == nullptr) {
        return std::nullopt;
    }
    using namespace std::chrono;
    if (local.tm_year < -1800 || local.tm_year > 8099) {
        return std::nullopt;
    }
    const year_month_day date{year(local.tm_year + 1900), month(static_cast<unsigned>(local.tm_mon + 1)),
                              day(static_cast<unsigned>(local.tm_mday))};
    const auto days = sys_days(date) - sys_days(year(1899) / December / 30);
    return int64_t{days.count()} * 86400 + int64_t{local.tm_hour} * 3600 + int64_t{local.tm_min} * 60 + local.tm_sec;
}

char32_t UpperCase(char32_t character)
{
    static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    if (locale == nullptr) {
        return character >= U'a' && character <= U'z' ? character - 32 : character;
    }
    return static_cast<char32_t>(towupper_l(static_cast<wint_t>(character), locale));
}

uint64_t RandomNumber()
{
    std::random_device device;
    return (uint64_t{device()} << 32) | device();
}

std::string DataDirectory()
{
    const char* data = std::getenv("XDG_DATA_HOME");
    if (data != nullptr && data[0] == '/') {
        return FromNativePath(data);
    }
    const char* home = std::getenv("HOME");
    return home == nullptr ? std::string() : Join(FromNativePath(home), ".local/share");
}

bool MakePrivateDirectories(const std::string& path)
{
    struct stat info {};
    if (stat(ToNativePath(path).c_str(), &info) == 0) {
        return S_ISDIR(info.st_mode);
    }
    const std::string parent = ParentOf(path);
    return parent != path && MakePrivateDirectories(parent) && mkdir(ToNativePath(path).c_str(), 0700) == 0;
}

void CatchInterrupts()
{
    struct sigaction action {};
    action.sa_handler = NoteInterrupt;
    (void)sigemptyset(&action.sa_mask);
    // No SA_RESTART: a viewer that waits for the next line is to wake up.
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        (void)sigaction(signal, &action, nullptr);
    }
}

bool Interrupted()
{
    return interrupted;
}

void PrepareOutput()
{
    // A reader that goes away (kesta ... | head) shows as a failed write, so that a sync still ends properly.
    (void)std::signal(SIGPIPE, SIG_IGN);
    // What is closed would go to the next file to be opened.
    for (int standard = STDIN_FILENO; standard <= STDERR_FILENO; ++standard) {
        if (fcntl(standard, F_GETFD) == -1) {
            (void)::open("/dev/null", O_RDWR);
        }
    }
}

bool IsTerminal()
{
    return isatty(STDOUT_FILENO) == 1;
}

size_t TerminalWidth()
{
    winsize size{};
    return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

}  // namespace kesta::os
