// The line between the levels of both ends, the DC offset, and BC.
#include "processing/baseline.h"

#include <algorithm>
#include <complex>

#include "common/text.h"
#include "common/vectorised.h"
#include "platform/platform.h"
#include "processing/along.h"
#include "processing/processing_commands.h"
#include "state/dataset.h"

namespace zolt {

namespace {

void subtract(std::span<Complex> x, Complex level) {
    for (Complex& point : x) point -= level;
}

// Points count in 31 bits, which a float is made of much faster than of more.
ZOLT_VECTORISED void subtract_line(float* x, size_t n, float re, float im, float slope_re, float slope_im) {
    for (int32_t k = 0; k < static_cast<int32_t>(n); ++k) {
        const auto place = static_cast<float>(k);
        x[2 * k] -= re + place * slope_re;
        x[2 * k + 1] -= im + place * slope_im;
    }
}

}  // namespace

int correct_linear_baseline(std::span<Complex> x, int64_t averaged, int64_t skipped) {
    const auto n = static_cast<int64_t>(x.size());
    if (n < 1 || averaged < 1 || averaged > n / 2 || skipped < 0 || skipped > (n - 1) / 2) return 0;
    if (skipped + averaged > n) return 0;
    const auto m = static_cast<size_t>(averaged), s = static_cast<size_t>(skipped), last = x.size() - 1 - s;
    Complex left = 0, right = 0;
    for (size_t i = 0; i < m; ++i) {
        left += x[s + i];
        right += x[last - i];
    }
    left /= static_cast<float>(m);
    right /= static_cast<float>(m);
    const Complex slope = (right - left) / static_cast<float>(x.size() - 2 * s);
    subtract(x.first(s), left);
    subtract_line(reinterpret_cast<float*>(x.data() + s), last + 1 - s, left.real(), left.imag(), slope.real(), slope.imag());
    subtract(x.subspan(last + 1), right);
    return 1;
}

void correct_offset(std::span<Complex> x) {
    if (x.empty()) return;
    const size_t count = std::min(x.size(), std::max<size_t>(x.size() / 8, 16));
    std::complex<double> sum = 0;
    for (const Complex point : x.last(count)) sum += std::complex<double>(point);
    const Complex offset(sum / static_cast<double>(count));
    subtract(x, offset);
}

int cmd_bc(Arguments& args) {
    if (args.ask_usage()) return show_reply("  - USAGE:  BC");
    if (show.level > 4) return refuse(format_text("BC on A not supported for Arrayed mode level = %d", show.level));
    const WaitCursor wait;
    const bool done = show.dims[0].frequency
                          ? for_each_vector(show.store, [](std::span<Complex> x) { correct_linear_baseline(x, 16, 0); })
                          : for_each_vector(show.store, correct_offset);
    if (!done) return cancelled("BC");
    mark_changed();
    return 1;
}

}  // namespace zolt
