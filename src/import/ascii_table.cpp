// Recognising how numbers are written, and reading them.
#include "import/ascii_table.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "common/text.h"

namespace zolt {

namespace {

constexpr std::string_view separators = " \t;", separators_and_comma = " \t;,";

bool is_digit(char c) { return c >= '0' && c <= '9'; }

// Digits behind the one comma of a number such as -12,50; npos when the commas of the token stand between numbers.
size_t digits_behind_comma(std::string_view token) {
    const size_t comma = token.find(',');
    if (comma == token.npos) return 0;
    if (comma == 0 || !is_digit(token[comma - 1]) || token.find(',', comma + 1) != token.npos) return token.npos;
    size_t end = comma + 1;
    while (end < token.size() && is_digit(token[end])) ++end;
    const bool exponent = end < token.size() && (token[end] == 'e' || token[end] == 'E');
    return end > comma + 1 && (end == token.size() || exponent) ? end - comma - 1 : token.npos;
}

bool take_number(std::string_view token, NumberStyle style, double& value) {
    std::array<char, 64> copy;
    if (token.starts_with('+')) token.remove_prefix(1);
    if (token.empty() || !(is_digit(token[0]) || token[0] == '-' || token[0] == '.')) return false;
    if (style.decimal_comma) {
        if (token.size() > copy.size()) return false;
        std::replace_copy(token.begin(), token.end(), copy.begin(), ',', '.');
        token = {copy.data(), token.size()};
    }
    const auto [end, error] = std::from_chars(token.data(), token.data() + token.size(), value);
    return error == std::errc{} && end == token.data() + token.size() && std::isfinite(value);
}

}  // namespace

NumberStyle style_of(std::string_view lines) {
    constexpr int lines_that_tell = 1000;
    bool several_tokens = false, same_digits = true;
    size_t digits = 0;
    int lines_seen = 0;
    for (std::string_view line; lines_seen < lines_that_tell && take_line(lines, line);) {
        if (line.find('.') != line.npos) return {false};
        const auto tokens = split_fields(line, separators);
        several_tokens = several_tokens || tokens.size() > 1;
        for (const std::string_view token : tokens) {
            const size_t here = digits_behind_comma(token);
            if (here == token.npos) return {false};
            if (here > 0) {
                same_digits = same_digits && (digits == 0 || here == digits);
                digits = here;
            }
        }
        lines_seen += !tokens.empty();
    }
    // "12,500000" alone on each line, always with as many digits, is one number.
    return {digits > 0 && (several_tokens || same_digits)};
}

size_t numbers_of_line(std::string_view line, NumberStyle style, std::array<double, 3>& row) {
    const std::string_view between = style.decimal_comma ? separators : separators_and_comma;
    size_t count = 0;
    for (size_t at = line.find_first_not_of(between); at != line.npos;) {
        const size_t end = std::min(line.find_first_of(between, at), line.size());
        if (count == row.size() || !take_number(line.substr(at, end - at), style, row[count])) return 0;
        ++count;
        at = line.find_first_not_of(between, end);
    }
    return count;
}

NumberTable read_table(std::string_view lines, NumberStyle style) {
    NumberTable table;
    const size_t most_rows = static_cast<size_t>(std::count(lines.begin(), lines.end(), '\n')) + 1;
    std::array<double, 3> row{};
    size_t number = 0;
    for (std::string_view line; take_line(lines, line);) {
        ++number;
        if (trimmed(line).empty()) continue;
        const size_t count = numbers_of_line(line, style, row);
        if (count == 0 || (table.columns != 0 && count != table.columns)) {
            table.wrong = table.columns == 0 ? format_text("line %zu of its table is no line of one to three numbers", number)
                                             : format_text("line %zu of its table does not hold %zu numbers as the first does",
                                                           number, table.columns);
            return table;
        }
        for (; table.columns < count; ++table.columns)
            if (!table.values[table.columns].allocate(most_rows)) {
                table.wrong = "Could not allocate memory for new file!";
                return table;
            }
        for (size_t c = 0; c < count; ++c) table.values[c][table.rows] = row[c];
        ++table.rows;
    }
    if (table.rows == 0) table.wrong = "its table is empty";
    return table;
}

bool equal_steps(std::span<const double> values) {
    if (values.size() < 4) return false;
    const double step = (values.back() - values.front()) / static_cast<double>(values.size() - 1);
    if (!(std::abs(step) > 0)) return false;
    for (size_t i = 1; i < values.size(); ++i)
        if (!(std::abs(values.front() + step * static_cast<double>(i) - values[i]) <= 0.5 * std::abs(step))) return false;
    return true;
}

}  // namespace zolt
