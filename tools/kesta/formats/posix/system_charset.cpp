#include "formats/system_charset.h"

#include <iconv.h>

#include <array>
#include <cerrno>
#include <cstdint>

namespace kesta::formats {
namespace {

class Converter {
public:
    explicit Converter(const char* charset) : handle_(iconv_open("UTF-8", charset)) {}
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;
    ~Converter()
    {
        if (isOpen()) {
            (void)iconv_close(handle_);
        }
    }

    // The value that iconv_open() fails with.
    [[nodiscard]] bool isOpen() const { return reinterpret_cast<intptr_t>(handle_) != -1; }

    [[nodiscard]] std::string convert(std::string bytes)
    {
        std::string text;
        char* in = bytes.data();
        size_t left = bytes.size();
        while (left > 0) {
            std::array<char, 4096> buffer;
            char* out = buffer.data();
            size_t room = buffer.size();
            const bool hasFailed = iconv(handle_, &in, &left, &out, &room) == static_cast<size_t>(-1);
            text.append(buffer.data(), out);
            if (hasFailed && errno != E2BIG) {
                text += "\uFFFD";
                ++in;
                --left;
            }
        }
        return text;
    }

private:
    iconv_t handle_;
};

}  // namespace

std::optional<std::string> FromSystemCharset(std::string_view bytes, const SystemCharset& charset)
{
    Converter converter(charset.posixName);
    if (!converter.isOpen()) {
        return std::nullopt;
    }
    return converter.convert(std::string(bytes));
}

}  // namespace kesta::formats
