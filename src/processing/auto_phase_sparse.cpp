// All of it happens among correlations: those of the data with the lines to choose from, which a phase only turns, and those of
// the lines with each other, which it leaves alone.
#include "processing/auto_phase_sparse.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <numbers>
#include <vector>

#include "common/vectorised.h"
#include "processing/fft.h"
#include "processing/phase.h"

namespace zolt {

namespace {

using Value = std::complex<double>;

constexpr double pi = std::numbers::pi, degree = pi / 180;
constexpr size_t width_count = 7;
constexpr double width_ratio = 1.35;  // of one width to the next; the usual one is in the middle
constexpr double spacing = 0.3;       // of the places, in full widths
constexpr double decay = 6;           // the FID counts until the usual line has fallen to e^-6
constexpr size_t first_points = 16;   // of the FID that do not count: what is smooth in the spectrum, and what may be wrong
constexpr size_t fewest_points = 8 * first_points;
constexpr double reach = 12;    // full widths at which lines overlap
constexpr float penalty = 3;    // of the heights, in standard deviations of the noise
constexpr float low = 2;        // a height that has half the penalty the second time
constexpr float exact = 0.02F;  // heights, in standard deviations of the noise
constexpr int most_passes = 20, most_repeats = 30;
constexpr double zero_step = 1 * degree, first_step = 2 * degree;  // to see how the slopes change; the latter from end to end
constexpr int most_steps = 5;
constexpr double longest_zero = 4 * degree, longest_first = 8 * degree;  // of a step
constexpr double settled_zero = 0.05 * degree, settled_first = 0.1 * degree;
constexpr double farthest_zero = 10 * degree, farthest_first = 25 * degree;  // from the start

// Lines of one width at places of a grid; the places are counted in the finest one.
struct Shape {
    double width = 0;  // at half height, cycles per point of the FID
    double norm = 0;   // length of its FID
    size_t stride = 1;
    size_t reach = 0;           // places
    std::vector<float> slopes;  // what is not explained yet, at its places
};

// How much lines of one shape at a place and those of another about it are alike: a row for each place within the stride.
struct Overlap {
    std::ptrdiff_t wide = 0;  // places of the other shape to either side
    std::vector<float> rows;

    const float* middle(size_t row) const { return rows.data() + static_cast<std::ptrdiff_t>(row) * (2 * wide + 1) + wide; }
};

// A line to choose: a shape of length 1 at a place.
struct Atom {
    size_t shape, place;
    double part;  // of the spectrum, seen from the middle of the signals
    float sign;
    Value correlation;  // with the data
    float height = 0, penalty = zolt::penalty;
};

// The FID of the spectrum turned back by a phase; that of the other sense of the imaginary part is conjugated.
std::vector<Complex> fid_of(const BinnedSpectrum& spectrum, const PhaseLine& phase, bool reversed) {
    std::vector<Complex> fid(spectrum.bins.begin(), spectrum.bins.end());
    rotate(fid, Rotation(phase.zero_order, phase.first_order, 0, 0, fid.size()));
    if (reversed)
        for (Complex& point : fid) point = std::conj(point);
    std::rotate(fid.begin(), fid.begin() + static_cast<std::ptrdiff_t>(fid.size() / 2), fid.end());
    if (!float_fft_4_2(fid.data(), fid.size(), 1)) fid.clear();
    return fid;
}

ZOLT_VECTORISED void take_away(float* from, const float* form, float height, size_t count) {
    for (size_t i = 0; i < count; ++i) from[i] -= height * form[i];
}

class SparseFit {
public:
    SparseFit(std::span<const PhasedRegion> regions, const BinnedSpectrum& spectrum, const PhaseLine& near)
        : regions_(regions), reversed_(regions[0].lines[0].reversed) {
        const size_t n = spectrum.bins.size();
        const auto points = static_cast<double>(n);
        for (const PhasedRegion& region : regions) {
            first_ = std::min(first_, region.lines.front().point / points);
            last_ = std::max(last_, region.lines.back().point / points);
            double area = 0;
            for (const Line& line : region.lines)
                area += line.height * line.half_width * std::cos(line.phase - near.at(line.point / points));
            signs_.push_back(area < 0 ? -1 : 1);
        }
        const double width = 2 * usual_half_width(regions, n) / points;
        const auto decayed = static_cast<size_t>(decay / (pi * width));
        end_ = std::min(n, decayed);
        if (end_ < fewest_points) return;
        // Lines of hardly a point would take too many places.
        const size_t most_places = 2 * std::bit_ceil(n);
        while (places_ <= most_places && (static_cast<double>(places_) * spacing * width < 1 || places_ < 2 * end_)) places_ *= 2;
        if (places_ > most_places) return;
        const std::vector<Complex> fid = fid_of(spectrum, near, reversed_);
        if (fid.empty()) return;
        set_shapes(width);
        set_overlaps();
        choose_atoms(fid, static_cast<double>(n / 2) / points);
    }

    bool ready() const { return !atoms_.empty(); }
    double span() const { return std::max(last_ - first_, 1e-3); }
    // A phase seen from the middle of the signals as one to add.
    PhaseLine from_start(double at_middle, double first_order) const {
        const double sense = reversed_ ? -1 : 1;
        return {sense * (at_middle - first_order * middle()), sense * first_order};
    }
    // The slopes at another phase; the heights stay.
    std::array<double, 2> look(double at_middle, double first_order) {
        const std::vector<Atom> before = atoms_;
        const auto slopes = solve(at_middle, first_order);
        atoms_ = before;
        return slopes;
    }
    // Solves for the heights at a phase further than the start; the slopes of what is minimal by both of its orders.
    std::array<double, 2> solve(double at_middle, double first_order) {
        const auto turned = [&](const Atom& atom) {
            return times(atom.correlation, std::polar(1.0, -at_middle - first_order * atom.part));
        };
        for (const Atom& atom : atoms_) slope(atom) = static_cast<float>(turned(atom).real());
        for (const Atom& atom : atoms_)
            if (atom.height > 0) explain(atom, atom.height);
        descend();
        weigh();
        descend();
        std::array<double, 2> slopes = {};
        for (const Atom& atom : atoms_) {
            if (atom.height == 0) continue;
            const double by_phase = -atom.height * atom.sign * turned(atom).imag();
            slopes[0] += by_phase;
            slopes[1] += by_phase * atom.part;
        }
        return slopes;
    }

private:
    double middle() const { return (first_ + last_) / 2; }

    void set_shapes(double usual_width) {
        for (size_t k = 0; k < width_count; ++k) {
            Shape& shape = shapes_[k];
            shape.width = usual_width * std::pow(width_ratio, static_cast<double>(k) - (width_count - 1) / 2.0);
            const double places = shape.width * static_cast<double>(places_);
            while (2 * static_cast<double>(shape.stride) <= spacing * places) shape.stride *= 2;
            shape.reach = static_cast<size_t>(reach * std::max(places, usual_width * static_cast<double>(places_)));
            shape.reach = std::min(shape.reach, places_ / 2);
            shape.norm = std::sqrt(product(shape, shape, 0));
        }
    }
    // The real part of the product of two FIDs whose lines stand so many places apart.
    double product(const Shape& a, const Shape& b, size_t apart) const {
        const Value z(-pi * (a.width + b.width), 2 * pi * static_cast<double>(apart) / static_cast<double>(places_));
        const Value sum = std::exp(z * static_cast<double>(end_)) - std::exp(z * static_cast<double>(first_points));
        return (sum / (std::exp(z) - 1.0)).real();
    }
    void set_overlaps() {
        for (const Shape& a : shapes_) {
            for (const Shape& b : shapes_) {
                const size_t reached = std::max(a.reach, b.reach);
                std::vector<float> alike(reached + 1);
                for (size_t apart = 0; apart <= reached; ++apart)
                    alike[apart] = static_cast<float>(product(a, b, apart) / (a.norm * b.norm));
                Overlap& overlap = overlaps_[static_cast<size_t>(&a - shapes_.data())][static_cast<size_t>(&b - shapes_.data())];
                overlap.wide = static_cast<std::ptrdiff_t>(reached / b.stride);
                const auto stride = static_cast<std::ptrdiff_t>(b.stride);
                for (std::ptrdiff_t row = 0; row < stride; ++row)
                    for (std::ptrdiff_t at = -overlap.wide; at <= overlap.wide; ++at) {
                        const auto apart = static_cast<size_t>(std::abs(at * stride - row));
                        overlap.rows.push_back(apart <= reached ? alike[apart] : 0);
                    }
            }
        }
    }

    // Correlations with one shape at all places, in order of their frequency.
    std::vector<Value> correlate(const std::vector<Complex>& fid, const Shape& shape) const {
        std::vector<Complex> product(places_);
        double down = std::exp(-pi * shape.width * static_cast<double>(first_points)) / shape.norm;
        const double factor = std::exp(-pi * shape.width);
        for (size_t t = first_points; t < end_; ++t, down *= factor) product[t] = fid[t] * static_cast<float>(down);
        if (!float_fft_4_2(product.data(), places_, -1)) return {};
        std::vector<Value> result(product.begin(), product.end());
        std::rotate(result.begin(), result.begin() + static_cast<std::ptrdiff_t>(places_ / 2), result.end());
        return result;
    }
    double sign_at(double place) const {
        size_t nearest = 0;
        for (size_t i = 1; i < regions_.size(); ++i)
            if (std::abs(regions_[i].place - place) < std::abs(regions_[nearest].place - place)) nearest = i;
        return signs_[nearest];
    }
    // As overlaps are positive, what does not exceed the penalty alone does not do so beside others.
    void choose_atoms(const std::vector<Complex>& fid, double of_zero_frequency) {
        const std::vector<Value> usual = correlate(fid, shapes_[width_count / 2]);
        if (usual.empty()) return;
        const double noise = noise_of(usual);
        if (!(noise > 0)) return;
        for (size_t k = 0; k < width_count; ++k) {
            Shape& shape = shapes_[k];
            const std::vector<Value> correlations = correlate(fid, shape);
            if (correlations.empty()) {
                atoms_.clear();
                return;
            }
            shape.slopes.resize(places_ / shape.stride);
            for (size_t place = 0; place < places_; place += shape.stride) {
                const Value correlation = correlations[place] / noise;
                const double turnable = std::abs(correlation.imag()) * std::sin(farthest_zero);
                if (std::abs(correlation.real()) + turnable < penalty) continue;
                const double part = static_cast<double>(place) / static_cast<double>(places_) - 0.5 + of_zero_frequency;
                const double sign = sign_at(part);
                if (sign * correlation.real() + turnable < penalty) continue;
                atoms_.push_back({k, place, part - middle(), static_cast<float>(sign), correlation});
            }
        }
    }

    float& slope(const Atom& atom) { return shapes_[atom.shape].slopes[atom.place / shapes_[atom.shape].stride]; }
    // What one line explains is no longer there to explain for others.
    void explain(const Atom& atom, float height) {
        const float signed_height = height * atom.sign;
        for (size_t k = 0; k < width_count; ++k) {
            Shape& shape = shapes_[k];
            const Overlap& overlap = overlaps_[atom.shape][k];
            const float* const alike = overlap.middle(atom.place % shape.stride);
            const auto here = static_cast<std::ptrdiff_t>(atom.place / shape.stride);
            const auto last = static_cast<std::ptrdiff_t>(shape.slopes.size()) - 1 - here;
            const std::ptrdiff_t from = std::max(-overlap.wide, -here), to = std::min(overlap.wide, last);
            take_away(shape.slopes.data() + here + from, alike + from, signed_height, static_cast<size_t>(to - from + 1));
        }
    }
    // The best height of one line, the others as they are; true when it was another.
    bool adjust(Atom& atom) {
        const float height = std::max(0.0F, atom.height + atom.sign * slope(atom) - atom.penalty), change = height - atom.height;
        if (std::abs(change) <= exact) return false;
        atom.height = height;
        explain(atom, change);
        return true;
    }
    // Not to the very end: what the last small steps would gain is noise.
    void descend() {
        std::vector<Atom*> active;
        for (int pass = 0; pass < most_passes; ++pass) {
            bool changed = false;
            active.clear();
            for (Atom& atom : atoms_) {
                const bool before = atom.height > 0;
                changed |= adjust(atom);
                if (before || atom.height > 0) active.push_back(&atom);
            }
            if (!changed) return;
            for (int repeat = 0; repeat < most_repeats && changed; ++repeat) {
                changed = false;
                for (Atom* atom : active) changed |= adjust(*atom);
            }
        }
    }
    // High lines, with what stands at the places next to them, have less of a penalty.
    void weigh() {
        const auto height = [&](const Atom& atom, size_t i) {
            const bool near =
                i < atoms_.size() && atoms_[i].shape == atom.shape &&
                std::max(atoms_[i].place, atom.place) - std::min(atoms_[i].place, atom.place) <= shapes_[atom.shape].stride;
            return near ? atoms_[i].height : 0.0F;
        };
        for (size_t i = 0; i < atoms_.size(); ++i) {
            Atom& atom = atoms_[i];
            atom.penalty = penalty * low / (low + atom.height + height(atom, i - 1) + height(atom, i + 1));
        }
    }

    std::span<const PhasedRegion> regions_;
    bool reversed_;
    std::vector<double> signs_;    // of the regions
    double first_ = 1, last_ = 0;  // of the lines, as parts of the spectrum
    size_t end_ = 0, places_ = 1;
    std::array<Shape, width_count> shapes_;
    std::array<std::array<Overlap, width_count>, width_count> overlaps_;
    std::vector<Atom> atoms_;
};

// Second derivatives of what is minimal by zero and first order.
struct Curvature {
    double zero = 0, first = 0, mixed = 0;

    // To where both slopes vanish; each for itself where that is no minimum.
    std::array<double, 2> step(const std::array<double, 2>& slopes) const {
        const double determinant = zero * first - mixed * mixed;
        if (zero > 0 && first > 0 && determinant > 0.1 * zero * first)
            return {(mixed * slopes[1] - first * slopes[0]) / determinant, (mixed * slopes[0] - zero * slopes[1]) / determinant};
        return {-slopes[0] / (std::abs(zero) + 1e-9), -slopes[1] / (std::abs(first) + 1e-9)};
    }
};

}  // namespace

std::optional<PhaseLine> phase_by_sparse_lines(std::span<const PhasedRegion> regions, std::span<const BinnedSpectrum> pyramid,
                                               const PhaseLine& near, PhaseOrder order) {
    SparseFit fit(regions, pyramid[0], near);
    if (!fit.ready()) return std::nullopt;
    // Newton's steps; how the slopes change is seen once, from where they are a little further on.
    const double first_change = first_step / fit.span();
    double zero = 0, first = 0;
    Curvature curvature;
    for (int step = 0; step < most_steps; ++step) {
        const auto slopes = fit.solve(zero, first);
        if (step == 0) {
            const auto by_zero = fit.look(zero + zero_step, first);
            curvature.zero = (by_zero[0] - slopes[0]) / zero_step;
            if (order == PhaseOrder::first) {
                const auto by_first = fit.look(zero, first + first_change);
                curvature.first = (by_first[1] - slopes[1]) / first_change;
                curvature.mixed = ((by_zero[1] - slopes[1]) / zero_step + (by_first[0] - slopes[0]) / first_change) / 2;
            }
        }
        auto [zero_by, first_by] = curvature.step(slopes);
        zero_by = std::clamp(zero_by, -longest_zero, longest_zero);
        first_by = order == PhaseOrder::first ? std::clamp(first_by, -longest_first / fit.span(), longest_first / fit.span()) : 0;
        zero += zero_by;
        first += first_by;
        if (std::abs(zero_by) < settled_zero && std::abs(first_by) * fit.span() < settled_first) break;
    }
    if (std::abs(zero) > farthest_zero || std::abs(first) * fit.span() > farthest_first) return std::nullopt;
    const PhaseLine change = fit.from_start(zero, first);
    return PhaseLine{near.zero_order + change.zero_order, near.first_order + change.first_order};
}

}  // namespace zolt
