// Part of every program that runs in several code pages: which of them it has, the emulator takes from the environment.
#include <gtest/gtest.h>

#include <cstdlib>

#include "support/text.h"

namespace kesta::test {
namespace {

TEST(CodePage, OfThisRun_IsTheOneMeant)
{
    const char* expected = std::getenv("KESTA_TEST_PARAGRAPH_SIGN");
    if (expected == nullptr) {
        GTEST_SKIP() << "any code page will do";
    }
    std::string bytes;
    for (const char byte : Ansi(W("\xC2\xA7"))) {
        for (const int shift : {4, 0}) {
            bytes += "0123456789abcdef"[static_cast<unsigned char>(byte) >> shift & 0xF];
        }
    }
    EXPECT_EQ(bytes, expected);
}

}  // namespace
}  // namespace kesta::test
