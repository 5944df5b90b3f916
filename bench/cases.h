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

class LibraryCase : public BenchmarkCase {
protected:
    explicit LibraryCase(const DataSet& dataSet) : dataSet_(dataSet), library_(dataSet) {}
    /// By a connection of its own, so that the library's stays as it is.
    void change(const std::string& sql) const { Bare(dataSet_.database()).exec(sql.c_str()); }

    const DataSet& dataSet_;
    const Library library_;
};

class BareCase : public BenchmarkCase {
protected:
    BareCase(const DataSet& dataSet, Side side)
        : dataSet_(dataSet),
          db_(dataSet.bareDatabase(), side == Side::kUtf8Baseline ? TextForm::kUtf8 : TextForm::kUtf16)
    {
    }
    void change(const std::string& sql) const { Bare(dataSet_.bareDatabase()).exec(sql.c_str()); }

    const DataSet& dataSet_;
    Bare db_;
};

template <class OfLibrary, class OfBaseline, class... Args>
std::unique_ptr<BenchmarkCase> Make(Side side, const DataSet& dataSet, const Args&... args)
{
    if (side == Side::kLibrary) {
        return std::make_unique<OfLibrary>(dataSet, args...);
    }
    return std::make_unique<OfBaseline>(dataSet, side, args...);
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
