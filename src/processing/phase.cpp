// The rotation and its commands PC, PA, PB and ZP.
#include "processing/phase.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "common/text.h"
#include "common/vectorised.h"
#include "platform/platform.h"
#include "processing/along.h"
#include "processing/processing_commands.h"
#include "processing/values.h"
#include "state/dataset.h"
#include "state/session.h"

namespace zolt {

Rotation::Rotation(double zero_order, double first_order, double second_order, double pivot, size_t n)
    : zero_order_(zero_order),
      first_order_(first_order),
      second_order_(second_order),
      pivot_(pivot),
      n_(n > 0 ? static_cast<double>(n) : 1) {
    for (size_t j = 0; j < block; ++j) {
        const double q = static_cast<double>(j) / n_;
        const double angle = first_order_ * q + second_order_ * q * q;
        cosine_[j] = std::cos(angle);
        sine_[j] = std::sin(angle);
    }
}

double Rotation::phase(size_t k) const {
    const auto at = static_cast<double>(k);
    const double q = at / n_;
    return zero_order_ + first_order_ * ((at - pivot_) / n_) + second_order_ * q * q;
}

namespace {

constexpr size_t block = Rotation::block;
using Block = std::array<double, block>;

// (c, s) turned by each angle of a table of cosines and sines.
ZOLT_VECTORISED void turn_table(double c, double s, const double* __restrict cosines, const double* __restrict sines,
                                double* __restrict cosine, double* __restrict sine) {
    for (size_t j = 0; j < block; ++j) {
        cosine[j] = c * cosines[j] - s * sines[j];
        sine[j] = s * cosines[j] + c * sines[j];
    }
}

// The same with an angle that grows by one step from place to place.
ZOLT_VECTORISED void turn_table_by(const double* __restrict c, const double* __restrict s, const double* __restrict cosines,
                                   const double* __restrict sines, double* __restrict cosine, double* __restrict sine) {
    for (size_t j = 0; j < block; ++j) {
        cosine[j] = c[j] * cosines[j] - s[j] * sines[j];
        sine[j] = s[j] * cosines[j] + c[j] * sines[j];
    }
}

// e^(-i angle) as factors, rounded once.
ZOLT_VECTORISED void to_factors(const double* __restrict cosine, const double* __restrict sine, float* __restrict factors) {
    for (size_t j = 0; j < block; ++j) {
        factors[2 * j] = static_cast<float>(cosine[j]);
        factors[2 * j + 1] = static_cast<float>(-sine[j]);
    }
}

// Cosine and sine of angle + j step: the first places by turning, the others from them, several at a time.
void fill_turning(double angle, double step, Block& c, Block& s) {
    constexpr size_t lanes = 8;
    for (size_t j = 0; j < lanes; ++j) {
        const double at = angle + static_cast<double>(j) * step;
        c[j] = std::cos(at);
        s[j] = std::sin(at);
    }
    const double turn_c = std::cos(lanes * step), turn_s = std::sin(lanes * step);
    for (size_t j = lanes; j < block; ++j) {
        c[j] = c[j - lanes] * turn_c - s[j - lanes] * turn_s;
        s[j] = s[j - lanes] * turn_c + c[j - lanes] * turn_s;
    }
}

}  // namespace

void Rotation::fill(size_t first, Block& cosine, Block& sine) const {
    const double start = phase(first);
    if (second_order_ == 0)
        return turn_table(std::cos(start), std::sin(start), cosine_.data(), sine_.data(), cosine.data(), sine.data());
    Block c, s;
    fill_turning(start, 2 * second_order_ * (static_cast<double>(first) / n_) / n_, c, s);
    turn_table_by(c.data(), s.data(), cosine_.data(), sine_.data(), cosine.data(), sine.data());
}

void Rotation::fill(size_t first, std::array<Complex, block>& factors) const {
    Block cosine, sine;
    fill(first, cosine, sine);
    to_factors(cosine.data(), sine.data(), reinterpret_cast<float*>(factors.data()));
}

void rotate(std::span<Complex> x, const Rotation& rotation, size_t first) {
    std::array<Complex, block> factors;
    if (rotation.constant()) {
        rotation.fill(0, factors);
        return turn(x, factors[0]);
    }
    for (size_t at = 0; at < x.size(); at += block) {
        rotation.fill(first + at, factors);
        turn(x.subspan(at, std::min(block, x.size() - at)), std::span<const Complex>(factors));
    }
}

bool rotation_table(const Rotation& rotation, size_t n, Buffer<Complex>& factors) {
    if (!factors.allocate(n)) return false;
    std::array<Complex, block> part;
    for (size_t at = 0; at < n; at += block) {
        rotation.fill(at, part);
        std::copy_n(part.begin(), std::min(block, n - at), factors.data() + at);
    }
    return true;
}

bool rotate_vectors(VectorStore& store, const Rotation& rotation) {
    Buffer<Complex> factors;
    if (store.count() > 1 && !rotation.constant() && rotation_table(rotation, store.points(), factors))
        return for_each_vector(store, [&](std::span<Complex> x) { turn(x, factors.span()); });
    return for_each_vector(store, [&](std::span<Complex> x) { rotate(x, rotation); });
}

namespace {

double radians(float angle) { return double{angle} * 6.283185307179586 / 360.0; }

Rotation rotation_by(const PhaseAngles& degrees, double pivot, size_t n) {
    return {radians(degrees[0]), radians(degrees[1]), radians(degrees[2]), pivot, n};
}

}  // namespace

int phase_correct(const PhaseAngles& degrees, double pivot, bool update_totals) {
    if (show.level > 3) return refuse(format_text("Phase Correct is not supported with Arrayed mode level %d", show.level));
    if (!rotate_vectors(show.store, rotation_by(degrees, pivot, show.store.points()))) return cancelled("Phase Correct");
    // A link or macro that phases slice after slice counts the angles once, with the first slice.
    if (update_totals && !(playing_back() && show.slice != 0))
        for (size_t order = 0; order < degrees.size(); ++order) show.dims[0].phase_totals[order] += degrees[order];
    mark_changed();
    return 1;
}

int phase_correct_along(int dimension, const PhaseAngles& degrees) {
    const auto along = along_or_refuse(dimension, "PhaseDim");
    if (!along) return 0;
    Buffer<Complex> factors;
    if (!rotation_table(rotation_by(degrees, 0, along->length), along->length, factors))
        return refuse("There is no memory for the phases of PhaseDim.");
    const bool done = for_each_vector(show.store, [&](std::span<Complex> x, size_t i) { turn(x, factors[along->place(i)]); });
    if (!done) return cancelled("PhaseDim");
    Dimension& turned = show.dims[static_cast<size_t>(dimension - 1)];
    for (size_t order = 0; order < degrees.size(); ++order) turned.phase_totals[order] += degrees[order];
    mark_changed();
    return 1;
}

int cmd_pa(Arguments& args) { return set_stored_value(show.phase[0], "PA", "Zero-order phase A, degrees", args); }

int cmd_pb(Arguments& args) { return set_stored_value(show.phase[1], "PB", "First-order phase B, degrees", args); }

int cmd_pc(Arguments& args) {
    if (args.ask_usage()) return show_reply("  - USAGE:  PC   [A   [B   [C]]]");
    std::string word = args.next();
    PhaseAngles degrees{};
    if (word.empty()) {
        degrees = show.phase;
        session.log_line = format_text("PC %f %f %f", double{degrees[0]}, double{degrees[1]}, double{degrees[2]});
    }
    for (size_t order = 0; order < degrees.size() && !word.empty(); ++order, word = args.next()) {
        const auto value = number_argument(word);
        if (!value) return not_a_number(word);
        degrees[order] = *value;
    }
    const WaitCursor wait;
    return phase_correct(degrees, 0, true);
}

int cmd_zp(Arguments& args) {
    if (args.ask_usage()) return show_reply("  - USAGE:  ZP");
    PhaseAngles back = show.dims[0].phase_totals;
    for (float& angle : back) angle = -angle;
    const WaitCursor wait;
    return phase_correct(back, 0, true);
}

int cmd_phasedim(Arguments& args) {
    constexpr const char* usage = "  - USAGE:  PhaseDim   2D / 3D / 4D   A   [B   [C]]";
    const int dimension = args.ask_usage() ? 1 : take_dimension(args);
    std::string word = args.next();
    if (dimension == 1 || word.empty()) return show_reply(usage);
    PhaseAngles degrees{};
    for (size_t order = 0; order < degrees.size() && !word.empty(); ++order, word = args.next()) {
        const auto value = number_argument(word);
        if (!value) return not_a_number(word);
        degrees[order] = *value;
    }
    const WaitCursor wait;
    return phase_correct_along(dimension, degrees);
}

}  // namespace zolt
