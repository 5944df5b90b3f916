// What is Windows' own: its code page, its date format, its names for objects.
#include <gtest/gtest.h>
#include <windows.h>

#include <array>
#include <future>
#include <string>

#include "platform/calendar.h"
#include "platform/code_page.h"
#include "platform/named_mutex.h"
#include "platform/services.h"
#include "support/text.h"

namespace kesta::platform {
namespace {

TEST(AnsiCodePage, WesternLetters_BecomeOneByteAndOthersAQuestionMark)
{
    if (GetACP() != 1252) {
        GTEST_SKIP() << "the code page of this system is " << GetACP();
    }
    const test::Text text = test::W("é€中");
    std::string out(4, '#');
    EXPECT_EQ(AnsiFromWide(text, text.length(), out.data(), 3), 3u);
    EXPECT_EQ(out, "\xE9\x80?#");
    EXPECT_EQ(AnsiFromWide(text, text.length(), out.data(), 2), kDoesNotFit);
}

TEST(LocaleDateOnWindows, IsTheUsersOwnFormat)
{
    std::array<DbChar, 64> text = {};
    ASSERT_GT(LocaleDate(45351.5, text.data(), text.size()), 0u);
    std::array<wchar_t, 64> expected = {};
    const SYSTEMTIME date = {2024, 2, 0, 29, 12, 0, 0, 0};
    ASSERT_GT(GetDateFormatW(LOCALE_USER_DEFAULT, DATE_SHORTDATE, &date, nullptr, expected.data(), 64), 0);
    EXPECT_EQ(test::Utf8(text.data()).substr(0, test::Utf8(expected.data()).size()), test::Utf8(expected.data()));
}

TEST(TraceOnWindows, AlwaysCountsAsRead)
{
    EXPECT_TRUE(services.traceIsRead());
}

TEST(NamedMutexOnWindows, NameTakenBySomethingElse_StillSerialisesThisProcess)
{
    const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, L"KESTA_TEST_TAKEN_NAME");
    ASSERT_NE(event, nullptr);
    NamedMutex mutex;
    mutex.open("KESTA_TEST_TAKEN_NAME", [] { return Path(); });
    mutex.lock();
    std::future<void> other = std::async(std::launch::async, [&] {
        mutex.lock();
        mutex.unlock();
    });
    EXPECT_EQ(other.wait_for(std::chrono::milliseconds(200)), std::future_status::timeout);
    mutex.unlock();
    EXPECT_EQ(other.wait_for(std::chrono::seconds(30)), std::future_status::ready);
    mutex.close();
    CloseHandle(event);
}

}  // namespace
}  // namespace kesta::platform
