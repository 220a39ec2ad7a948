// The words in braces that stand for values in the lines of a macro.
#pragma once

#include <string>
#include <string_view>

namespace zolt {

/// What a line knows of its place: its number and the file of the LOOP FILES around it.
struct LineContext {
    int line = 0;
    std::string file;
};

/// The line with `{R3}`, `{FILEA}`, `{SLICE}` … replaced by their values. `{{` gives a brace, an unknown word stays.
std::string expanded(std::string_view line, const LineContext& context);

/// The name that a SET or ASK statement left under this keyword, "" without one.
std::string macro_value(std::string_view keyword);

}  // namespace zolt
