// Reading numbers without regard to the locale, and the power-of-two helpers.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace zolt {

/// The number that the text begins with (blanks and a sign allowed in front); nothing when it begins with none.
/// "3D" gives 3, "2.5Hz" 2.5, "abc" nothing.
std::optional<double> leading_number(std::string_view text);

/// As leading_number, 0 without one: the value of a text-to-double conversion.
double number_or_zero(std::string_view text);

/// The integer that the text begins with, clamped to 64 bits; 0 without one.
int64_t integer_or_zero(std::string_view text);

/// True for 2, 4, 8 … 2^31; 1 is not a power of two here.
bool is_power_of_two(uint64_t count);

/// The smallest power of two, starting from 1, that is not below `count`.
uint64_t next_power_of_two(uint64_t count);

}  // namespace zolt
