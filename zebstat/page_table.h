// Tables of the page.
#pragma once

#include "zebstat/page_markup.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zebstat {

using Cells = std::vector<std::string>;

/// A table with a row of headings; the first cell of each row names it. One that is wider than its place scrolls there.
struct Table {
    std::string caption;
    Cells headings;
    std::vector<Cells> rows;
};
void writeTable(Markup& out, const Table& table);

/// A table of names and what they are.
struct FactTable {
    std::string caption;
    std::vector<std::pair<std::string_view, std::string>> rows;
};
void writeFacts(Markup& out, const FactTable& table);

} // namespace zebstat
