#include "zebstat/page_table.h"

namespace zebstat {

void writeTable(Markup& out, const Table& table) {
    const auto place =
        out.element("div", {{"class", "scroll"}, {"role", "region"}, {"aria-label", table.caption}, {"tabindex", "0"}});
    constexpr std::size_t kMany = 10;
    const auto whole = out.element("table", {{"class", table.headings.size() > kMany ? "many" : ""}});
    out.leaf("caption", table.caption);
    {
        const auto head = out.element("thead");
        const auto row = out.element("tr");
        for (const std::string& heading : table.headings)
            out.leaf("th", heading, {{"scope", "col"}});
    }
    const auto body = out.element("tbody");
    for (const Cells& cells : table.rows) {
        const auto row = out.element("tr");
        for (const std::string& cell : cells)
            if (&cell == &cells.front())
                out.leaf("th", cell, {{"scope", "row"}});
            else
                out.leaf("td", cell);
    }
}

void writeFacts(Markup& out, const FactTable& table) {
    const auto whole = out.element("table", {{"class", "facts"}});
    out.leaf("caption", table.caption);
    const auto body = out.element("tbody");
    for (const auto& [name, value] : table.rows) {
        const auto row = out.element("tr");
        out.leaf("th", name, {{"scope", "row"}});
        out.leaf("td", value);
    }
}

} // namespace zebstat
