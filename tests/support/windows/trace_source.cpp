// Debug output is an exception that a debugger would see. A handler ahead of all others sees it too, and ends it.
#include "support/trace_source.h"

#include <windows.h>

#include <mutex>
#include <stdexcept>
#include <utility>

namespace kesta::test {
namespace {

constexpr DWORD kWideText = 0x4001000A;  // newer systems offer the text this way first
constexpr DWORD kAnsiText = 0x40010006;

std::mutex mutex;
std::vector<std::string> lines;

std::string Utf8(const wchar_t* text, size_t length)
{
    const int units = static_cast<int>(length);
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, units, nullptr, 0, nullptr, nullptr);
    std::string out(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, units, out.data(), size, nullptr, nullptr);
    return out;
}

std::string Utf8(const char* text, size_t length)
{
    const int bytes = static_cast<int>(length);
    const int size = MultiByteToWideChar(CP_ACP, 0, text, bytes, nullptr, 0);
    std::wstring wide(static_cast<size_t>(size), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text, bytes, wide.data(), size);
    return Utf8(wide.data(), wide.size());
}

/// The length comes with the terminator.
template <class Unit>
void Keep(const EXCEPTION_RECORD& record)
{
    const size_t units = record.ExceptionInformation[0];
    const auto* text = reinterpret_cast<const Unit*>(record.ExceptionInformation[1]);
    const std::scoped_lock lock(mutex);
    lines.push_back(Utf8(text, units > 0 ? units - 1 : 0));
}

LONG CALLBACK OnException(EXCEPTION_POINTERS* exception)
{
    const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
    if (record.NumberParameters < 2) {
        return EXCEPTION_CONTINUE_SEARCH;
    }
    switch (record.ExceptionCode) {
        case kWideText:
            Keep<wchar_t>(record);
            return EXCEPTION_CONTINUE_EXECUTION;
        case kAnsiText:
            Keep<char>(record);
            return EXCEPTION_CONTINUE_EXECUTION;
        default:
            return EXCEPTION_CONTINUE_SEARCH;
    }
}

class Handler : public TraceSource {
public:
    Handler() : handle_(AddVectoredExceptionHandler(1, &OnException))
    {
        if (handle_ == nullptr) {
            throw std::runtime_error("no handler for debug output");
        }
        (void)take();
    }
    ~Handler() override { RemoveVectoredExceptionHandler(handle_); }
    Handler(const Handler&) = delete;
    Handler& operator=(const Handler&) = delete;

    std::vector<std::string> take() override
    {
        const std::scoped_lock lock(mutex);
        return std::exchange(lines, {});
    }

private:
    void* handle_;
};

}  // namespace

std::unique_ptr<TraceSource> TraceSource::open(const std::filesystem::path& /*runtimeFolder*/)
{
    return std::make_unique<Handler>();
}

}  // namespace kesta::test
