// The joint least squares fit of weak regions. The spectrum is turned by the phase of the moment; heights are real there.
#include "processing/auto_phase_model.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <tuple>

namespace zolt {

namespace {

using Value = std::complex<double>;

constexpr double degree = std::numbers::pi / 180;
constexpr int sweeps = 10;
constexpr int last_addition = 4;  // sweep in which lines are added for the second time
constexpr double settled = 0.03 * degree;
constexpr int first_linear_sweep = 2;  // before it the smooth level is a median: many lines may still be missing
constexpr double farthest_wing = 60;   // half widths to which a line is taken away from what stands beside it
constexpr double reach = 25;           // half widths in which a line is fitted
constexpr double width_spread = 0.35;  // of the logarithm: lines of one spectrum have widths alike
constexpr double damping = 1e-3;
// A line is left out when its height is less than this many times as large as the noise leaves it.
constexpr double lost = 2;
constexpr size_t most_lines = 24;     // of a region
constexpr double level_spread = 0.1;  // of a straight level left below a part, in standard deviations of the noise
constexpr size_t level_part = 64;     // the level of the whole is smooth over such a part of the spectrum
constexpr double model_floor = 0.7 * degree;
constexpr double wide_floor = 5 * degree;  // more for each doubling of the usual width

Value shape(const Line& line, double x) {
    const double off = (x - line.point) / line.half_width, down = 1 / (1 + off * off);
    return {down, (line.reversed ? off : -off) * down};
}

// Lines whose places and widths are in bins and whose heights may be negative.
struct Part {
    size_t index = 0;  // among the regions
    std::vector<Line> lines;
    size_t first = 0, last = 0;  // the bins that are fitted
    bool fitted = false;
    double sign = 1;
};

// The spectrum turned back by a phase, less all lines and what is smooth below them.
class Rest {
public:
    Rest(const BinnedSpectrum& spectrum, size_t points, bool noisy) : spectrum_(spectrum), points_(points), noisy_(noisy) {}

    const BinnedSpectrum& spectrum() const { return spectrum_; }
    // How many times as large as the noise leaves it the height of a line is that is added.
    double seen() const { return noisy_ ? 3.5 : 5; }
    Value operator[](size_t i) const { return rest_[i]; }

    void turn(const PhaseLine& phase, std::span<const Part> parts, int sweep) {
        rest_ = turned_back(spectrum_, points_, phase);
        for (const Part& part : parts)
            for (const Line& line : part.lines) take_away(line);
        if (noisy_ && sweep >= first_linear_sweep)
            level_ = running_mean();
        else if (sweep % 3 == 0)
            level_ = smooth_level(rest_);
        for (size_t i = 0; i < rest_.size(); ++i) rest_[i] -= level_[i];
    }
    void take_away(const Line& line) {
        const double wing =
            line.half_width * std::clamp(std::abs(line.height) / (0.2 * spectrum_.noise + 1e-300), 4.0, farthest_wing);
        const auto [first, last] = range(line.point - wing, line.point + wing);
        for (size_t i = first; i <= last; ++i) rest_[i] -= line.height * shape(line, static_cast<double>(i));
    }
    std::pair<size_t, size_t> range(double first, double last) const {
        const auto end = static_cast<double>(spectrum_.bins.size() - 1);
        return {static_cast<size_t>(std::clamp(first, 0.0, end)), static_cast<size_t>(std::clamp(last, 0.0, end))};
    }
    // Variance of a sum over bins that are weighted by a unit vector.
    double noise() const { return spectrum_.noise * spectrum_.noise * spectrum_.alike + 1e-300; }

private:
    // Three times the mean over a window. A level that is linear in the data takes the same from the lines' shapes and from the
    // data, so that the fit ends where the likelihood of all that is not smooth is largest.
    std::vector<Value> running_mean() const {
        const double most = 4 * spectrum_.noise;  // what is no noise counts as little as that
        const size_t n = rest_.size(), half = n / level_part / 2;
        std::vector<Value> mean(n), sums(n + 1);
        for (size_t i = 0; i < n; ++i)
            mean[i] = {std::clamp(rest_[i].real(), -most, most), std::clamp(rest_[i].imag(), -most, most)};
        for (int round = 0; round < 3; ++round) {
            for (size_t i = 0; i < n; ++i) sums[i + 1] = sums[i] + mean[i];
            for (size_t i = 0; i < n; ++i) {
                const size_t reached = std::min({half, i, n - 1 - i});
                mean[i] = (sums[i + reached + 1] - sums[i - reached]) / static_cast<double>(2 * reached + 1);
            }
        }
        return mean;
    }

    const BinnedSpectrum& spectrum_;
    size_t points_;
    bool noisy_;
    std::vector<Value> rest_, level_;
};

// The normal equations of one part as a Cholesky factor: three parameters to a line (height, place, width), four of a straight
// level below it, and the phase last.
class NormalEquations {
public:
    NormalEquations(const Part& part, const Rest& rest, double usual_width)
        : first_level_(3 * part.lines.size()), count_(first_level_ + 5), matrix_(count_ * count_), right_(count_) {
        multiply(part, rest);
        const double unit = 1 / (width_spread * width_spread);
        for (size_t j = 0; j < part.lines.size(); ++j) {
            at(3 * j + 2, 3 * j + 2) += unit;
            right_[3 * j + 2] += unit * std::log(usual_width / part.lines[j].half_width);
        }
        for (size_t p = first_level_; p < count_ - 1; ++p) at(p, p) += 1 / (level_spread * level_spread);
        for (size_t p = 0; p + 1 < count_; ++p) at(p, p) = at(p, p) * (1 + damping) + 1e-9;
        factorise();
    }

    // The phase whatever the lines are, and its variance; what the lines do not explain makes it less certain.
    KnownPhase phase() const {
        const double length = at(count_ - 1, count_ - 1);
        return {right_[count_ - 1] / length, excess_ / (length * length)};
    }
    // The steps of the lines once that of the phase is chosen.
    std::vector<double> steps(double phase) const {
        std::vector<double> x = right_;
        x[count_ - 1] = phase;
        for (size_t p = count_ - 1; p-- > 0;) {
            for (size_t q = p + 1; q < count_; ++q) x[p] -= at(q, p) * x[q];
            x[p] /= at(p, p);
        }
        return x;
    }

private:
    double& at(size_t row, size_t column) { return matrix_[row * count_ + column]; }
    double at(size_t row, size_t column) const { return matrix_[row * count_ + column]; }

    // A derivative by a parameter; zero outside of these bins.
    struct Column {
        size_t first = 0;
        std::vector<Value> values;

        size_t end() const { return first + values.size(); }
        double product(const Column& other) const {
            double sum = 0;
            for (size_t i = std::max(first, other.first); i < std::min(end(), other.end()); ++i) {
                const Value a = values[i - first], b = other.values[i - other.first];
                sum += a.real() * b.real() + a.imag() * b.imag();
            }
            return sum;
        }
    };
    std::vector<Column> columns_of(const Part& part, const Rest& rest) const {
        const size_t length = part.last - part.first + 1;
        const double unit = std::sqrt(rest.noise());
        std::vector<Column> columns(count_);
        for (size_t p = first_level_; p < count_; ++p) columns[p] = {part.first, std::vector<Value>(length)};
        for (size_t i = 0; i < length; ++i) {
            const double x = 2 * (static_cast<double>(i) + 0.5) / static_cast<double>(length) - 1;
            columns[first_level_].values[i] = unit;
            columns[first_level_ + 1].values[i] = Value(0, unit);
            columns[first_level_ + 2].values[i] = unit * x;
            columns[first_level_ + 3].values[i] = Value(0, unit * x);
        }
        auto& turn = columns.back().values;
        for (size_t j = 0; j < part.lines.size(); ++j) {
            const Line& line = part.lines[j];
            const double wing = std::max(reach * line.half_width, 4.0);
            const auto [from, to] = rest.range(line.point - wing, line.point + wing);
            const size_t first = std::clamp(from, part.first, part.last), last = std::clamp(to, part.first, part.last);
            Column* const own = &columns[3 * j];
            for (size_t p = 0; p < 3; ++p) own[p] = {first, std::vector<Value>(last - first + 1)};
            for (size_t i = first; i <= last; ++i) {
                const auto x = static_cast<double>(i);
                const Value g = shape(line, x);
                const Value slope = times(times(g, g), Value(0, line.reversed ? -line.height : line.height));
                own[0].values[i - first] = line.height * g;
                own[1].values[i - first] = slope;
                own[2].values[i - first] = slope * ((x - line.point) / line.half_width);
                turn[i - part.first] += times(Value(0, line.height), g);
            }
        }
        return columns;
    }
    void multiply(const Part& part, const Rest& rest) {
        const std::vector<Column> columns = columns_of(part, rest);
        Column left{part.first, {}};
        for (size_t i = part.first; i <= part.last; ++i) left.values.push_back(rest[i]);
        const double unit = 1 / rest.noise();
        for (size_t p = 0; p < count_; ++p) {
            for (size_t q = 0; q <= p; ++q) at(p, q) = columns[p].product(columns[q]) * unit;
            right_[p] = columns[p].product(left) * unit;
        }
        double misfit = 0;
        for (size_t i = part.first; i <= part.last; ++i) misfit += std::norm(rest[i]);
        const double noise = rest.spectrum().noise;
        excess_ = std::max(1.0, misfit / (2 * static_cast<double>(part.last - part.first + 1) * noise * noise + 1e-300));
    }
    void factorise() {
        for (size_t p = 0; p < count_; ++p) {
            for (size_t q = 0; q <= p; ++q) {
                double sum = at(p, q);
                for (size_t k = 0; k < q; ++k) sum -= at(p, k) * at(q, k);
                at(p, q) = p == q ? std::sqrt(std::max(sum, 1e-9)) : sum / at(q, q);
            }
            for (size_t k = 0; k < p; ++k) right_[p] -= at(p, k) * right_[k];
            right_[p] /= at(p, p);
        }
    }

    size_t first_level_, count_;
    std::vector<double> matrix_, right_;
    double excess_ = 1;
};

// How many times a line's height is as large as the noise leaves it.
double certainty(const Line& line, const Rest& rest) {
    return std::abs(line.height) * std::sqrt(std::numbers::pi * line.half_width / rest.noise());
}

void move(Part& part, std::span<const double> steps, const Rest& rest) {
    for (size_t j = 0; j < part.lines.size(); ++j) {
        Line& line = part.lines[j];
        line.height *= 1 + std::clamp(steps[3 * j], -0.7, 2.0);
        line.point += line.half_width * std::clamp(steps[3 * j + 1], -0.5, 0.5);
        line.half_width = std::max(line.half_width * std::exp(std::clamp(steps[3 * j + 2], -0.3, 0.3)), 0.3);
    }
    const auto surer = [&](const Line& a, const Line& b) { return certainty(a, rest) > certainty(b, rest); };
    std::iter_swap(part.lines.begin(), std::min_element(part.lines.begin(), part.lines.end(), surer));
    const auto others = part.lines.begin() + 1;  // the surest stays
    part.lines.erase(std::remove_if(others, part.lines.end(), [&](const Line& line) { return certainty(line, rest) < lost; }),
                     part.lines.end());
}

// The bins that hold the lines of a part with their feet.
void set_range(Part& part, const Rest& rest) {
    double first = 1e300, last = -1e300;
    for (const Line& line : part.lines) {
        first = std::min(first, line.point - reach * line.half_width);
        last = std::max(last, line.point + reach * line.half_width);
    }
    std::tie(part.first, part.last) = rest.range(first, last);
}

// Adds lines of the usual width where the rest shows them, the tallest first.
void add_lines(Part& part, Rest& rest, double usual_width) {
    Line line = part.lines[0];
    line.half_width = usual_width;
    const auto wing = static_cast<size_t>(std::ceil(3 * usual_width));
    std::vector<Value> form(2 * wing + 1);
    line.point = static_cast<double>(wing);
    double square = 0;
    for (size_t k = 0; k < form.size(); ++k) {
        form[k] = shape(line, static_cast<double>(k));
        square += std::norm(form[k]);
    }
    const size_t first = std::max(part.first, wing), end = std::min(part.last + 1, rest.spectrum().bins.size() - wing);
    while (part.lines.size() < most_lines) {
        double tallest = 0;
        for (size_t i = first; i < end; ++i) {
            double sum = 0;
            for (size_t k = 0; k < form.size(); ++k) {
                const Value left = rest[i - wing + k];
                sum += form[k].real() * left.real() + form[k].imag() * left.imag();
            }
            if (const double height = sum / square * part.sign; height > tallest) {
                tallest = height;
                line.point = static_cast<double>(i);
            }
        }
        line.height = tallest * part.sign;
        if (certainty(line, rest) < rest.seen()) return;
        part.lines.push_back(line);
        rest.take_away(line);
    }
}

// What the phase of a part is off however strong it is: wide lines may be sums of others, with shapes of their own.
double floor_of(const Part& part, double usual_width) {
    double area = 0, excess = 0;
    for (const Line& line : part.lines) {
        area += std::abs(line.height) * line.half_width;
        excess += std::abs(line.height) * line.half_width * std::max(0.0, std::log2(line.half_width / usual_width) - 0.7);
    }
    return model_floor + wide_floor * excess / area;
}

std::vector<Part> parts_of(std::span<const PhasedRegion> regions, const Rest& rest, size_t points, const PhaseLine& near) {
    std::vector<Part> parts;
    const double width = rest.spectrum().width;
    for (size_t i = 0; i < regions.size(); ++i) {
        if (is_broad(regions[i].lines[0], points)) continue;
        Part part{.index = i, .lines = regions[i].lines, .fitted = !regions[i].strong};
        double area = 0;
        for (Line& line : part.lines) {
            line.height *= std::cos(line.phase - near.at(line.point / static_cast<double>(points)));
            line.point = (line.point - rest.spectrum().point(0)) / width;
            line.half_width /= width;
            area += line.height * line.half_width;
        }
        part.sign = area < 0 ? -1 : 1;
        if (part.fitted) std::erase_if(part.lines, [&](const Line& line) { return line.height * part.sign <= 0; });
        if (part.lines.empty()) continue;
        set_range(part, rest);
        parts.push_back(std::move(part));
    }
    return parts;
}

}  // namespace

std::vector<KnownPhase> phase_by_model(std::span<const PhasedRegion> regions, std::span<const BinnedSpectrum> pyramid,
                                       const PhaseLine& near, PhaseOrder order) {
    std::vector<KnownPhase> phases(regions.size(), unknown_phase);
    const size_t points = pyramid[0].bins.size();
    const BinnedSpectrum& spectrum = bins_for_lines(regions, pyramid);
    const double usual_width = usual_half_width(regions, points) / spectrum.width;
    Rest rest(spectrum, points, is_noisy(regions, pyramid));
    std::vector<Part> parts = parts_of(regions, rest, points, near);
    if (std::none_of(parts.begin(), parts.end(), [](const Part& part) { return part.fitted; })) return phases;

    std::vector<PhasedRegion> known(regions.begin(), regions.end());
    PhaseLine phase = near;
    for (int sweep = 0; sweep < sweeps; ++sweep) {
        rest.turn(phase, parts, sweep);
        std::vector<NormalEquations> equations;
        for (Part& part : parts) {
            if (!part.fitted) continue;
            if (sweep == last_addition / 2 || sweep == last_addition) add_lines(part, rest, usual_width);
            equations.emplace_back(part, rest, usual_width);
            const KnownPhase step = equations.back().phase();
            PhasedRegion& region = known[part.index];
            region.phase = phase.at(region.place) + std::clamp(step.phase, -0.5, 0.5);
            region.variance = step.variance + std::pow(floor_of(part, usual_width), 2);
            phases[part.index] = {region.phase, region.variance};
        }
        const PhaseLine before = phase;
        phase = regress(known, phase, order);
        const double change = std::max(std::abs(phase.at(0) - before.at(0)), std::abs(phase.at(1) - before.at(1)));
        if (sweep > last_addition && change < settled) break;
        size_t e = 0;
        for (Part& part : parts) {
            if (!part.fitted) continue;
            const double place = known[part.index].place;
            move(part, equations[e++].steps(phase.at(place) - before.at(place)), rest);
        }
    }
    return phases;
}

}  // namespace zolt
