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

// Computed in double precision, rounded once.
ZOLT_VECTORISED void turn_parts(float* __restrict x, const double* __restrict c, const double* __restrict s, size_t n) {
    for (size_t k = 0; k < n; ++k) {
        const double r = double{x[2 * k]}, i = double{x[2 * k + 1]};
        x[2 * k] = static_cast<float>(r * c[k] + i * s[k]);
        x[2 * k + 1] = static_cast<float>(i * c[k] - r * s[k]);
    }
}

ZOLT_VECTORISED void turn_parts_by_one(float* x, double c, double s, size_t n) {
    for (size_t k = 0; k < n; ++k) {
        const double r = double{x[2 * k]}, i = double{x[2 * k + 1]};
        x[2 * k] = static_cast<float>(r * c + i * s);
        x[2 * k + 1] = static_cast<float>(i * c - r * s);
    }
}

float* parts(std::span<Complex> x) { return reinterpret_cast<float*>(x.data()); }

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

void rotate(std::span<Complex> x, const Rotation& rotation, size_t first) {
    if (rotation.constant())
        return turn_parts_by_one(parts(x), std::cos(rotation.phase(first)), std::sin(rotation.phase(first)), x.size());
    Block cosine, sine;
    for (size_t at = 0; at < x.size(); at += block) {
        rotation.fill(first + at, cosine, sine);
        const auto part = x.subspan(at, std::min(block, x.size() - at));
        turn_parts(parts(part), cosine.data(), sine.data(), part.size());
    }
}

bool RotationTable::fill(const Rotation& rotation, size_t n) {
    if (!cosine_.allocate(n) || !sine_.allocate(n)) return false;
    Block cosine, sine;
    for (size_t at = 0; at < n; at += block) {
        rotation.fill(at, cosine, sine);
        std::copy_n(cosine.begin(), std::min(block, n - at), cosine_.data() + at);
        std::copy_n(sine.begin(), std::min(block, n - at), sine_.data() + at);
    }
    return true;
}

void RotationTable::rotate(std::span<Complex> x) const {
    turn_parts(parts(x), cosine_.data(), sine_.data(), std::min(x.size(), cosine_.size()));
}

void RotationTable::rotate_all(std::span<Complex> x, size_t place) const {
    turn_parts_by_one(parts(x), cosine_[place], sine_[place], x.size());
}

bool rotate_vectors(VectorStore& store, const Rotation& rotation) {
    RotationTable table;
    if (store.count() > 1 && !rotation.constant() && table.fill(rotation, store.points()))
        return for_each_vector(store, [&](std::span<Complex> x) { table.rotate(x); });
    return for_each_vector(store, [&](std::span<Complex> x) { rotate(x, rotation); });
}

namespace {

double radians(float angle) { return double{angle} * 6.283185307179586 / 360.0; }

}  // namespace

Rotation rotation_by(const PhaseAngles& degrees, double pivot, size_t n) {
    return {radians(degrees[0]), radians(degrees[1]), radians(degrees[2]), pivot, n};
}

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
    RotationTable table;
    if (!table.fill(rotation_by(degrees, 0, along->length), along->length))
        return refuse("There is no memory for the phases of PhaseDim.");
    const bool done = for_each_vector(show.store, [&](std::span<Complex> x, size_t i) { table.rotate_all(x, along->place(i)); });
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
