// What the operations of all families share.
#pragma once

#include <memory>
#include <string>

#include "bare.h"
#include "library.h"
#include "operations.h"

namespace kesta::bench {

/// A number below `count` that is far from those of neighbouring `i`: as calls on different entries have them.
inline size_t Scattered(size_t i, size_t count)
{
    return i * 7919 % count;
}

class LibraryWork : public Work {
protected:
    explicit LibraryWork(const Scene& scene) : scene_(scene), library_(scene) {}
    /// By a connection of its own, so that the library's stays as it is.
    void change(const std::string& sql) const { Bare(scene_.database()).exec(sql.c_str()); }

    const Scene& scene_;
    const Library library_;
};

class BareWork : public Work {
protected:
    BareWork(const Scene& scene, Side side)
        : scene_(scene), db_(scene.bareDatabase(), side == Side::kUtf8Floor ? TextForm::kUtf8 : TextForm::kUtf16)
    {
    }
    void change(const std::string& sql) const { Bare(scene_.bareDatabase()).exec(sql.c_str()); }

    const Scene& scene_;
    Bare db_;
};

template <class OfLibrary, class OfFloor, class... Args>
std::unique_ptr<Work> Make(Side side, const Scene& scene, const Args&... args)
{
    if (side == Side::kLibrary) {
        return std::make_unique<OfLibrary>(scene, args...);
    }
    return std::make_unique<OfFloor>(scene, side, args...);
}

inline void AddText(ListSize& size, const char16_t* text)
{
    if (text == nullptr) {
        return;
    }
    ++size.pieces;
    size.bytes += (std::char_traits<char16_t>::length(text) + 1) * sizeof *text;
}

}  // namespace kesta::bench
