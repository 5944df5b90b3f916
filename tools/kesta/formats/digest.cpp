#include "formats/digest.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

namespace kesta::formats {

std::string Digest(std::string_view contents)
{
    XXH128_canonical_t bytes;
    XXH128_canonicalFromHash(&bytes, XXH3_128bits(contents.data(), contents.size()));
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string digest;
    for (const unsigned char byte : bytes.digest) {
        digest += kDigits[byte >> 4];
        digest += kDigits[byte & 15];
    }
    return digest;
}

}  // namespace kesta::formats
