// The fuzzers' properties over the seeds and over mutations of them: a fixed sequence, the same in every run.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "fuzz/properties.h"

namespace kesta::test {
namespace {

std::vector<std::string> Seeds(const std::string& folder)
{
    std::vector<std::filesystem::path> files;
    for (const auto& file : std::filesystem::directory_iterator(std::string(KESTA_FUZZ_SEEDS) + "/" + folder)) {
        files.push_back(file.path());
    }
    std::ranges::sort(files);
    std::vector<std::string> seeds;
    for (const auto& file : files) {
        std::ifstream in(file, std::ios::binary);
        std::ostringstream contents;
        contents << in.rdbuf();
        seeds.push_back(contents.str());
    }
    return seeds;
}

class Mutator {
public:
    explicit Mutator(const Format& target, std::vector<std::string> seeds) : target_(target), seeds_(std::move(seeds))
    {
    }

    std::string next()
    {
        std::string text = seeds_[below(seeds_.size())];
        for (size_t changes = 1 + below(6); changes > 0; --changes) {
            change(text);
        }
        return text;
    }

private:
    // The standard's distributions differ between libraries, its engines do not.
    size_t below(size_t limit) { return limit == 0 ? 0 : random_() % limit; }

    void change(std::string& text)
    {
        const size_t at = below(text.size() + 1);
        const size_t length = below(20);
        switch (below(6)) {
            case 0:
                text.erase(at, length);
                break;
            case 1:
                text.insert(at, target_.words[below(target_.words.size())]);
                break;
            case 2:
                if (at < text.size()) {
                    text[at] = static_cast<char>(below(256));
                }
                break;
            case 3:
                text.insert(at, text.substr(below(text.size() + 1), 8 * length));
                break;
            case 4:
                text.resize(at);
                break;
            default: {
                const std::string& other = seeds_[below(seeds_.size())];
                text.insert(at, other.substr(below(other.size() + 1)));
            }
        }
    }

    const Format& target_;
    std::vector<std::string> seeds_;
    std::mt19937 random_{20240229};
};

class Properties : public testing::TestWithParam<Format> {};

TEST_P(Properties, HoldForSeedsAndMutations)
{
    const std::vector<std::string> seeds = Seeds(GetParam().name);
    ASSERT_FALSE(seeds.empty());
    for (const std::string& seed : seeds) {
        GetParam().check(seed);
    }
    GetParam().check("");
    Mutator mutator(GetParam(), seeds);
    for (int i = 0; i < 20'000; ++i) {
        GetParam().check(mutator.next());
    }
}

INSTANTIATE_TEST_SUITE_P(Readers, Properties, testing::ValuesIn(Formats().begin(), Formats().end()),
                         [](const auto& target) { return std::string(target.param.name); });

}  // namespace
}  // namespace kesta::test
