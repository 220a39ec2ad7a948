// Tables of numbers as programs and spreadsheets write them: one to three columns, a decimal point or comma, and blanks,
// tabs, semicolons or commas between the columns.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>

#include "common/buffer.h"

namespace zolt {

struct NumberTable {
    size_t columns = 0, rows = 0;
    std::array<Buffer<double>, 3> values;
    std::string wrong;  ///< "" or why it is no such table

    std::span<const double> column(size_t index) const { return values[index].span().first(rows); }
};

/// How the numbers of a table are written.
struct NumberStyle {
    bool decimal_comma = false;
};
NumberStyle style_of(std::string_view lines);

/// The numbers of one line into `row`; their count, 0 when the line holds anything else or too many.
size_t numbers_of_line(std::string_view line, NumberStyle style, std::array<double, 3>& row);

/// All lines; blank ones are passed over, all others have as many numbers as the first.
NumberTable read_table(std::string_view lines, NumberStyle style);

/// True when the values rise or fall in equal steps, but for the rounding of their text: the abscissa of the others.
bool equal_steps(std::span<const double> values);

}  // namespace zolt
