// The tables of a block and the columns that describe them.
#include "import/jcamp_block.h"

#include <algorithm>
#include <cmath>

#include "common/numbers.h"
#include "common/text.h"

namespace zolt {

namespace {

bool finite_number(std::string_view field, std::optional<double>& number) {
    number = leading_number(field);
    if (number && !std::isfinite(*number)) number.reset();
    return number.has_value();
}

// Field `index` of the list of a label, "" without one.
std::string_view field_of(const JcampBlock& block, std::string_view label, size_t index) {
    const JcampRecord* record = block.find(label);
    if (record == nullptr) return {};
    const auto fields = record->list();
    return index < fields.size() ? fields[index] : std::string_view{};
}

double usable_factor(std::optional<double> factor) { return factor && *factor != 0 ? *factor : 1.0; }

std::optional<int64_t> count(std::string_view field) {
    std::optional<double> number;
    if (!finite_number(field, number) || *number < 1 || *number > 9e15) return std::nullopt;
    return static_cast<int64_t>(*number);
}

// The column of a symbol of the table description; its symbol stays empty when there is none.
JcampColumn column_of(const JcampBlock& block, const std::string& symbol) {
    JcampColumn column;
    const JcampRecord* symbols = block.find("SYMBOL");
    if (symbols == nullptr) return column;
    const auto names = symbols->list();
    for (size_t i = 0; i < names.size(); ++i) {
        if (folded(names[i]) != symbol) continue;
        std::optional<double> factor;
        finite_number(field_of(block, "FACTOR", i), factor);
        column = {symbol, folded(field_of(block, "UNITS", i)), usable_factor(factor)};
        finite_number(field_of(block, "FIRST", i), column.first);
        finite_number(field_of(block, "LAST", i), column.last);
        column.points = count(field_of(block, "VARDIM", i));
        column.squeezed = folded(field_of(block, "VARFORM", i)) == "ASDF";
        return column;
    }
    return column;
}

// "(T2++(R..R)), PROFILE" is the table of R along T2. False for any other form.
bool take_form(std::string_view form, JcampTable& table) {
    const std::string text = folded(form);
    const size_t plus = text.find("++("), dots = text.find(".."), end = text.find("))");
    if (!text.starts_with('(') || plus == text.npos || dots == text.npos || end == text.npos || plus > dots) return false;
    table.variable = text.substr(1, plus - 1);
    table.column = text.substr(plus + 3, dots - plus - 3);
    return true;
}

// "T1=2.08E-4" stands at that value along T1.
std::optional<double> page_value(std::string_view page) {
    const size_t equals = page.find('=');
    std::optional<double> value;
    if (equals != std::string_view::npos) finite_number(page.substr(equals + 1), value);
    return value;
}

std::string_view page_symbol(std::string_view page) { return trimmed(page.substr(0, page.find('='))); }

std::string wrong_form(const JcampRecord& record) {
    return format_text("it has a table of the form %s, not (X++(Y..Y))", std::string(cut(record.value(), 60)).c_str());
}

std::string read_xydata(const JcampRecord& record, JcampLayout& layout) {
    JcampTable table{&record, {}, {}, {}};
    const JcampBlock& block = layout.block;
    if (!take_form(record.value(), table)) return wrong_form(record);
    layout.x = {table.variable, folded(block.text("XUNITS")), usable_factor(block.number("XFACTOR")), block.number("FIRSTX"),
                block.number("LASTX")};
    layout.y = {table.column, {}, usable_factor(block.number("YFACTOR"))};
    const auto delta = block.number("DELTAX");
    const JcampRecord* points = block.find("NPOINTS");
    if (points != nullptr) layout.y.points = count(points->value());
    if (delta && layout.x.first && !layout.x.last && layout.y.points)
        layout.x.last = *layout.x.first + *delta * static_cast<double>(*layout.y.points - 1);
    layout.real_rows.push_back(table);
    return {};
}

// The tables behind the NTUPLES label in their order. The first column met holds the real parts, another the imaginary.
std::string read_pages(JcampLayout& layout) {
    std::optional<double> page;
    std::string_view symbol;
    bool ended = false;
    for (const JcampRecord& record : layout.block) {
        ended = ended || folded(record.label).starts_with("END");
        if (record.is("PAGE")) {
            page = page_value(record.value());
            symbol = page_symbol(record.value());
        }
        if (!record.is("DATATABLE")) continue;
        ended = false;
        JcampTable table{&record, {}, {}, page};
        if (!take_form(record.value(), table)) return wrong_form(record);
        if (layout.real_rows.empty()) {
            layout.x = column_of(layout.block, table.variable);
            layout.page = column_of(layout.block, folded(symbol));
        }
        const bool real = layout.real_rows.empty() || table.column == layout.real_rows[0].column;
        auto& rows = real ? layout.real_rows : layout.imaginary_rows;
        if (!rows.empty() && table.column != rows[0].column)
            return format_text("its tables hold more than real and imaginary parts: %s", table.column.c_str());
        rows.push_back(table);
    }
    if (layout.real_rows.empty()) return "it has no data table";
    if (!ended) return "no ##END stands behind its last table: a part of it is missing";
    if (layout.real_rows[0].column == "I" && !layout.imaginary_rows.empty()) layout.real_rows.swap(layout.imaginary_rows);
    if (!layout.imaginary_rows.empty() && layout.imaginary_rows.size() != layout.real_rows.size())
        return format_text("it has %zu tables of real and %zu of imaginary parts", layout.real_rows.size(),
                           layout.imaginary_rows.size());
    layout.y = column_of(layout.block, layout.real_rows[0].column);
    if (!layout.imaginary_rows.empty()) layout.imaginary = column_of(layout.block, layout.imaginary_rows[0].column);
    return {};
}

// Bruker's software names itself, or leaves the parameters of its digital filter.
bool of_bruker(const JcampBlock& block) {
    return folded(block.text("ORIGIN")).find("BRUKER") != std::string::npos || block.find("$DSPFVS") != nullptr ||
           block.find("$BRUKERFILEEXP") != nullptr;
}

std::string no_points(const JcampBlock& block) {
    for (const char* kind : {"PEAK TABLE", "PEAK ASSIGNMENTS", "XYPOINTS", "RADATA", "ASSIGNMENTS"})
        if (block.find(folded(kind)) != nullptr)
            return format_text("it holds a ##%s and no ##XYDATA or ##NTUPLES: no equally spaced points", kind);
    return "it has neither ##XYDATA nor ##NTUPLES";
}

}  // namespace

std::string read_layout(const JcampBlock& block, JcampLayout& layout) {
    layout.block = block;
    const JcampRecord* xydata = block.find("XYDATA");
    std::string wrong = block.find("NTUPLES") != nullptr ? read_pages(layout)
                        : xydata != nullptr              ? read_xydata(*xydata, layout)
                                                         : no_points(block);
    if (!wrong.empty()) return wrong;
    layout.spectrum = block.data_type().find("FID") == std::string::npos && block.data_type().find("TPPI") == std::string::npos;
    layout.own = block.text("ORIGIN").starts_with("ZOLT FULL") && block.find("$POINTS") != nullptr;
    layout.bruker = !layout.own && of_bruker(block);
    layout.points = layout.y.points.value_or(layout.x.points.value_or(0));
    if (layout.own) return {};
    layout.descending_x = !layout.spectrum || !layout.x.first || !layout.x.last || *layout.x.first >= *layout.x.last;
    const auto first = layout.real_rows.front().page, last = layout.real_rows.back().page;
    if (layout.real_rows.size() > 1 && first && last) {
        layout.page.first = first;
        layout.page.last = last;
        layout.descending_page = !layout.spectrum || *first >= *last;
    }
    return {};
}

}  // namespace zolt
