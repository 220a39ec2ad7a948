// The numbers of macros: registers, memories and the math register, and how they are read and written as text.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zolt {

constexpr int register_count = 100;

/// The values that macros share for the whole run; unset ones are 0.
struct Registers {
    double registers[register_count] = {};
    double memories[register_count] = {};
    double math = 0;   ///< what DO MATH works on when no other place is named
    int decimals = 6;  ///< DECPLACES: digits behind the point of a number put into a line
};

extern Registers registers;

/// The place named `R3`, `M3` or `MATH`; nullptr for none.
double* register_named(std::string_view name);
/// The register (memory) with a number as typed, `3` or `R3` (`M3`); nullptr outside 0 to 99.
double* register_numbered(std::string_view number);
double* memory_numbered(std::string_view number);

/// The whole text as a number; nothing when more or less than one stands there.
std::optional<double> number_of(std::string_view text);
/// A number, or the value of a named place.
std::optional<double> operand(std::string_view text);

/// A number with at most DECPLACES decimals, trailing zeros dropped.
std::string number_text(double value);
/// The same of a 32-bit float, as the shortest decimal that means it: 400.13 and not 400.130005.
std::string number_text(float value);

}  // namespace zolt
