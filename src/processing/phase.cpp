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

void Rotation::fill(size_t first, std::array<double, block>& cosine, std::array<double, block>& sine) const {
    const double start = phase(first);
    double c = std::cos(start), s = std::sin(start);
    if (second_order_ == 0) {
        for (size_t j = 0; j < block; ++j) {
            cosine[j] = c * cosine_[j] - s * sine_[j];
            sine[j] = s * cosine_[j] + c * sine_[j];
        }
        return;
    }
    const double step = 2 * second_order_ * (static_cast<double>(first) / n_) / n_;
    const double step_cosine = std::cos(step), step_sine = std::sin(step);
    for (size_t j = 0; j < block; ++j) {
        cosine[j] = c * cosine_[j] - s * sine_[j];
        sine[j] = s * cosine_[j] + c * sine_[j];
        const double turned = c * step_cosine - s * step_sine;
        s = s * step_cosine + c * step_sine;
        c = turned;
    }
}

namespace {

ZOLT_VECTORISED void rotate_parts(float* __restrict x, const double* __restrict c, const double* __restrict s, size_t n) {
    for (size_t j = 0; j < n; ++j) {
        const double r = double{x[2 * j]}, i = double{x[2 * j + 1]};
        x[2 * j] = static_cast<float>(r * c[j] + i * s[j]);
        x[2 * j + 1] = static_cast<float>(i * c[j] - r * s[j]);
    }
}

}  // namespace

void rotate(std::span<Complex> x, const Rotation& rotation, size_t first) {
    std::array<double, Rotation::block> cosine, sine;
    for (size_t at = 0; at < x.size(); at += Rotation::block) {
        rotation.fill(first + at, cosine, sine);
        const auto part = x.subspan(at, std::min(Rotation::block, x.size() - at));
        rotate_parts(reinterpret_cast<float*>(part.data()), cosine.data(), sine.data(), part.size());
    }
}

bool rotation_table(const Rotation& rotation, size_t n, Buffer<Complex>& factors) {
    if (!factors.allocate(n)) return false;
    std::fill(factors.span().begin(), factors.span().end(), Complex(1, 0));
    rotate(factors.span(), rotation);
    return true;
}

bool rotate_vectors(VectorStore& store, const Rotation& rotation) {
    Buffer<Complex> factors;
    if (store.count() > 1 && rotation_table(rotation, store.points(), factors))
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
