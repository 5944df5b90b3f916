#include "core/text_blocks.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>

namespace kesta {

struct TextBlocks::Block {
    uint32_t texts;
};

namespace {

/// How far behind its block's beginning a text is; it stands in front of the text.
using Distance = uint16_t;

// Texts begin two bytes beyond a multiple of four, their distances at one.
constexpr size_t kGrain = 4;
constexpr size_t kBeyond = sizeof(DbChar);

#ifndef KESTA_TEXT_BLOCK
#define KESTA_TEXT_BLOCK 1024
#endif
constexpr size_t kFirstBlock = KESTA_TEXT_BLOCK;     // 0: none, so that a sanitizer sees each text by itself
constexpr size_t kLargestBlock = size_t{32} * 1024;  // from 64 KiB on free() tidies everything up, each time
constexpr size_t kLongText = size_t{4} * 1024;
constexpr size_t kPart = 8;  // of all before it a block may be so large a part: what is left of the last is little
static_assert(kLargestBlock <= std::numeric_limits<Distance>::max() && kBeyond == sizeof(Distance));

constexpr size_t UpToGrain(size_t offset)
{
    return (offset + kGrain - 1) / kGrain * kGrain;
}

}  // namespace

TextBlocks::~TextBlocks()
{
    if (block_ != nullptr && --block_->texts == 0) {
        std::free(block_);
    }
}

bool TextBlocks::start(size_t least) noexcept
{
    const size_t size = std::max(least, std::clamp(all_ / kPart, kFirstBlock, kLargestBlock));
    auto* block = static_cast<Block*>(std::malloc(size));
    if (block == nullptr) {
        return false;
    }
    block->texts = 1;
    Block* const full = std::exchange(block_, block);
    if (full != nullptr && --full->texts == 0) {
        std::free(full);
    }
    size_ = size;
    all_ += size;
    next_ = UpToGrain(sizeof(Block));
    return true;
}

DbChar* TextBlocks::cut(size_t units) noexcept
{
    const size_t bytes = sizeof(Distance) + units * sizeof(DbChar);
    if (kFirstBlock == 0 || bytes > kLongText) {
        return nullptr;
    }
    if (next_ + bytes > size_ && !start(UpToGrain(sizeof(Block)) + bytes)) {
        return nullptr;
    }
    auto* const begin = reinterpret_cast<std::byte*>(block_);
    const auto distance = static_cast<Distance>(next_ + sizeof(Distance));
    std::memcpy(begin + next_, &distance, sizeof distance);
    next_ = UpToGrain(next_ + bytes);
    ++block_->texts;
    return reinterpret_cast<DbChar*>(begin + distance);
}

bool TextBlocks::cutFromBlock(const DbChar* text) noexcept
{
    return reinterpret_cast<uintptr_t>(text) % kGrain == kBeyond;
}

void TextBlocks::giveBack(DbChar* text) noexcept
{
    auto* const bytes = reinterpret_cast<std::byte*>(text);
    Distance distance = 0;
    std::memcpy(&distance, bytes - sizeof distance, sizeof distance);
    auto* const block = reinterpret_cast<Block*>(bytes - distance);
    if (--block->texts == 0) {
        std::free(block);
    }
}

}  // namespace kesta
