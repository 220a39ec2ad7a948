// What translators make of the numbers and names of foreign parameter files.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "import/format.h"

namespace zolt {

/// Parameters may hold anything that reads as a number; what is none of use counts as not given: 0.
double finite_or_zero(double value);
float float_or_zero(double value);
float positive_or_zero(double value);
int32_t count_or_zero(double value);

/// "13C" for C13, 13C, Carbon13 and Carbon 13; "1H" also for Proton. Other names stay as they are.
std::string nucleus_name(std::string_view name);

/// Length of texts in the data set.
constexpr size_t longest_text = 127;

/// Appends a row of points to the temporary files of a translation. False after t.fail, which names the stage.
bool write_points(Translation& t, std::span<const Complex> points, const char* stage);

/// "\nError in <stage> Module", the last line of a stage's failure message.
std::string stage_line(const char* stage);

}  // namespace zolt
