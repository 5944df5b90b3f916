// Plain text tables for the terminal. By hand: no packaged library for C++ knows both how wide characters are and what
// a terminal would obey.
#pragma once

#include <string>
#include <vector>

namespace kesta {

class Table {
public:
    /// A heading that begins with '>' makes a right-aligned column.
    explicit Table(std::vector<std::string> headings);
    /// Control characters in the cells are made visible.
    void add(const std::vector<std::string>& cells);
    [[nodiscard]] std::string text(const std::string& indent) const;

private:
    std::vector<bool> rightAligned_;
    std::vector<std::vector<std::string>> rows_;  // the headings first
};

}  // namespace kesta
