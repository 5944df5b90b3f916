#include "report/table.h"

#include <algorithm>

#include "base/text.h"

namespace kesta {

Table::Table(std::vector<std::string> headings)
{
    for (std::string& heading : headings) {
        rightAligned_.push_back(heading.starts_with('>'));
        if (rightAligned_.back()) {
            heading.erase(0, 1);
        }
    }
    rows_.push_back(std::move(headings));
}

void Table::add(const std::vector<std::string>& cells)
{
    std::vector<std::string> row;
    row.reserve(cells.size());
    for (const std::string& cell : cells) {
        row.push_back(Printable(cell));
    }
    rows_.push_back(std::move(row));
}

std::string Table::text(const std::string& indent) const
{
    std::vector<size_t> widths(rightAligned_.size(), 0);
    for (const auto& row : rows_) {
        for (size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], DisplayWidth(row[i]));
        }
    }
    std::string text;
    for (const auto& row : rows_) {
        std::string line = indent;
        for (size_t i = 0; i < row.size(); ++i) {
            const std::string blanks(widths[i] - DisplayWidth(row[i]), ' ');
            line += (i == 0 ? "" : "  ") + (rightAligned_[i] ? blanks + row[i] : row[i] + blanks);
        }
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + '\n';
    }
    return text;
}

}  // namespace kesta
