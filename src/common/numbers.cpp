// from_chars with the leniency of the classical conversions.
#include "common/numbers.h"

#include <bit>
#include <charconv>
#include <limits>

namespace zolt {

namespace {
// Drops blanks and a plus sign, which from_chars does not take.
std::string_view without_lead(std::string_view text) {
    const size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos) return {};
    text.remove_prefix(first);
    if (text.size() > 1 && text[0] == '+' && text[1] != '-' && text[1] != '+') text.remove_prefix(1);
    return text;
}
}  // namespace

std::optional<double> leading_number(std::string_view text) {
    text = without_lead(text);
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error == std::errc::invalid_argument) return std::nullopt;
    if (error == std::errc::result_out_of_range) {
        // Too large or too small for a double: tell them apart by the sign of the exponent.
        const std::string_view number(text.data(), static_cast<size_t>(end - text.data()));
        const size_t exponent = number.find_first_of("eE");
        const bool tiny = exponent != std::string_view::npos && number.substr(exponent + 1).starts_with('-');
        const double limit = tiny ? 0.0 : std::numeric_limits<double>::infinity();
        return text.starts_with('-') ? -limit : limit;
    }
    return value;
}

double number_or_zero(std::string_view text) { return leading_number(text).value_or(0.0); }

int64_t integer_or_zero(std::string_view text) {
    text = without_lead(text);
    int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error == std::errc::result_out_of_range)
        return text.starts_with('-') ? std::numeric_limits<int64_t>::min() : std::numeric_limits<int64_t>::max();
    return error == std::errc{} ? value : 0;
}

bool is_power_of_two(uint64_t count) { return count >= 2 && count <= (uint64_t{1} << 31) && std::has_single_bit(count); }

uint64_t next_power_of_two(uint64_t count) { return count <= 1 ? 1 : std::bit_ceil(count); }

}  // namespace zolt
