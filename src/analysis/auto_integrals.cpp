// Regions with signals: segments give noise and baseline, tops that stand out of them are grown, joined and tested.
#include "analysis/auto_integrals.h"

#include <algorithm>
#include <cmath>

namespace zolt {

namespace {

struct Quiet {
    double middle = 0, level = 0;  ///< point and baseline level of a quiet segment
};

struct Noise {
    double sigma = 0;
    std::vector<Quiet> levels;
};

struct Segment {
    double middle = 0, median = 0, deviation = 0;
};

// Deviation about the segment's own straight line, so that a sloping baseline is no noise.
Segment measure(std::span<const Complex> points, size_t first) {
    const auto n = static_cast<double>(points.size());
    double sum = 0, weighted = 0;
    std::vector<float> sorted(points.size());
    for (size_t i = 0; i < points.size(); ++i) {
        sorted[i] = points[i].real();
        sum += double{sorted[i]};
        weighted += double{sorted[i]} * (static_cast<double>(i) - (n - 1) / 2);
    }
    const double slope = weighted * 12 / (n * (n * n - 1)), mean = sum / n;
    double squares = 0;
    for (size_t i = 0; i < points.size(); ++i) {
        const double rest = double{points[i].real()} - mean - slope * (static_cast<double>(i) - (n - 1) / 2);
        squares += rest * rest;
    }
    const auto half = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2);
    std::nth_element(sorted.begin(), half, sorted.end());
    return {static_cast<double>(first) + (n - 1) / 2, double{*half}, std::sqrt(squares / std::max(n - 2, 1.0))};
}

Noise noise_of(std::span<const Complex> spectrum, size_t segments) {
    std::vector<Segment> measured;
    for (size_t s = 0; s < segments; ++s) {
        const size_t first = spectrum.size() * s / segments, end = spectrum.size() * (s + 1) / segments;
        if (end - first >= 4) measured.push_back(measure(spectrum.subspan(first, end - first), first));
    }
    Noise noise;
    noise.sigma = INFINITY;
    // A segment of zeros, as filters and zero filling leave them, says nothing of the noise.
    for (const Segment& s : measured)
        if (s.deviation > 0) noise.sigma = std::min(noise.sigma, s.deviation);
    for (const Segment& s : measured)
        if (s.deviation <= 3 * noise.sigma) noise.levels.push_back({s.middle, s.median});
    return noise;
}

// The baseline at a point, straight lines between the quiet segments.
double level_at(const Noise& noise, double point) {
    const auto next =
        std::lower_bound(noise.levels.begin(), noise.levels.end(), point, [](const Quiet& q, double p) { return q.middle < p; });
    if (next == noise.levels.begin()) return next->level;
    if (next == noise.levels.end()) return noise.levels.back().level;
    const Quiet& before = *(next - 1);
    const double t = (point - before.middle) / (next->middle - before.middle);
    return before.level + t * (next->level - before.level);
}

// Tops of one sign (+1 or -1) that stand out from both sides by `height`, in order.
std::vector<size_t> tops(const std::vector<double>& signal, double sign, double height) {
    std::vector<size_t> found;
    size_t top = 0;
    double lowest = sign * signal[0];
    bool rising = false;
    for (size_t p = 0; p < signal.size(); ++p) {
        const double value = sign * signal[p];
        if (rising) {
            if (value > sign * signal[top]) top = p;
            if (value > sign * signal[top] - height) continue;
            // The valley between two lines of the other sign is none.
            if (sign * signal[top] >= height) found.push_back(top);
            rising = false;
            lowest = value;
        } else if (value > lowest + height) {
            rising = true;
            top = p;
        }
        lowest = std::min(lowest, value);
    }
    return found;
}

// A region widened on both sides to where 4 points in a row are below the level.
Region widened(const std::vector<double>& signal, Region region, double level) {
    const auto n = static_cast<int64_t>(signal.size());
    const auto lost = [&](int64_t p, int64_t step) {
        for (int64_t i = 0; i < 4; ++i) {
            const int64_t q = p + i * step;
            if (q < 0 || q >= n) return true;
            if (std::abs(signal[static_cast<size_t>(q)]) > level) return false;
        }
        return true;
    };
    auto [first, last] = region;
    while (first > 0 && !lost(first - 1, -1)) --first;
    while (last + 1 < n && !lost(last + 1, 1)) ++last;
    return {first, last};
}

// The regions of all tops, those that overlap as one.
std::vector<Region> regions_of_tops(const std::vector<double>& signal, double sigma) {
    // Beside strong lines, what is far below their satellites is none of the signals that were asked for.
    double tallest = 0;
    for (const double value : signal) tallest = std::max(tallest, std::abs(value));
    const double height = std::max(6 * sigma, 0.004 * tallest), least = std::max(1.5 * sigma, 0.001 * tallest);
    std::vector<size_t> all = tops(signal, 1, height);
    const auto below = tops(signal, -1, height);
    all.insert(all.end(), below.begin(), below.end());
    std::sort(all.begin(), all.end());
    // The ends, where filters fold their edges in, are no signal.
    const size_t end = signal.size() / 50;
    std::vector<Region> regions;
    for (const size_t top : all) {
        if (top < end || top >= signal.size() - end) continue;
        const auto place = static_cast<int64_t>(top);
        // A top within the last region widens that one from its ends: no point is looked at again and again.
        Region region = {place, place};
        if (!regions.empty() && place <= regions.back().second) {
            region = regions.back();
            regions.pop_back();
        }
        region = widened(signal, region, std::max(least, 0.01 * std::abs(signal[top])));
        for (; !regions.empty() && region.first <= regions.back().second; regions.pop_back())
            region.first = std::min(region.first, regions.back().first);
        regions.push_back(region);
    }
    return regions;
}

double area(const std::vector<double>& signal, int64_t first, int64_t last) {
    double sum = 0;
    for (int64_t p = first; p <= last; ++p) sum += signal[static_cast<size_t>(p)];
    return sum;
}

// A place where a region may be cut: the lowest point of a gap between two lines.
struct Gap {
    int64_t lowest = 0;
    bool wide = false;  // wider than any coupling
};

// Gaps between lines of a region that are too wide for most couplings, and so deep that what is beside them hardly overlaps.
std::vector<Gap> gaps_within(const std::vector<double>& signal, Region region, double height, double hz_per_point) {
    constexpr double narrow = 18, wide = 25, deep = 0.05;  // Hz; of the lower top beside the gap
    const auto [first, last] = region;
    const std::vector<double> part(signal.begin() + first, signal.begin() + last + 1);
    double tallest = 0;
    for (const double value : part) tallest = std::max(tallest, value);
    const auto lines = tops(part, 1, std::max(height, 0.02 * tallest));
    std::vector<Gap> gaps;
    for (size_t i = 1; i < lines.size(); ++i) {
        const double distance = static_cast<double>(lines[i] - lines[i - 1]) * hz_per_point;
        if (distance < narrow) continue;
        const auto from = part.begin() + static_cast<std::ptrdiff_t>(lines[i - 1]);
        const auto lowest = std::min_element(from, part.begin() + static_cast<std::ptrdiff_t>(lines[i]));
        if (*lowest > deep * std::min(part[lines[i - 1]], part[lines[i]])) continue;
        gaps.push_back({first + (lowest - part.begin()), distance >= wide});
    }
    return gaps;
}

// Cuts a region at its gaps. Two neighbours of the same area beside a gap that a large coupling can make are one doublet.
void add_pieces(std::vector<Region>& pieces, const std::vector<double>& signal, Region region, const std::vector<Gap>& gaps) {
    constexpr double alike = 0.15;
    int64_t first = region.first;
    for (size_t i = 0; i < gaps.size(); ++i) {
        const int64_t end = i + 1 < gaps.size() ? gaps[i + 1].lowest - 1 : region.second;
        const double left = area(signal, first, gaps[i].lowest - 1), right = area(signal, gaps[i].lowest, end);
        if (!gaps[i].wide && std::abs(left - right) < alike * std::max(std::abs(left), std::abs(right))) continue;
        pieces.emplace_back(first, gaps[i].lowest - 1);
        first = gaps[i].lowest;
    }
    pieces.emplace_back(first, region.second);
}

// Regions without those whose sum the noise explains, or that are next to nothing beside most of the others.
void drop_trifles(std::vector<Region>& regions, const std::vector<double>& signal, double sigma) {
    std::vector<double> areas;
    for (const auto& [first, last] : regions) areas.push_back(std::abs(area(signal, first, last)));
    std::vector<double> sorted = areas;
    std::sort(sorted.begin(), sorted.end());
    const double least = sorted.empty() ? 0 : 0.02 * sorted[sorted.size() / 2];
    size_t i = 0;
    std::erase_if(regions, [&](const Region& r) {
        const double found = areas[i++];
        return found < least || found < 3 * sigma * std::sqrt(static_cast<double>(r.second - r.first + 1));
    });
}

}  // namespace

std::vector<Region> find_regions(std::span<const Complex> spectrum, const Axis& axis, int64_t segments) {
    const auto n = static_cast<int64_t>(spectrum.size());
    if (n < 16) return {};
    const Noise noise = noise_of(spectrum, static_cast<size_t>(std::clamp<int64_t>(segments, 4, n / 4)));
    if (noise.levels.empty()) return {};
    std::vector<double> signal(spectrum.size());
    for (size_t i = 0; i < signal.size(); ++i) signal[i] = double{spectrum[i].real()} - level_at(noise, static_cast<double>(i));

    const double spacing = std::abs(axis.ppm(0) - axis.ppm(1));
    const double joined = axis.has_ppm() ? 0.02 : 10;
    const auto gap = static_cast<int64_t>(spacing > 0 ? std::min(joined / spacing, static_cast<double>(n)) : 4);
    std::vector<Region> regions;
    for (auto [first, last] : regions_of_tops(signal, noise.sigma)) {
        const int64_t margin = std::min(last - first + 1, std::max<int64_t>(gap, 2));
        first = std::max<int64_t>(first - margin, 0);
        last = std::min(last + margin, n - 1);
        if (!regions.empty() && first - regions.back().second <= gap)
            regions.back() = {std::min(regions.back().first, first), std::max(regions.back().second, last)};
        else
            regions.emplace_back(first, last);
    }
    const double hz_per_point = std::abs(axis.hz(0) - axis.hz(1));
    std::vector<Region> pieces;
    for (const Region& region : regions)
        add_pieces(pieces, signal, region, gaps_within(signal, region, 6 * noise.sigma, hz_per_point));
    drop_trifles(pieces, signal, noise.sigma);
    return pieces;
}

}  // namespace zolt
