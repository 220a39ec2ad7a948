// Registers by name and number, numbers as text.
#include "macro/registers.h"

#include <charconv>
#include <cmath>

#include "common/numbers.h"
#include "common/text.h"

namespace zolt {

Registers registers;

namespace {

constexpr double largest_plain_number = 1e15;  // beyond it a number is written with an exponent

double* numbered(double* values, std::string_view number, char letter) {
    if (!number.empty() && upper(number[0]) == letter) number.remove_prefix(1);
    int index = -1;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), index);
    if (error != std::errc{} || end != number.data() + number.size() || index < 0 || index >= register_count) return nullptr;
    return values + index;
}

}  // namespace

double* register_numbered(std::string_view number) { return numbered(registers.registers, number, 'R'); }

double* memory_numbered(std::string_view number) { return numbered(registers.memories, number, 'M'); }

double* register_named(std::string_view name) {
    if (same_word(name, "MATH")) return &registers.math;
    if (name.size() < 2) return nullptr;
    const char letter = upper(name[0]);
    return letter == 'R' ? register_numbered(name) : letter == 'M' ? memory_numbered(name) : nullptr;
}

std::optional<double> number_of(std::string_view text) {
    text = trimmed(text);
    if (text.size() > 1 && text[0] == '+') text.remove_prefix(1);
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size() || !std::isfinite(value)) return std::nullopt;
    return value;
}

std::optional<double> operand(std::string_view text) {
    text = trimmed(text);
    if (const double* place = register_named(text)) return *place;
    return number_of(text);
}

std::string number_text(double value) {
    if (!std::isfinite(value) || std::abs(value) >= largest_plain_number) return format_text("%.15g", value);
    std::string text = format_text("%.*f", registers.decimals, value);
    if (text.find('.') != std::string::npos) {
        text.erase(text.find_last_not_of('0') + 1);
        if (text.ends_with('.')) text.pop_back();
    }
    return text == "-0" ? "0" : text;
}

std::string number_text(float value) {
    char text[32];
    const auto [end, error] = std::to_chars(text, text + sizeof text, value);
    return number_text(error == std::errc{} ? number_or_zero({text, static_cast<size_t>(end - text)}) : double{value});
}

}  // namespace zolt
