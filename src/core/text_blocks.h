// The texts of one list, cut from larger blocks of memory: a list of ten thousand rows would otherwise spend a quarter
// of its time in malloc and free. Each text can be freed by itself; a block goes with the last of its texts.
//
//     TextBlocks blocks;
//     rows.cutTextsFrom(blocks);
#pragma once

#include <cstddef>

#include "kesta_db/kesta_db.h"

namespace kesta {

class TextBlocks {
public:
    TextBlocks() = default;
    TextBlocks(const TextBlocks&) = delete;
    TextBlocks& operator=(const TextBlocks&) = delete;
    ~TextBlocks();

    /// Room for `units` code units; null where there is no memory, or where a text of that length has better its own.
    DbChar* cut(size_t units) noexcept;

    /// Whether `text` is of a block: it lies where malloc never begins anything.
    static bool cutFromBlock(const DbChar* text) noexcept;
    /// Ends such a text.
    static void giveBack(DbChar* text) noexcept;

private:
    struct Block;
    bool start(size_t least) noexcept;

    Block* block_ = nullptr;  // counts as one more text of it
    size_t size_ = 0;
    size_t all_ = 0;   // of this block and those before it
    size_t next_ = 0;  // where in the block the next text begins, its distance in front
};

}  // namespace kesta
