// Chooses the step of an axis, counts its ticks in whole steps and writes their labels without any rounding.
#include "display/ticks.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string_view>

#include "display/lettering.h"

namespace zolt {

namespace {

constexpr double smallest_gap = 56, label_gap = 26;  // pixels between major ticks, between their labels
constexpr double most_steps = 1e12;                  // from zero to an end; beyond it, rounding shows in the positions

// `digit` times ten to the `exponent`.
struct Step {
    int digit = 1;
    int exponent = 0;

    // A negative power of ten is divided by, since only the positive ones are exact.
    double times(double count) const {
        return exponent < 0 ? count * digit / std::pow(10.0, -exponent) : count * digit * std::pow(10.0, exponent);
    }
    double value() const { return times(1); }
    Step next() const { return digit == 1 ? Step{2, exponent} : digit == 2 ? Step{5, exponent} : Step{1, exponent + 1}; }
};

Step step_of_at_least(double value) {
    Step step{1, static_cast<int>(std::floor(std::log10(value)))};
    while (step.value() < value * (1 - 1e-9)) step = step.next();
    return step;
}

std::string tick_label(int64_t count, Step step) {
    constexpr std::string_view minus = "\u2212";
    std::string digits = std::to_string(std::abs(count) * step.digit);
    if (count != 0 && (step.exponent > 9 || step.exponent < -9)) {
        digits += "e" + std::to_string(step.exponent);
    } else if (count != 0 && step.exponent > 0) {
        digits.append(static_cast<size_t>(step.exponent), '0');
    } else if (step.exponent < 0 && step.exponent >= -9) {
        const auto decimals = static_cast<size_t>(-step.exponent);
        if (digits.size() <= decimals) digits.insert(0, decimals + 1 - digits.size(), '0');
        digits.insert(digits.size() - decimals, ".");
    }
    return count < 0 ? std::string(minus) + digits : digits;
}

}  // namespace

std::vector<Tick> axis_ticks(double one_end, double other_end, double length, double size) {
    const double low = std::min(one_end, other_end), high = std::max(one_end, other_end);
    const double range = high - low;
    // Within these bounds no step overflows or vanishes.
    if (!(range > 1e-290 && range < 1e290) || !(length > 1)) return {};
    const double largest = std::max(std::abs(low), std::abs(high));
    const double per_pixel = range / length;

    // The labels of a step tell how wide they are; too wide ones ask for the next larger step.
    Step step = step_of_at_least(smallest_gap * per_pixel);
    if (largest / step.value() > most_steps) return {};
    for (;; step = step.next()) {
        const double first = text_width(tick_label(std::llround(low / step.value()), step), size);
        const double last = text_width(tick_label(std::llround(high / step.value()), step), size);
        if (step.value() >= (std::max(first, last) + label_gap) * per_pixel) break;
    }

    const int parts = step.digit == 5 || step.value() < 40 * per_pixel ? 5 : 10;
    const double minor = step.value() / parts;
    constexpr double rounding = 1e-6;  // lets a tick at the very end of the axis be one
    const auto begin = static_cast<int64_t>(std::ceil(low / minor - rounding));
    const auto end = static_cast<int64_t>(std::floor(high / minor + rounding));
    std::vector<Tick> ticks;
    for (int64_t i = begin; i <= end; ++i) {
        if (i % parts == 0)
            ticks.push_back({step.times(static_cast<double>(i / parts)), true, tick_label(i / parts, step)});
        else
            ticks.push_back({step.times(static_cast<double>(i) / parts), false, {}});
    }
    return ticks;
}

}  // namespace zolt
