// Numbers, names of nuclei and rows of points for the translators.
#include "import/quantities.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include "common/text.h"

namespace zolt {

namespace {

constexpr struct {
    const char* word;
    const char* symbol;
} elements[] = {{"Proton", "H"},    {"Hydrogen", "H"},  {"Deuterium", "H"},  {"Lithium", "Li"},  {"Boron", "B"},
                {"Carbon", "C"},    {"Nitrogen", "N"},  {"Oxygen", "O"},     {"Fluorine", "F"},  {"Sodium", "Na"},
                {"Aluminum", "Al"}, {"Silicon", "Si"},  {"Phosphorus", "P"}, {"Selenium", "Se"}, {"Cadmium", "Cd"},
                {"Tin", "Sn"},      {"Platinum", "Pt"}, {"Mercury", "Hg"}};

bool is_digit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

double finite_or_zero(double value) { return std::isfinite(value) ? value : 0; }

float float_or_zero(double value) { return std::abs(value) <= std::numeric_limits<float>::max() ? static_cast<float>(value) : 0; }

float positive_or_zero(double value) { return value > 0 ? float_or_zero(value) : 0; }

int32_t count_or_zero(double value) {
    return value > 0 ? static_cast<int32_t>(std::min<double>(value, std::numeric_limits<int32_t>::max())) : 0;
}

std::string nucleus_name(std::string_view name) {
    const std::string_view text = trimmed(name);
    if (same_word(text, "Proton")) return "1H";
    if (same_word(text, "Deuterium")) return "2H";
    const auto letters = static_cast<size_t>(std::find_if(text.begin(), text.end(), is_digit) - text.begin());
    const std::string_view element = trimmed(text.substr(0, letters)), mass = text.substr(letters);
    if (element.empty() || mass.empty() || !std::all_of(mass.begin(), mass.end(), is_digit))
        return std::string(cut(text, longest_text));
    for (const auto& row : elements)
        if (same_word(element, row.word)) return std::string(mass) + row.symbol;
    // A symbol is written as H1, Rb87; a longer word that is not in the table stays.
    return std::string(element.size() <= 2 ? std::string(mass) + std::string(element) : std::string(cut(text, longest_text)));
}

bool write_points(Translation& t, std::span<const Complex> points, const char* stage) {
    constexpr size_t points_at_a_time = size_t{1} << 14;
    std::vector<float> re(std::min(points.size(), points_at_a_time)), im(re.size());
    for (size_t done = 0; done < points.size();) {
        const size_t count = std::min(points.size() - done, re.size());
        for (size_t i = 0; i < count; ++i) {
            re[i] = points[done + i].real();
            im[i] = points[done + i].imag();
        }
        if (!t.real.write(re.data(), count * sizeof(float)) || !t.imaginary.write(im.data(), count * sizeof(float)))
            return t.fail("The temporary files cannot be written.  ZOLT home directory disk full???\n" + stage_line(stage));
        done += count;
    }
    return true;
}

std::string stage_line(const char* stage) { return format_text("\nError in %s Module", stage); }

}  // namespace zolt
