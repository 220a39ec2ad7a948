// SR, MC, M2, LS, RS, RD, SwitchAB, AlternateSign and Reference.
#include "processing/ordering.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <tuple>
#include <utility>

#include "common/numbers.h"
#include "common/text.h"
#include "common/vectorised.h"
#include "platform/platform.h"
#include "processing/along.h"
#include "processing/processing_commands.h"
#include "processing/values.h"
#include "state/columns.h"
#include "state/dataset.h"

namespace zolt {

void shift(std::span<Complex> x, int64_t amount) {
    const auto size = static_cast<int64_t>(x.size());
    const auto n = static_cast<std::ptrdiff_t>(std::clamp(amount, -size, size));
    if (n >= 0)
        std::fill(std::copy(x.begin() + n, x.end(), x.begin()), x.end(), Complex());
    else
        std::fill(x.begin(), std::copy_backward(x.begin(), x.end() + n, x.end()), Complex());
}

namespace {

ZOLT_VECTORISED void magnitude_parts(float* x, size_t n) {
    for (size_t k = 0; k < n; ++k) {
        const double re = double{x[2 * k]}, im = double{x[2 * k + 1]};
        x[2 * k] = static_cast<float>(__builtin_sqrt(re * re + im * im));
        x[2 * k + 1] = 0;
    }
}

ZOLT_VECTORISED void power_parts(float* x, size_t n) {
    for (size_t k = 0; k < n; ++k) {
        x[2 * k] = x[2 * k] * x[2 * k] + x[2 * k + 1] * x[2 * k + 1];
        x[2 * k + 1] = 0;
    }
}

}  // namespace

void magnitude(std::span<Complex> x) { magnitude_parts(reinterpret_cast<float*>(x.data()), x.size()); }

void power(std::span<Complex> x) { power_parts(reinterpret_cast<float*>(x.data()), x.size()); }

PairExchange pair_exchange(std::string_view word) {
    static constexpr struct {
        const char* word;
        PairExchange exchange;
    } rows[] = {
        {"zero", [](Complex&, Complex& b) { b = 0; }},
        {"real", [](Complex& a, Complex& b) { a.imag(0), b.imag(0); }},
        {"imag", [](Complex& a, Complex& b) { a = a.imag(), b = b.imag(); }},
        {"ArBr",
         [](Complex& a, Complex& b) { std::tie(a, b) = std::pair(Complex(a.real(), b.real()), Complex(a.imag(), b.imag())); }},
        {"AiBi",
         [](Complex& a, Complex& b) { std::tie(a, b) = std::pair(Complex(a.imag(), b.imag()), Complex(a.real(), b.real())); }},
        {"ArBi",
         [](Complex& a, Complex& b) { std::tie(a, b) = std::pair(Complex(a.real(), b.imag()), Complex(a.imag(), b.real())); }},
        {"AiBr",
         [](Complex& a, Complex& b) { std::tie(a, b) = std::pair(Complex(a.imag(), b.real()), Complex(a.real(), b.imag())); }},
    };
    for (const auto& row : rows)
        if (same_word(word, row.word)) return row.exchange;
    return nullptr;
}

void echo_antiecho(Complex& p, Complex& n) {
    const Complex sum = p + n, difference = p - n;
    p = 0.5F * sum;
    n = {0.5F * difference.imag(), -0.5F * difference.real()};
}

namespace {

// Applies a kernel to every vector in memory; 1 when done.
template <class Kernel>
int apply(const char* name, Kernel kernel) {
    const WaitCursor wait;
    if (!for_each_vector(show.store, kernel)) return cancelled(name);
    mark_changed();
    return 1;
}

// Exchanges the vectors of a dimension end for end.
int reverse_along(int dimension) {
    const auto along = along_or_refuse(dimension, "Spectrum Reverse");
    if (!along) return 0;
    const WaitCursor wait;
    for (size_t o = 0; o < along->outer; ++o)
        for (size_t k = 0; k < along->length / 2; ++k)
            for (size_t i = 0; i < along->inner; ++i)
                std::ranges::swap_ranges(show.store.vector(along->vector(o, k, i)),
                                         show.store.vector(along->vector(o, along->length - 1 - k, i)));
    mark_changed();
    return 1;
}

int exchange_pairs(PairExchange exchange) {
    const WaitCursor wait;
    const auto pairs = static_cast<std::ptrdiff_t>(show.store.count() / 2);
#pragma omp parallel for schedule(static)
    for (std::ptrdiff_t p = 0; p < pairs; ++p) {
        const auto a = show.store.vector(2 * static_cast<size_t>(p)), b = show.store.vector(2 * static_cast<size_t>(p) + 1);
        for (size_t k = 0; k < a.size(); ++k) exchange(a[k], b[k]);
    }
    mark_changed();
    return 1;
}

// LS and RS: their number of points.
int shift_command(Arguments& args, const char* name, int64_t direction) {
    const std::string word = args.ask_usage() ? "" : args.next();
    if (word.empty()) return show_reply(format_text("  - USAGE:  %s   points", name));
    if (!leading_number(word)) return not_a_number(word);
    const int64_t amount = integer_or_zero(word);
    if (amount < 0) return refuse(format_text("%s takes a number of points that is not negative.", name));
    return apply(name, [=](std::span<Complex> x) { shift(x, direction * std::min<int64_t>(amount, INT32_MAX)); });
}

}  // namespace

int cmd_sr(Arguments& args) {
    if (args.ask_usage()) return show_reply("  - USAGE:  SR   [2D / 3D / 4D]");
    if (show.level > 4) return refuse(format_text("Spectrum Reverse not supported in Arrayed mode level %d", show.level));
    const int dimension = take_dimension(args);
    if (dimension > 1) return reverse_along(dimension);
    return apply("Spectrum Reverse", [](std::span<Complex> x) { std::ranges::reverse(x); });
}

int cmd_mc(Arguments& args) {
    if (args.ask_usage()) return show_reply("  - USAGE:  MC");
    return apply("MC", magnitude);
}

int cmd_m2(Arguments& args) {
    if (args.ask_usage()) return show_reply("  - USAGE:  M2");
    return apply("M2", power);
}

int cmd_ls(Arguments& args) { return shift_command(args, "LS", 1); }

int cmd_rs(Arguments& args) { return shift_command(args, "RS", -1); }

int cmd_rd(Arguments& args) {
    if (args.ask_usage()) return show_reply("  - USAGE:  RD   points   [left / right]");
    const std::string word = args.next(), side = args.next();
    if (word.empty()) return show_reply(format_text("  - The next FT rotates by %d points to the left.", show.rotation));
    const bool right = same_word(side, "right");
    if (!leading_number(word) || (!side.empty() && !right && !same_word(side, "left")))
        return show_reply("  - USAGE:  RD   points   [left / right]");
    const int64_t points = std::max(show.pts1d(), 1);
    const int64_t amount = integer_or_zero(word) % points;
    // One turn is none: an amount to the right is the rest of a turn to the left.
    show.rotation = static_cast<int32_t>(((right ? -amount : amount) + points) % points);
    return 1;
}

int cmd_switchab(Arguments& args) {
    if (args.ask_usage()) return show_reply("  - USAGE:  SwitchAB   zero / real / imag / ArBr / AiBi / ArBi / AiBr");
    if (show.level != 2) return show_reply("- SwitchAB works only in PairWise Complex Arrayed Mode");
    const PairExchange exchange = pair_exchange(args.next());
    if (exchange == nullptr) return show_reply("- Illegal argument in SwitchAB command.");
    return exchange_pairs(exchange);
}

int cmd_echoantiecho(Arguments& args) {
    if (args.ask_usage()) return show_reply("  - USAGE:  EchoAntiEcho");
    if (show.level != 2) return refuse(format_text("EchoAntiEcho not supported in Arrayed mode level %d", show.level));
    if (!show.dims[0].frequency) return refuse("EchoAntiEcho works on spectra along dimension 1.\nDo FT and PC first.");
    return exchange_pairs(echo_antiecho);
}

int cmd_alternatesign(Arguments& args) {
    if (args.ask_usage()) return show_reply("  - USAGE:  AlternateSign   2D / 3D / 4D");
    const int dimension = take_dimension(args);
    if (dimension == 1) return show_reply("  - USAGE:  AlternateSign   2D / 3D / 4D");
    const auto along = along_or_refuse(dimension, "AlternateSign");
    if (!along) return 0;
    return apply("AlternateSign", [&](std::span<Complex> x, size_t i) {
        if (along->place(i) % 2 != 0) scale(x, -1);
    });
}

namespace {

// The point of dimension 1 with the largest modulus.
double tallest_point() {
    const auto x = show.cvNMRdata();
    const auto tallest = std::max_element(x.begin(), x.end(), [](Complex a, Complex b) { return std::norm(a) < std::norm(b); });
    return static_cast<double>(tallest - x.begin());
}

// The point that the words behind "at" name: a number of the axis, or "point" and the number of a point. Below 0 for none.
double point_argument(Arguments& args, const Axis& axis) {
    std::string word = args.next();
    const bool counted = same_word(word, "point");
    if (counted) word = args.next();
    const auto value = leading_number(word);
    if (!value) return -1;
    return counted ? *value : axis.point_of_ppm(*value);
}

}  // namespace

int cmd_reference(Arguments& args) {
    constexpr const char* usage = "  - USAGE:  Reference   [2D / 3D / 4D]   ppm   [at   ppm / point n]";
    if (args.ask_usage()) return show_reply(usage);
    const int dimension = take_dimension(args);
    Dimension& referenced = show.dims[static_cast<size_t>(dimension - 1)];
    const auto shift_wanted = leading_number(args.next());
    const std::string at = args.next();
    if (!shift_wanted || (at.empty() && dimension > 1) || (!at.empty() && !same_word(at, "at"))) return show_reply(usage);
    const Axis axis = referenced.axis();
    if (!axis.has_ppm()) return refuse(format_text("Dimension %d has no spectrometer frequency, and so no shifts.", dimension));
    const double point = at.empty() ? tallest_point() : point_argument(args, axis);
    if (!(point >= 0 && point <= axis.points - 1)) return refuse("Reference needs a place within the spectrum.");
    // The offset O at which (Hz(point) without offset + O) / (SF - O/10^6) is the shift.
    const double bare = axis.hz(point) - axis.offset, ppm = *shift_wanted;
    const double offset = (ppm * axis.sf - bare) / (1 + ppm / 1e6);
    if (!(std::abs(offset) < 1e12)) return refuse("Reference needs a shift that an axis can have.");
    referenced.offset = static_cast<float>(offset);
    show.display_valid = false;
    platform().reply(format_text("  - Point %.1f is %.4f ppm now, the offset %.3f Hz", point, ppm, offset));
    return 1;
}

}  // namespace zolt
