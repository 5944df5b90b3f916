// Trace lines: how they are made, that they grow, and that nobody pays for one that is not read.
#include "core/trace.h"

#include <limits>

#include "unit/module_under_test.h"

namespace kesta {
namespace {

using test::W;
using ::testing::ElementsAre;

class TraceLines : public ::testing::Test {
protected:
    static std::string onlyLine()
    {
        const std::vector<std::string> lines = ReplacedServices::take();
        return lines.size() == 1 ? lines.front() : std::to_string(lines.size()) + " lines";
    }

    ReplacedServices services;
};

TEST_F(TraceLines, DbTrace_EveryKindOfArgument_IsWritten)
{
    DbTrace("%s %s %s %d %d.\n", Name{"DB_Open"}, Plain{W("O'Brien \xF0\x9F\x8E\xB5")}, Plain{nullptr},
            int32_t{INT32_MIN}, int32_t{INT32_MAX});
    EXPECT_EQ(onlyLine(), "DB TRACE >> DB_Open O'Brien \xF0\x9F\x8E\xB5 (null) -2147483648 2147483647.\n");
}

TEST_F(TraceLines, DbTrace_TextOfAStatement_HasItsApostrophesDoubled)
{
    DbTrace("'%s' '%s'\n", Escaped{W("O'Brien's")}, Escaped{nullptr});
    EXPECT_EQ(onlyLine(), "DB TRACE >> 'O''Brien''s' ''\n");
}

/// The system reads a line up to its terminator.
TEST_F(TraceLines, DbTrace_EveryLength_EndsWithATerminator)
{
    static DbChar last;
    platform::services.writeTraceLine = [](const DbChar* line, size_t length) noexcept { last = line[length]; };
    for (const size_t length : {490u, 1u, 300u, 600u, 5u}) {  // what stood there before is no terminator
        last = u'?';
        DbTrace("%s\n", Plain{W(std::string(length, 'x'))});
        EXPECT_EQ(last, 0) << length;
    }
}

TEST_F(TraceLines, DbTrace_LengthsAroundTheShortLine_AreWhole)
{
    for (size_t length = 480; length < 530; ++length) {
        const std::string text(length, 'x');
        DbTrace("%s\n", Plain{W(text)});
        EXPECT_EQ(onlyLine(), "DB TRACE >> " + text + "\n");
    }
}

TEST_F(TraceLines, DbTrace_VeryLongText_IsWhole)
{
    const std::string text(100'000, 'x');
    DbTrace("<%s|%s>\n", Plain{W(text)}, Plain{W(text)});
    EXPECT_EQ(onlyLine(), "DB TRACE >> <" + text + "|" + text + ">\n");
}

TEST_F(TraceLines, DbTrace_NobodyReads_WritesNothing)
{
    platform::services.traceIsRead = []() noexcept { return false; };
    platform::services.memoryIsRead = []() noexcept { return false; };
    DbTrace("line\n");
    TraceNew(&services);
    Trail("DB_Open").error(1);
    EXPECT_THAT(ReplacedServices::take(), ElementsAre());
}

TEST_F(TraceLines, MemoryLines_Address_IsLowerCaseHexadecimal)
{
    TraceNew(reinterpret_cast<const void*>(uintptr_t{0xABCDEF01}));
    EXPECT_EQ(onlyLine(), "DB TRACE >> Memory abcdef01 NEW.\n");
    TraceDelete(reinterpret_cast<const void*>(std::numeric_limits<uintptr_t>::max()));
    EXPECT_EQ(onlyLine(), "DB TRACE >> Memory " + std::string(2 * sizeof(void*), 'f') + " DELETE.\n");
}

TEST_F(TraceLines, Trail_Failures_NameRoutineAndPosition)
{
    const Trail trail("SqlExec");
    trail.error(1);
    trail.error(2);
    trail.error(3);
    trail.exception();
    EXPECT_THAT(ReplacedServices::take(), ElementsAre("DB TRACE >> Error in SqlExec(), position 1.\n",
                                                      "DB TRACE >> Error in SqlExec(), position 2.\n",
                                                      "DB TRACE >> Error in SqlExec(), position 3.\n",
                                                      "DB TRACE >> An exception occured in SqlExec().\n"));
}

TEST_F(TraceLines, LocaleDate_NullAndInvalid_HaveTheirTexts)
{
    DbTrace("<%s>\n", LocaleDate{{1.0, kDateNull}});
    EXPECT_EQ(onlyLine(), "DB TRACE >> <>\n");
    DbTrace("<%s>\n", LocaleDate{{1.0, kDateInvalid}});
    EXPECT_EQ(onlyLine(), "DB TRACE >> <Invalid DateTime>\n");
    DbTrace("<%s>\n", LocaleDate{{1e18, kDateValid}});
    EXPECT_EQ(onlyLine(), "DB TRACE >> <Invalid DateTime>\n");
}

TEST_F(TraceLines, DbTrace_LoneSurrogates_ReachTheSystemAsTheyAre)
{
    static std::basic_string<DbChar> raw;
    platform::services.writeTraceLine = [](const DbChar* line, size_t length) noexcept { raw.assign(line, length); };
    DbTrace("%s\n", Plain{test::Text::ofUnits({0xD800, 'x'})});
    ASSERT_EQ(raw.size(), 15u);
    EXPECT_EQ(raw[12], static_cast<DbChar>(0xD800));
}

}  // namespace
}  // namespace kesta
