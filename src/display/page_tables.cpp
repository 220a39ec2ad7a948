// Rows flow into blocks; every block of a table has the same columns, as wide as their widest texts.
#include "display/page_tables.h"

#include <algorithm>
#include <cmath>

#include "common/text.h"
#include "display/lettering.h"

namespace zolt {

namespace {

constexpr double line_height = 1.35, column_gap = 1.1, block_gap = 3;  // times the size of the text
constexpr double longest_label = 9;

double line_of(double size) { return size * line_height; }

std::vector<double> column_widths(const PageTable& table, double size) {
    std::vector<double> widths;
    for (size_t column = 0; column < table.heads.size(); ++column) {
        double widest = text_width(table.heads[column], size);
        for (const auto& row : table.rows) widest = std::max(widest, text_width(row[column], size));
        if (table.last_is_text && column + 1 == table.heads.size()) widest = std::min(widest, longest_label * size);
        widths.push_back(widest + column_gap * size);
    }
    return widths;
}

double block_width(const std::vector<double>& columns, double size) {
    double width = block_gap * size;
    for (const double column : columns) width += column;
    return width;
}

size_t blocks_of(const PageTable& table, size_t rows) { return (table.rows.size() + rows - 1) / rows; }

// Room for rows below the heads.
size_t rows_within(double height, double size) {
    return static_cast<size_t>(std::max(1.0, std::floor(height / line_of(size) + 1e-6) - 1));
}

std::vector<double> block_widths(const std::vector<PageTable>& tables, double size) {
    std::vector<double> widths;
    for (const PageTable& table : tables) widths.push_back(block_width(column_widths(table, size), size));
    return widths;
}

class Block {
public:
    Block(Picture& picture, const PageTable& table, std::vector<double> columns, double size)
        : picture_(picture), table_(table), columns_(std::move(columns)), size_(size) {}

    /// The heads and some of the rows; the last one says how many are left out where no other block follows.
    void add_rows(Point at, size_t first, size_t end, bool last_place) {
        add(at, table_.heads, Ink::axis);
        for (size_t row = first; row < end; ++row) {
            at.y += line_of(size_);
            if (last_place && row + 1 == end && end < table_.rows.size())
                picture_.records.emplace_back(Text{{at.x + column_gap * size_, at.y},
                                                   format_text("\u2026 %zu more", table_.rows.size() - row),
                                                   Ink::text,
                                                   size_,
                                                   Anchor::start,
                                                   0,
                                                   false});
            else
                add(at, table_.rows[row], Ink::text);
        }
    }

private:
    void add(Point at, const std::vector<std::string>& cells, Ink ink) {
        for (size_t i = 0; i < cells.size(); ++i) {
            const bool words = table_.last_is_text && i + 1 == cells.size();
            const double inner = columns_[i] - column_gap * size_;
            const std::string text = shortened(cells[i], size_, inner + 0.5);
            const Point place{words ? at.x + column_gap * size_ : at.x + columns_[i], at.y};
            at.x += columns_[i];
            if (!text.empty())
                picture_.records.emplace_back(Text{place, text, ink, size_, words ? Anchor::start : Anchor::end, 0, false});
        }
    }

    Picture& picture_;
    const PageTable& table_;
    std::vector<double> columns_;
    double size_;
};

std::string number_of(size_t i) { return std::to_string(i + 1); }

PageTable integral_table(const DataSet& data) {
    const Axis axis = data.dims[0].axis();
    const bool shift = axis.has_ppm();
    PageTable table{{"Integral", shift ? "from, ppm" : "from, Hz", shift ? "to, ppm" : "to, Hz", "value"}, {}, false};
    const double scale = static_cast<double>(data.rel_value);
    const bool whole = std::all_of(data.integrals.begin(), data.integrals.end(),
                                   [&](const Integral& region) { return static_cast<double>(region.value) * scale >= 100; });
    for (size_t i = 0; i < data.integrals.size(); ++i) {
        const Integral& region = data.integrals[i];
        table.rows.push_back({number_of(i), format_text("%.3f", axis.ppm(region.start)), format_text("%.3f", axis.ppm(region.end)),
                              format_text("%.*f", whole ? 0 : 2, static_cast<double>(region.value) * scale)});
    }
    return table;
}

PageTable peak_table(const DataSet& data) {
    const Axis axis = data.dims[0].axis();
    PageTable table{{"Peak", axis.has_ppm() ? "ppm" : "point", "Hz", "%", "label"}, {}, true};
    double tallest = 0;
    bool labels = false;
    for (const Peak& peak : data.peaks) {
        tallest = std::max(tallest, std::abs(peak.intensity));
        labels = labels || !peak.label.empty();
    }
    for (size_t i = 0; i < data.peaks.size(); ++i) {
        const Peak& peak = data.peaks[i];
        table.rows.push_back({number_of(i),
                              axis.has_ppm() ? format_text("%.4f", axis.ppm(peak.point)) : format_text("%.1f", peak.point + 1),
                              format_text("%.2f", axis.hz(peak.point)),
                              format_text("%.1f", tallest > 0 ? 100 * peak.intensity / tallest : 0.0), display_line(peak.label)});
    }
    if (labels) return table;
    table.last_is_text = false;
    table.heads.pop_back();
    for (auto& row : table.rows) row.pop_back();
    return table;
}

}  // namespace

std::vector<PageTable> page_tables(const DataSet& data) {
    std::vector<PageTable> tables;
    if (!data.integrals.empty()) tables.push_back(integral_table(data));
    if (!data.peaks.empty()) tables.push_back(peak_table(data));
    return tables;
}

double tables_height(const std::vector<PageTable>& tables, double width, double most, double size) {
    if (tables.empty()) return 0;
    const std::vector<double> blocks = block_widths(tables, size);
    const auto fits = [&](size_t rows) {
        double needed = -block_gap * size;
        for (size_t i = 0; i < tables.size(); ++i) needed += static_cast<double>(blocks_of(tables[i], rows)) * blocks[i];
        return needed <= width;
    };
    const size_t limit = rows_within(most, size);
    size_t rows = 1;
    while (rows < limit && !fits(rows)) ++rows;
    return static_cast<double>(rows + 1) * line_of(size);
}

void add_tables(Picture& picture, const std::vector<PageTable>& tables, const Point& at, double width, double height, double size) {
    const size_t rows = rows_within(height, size);
    const std::vector<double> blocks = block_widths(tables, size);
    double x = at.x - column_gap * size, end = at.x + width + block_gap * size + 0.5;
    for (const double block : blocks) end -= block;
    for (size_t i = 0; i < tables.size(); ++i) {
        // A table may take all but one block of each one behind it.
        end += blocks[i];
        const PageTable& table = tables[i];
        Block block(picture, table, column_widths(table, size), size);
        for (size_t first = 0; first < table.rows.size() && x + blocks[i] <= end; first += rows, x += blocks[i]) {
            const bool last_place = x + 2 * blocks[i] > end;
            block.add_rows({x, at.y + size}, first, std::min(first + rows, table.rows.size()), last_place);
        }
    }
}

}  // namespace zolt
