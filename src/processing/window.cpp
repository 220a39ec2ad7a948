// Weights of the exponential and Gaussian windows, and LB, EM and GM.
#include "processing/window.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "common/text.h"
#include "platform/platform.h"
#include "processing/processing_commands.h"
#include "processing/values.h"
#include "state/session.h"

namespace zolt {

namespace {

// Pi in single precision, and a divisor that is close to, but is not, 4 ln 2: exact ones would shift the widths that
// stored procedures rely on.
constexpr double pi = 3.1415927F;
constexpr double gaussian_divisor = 2.7724;

}  // namespace

Window::Window(WindowShape shape, double lb, double dwell, size_t n, int64_t echo_centre) {
    const double a = pi * dwell * lb;
    linear_ = shape == WindowShape::exponential ? a : 0;
    square_ = shape == WindowShape::gaussian ? a * a / gaussian_divisor : 0;
    centre_ = echo_centre > 0 ? static_cast<size_t>(echo_centre) : 0;
    if (centre_ > n) centre_ = n > 0 ? n - 1 : 0;
    for (size_t j = 0; j < block; ++j) head_[j] = weight(j);
}

double Window::weight(size_t distance) const {
    const auto t = static_cast<double>(distance);
    return std::exp(-(linear_ * t + square_ * t * t));
}

void Window::fill(size_t first, std::array<float, block>& weights) const {
    // With t = first + j: e^-(linear t) = e^-(linear first) e^-(linear j), and for the square a third factor,
    // e^-(2 square first j), the j-th power of `step`.
    double factor = weight(first);
    if (square_ == 0) {
        for (size_t j = 0; j < block; ++j) weights[j] = static_cast<float>(factor * head_[j]);
        return;
    }
    const double step = std::exp(-2 * square_ * static_cast<double>(first));
    for (size_t j = 0; j < block; ++j) {
        weights[j] = static_cast<float>(factor * head_[j]);
        factor *= step;
    }
}

void weigh(std::span<Complex> x, const Window& window) {
    const size_t centre = std::min(window.centre(), x.size());
    for (size_t k = 0; k < centre; ++k) x[k] *= static_cast<float>(window.weight(centre - k));
    std::array<float, Window::block> weights;
    for (size_t at = centre; at < x.size(); at += Window::block) {
        window.fill(at - centre, weights);
        const std::span<Complex> part = x.subspan(at, std::min(Window::block, x.size() - at));
        for (size_t j = 0; j < part.size(); ++j) part[j] *= weights[j];
    }
}

double dwell_time(const Dimension& dimension) {
    if (!(dimension.sw > 0)) return 0;
    const double sw = dimension.sw;
    return dimension.domain_code == domain_real ? 1 / (2 * sw) : 1 / sw;
}

namespace {

int weigh_along(int dimension, WindowShape shape, const char* name, float lb) {
    if (dimension > 1)
        return refuse(
            format_text("%s in %s dimension not supported in Arrayed mode level %d", name, ordinal(dimension), show.level));
    if (show.level > 4) return refuse(format_text("%s not supported in Arrayed mode level %d", name, show.level));
    const Window window(shape, lb, dwell_time(show.dims[0]), show.store.points());
    for_each_vector(show.store, [&](std::span<Complex> x) { weigh(x, window); });
    mark_changed();
    return 1;
}

int weight_command(Arguments& args, WindowShape shape, const char* name) {
    if (args.ask_usage()) return show_reply(format_text("  - USAGE:  %s   [2D / 3D / 4D]   [LB Value]", name));
    std::string word = args.next();
    int dimension = std::max(1, dimension_word(word));
    std::string command = name;
    if (dimension == 2) {
        word = args.next();
        command += " 2D";
    }
    // 3D and 4D take their value from the keyword itself, 3 or 4 Hz; scripts count on it.
    float lb = show.lb();
    if (word.empty()) {
        session.log_line = format_text("%s %f", command.c_str(), double{lb});
    } else {
        const auto value = number_argument(word);
        if (!value) return not_a_number(word);
        lb = *value;
    }
    const WaitCursor wait;
    return weigh_along(dimension, shape, name, lb);
}

}  // namespace

int cmd_lb(Arguments& args) { return set_stored_value(show.lb(), "LB", "Line broadening, Hz", args); }

int cmd_em(Arguments& args) { return weight_command(args, WindowShape::exponential, "EM"); }

int cmd_gm(Arguments& args) { return weight_command(args, WindowShape::gaussian, "GM"); }

}  // namespace zolt
