#include "torture/random_calls/exports.h"

#include <string_view>
#include <tuple>
#include <utility>

namespace kesta::test {
namespace {

template <class... Parameters>
int32_t CallWith(int32_t (*function)(Parameters...), Caller& caller)
{
    // In braces the arguments take their bytes in their order.
    std::tuple<Argument<Parameters>...> arguments = {Argument<Parameters>(caller)...};
    return std::apply(
        [&](auto&... argument) {
            const int32_t result = function(argument.value()...);
            (argument.check(caller), ...);
            return result;
        },
        arguments);
}

constexpr AnyExport kExports[] = {
#define KESTA_EXPORT(name, ordinal) {#name, [](Caller& caller) { return CallWith(caller.library.name, caller); }},
#include "support/export_list.inc"
#undef KESTA_EXPORT
};
static_assert(std::size(kExports) <= 256, "one byte of a call chooses its export");

enum class Results { kZeroOrOne, kZero, kOne, kOpen, kStored, kSqlite, kPhone, kBackup, kFailures };

struct Contract {
    std::string_view name;
    Results results;
};

constexpr Contract kContracts[] = {
#define KESTA_RESULTS(name, results) {name, Results::results},
#include "torture/results.inc"
#undef KESTA_RESULTS
};

Results ResultsOf(std::string_view name)
{
    for (const Contract& contract : kContracts) {
        const bool isEnd = contract.name.front() == '*';
        if (isEnd ? name.ends_with(contract.name.substr(1)) : name == contract.name) {
            return contract.results;
        }
    }
    return Results::kZeroOrOne;
}

bool IsKnown(Results results, int32_t result)
{
    switch (results) {
        case Results::kZero:
        case Results::kOpen:  // the database is open here
            return result == 0;
        case Results::kOne:  // unless an IMEI that is SQL itself makes the statement another one
            return result == 0 || result == 1;
        case Results::kStored:
            return true;
        case Results::kSqlite:
            return (result >= 0 && result <= 28) || result == 100 || result == 101;
        case Results::kPhone:
            return result == -1 || result > 0;
        case Results::kBackup:
            return result == 0 || result == 1 || result == 183;
        case Results::kFailures:
            return result >= 0 && result <= 2;
        case Results::kZeroOrOne:
            break;
    }
    return result == 0 || result == 1;
}

}  // namespace

std::span<const AnyExport> AllExports()
{
    return kExports;
}

void CheckResult(const char* name, int32_t result)
{
    if (!IsKnown(ResultsOf(name), result)) {
        Fail("%s() answered %d", name, result);
    }
}

}  // namespace kesta::test
