// Regions: their lines and their wings.
#include "processing/auto_phase_regions.h"

#include "processing/auto_phase_model.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <optional>

namespace zolt {

namespace {

using Value = std::complex<double>;

constexpr double pi = std::numbers::pi, degree = pi / 180;
constexpr double line_floor = 4 * degree;  // what fitted lines are off however strong they are, by their shape
constexpr double strong_line_floor = 8 * degree;
constexpr double wings_floor = 1.5 * degree;
constexpr double surest_wings = 4 * degree;  // wings that know less are not used,
constexpr double surest_weak_wings = 2.5 * degree;
constexpr double strong = 100;       // of a region whose tallest line is less above the noise
constexpr double bins_to_edge = 8;   // from the middle of a region to where its wings begin
constexpr double longest_wings = 8;  // end of the wings over their beginning
constexpr double shortest_wings = 1.7;

struct Region {
    std::span<const Line> lines;
    double first = 0, last = 0;  // points, the feet of the lines included
    double area = 0;
    bool strong = false;
};

struct PhaseOfPart {
    double phase = 0, variance = 0;
};
constexpr PhaseOfPart unknown = {0, 1e6};

// A broad line is background to those that stand on it.
bool is_broad(const Line& line, size_t points) { return line.half_width > static_cast<double>(points) / 500; }

// The sum of the lines' amplitudes: where lines overlap, what one is turned too far the other is too little. Lines of both
// signs are added as if of one.
PhaseOfPart phase_by_lines(const Region& region) {
    Value direction = 0;
    for (const Line& line : region.lines) direction += std::polar(1 / (line.variance + line_floor * line_floor), 2 * line.phase);
    direction = std::polar(1.0, std::arg(direction) / 2);
    Value sum = 0;
    double squares = 0, scatter = 0;
    for (const Line& line : region.lines) {
        const double area = line.height * line.half_width;
        const Value turned = std::polar(area, line.phase) * std::conj(direction), amplitude = turned.real() < 0 ? -turned : turned;
        sum += amplitude;
        squares += area * area * line.variance;
        scatter += amplitude.imag() * amplitude.imag();
    }
    const double size = std::norm(sum), floor = region.strong ? strong_line_floor : line_floor;
    const auto count = static_cast<double>(region.lines.size());
    return {std::arg(sum * direction), std::max(squares, 0.25 * scatter) / size + floor * floor / std::min(count, 4.0)};
}

// Points of both wings, seen from the middle of the region.
struct Wings {
    std::vector<double> x;
    std::vector<Value> s;
};

// Fits the wings; twice more with the points weighted down that lie far off, be it by lines too weak to be found.
PhaseOfPart fit_wings(const Wings& wings, double sense, double noise) {
    constexpr size_t terms = 5;
    const size_t n = wings.x.size();
    std::vector<double> weights(n, 1.0), rest(n);
    std::vector<std::array<double, terms>> functions(n);
    PhaseOfPart result = unknown;
    for (int round = 0; round < 3; ++round) {
        // The term of Z last: what is left of it behind the others carries the phase.
        for (size_t i = 0; i < n; ++i) {
            const double x = wings.x[i], inverse = 1 / x;
            functions[i] = {1, x, inverse * inverse, inverse * inverse * inverse, inverse};
        }
        std::array<Value, terms> parts;
        double length = 0;
        for (size_t t = 0; t < terms; ++t) {
            for (size_t u = 0; u < t; ++u) {
                double shared = 0;
                for (size_t i = 0; i < n; ++i) shared += weights[i] * functions[i][t] * functions[i][u];
                for (size_t i = 0; i < n; ++i) functions[i][t] -= shared * functions[i][u];
            }
            length = 0;
            for (size_t i = 0; i < n; ++i) length += weights[i] * functions[i][t] * functions[i][t];
            length = std::sqrt(length);
            if (!(length > 1e-9)) return result;
            parts[t] = 0;
            for (size_t i = 0; i < n; ++i) {
                functions[i][t] /= length;
                parts[t] += weights[i] * functions[i][t] * wings.s[i];
            }
        }
        double misfit = 0, total = 0;
        for (size_t i = 0; i < n; ++i) {
            Value left = wings.s[i];
            for (size_t t = 0; t < terms; ++t) left -= functions[i][t] * parts[t];
            rest[i] = std::norm(left);
            misfit += weights[i] * rest[i];
            total += weights[i];
        }
        misfit /= 2 * std::max(total - terms, 1.0);
        const double unit = std::max(misfit, noise * noise);
        const Value z = parts[terms - 1] * Value(0, sense);
        result = {std::arg(z), unit / std::max(std::norm(z), 1e-300)};
        for (size_t i = 0; i < n; ++i) {
            const double off = rest[i] / (2 * 4 * unit);
            weights[i] = 1 / (1 + off * off);
        }
    }
    return result;
}

// Wings from `begin` to `end` points off the middle, in bins that resolve their beginning.
PhaseOfPart phase_of_wings(double middle, double begin, double end, std::span<const BinnedSpectrum> pyramid, double sense) {
    const BinnedSpectrum* level = &pyramid[0];
    for (const BinnedSpectrum& coarser : pyramid)
        if (coarser.width * bins_to_edge <= begin) level = &coarser;
    Wings wings;
    const double at = level->point(0), last = static_cast<double>(level->bins.size() - 1);
    const auto bin = [&](double point) {
        return static_cast<size_t>(std::clamp(std::round((point - at) / level->width), 0.0, last));
    };
    for (size_t i = bin(middle - end); i <= bin(middle + end); ++i) {
        const double x = (level->point(static_cast<double>(i)) - middle) / begin;
        if (std::abs(x) < 1) continue;
        wings.x.push_back(x);
        wings.s.push_back(level->bins[i]);
    }
    return wings.x.size() < 12 ? unknown : fit_wings(wings, sense, level->noise);
}

// The wings reach to the next region of some size. Where a shorter piece of them tells another phase, they do not know it
// better than by the difference.
std::optional<PhaseOfPart> phase_by_wings(const Region& region, double free, std::span<const BinnedSpectrum> pyramid,
                                          size_t points) {
    double width = 0;
    for (const Line& line : region.lines) width = std::max(width, line.half_width);
    const double middle = (region.first + region.last) / 2, begin = std::max((region.last - region.first) / 2 + 3 * width, 4.0);
    const double edge = std::min(middle, static_cast<double>(points) - 1 - middle);
    const double end = std::min({0.9 * free, longest_wings * begin, edge});
    if (end < shortest_wings * begin) return std::nullopt;
    const double sense = region.lines[0].reversed ? -1 : 1;
    PhaseOfPart whole = phase_of_wings(middle, begin, end, pyramid, sense);
    for (const auto& [from, to] : {std::pair(1.3, 1.0), std::pair(1.0, 0.75)}) {
        const PhaseOfPart part = phase_of_wings(middle, begin * from, end * to, pyramid, sense);
        const double off = std::remainder(part.phase - whole.phase, pi);
        whole.variance += std::max(0.0, off * off - 2 * part.variance) / 2;
    }
    return whole;
}

// Lines of a kind, sorted by their points.
std::vector<Region> join(std::span<const Line> lines, size_t points, double noise) {
    std::vector<Region> regions;
    const auto close = [&](const Line& a, const Line& b) {
        return b.point - a.point < std::max(static_cast<double>(points) / 400, 6 * (a.half_width + b.half_width));
    };
    for (size_t first = 0, next = 1; first < lines.size(); first = next++) {
        while (next < lines.size() && close(lines[next - 1], lines[next])) ++next;
        Region region{lines.subspan(first, next - first), 1e300, -1e300};
        for (const Line& line : region.lines) {
            region.first = std::min(region.first, line.point - 3 * line.half_width);
            region.last = std::max(region.last, line.point + 3 * line.half_width);
            region.area += line.height * line.half_width;
            region.strong |= line.height > strong * noise;
        }
        regions.push_back(region);
    }
    return regions;
}

}  // namespace

std::vector<PhasedRegion> phase_regions(std::span<const Line> lines, std::span<const BinnedSpectrum> pyramid, size_t points) {
    std::vector<Line> sorted(lines.begin(), lines.end());
    const auto broad =
        std::stable_partition(sorted.begin(), sorted.end(), [&](const Line& line) { return !is_broad(line, points); });
    std::vector<Region> regions = join({sorted.begin(), broad}, points, pyramid[0].noise);
    const std::vector<Region> of_broad = join({broad, sorted.end()}, points, pyramid[0].noise);
    regions.insert(regions.end(), of_broad.begin(), of_broad.end());
    std::vector<PhasedRegion> phased;
    for (const Region& region : regions) {
        const double middle = (region.first + region.last) / 2;
        double free = static_cast<double>(points);
        for (const Region& other : regions)
            if (&other != &region && other.area > 0.02 * region.area)
                free = std::min(free, other.first > middle ? other.first - middle : middle - other.last);
        PhaseOfPart part = phase_by_lines(region);
        const auto wings = phase_by_wings(region, free, pyramid, points);
        const double surest = region.strong ? surest_wings : surest_weak_wings;
        const bool by_wings =
            wings && wings->variance < surest * surest && wings->variance + wings_floor * wings_floor < part.variance;
        if (by_wings) part = {wings->phase, wings->variance + wings_floor * wings_floor};
        PhasedRegion result;
        result.place = middle / static_cast<double>(points);
        result.phase = part.phase;
        result.variance = part.variance;
        result.by_wings = by_wings;
        result.strong = region.strong;
        result.lines.assign(region.lines.begin(), region.lines.end());
        phased.push_back(std::move(result));
    }
    return phased;
}

namespace {

// A real part beside the lines, and the imaginary part there, at a phase that is near.
struct Flank {
    double real, imag;
};

// How far the phase is still off: real = level - off * imag. Points above, which may be lines too weak to be found, count less.
PhaseOfPart fit_flanks(std::span<const Flank> flanks, double noise, double alike) {
    std::vector<double> weights(flanks.size(), 1.0);
    PhaseOfPart result = unknown;
    for (int round = 0; round < 4; ++round) {
        double w = 0, wr = 0, wi = 0, wii = 0, wri = 0;
        for (size_t k = 0; k < flanks.size(); ++k) {
            const auto& [real, imag] = flanks[k];
            w += weights[k];
            wr += weights[k] * real;
            wi += weights[k] * imag;
            wii += weights[k] * imag * imag;
            wri += weights[k] * real * imag;
        }
        // The noise of the imaginary part adds to its square.
        const double square = wii - wi * wi / w - w * noise * noise;
        if (!(square > 4 * noise * noise * std::sqrt(w))) return unknown;
        const double off = -(wri - wr * wi / w) / square, level = (wr + off * wi) / w;
        double misfit = 0;
        for (size_t k = 0; k < flanks.size(); ++k) {
            const double left = flanks[k].real - level + off * flanks[k].imag;
            misfit += weights[k] * left * left;
        }
        const double unit = std::max(misfit / w, noise * noise);
        result = {off, std::max(misfit / w, alike * noise * noise) / square};
        for (size_t k = 0; k < flanks.size(); ++k) {
            const double left = flanks[k].real - level + off * flanks[k].imag, far = left * left / (6 * unit);
            weights[k] = left > 0 ? 1 / (1 + far * far) : 1;
        }
    }
    return result;
}

constexpr double flanks_floor = 2 * degree;
constexpr double integral_floor = 4 * degree;
constexpr double model_floor = 2 * degree;
constexpr double flank_begin = 1.5, flank_end = 12;  // half widths beside a line
constexpr double trusted = 0.85;                     // cosine of what a fitted line may be off

// What the flanks are read from: the spectrum without the first order of the phase, the absorption of the fitted lines there at
// a phase that is near, and which points stand in a line.
struct FlankedSpectrum {
    std::vector<double> absorption;
    std::vector<bool> core;

    FlankedSpectrum(std::span<const PhasedRegion> regions, const BinnedSpectrum& spectrum, const PhaseLine& near)
        : absorption(spectrum.bins.size()), core(spectrum.bins.size()) {
        for (const PhasedRegion& region : regions)
            for (const Line& line : region.lines) add(line, spectrum, near);
    }

private:
    void add(const Line& line, const BinnedSpectrum& spectrum, const PhaseLine& near) {
        const auto last = static_cast<double>(core.size() - 1);
        const double along = std::cos(line.phase - near.at(line.point / (last + 1)));
        const double height = std::abs(along) < trusted ? 0 : line.height * along;
        const double reach =
            line.half_width * std::clamp(std::sqrt(std::abs(height) / (0.1 * spectrum.noise + 1e-300)), 2.0, 200.0);
        const double half_core = std::max(flank_begin * line.half_width, 1.0);
        const auto first = static_cast<size_t>(std::clamp(line.point - reach, 0.0, last));
        for (size_t i = first; i <= static_cast<size_t>(std::clamp(line.point + reach, 0.0, last)); ++i) {
            const double distance = std::abs(static_cast<double>(i) - line.point), x = distance / line.half_width;
            absorption[i] += height / (1 + x * x);
            if (distance <= half_core && !is_broad(line, core.size())) core[i] = true;
        }
    }
};

// The phase of a region by its flanks, starting from one that is near.
PhaseOfPart phase_of_flanks(const PhasedRegion& region, size_t first, size_t last, const FlankedSpectrum& flanked,
                            const BinnedSpectrum& spectrum, const PhaseLine& near) {
    const auto points = static_cast<double>(spectrum.bins.size());
    double phase = near.at(region.place);
    PhaseOfPart part;
    for (int step = 0; step < 2; ++step) {
        std::vector<Flank> flanks;
        for (size_t i = first; i <= last; ++i) {
            if (flanked.core[i]) continue;
            const double here = phase + near.first_order * (static_cast<double>(i) / points - region.place);
            const Value turned = times(spectrum.bins[i], std::polar(1.0, -here));
            flanks.push_back({turned.real() - flanked.absorption[i], turned.imag()});
        }
        part = flanks.size() < 10 ? unknown : fit_flanks(flanks, spectrum.noise, spectrum.alike);
        if (std::abs(part.phase) > 60 * degree || part.variance > 1) return unknown;
        phase += part.phase;
    }
    return {phase, part.variance + flanks_floor * flanks_floor};
}

// The phase of a region's integral, over a window about its middle that takes in its feet alike; what stands beside it is taken
// for background. Dispersion cancels as far as the region is in the middle of the window.
PhaseOfPart phase_of_integral(const PhasedRegion& region, const BinnedSpectrum& spectrum, const PhaseLine& near) {
    const auto points = static_cast<double>(spectrum.bins.size());
    double first = 1e300, last = -1e300, area = 0, middle = 0;
    for (const Line& line : region.lines) {
        first = std::min(first, line.point - 4 * line.half_width);
        last = std::max(last, line.point + 4 * line.half_width);
        area += line.height * line.half_width;
        middle += line.height * line.half_width * line.point;
    }
    middle /= area;
    const double reach = std::max({last - middle, middle - first, 3.0}), side = 1.5 * reach;
    if (middle - side < 0 || middle + side > points - 1) return unknown;
    Value inside = 0, beside = 0;
    double count = 0, others = 0;
    for (auto i = static_cast<size_t>(middle - side); i <= static_cast<size_t>(middle + side); ++i) {
        const auto x = static_cast<double>(i);
        const Value turned = times(spectrum.bins[i], std::polar(1.0, -near.at(x / points)));
        if (std::abs(x - middle) <= reach) {
            inside += turned;
            count += 1;
        } else {
            beside += turned;
            others += 1;
        }
    }
    const Value sum = inside - beside * (count / others);
    const double noise = spectrum.noise * spectrum.noise * spectrum.alike * count * (1 + count / others);
    return {near.at(region.place) + std::arg(sum), noise / std::max(std::norm(sum), 1e-300) + integral_floor * integral_floor};
}

// The mean of what agrees: where one is far from the others, it is left out.
PhaseOfPart agreed(std::span<PhaseOfPart> parts) {
    const auto mean = [&](const PhaseOfPart& reference) {
        double weights = 0, sum = 0;
        for (const PhaseOfPart& part : parts) {
            weights += 1 / part.variance;
            sum += std::remainder(part.phase - reference.phase, pi) / part.variance;
        }
        return PhaseOfPart{reference.phase + sum / weights, 1 / weights};
    };
    const auto surest =
        *std::min_element(parts.begin(), parts.end(), [](const auto& a, const auto& b) { return a.variance < b.variance; });
    PhaseOfPart result = mean(surest);
    double largest = 0;
    PhaseOfPart* farthest = nullptr;
    for (PhaseOfPart& part : parts) {
        const double off = std::pow(std::remainder(part.phase - result.phase, pi), 2) / part.variance;
        if (off > largest) {
            largest = off;
            farthest = &part;
        }
    }
    if (largest < 4) return {result.phase, surest.variance};
    farthest->variance = 1e6;
    result = mean(surest);
    result.variance *= 2;
    return result;
}

}  // namespace

std::vector<PhasedRegion> phase_by_flanks(std::vector<PhasedRegion> regions, const BinnedSpectrum& spectrum,
                                          const PhaseLine& near) {
    auto modelled = regions;
    phase_by_model(modelled, spectrum, near);
    const FlankedSpectrum flanked(regions, spectrum, near);
    const auto end = static_cast<double>(spectrum.bins.size() - 1);
    for (PhasedRegion& region : regions) {
        double width = 0;
        for (const Line& line : region.lines) width = std::max(width, line.half_width);
        if (is_broad(region.lines[0], spectrum.bins.size())) continue;
        const auto first = static_cast<size_t>(std::clamp(region.lines.front().point - flank_end * width, 0.0, end));
        const auto last = static_cast<size_t>(std::clamp(region.lines.back().point + flank_end * width, 0.0, end));
        const PhaseOfPart part = phase_of_flanks(region, first, last, flanked, spectrum, near);
        std::array<PhaseOfPart, 3> parts = {PhaseOfPart{region.phase, region.variance}, part, unknown};
        if (!region.strong) {
            const PhasedRegion& model = modelled[static_cast<size_t>(&region - regions.data())];
            parts[0] = {model.modelled_phase, model.modelled_variance + model_floor * model_floor};
            parts[2] = phase_of_integral(region, spectrum, near);
        }
        const PhaseOfPart best = agreed(parts);
        region.phase = best.phase;
        region.variance = best.variance;
    }
    return regions;
}

}  // namespace zolt
