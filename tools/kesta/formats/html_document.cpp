#include "formats/html_document.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <new>
#include <utility>

#include "formats/ascii.h"

namespace kesta::formats {
namespace {

// Gumbo looks through all open elements again and again. No browser's export comes near this.
constexpr size_t kDeepest = 512;

/// Elements that the parser closes by itself, or that hold nothing. Bookmark files leave them open all the time.
bool StaysFlat(std::string_view tag)
{
    constexpr std::array<std::string_view, 17> kFlat = {"P",  "DT", "DD",   "LI",   "A",     "H1", "H2", "H3", "H4",
                                                        "H5", "H6", "META", "LINK", "INPUT", "BR", "HR", "IMG"};
    return std::ranges::find(kFlat, tag) != kFlat.end();
}

/// How many elements stand open at once, at most, going by the tags alone.
size_t DepthOf(std::string_view text)
{
    size_t depth = 0, deepest = 0;
    for (size_t i = text.find('<'); i != std::string_view::npos; i = text.find('<', i + 1)) {
        const bool closing = i + 1 < text.size() && text[i + 1] == '/';
        const size_t begin = i + (closing ? 2 : 1);
        size_t end = begin;
        while (end < text.size() && end - begin < 16 && (IsLetter(text[end]) || IsDigit(text[end]))) {
            ++end;
        }
        if (end == begin || StaysFlat(ToUpper(text.substr(begin, end - begin)))) {
            continue;
        }
        if (!closing) {
            deepest = std::max(deepest, ++depth);
        } else if (depth > 0) {
            --depth;
        }
    }
    return deepest;
}

}  // namespace

/// What Gumbo has allocated. It is released from here and not by Gumbo, which goes down the tree by recursion.
class HtmlDocument::Memory {
public:
    explicit Memory(size_t limit) : left_(limit) {}
    ~Memory()
    {
        for (Block* block = first_.next; block != &first_;) {
            std::free(std::exchange(block, block->next));
        }
    }
    Memory(const Memory&) = delete;
    Memory& operator=(const Memory&) = delete;

    /// Throws bad_alloc: Gumbo does not look whether it got its memory.
    static void* allocate(void* self, size_t size) { return static_cast<Memory*>(self)->allocate(size); }
    static void release(void* self, void* contents)
    {
        if (contents) {
            static_cast<Memory*>(self)->release(static_cast<Block*>(contents) - 1);
        }
    }

private:
    struct alignas(std::max_align_t) Block {
        Block* previous;
        Block* next;
        size_t size;
    };

    void* allocate(size_t size)
    {
        if (size > left_) {
            throw std::bad_alloc();
        }
        void* memory = std::malloc(sizeof(Block) + size);
        if (!memory) {
            throw std::bad_alloc();
        }
        left_ -= size;
        Block* block = new (memory) Block{first_.previous, &first_, size};
        block->previous->next = block;
        first_.previous = block;
        return block + 1;
    }

    void release(Block* block)
    {
        left_ += block->size;
        block->previous->next = block->next;
        block->next->previous = block->previous;
        std::free(block);
    }

    Block first_{&first_, &first_, 0};
    size_t left_;
};

HtmlDocument::HtmlDocument(std::string_view utf8)
{
    if (DepthOf(utf8) > kDeepest) {
        return;
    }
    constexpr size_t kBase = size_t{64} << 20;
    constexpr size_t kPerByte = 64;
    memory_ = std::make_unique<Memory>(kBase + kPerByte * utf8.size());
    GumboOptions options = kGumboDefaultOptions;
    options.allocator = Memory::allocate;
    options.deallocator = Memory::release;
    options.userdata = memory_.get();
    options.max_errors = 0;
    try {
        output_ = gumbo_parse_with_options(&options, utf8.data(), utf8.size());
        root_ = output_->root;
    } catch (const std::bad_alloc&) {
        root_ = nullptr;
    }
}

HtmlDocument::~HtmlDocument() = default;

std::string_view HtmlDocument::documentType() const
{
    if (!output_ || !output_->document->v.document.has_doctype) {
        return {};
    }
    return output_->document->v.document.name;
}

}  // namespace kesta::formats
