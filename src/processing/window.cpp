// Weights of the windows, and LB, EM, GM, SineBell and COSINE.
#include "processing/window.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>

#include "common/text.h"
#include "common/vectorised.h"
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

namespace {

ZOLT_VECTORISED void scaled(double factor, const double* __restrict table, float* __restrict weights) {
    for (size_t j = 0; j < Weights::block; ++j) weights[j] = static_cast<float>(factor * table[j]);
}

ZOLT_VECTORISED void product(const double* __restrict factors, const double* __restrict table, float* __restrict weights) {
    for (size_t j = 0; j < Weights::block; ++j) weights[j] = static_cast<float>(factors[j] * table[j]);
}

// factor step^j: the first places one from another, the others from them, several at a time.
void fill_powers(double factor, double step, std::array<double, Weights::block>& powers) {
    constexpr size_t lanes = 8;
    double leap = 1;
    for (size_t j = 0; j < lanes; ++j, factor *= step, leap *= step) powers[j] = factor;
    for (size_t j = lanes; j < powers.size(); ++j) powers[j] = powers[j - lanes] * leap;
}

}  // namespace

void Window::fill_behind(size_t distance, std::array<float, block>& weights) const {
    // With t = first + j: e^-(linear t) = e^-(linear first) e^-(linear j), and for the square a third factor,
    // e^-(2 square first j), the j-th power of one number.
    const double factor = weight(distance);
    if (square_ == 0) return scaled(factor, head_.data(), weights.data());
    std::array<double, block> powers;
    fill_powers(factor, std::exp(-2 * square_ * static_cast<double>(distance)), powers);
    product(powers.data(), head_.data(), weights.data());
}

void Window::fill(size_t first, std::array<float, block>& weights) const {
    if (first >= centre_) return fill_behind(first - centre_, weights);
    for (size_t j = 0; j < block; ++j) {
        const size_t k = first + j;
        weights[j] = static_cast<float>(weight(k < centre_ ? centre_ - k : k - centre_));
    }
}

SineBell::SineBell(double offset, double end, double power, size_t n)
    : angle_(std::numbers::pi * offset,
             n > 1 ? std::numbers::pi * (end - offset) * static_cast<double>(n) / static_cast<double>(n - 1) : 0, 0, 0, n),
      power_(power) {}

void SineBell::fill(size_t first, std::array<float, block>& weights) const {
    std::array<double, block> cosine, sine;
    angle_.fill(first, cosine, sine);
    for (size_t j = 0; j < block; ++j) {
        // Rounding must not make the ends of the bell negative, of which there is no power.
        const double value = std::max(sine[j], 0.0);
        weights[j] = static_cast<float>(power_ == 1 ? sine[j] : power_ == 2 ? sine[j] * sine[j] : std::pow(value, power_));
    }
}

double dwell_time(const Dimension& dimension) {
    if (!(dimension.sw > 0)) return 0;
    const double sw = dimension.sw;
    return dimension.domain_code == domain_real ? 1 / (2 * sw) : 1 / sw;
}

namespace {

int weigh_along(int dimension, WindowShape shape, const char* name, float lb) {
    const auto n = points_along(dimension, name);
    if (!n) return 0;
    const Dimension& weighted = show.dims[static_cast<size_t>(dimension - 1)];
    const Window window(shape, double{lb}, dwell_time(weighted), *n);
    return weigh_dimension(dimension, window, name,
                           format_text("Memory alloction failure for cvdata in do_em_%dD function.", dimension));
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

namespace {

int sine_bell(int dimension, double offset, double end, double power, const char* name) {
    const auto n = points_along(dimension, name);
    if (!n) return 0;
    const WaitCursor wait;
    return weigh_dimension(dimension, SineBell(offset, end, power, *n), name,
                           format_text("There is no memory for the weights of %s.", name));
}

}  // namespace

int cmd_sinebell(Arguments& args) {
    constexpr const char* usage = "SineBell [2D / 3D / 4D] [offset 0-1] [end 0-1] [power]";
    if (args.ask_usage()) return show_reply(std::string("  - USAGE:  ") + usage);
    const int dimension = take_dimension(args);
    // Without values the whole bell.
    std::array<double, 3> values = {0, 1, 1};
    for (double& value : values) {
        const std::string word = args.next();
        if (word.empty()) break;
        const auto number = number_argument(word);
        if (!number) return not_a_number(word);
        value = double{*number};
    }
    const bool inside = values[0] >= 0 && values[0] <= 1 && values[1] >= 0 && values[1] <= 1 && values[2] > 0 && values[2] <= 100;
    if (!inside) return refuse("SineBell takes an offset and an end between 0 and 1, and a positive power.");
    return sine_bell(dimension, values[0], values[1], values[2], "SineBell");
}

int cmd_cosine(Arguments& args) {
    if (args.ask_usage()) return show_reply("  - USAGE:  COSINE [2D / 3D / 4D] [power]");
    const int dimension = take_dimension(args);
    const std::string word = args.next();
    const auto power = word.empty() ? 1.0F : number_argument(word);
    if (!power) return not_a_number(word);
    if (!(*power > 0 && *power <= 100)) return refuse("COSINE takes a positive power.");
    return sine_bell(dimension, 0.5, 1, double{*power}, "COSINE");
}

}  // namespace zolt
