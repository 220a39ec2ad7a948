// ZI, ZR, ZN and 21: they ask, then set every point of every vector.
#include "processing/arithmetic.h"

#include <algorithm>

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

}  // namespace zolt
