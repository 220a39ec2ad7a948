// The parameter text `procpar` of Varian and Agilent experiments.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zolt {

struct ProcparEntry {
    std::vector<double> numbers;     ///< of a number
    std::vector<std::string> texts;  ///< of a text
};

/// Every parameter of the file by its name; letter case counts.
struct Procpar {
    std::map<std::string, ProcparEntry, std::less<>> entries;

    /// All values of a number; empty for a text or an unknown name.
    const std::vector<double>& numbers(std::string_view name) const;
    /// The first value of a number when it is finite.
    std::optional<double> number(std::string_view name) const;
    double number_or_zero(std::string_view name) const { return number(name).value_or(0); }
    /// The first value of a text, readable; "" for a number or an unknown name.
    std::string text(std::string_view name) const;
};

/// False when the file cannot be read or is larger than any procpar.
bool read_procpar(const std::string& path, Procpar& procpar);

/// Names of the array parameter: "a,b" is two nested loops, the last one fastest; "(a,b)" one loop over both.
std::vector<std::vector<std::string>> array_loops(std::string_view array);

}  // namespace zolt
