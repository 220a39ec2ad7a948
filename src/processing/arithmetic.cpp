// MC, M2, and ZI, ZR, ZN and 21, which ask and then set every point of every vector.
#include "processing/arithmetic.h"

#include <algorithm>

#include "common/vectorised.h"
#include "platform/platform.h"
#include "processing/along.h"
#include "processing/processing_commands.h"
#include "state/dataset.h"
#include "state/session.h"

namespace zolt {

void rotate_left(std::span<Complex> x, uint64_t amount) {
    if (!x.empty()) std::rotate(x.begin(), x.begin() + static_cast<std::ptrdiff_t>(amount % x.size()), x.end());
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

namespace {

struct Overwriting {
    const char* keyword;
    const char* question;
    const char* caption;
};

// Asks (not while commands are played back), then applies `change` to every point in memory.
template <class Change>
int overwrite(Arguments& args, const Overwriting& what, Change change) {
    if (args.ask_usage()) return show_reply(std::string("  - USAGE:  ") + what.keyword);
    if (!playing_back() && platform().question(what.caption, what.question, Buttons::yes_no) != Answer::yes) return 0;
    const WaitCursor wait;
    const bool done = for_each_vector(show.store, [change](std::span<Complex> x) {
        for (Complex& point : x) point = change(point);
    });
    if (!done) return cancelled(what.keyword);
    mark_changed();
    return 1;
}

}  // namespace

int cmd_zi(Arguments& args) {
    return overwrite(args, {"ZI", "Zero imaginary points in the current data set?", "Zero Imaginaries"},
                     [](Complex point) { return Complex(point.real(), 0); });
}

int cmd_zr(Arguments& args) {
    return overwrite(args, {"ZR", "Zero real points in the current data set?", "Zero Reals"},
                     [](Complex point) { return Complex(0, point.imag()); });
}

int cmd_zn(Arguments& args) {
    const auto not_below = [](float value) { return value < 0 ? 0.0F : value; };
    return overwrite(args, {"ZN", "Zero all negative values of current data?", "Zero Negatives ??"},
                     [not_below](Complex point) { return Complex(not_below(point.real()), not_below(point.imag())); });
}

int cmd_21(Arguments& args) {
    return overwrite(args, {"21", "Convert current data to DC offset line with value 1.0?", "Convert To Line"},
                     [](Complex) { return Complex(1, 1); });
}

int cmd_mc(Arguments& args) {
    if (args.ask_usage()) return show_reply("  - USAGE:  MC");
    return apply_to_vectors("MC", magnitude);
}

int cmd_m2(Arguments& args) {
    if (args.ask_usage()) return show_reply("  - USAGE:  M2");
    return apply_to_vectors("M2", power);
}

}  // namespace zolt
