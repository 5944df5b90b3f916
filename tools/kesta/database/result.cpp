#include "database/result.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace kesta {
namespace {

struct Sentence {
    int32_t code;
    const char* text;
};

constexpr std::array kSentences{Sentence{5, "another program has the database locked"},
                                Sentence{8, "the database is read-only"},
                                Sentence{10, "the database cannot be read or written (I/O error)"},
                                Sentence{11, "the database is damaged"},
                                Sentence{13, "no space is left on the PC for the database"},
                                Sentence{18, "the names are too long for the database"},
                                Sentence{19, "it is recorded already"}};

}  // namespace

std::string Result::text() const
{
    const auto found = std::find_if(kSentences.begin(), kSentences.end(),
                                    [this](const Sentence& sentence) { return sentence.code == code_; });
    return found == kSentences.end() ? fmt::format("result {}", code_) : found->text;
}

}  // namespace kesta
