#include "database/failures.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace kesta {
namespace {

using kesta_db::Code;

struct Sentence {
    Code code;
    std::string_view text;
};

constexpr std::array kSentences{
    Sentence{Code::kUnreadable, "the database cannot be read, another program may have it locked for a long time"},
    Sentence{Code::kNotStored, "it was not stored"},
    Sentence{Code::kInvalidText, "it has a text that the database cannot hold"},
    Sentence{Code::kBusy, "another program has the database locked"},
    Sentence{Code::kReadOnly, "the database is read-only"},
    Sentence{Code::kIoError, "the database cannot be read or written (I/O error)"},
    Sentence{Code::kDamaged, "the database is damaged"},
    Sentence{Code::kDiskFull, "no space is left on the PC for the database"},
    Sentence{Code::kTooLong, "the names are too long for the database"},
    Sentence{Code::kExists, "it is recorded already"}};

}  // namespace

std::string SentenceOf(Code code)
{
    const auto found = std::find_if(kSentences.begin(), kSentences.end(),
                                    [&](const Sentence& sentence) { return sentence.code == code; });
    return found == kSentences.end() ? fmt::format("result {}", static_cast<int32_t>(code)) : std::string(found->text);
}

std::string TextOf(const kesta_db::Error& failure)
{
    const Code code = failure.code();
    if (failure.call() == "DB_Open") {
        return code == Code::kExists         ? "the database is read-only"
               : code == Code::kFileInTheWay ? "the database is of another version, or another program holds it"
                                             : "the database cannot be opened: " + SentenceOf(code);
    }
    if (failure.call() == "DB_LIB_PhoneDetected" && code == Code::kFailed) {
        return "DB_LIB_PhoneDetected failed: the phone could not be registered";
    }
    if (failure.call() == "DB_LIB_GetPhoneSetting" && code == Code::kFailed) {
        return "DB_LIB_GetPhoneSetting failed: the phone's settings cannot be read";
    }
    return fmt::format("{} failed: {}", failure.call(), SentenceOf(code));
}

}  // namespace kesta
