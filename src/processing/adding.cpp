// AS with arguments: File B or a buffer times a factor onto every vector in memory.
#include "processing/adding.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "common/numbers.h"
#include "common/text.h"
#include "config/settings.h"
#include "platform/platform.h"
#include "processing/along.h"

namespace zolt {

const char* const add_spectra_usage = "AS [B / B1 / B2 [factor [shift [points / ppm / Hz]]]]";

void add_aligned(std::span<Complex> x, std::span<const Complex> other, const Alignment& at, double factor) {
    if (other.empty()) return;
    const auto end = static_cast<double>(other.size() - 1);
    const auto part = [&](size_t k, bool imaginary) { return static_cast<double>(imaginary ? other[k].imag() : other[k].real()); };
    for (size_t i = 0; i < x.size(); ++i) {
        const double place = (static_cast<double>(i) - at.start) / at.step;
        if (!(place >= 0 && place <= end)) continue;
        const auto k = static_cast<size_t>(place);
        const double t = place - static_cast<double>(k);
        const size_t before = k > 0 ? k - 1 : 0, next = std::min(k + 1, other.size() - 1),
                     after = std::min(k + 2, other.size() - 1);
        const auto value = [&](bool imaginary) {
            const double a = part(before, imaginary), b = part(k, imaginary), c = part(next, imaginary), d = part(after, imaginary);
            return b + t / 2 * (c - a + t * (2 * a - 5 * b + 4 * c - d + t * (3 * (b - c) + d - a)));
        };
        x[i] += Complex(static_cast<float>(factor * value(false)), static_cast<float>(factor * value(true)));
    }
}

void add_with_offset(std::span<Complex> x, const Companion& other, const Alignment& at, double factor) {
    add_aligned(x, other.points, at, factor);
    if (const auto offset = static_cast<float>(setting_number("AS_DC")); offset != 0)
        for (Complex& point : x) point += offset;
}

Alignment align_for_sum(const DataSet& data, const Companion& other, double shift_points) {
    Alignment at = align(data, other);
    if (!at.refusal.empty()) return at;
    if (!other.frequency && at.step != 1)
        at.refusal = other.label + " was sampled at another sweep width than File A: transform both first.";
    at.start += shift_points;
    at.take_roundings_out();
    const double last = at.start + at.step * (static_cast<double>(other.points.size()) - 1);
    if (at.refusal.empty() && (last < 0 || at.start > static_cast<double>(data.cvNMRdata().size()) - 1))
        at.refusal = other.label + " and File A have no part of their axes in common.";
    return at;
}

namespace {

// A shift in points of File A; to higher points (lower shifts) above 0 when given in points, to higher shifts in ppm and Hz.
std::optional<double> shift_in_points(double shift, const std::string& unit) {
    Axis axis = show.dims[0].axis();
    axis.points = static_cast<double>(show.cvNMRdata().size());
    if (unit.empty() || starts_with_word("points", unit) || same_word(unit, "pts")) return shift;
    if (!show.dims[0].frequency || !(axis.sw > 0)) return std::nullopt;
    if (same_word(unit, "hz")) return axis.point_of_hz(shift) - axis.point_of_hz(0);
    if (same_word(unit, "ppm") && axis.has_ppm()) return axis.point_of_ppm(shift) - axis.point_of_ppm(0);
    return std::nullopt;
}

}  // namespace

int add_spectra(Arguments& args) {
    if (args.ask_usage()) return show_reply(add_spectra_usage);
    const auto number = companion_number(args.next());
    const std::string factor_word = args.next(), shift_word = args.next();
    const auto factor = factor_word.empty() ? std::optional(setting_number("AS_MULT")) : leading_number(factor_word);
    const auto shift = shift_word.empty() ? std::optional(0.0) : leading_number(shift_word);
    if (!number || !factor || !std::isfinite(*factor) || !shift || !std::isfinite(*shift)) return show_reply(add_spectra_usage);
    // The unit may stand at its number: 0.05ppm.
    std::string unit = args.next();
    if (const size_t letters = shift_word.find_first_not_of("+-.0123456789eE"); unit.empty() && letters != std::string::npos)
        unit = shift_word.substr(letters);
    const auto points = shift_in_points(*shift, unit);
    if (!points) return refuse(format_text("File A has no axis for a shift in %s.", unit.c_str()));

    const auto other = companion_of(show, *number);
    if (!other)
        return refuse(*number == 0 ? std::string("There is no File B.\nOpen one with GB.")
                                   : format_text("Buffer %d is empty.\nB%d keeps the current data in it.", *number, *number));
    const Alignment at = align_for_sum(show, *other, *points);
    if (!at.refusal.empty()) return refuse(at.refusal);
    const int result = apply_to_vectors("AS", [&](std::span<Complex> vector) { add_with_offset(vector, *other, at, *factor); });
    if (result == 1)
        platform().reply(format_text("  - File A %c %.6g * %s", *factor < 0 ? '-' : '+', std::abs(*factor), other->label.c_str()));
    return result;
}

}  // namespace zolt
