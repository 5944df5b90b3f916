// Texts of a list, cut from blocks: whole, apart from each other, and each with an end of its own.
#include "core/text_blocks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "core/caller_memory.h"

namespace kesta {
namespace {

using Letters = std::basic_string<DbChar>;

class TextsOfAList : public ::testing::Test {
protected:
    void SetUp() override
    {
        DbChar* const text = blocks->cut(1);
        if (text == nullptr) {
            GTEST_SKIP() << "built so that each text has memory of its own";
        }
        TextBlocks::giveBack(text);
    }

    static Letters content(size_t number)
    {
        Letters text(number * 7 % 300, DbChar{});
        for (size_t i = 0; i < text.size(); ++i) {
            text[i] = static_cast<DbChar>('a' + (number + i) % 26);
        }
        return text;
    }

    /// Cuts and fills as many texts as take several blocks.
    std::vector<DbChar*> cutMany(size_t count = 2000)
    {
        std::vector<DbChar*> texts;
        for (size_t i = 0; i < count; ++i) {
            const Letters letters = content(i);
            DbChar* const text = blocks->cut(letters.size() + 1);
            std::copy_n(letters.c_str(), letters.size() + 1, text);
            texts.push_back(text);
        }
        return texts;
    }

    std::unique_ptr<TextBlocks> blocks = std::make_unique<TextBlocks>();
};

TEST_F(TextsOfAList, Cut_ManyLengths_AreWholeAndApart)
{
    const std::vector<DbChar*> texts = cutMany();
    for (size_t i = 0; i < texts.size(); ++i) {
        ASSERT_TRUE(TextBlocks::cutFromBlock(texts[i])) << i;
        ASSERT_EQ(content(i), texts[i]) << i;
    }
    for (DbChar* text : texts) {
        TextBlocks::giveBack(text);
    }
}

TEST_F(TextsOfAList, GiveBack_InAnyOrderWhenTheBlocksAreGone_LeavesTheOthersAlone)
{
    std::vector<DbChar*> texts = cutMany();
    blocks.reset();
    std::vector<size_t> order(texts.size());
    for (size_t i = 0; i < order.size(); ++i) {
        order[i] = i;
    }
    std::shuffle(order.begin(), order.end(), std::mt19937(7));
    for (size_t done = 0; done < order.size(); ++done) {
        ASSERT_EQ(content(order[done]), texts[order[done]]) << done;
        FreeText(texts[order[done]]);
        ASSERT_EQ(texts[order[done]], nullptr);
    }
}

TEST_F(TextsOfAList, Cut_WhileEarlierOnesGo_NeverUsesTheirBlockAgain)
{
    const Letters letters = content(40);
    DbChar* const kept = blocks->cut(letters.size());
    std::copy_n(letters.data(), letters.size(), kept);
    for (int i = 0; i < 5000; ++i) {
        DbChar* const text = blocks->cut(200);
        std::fill_n(text, 200, DbChar{});
        TextBlocks::giveBack(text);
    }
    EXPECT_EQ(Letters(kept, letters.size()), letters);
    TextBlocks::giveBack(kept);
}

TEST_F(TextsOfAList, Cut_LongText_HasMemoryOfItsOwn)
{
    EXPECT_EQ(blocks->cut(2048), nullptr);
    DbChar* text = NewText(2047, blocks.get());
    EXPECT_FALSE(TextBlocks::cutFromBlock(text));
    EXPECT_EQ(text[2047], 0);
    FreeText(text);
    EXPECT_EQ(text, nullptr);
    DbChar* const longest = blocks->cut(2046);
    ASSERT_NE(longest, nullptr);
    std::fill_n(longest, 2046, DbChar{});
    TextBlocks::giveBack(longest);
}

TEST_F(TextsOfAList, CutFromBlock_WhatMallocGives_IsNot)
{
    for (size_t size = 1; size < 3000; size += 13) {
        const std::unique_ptr<void, decltype(&std::free)> memory(std::malloc(size), &std::free);
        EXPECT_FALSE(TextBlocks::cutFromBlock(static_cast<const DbChar*>(memory.get())));
    }
    EXPECT_FALSE(TextBlocks::cutFromBlock(nullptr));
}

}  // namespace
}  // namespace kesta
