// One pass with a memory of the last foot and the last top; then a fit to the crest of each peak.
#include "analysis/peaks.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

namespace zolt {

double deviation_from_line(std::span<const Complex> points) {
    const auto n = static_cast<double>(points.size());
    if (points.size() < 3) return 0;
    double mean = 0, slope = 0, squares = 0;
    for (const Complex& point : points) mean += double{point.real()};
    mean /= n;
    for (size_t i = 0; i < points.size(); ++i) slope += (double{points[i].real()} - mean) * (static_cast<double>(i) - (n - 1) / 2);
    slope *= 12 / (n * (n * n - 1));
    for (size_t i = 0; i < points.size(); ++i) {
        const double rest = double{points[i].real()} - mean - slope * (static_cast<double>(i) - (n - 1) / 2);
        squares += rest * rest;
    }
    return std::isfinite(squares) ? std::sqrt(squares / (n - 2)) : 0;
}

double noise_level(std::span<const Complex> vector) {
    const size_t edge = vector.size() / 20, inside = vector.size() - 2 * edge;
    const size_t length = std::clamp<size_t>(inside / 128, 32, 256);
    std::vector<double> found;
    for (size_t first = edge; first + length <= edge + inside; first += length) {
        const double deviation = deviation_from_line(vector.subspan(first, length));
        // Stretches of zeros, as filters and zero filling leave them, say nothing of the noise.
        if (deviation > 0) found.push_back(deviation);
    }
    if (found.empty()) return deviation_from_line(vector);
    const auto tenth = found.begin() + static_cast<std::ptrdiff_t>(found.size() / 10);
    std::nth_element(found.begin(), tenth, found.end());
    // Were all of them quiet, a tenth would be this far below the true value.
    return *tenth / (1 - 1.28 / std::sqrt(2 * (static_cast<double>(length) - 2)));
}

namespace {

// A top with the values of the feet before and behind it; all of them upright.
struct Top {
    size_t at = 0;
    double value = 0, foot_before = 0, foot_behind = 0;
};

// How far a top stands out of a foot that is d points away, by the width of d in bits.
std::array<double, 65> distances_to_foot(double noise) {
    std::array<double, 65> all{};
    for (size_t bits = 1; bits < all.size(); ++bits)
        all[bits] = noise * (5 + 1.2 * std::sqrt(2 * std::log(2.0) * static_cast<double>(bits)));
    return all;
}

// Maxima of sign * real part.
std::vector<Top> tops_of(std::span<const Complex> vector, double sign, double noise) {
    const auto need = distances_to_foot(noise);
    std::vector<Top> tops;
    bool begun = false, rising = false;
    size_t foot_at = 0;
    double foot = 0;
    Top top;
    for (size_t p = 0; p < vector.size(); ++p) {
        const double value = sign * double{vector[p].real()};
        if (!std::isfinite(value)) continue;
        if (!begun || (!rising && value <= foot)) {
            begun = true;
            foot = value;
            foot_at = p;
        } else if (!rising) {
            if (value <= foot + need[std::bit_width(p - foot_at)]) continue;
            rising = true;
            top = {p, value, foot, 0};
            if (!tops.empty()) tops.back().foot_behind = foot;
        } else if (value > top.value) {
            top.at = p;
            top.value = value;
        } else if (value < top.value - need[std::bit_width(p - top.at)]) {
            tops.push_back(top);
            rising = false;
            foot = value;
            foot_at = p;
        }
    }
    if (!tops.empty() && !rising) tops.back().foot_behind = foot;
    return tops;
}

struct Parabola {
    double c = 0, b = 0, a = 0;  // c + b x + a x^2
    bool found = false;
};

// Weighted least squares by the normal equations; x is small and about 0.
class ParabolaFit {
public:
    void take(double x, double y, double weight) {
        double power = weight;
        for (size_t k = 0; k < 5; ++k, power *= x) {
            moments_[k] += power;
            if (k < 3) sides_[k] += power * y;
        }
    }
    Parabola solve() const {
        const auto& m = moments_;
        const auto determinant = [](double a, double b, double c, double d, double e, double f, double g, double h, double i) {
            return a * (e * i - f * h) - b * (d * i - f * g) + c * (d * h - e * g);
        };
        const double all = determinant(m[0], m[1], m[2], m[1], m[2], m[3], m[2], m[3], m[4]);
        if (!(std::abs(all) > 1e-12 * m[0] * m[2] * m[4])) return {};
        const auto& s = sides_;
        return {determinant(s[0], m[1], m[2], s[1], m[2], m[3], s[2], m[3], m[4]) / all,
                determinant(m[0], s[0], m[2], m[1], s[1], m[3], m[2], s[2], m[4]) / all,
                determinant(m[0], m[1], s[0], m[1], m[2], s[1], m[2], m[3], s[2]) / all, true};
    }

private:
    std::array<double, 5> moments_{};
    std::array<double, 3> sides_{};
};

// The points that a top is fitted to: those above its upper third, and one on each side of the top at least.
struct Crest {
    size_t first = 0, last = 0;
};

Crest crest_of(std::span<const Complex> vector, double sign, const Top& top) {
    constexpr size_t widest = 64;
    const double level = top.value - 0.3 * (top.value - std::max(top.foot_before, top.foot_behind));
    const auto above = [&](size_t p) { return sign * double{vector[p].real()} >= level; };
    Crest crest = {top.at, top.at};
    while (crest.first > 0 && top.at - crest.first < widest && above(crest.first - 1)) --crest.first;
    while (crest.last + 1 < vector.size() && crest.last - top.at < widest && above(crest.last + 1)) ++crest.last;
    // On both sides, or a flat top would be fitted aside.
    if (crest.first == top.at || crest.last == top.at) {
        if (crest.first > 0) --crest.first;
        if (crest.last + 1 < vector.size()) ++crest.last;
    }
    return crest;
}

// Vertex of the curve through the crest; the top itself where there is no sensible one.
FoundPeak vertex_of(std::span<const Complex> vector, double sign, const Top& top) {
    const Crest crest = crest_of(vector, sign, top);
    const double scale = static_cast<double>(std::max(crest.last - top.at, top.at - crest.first));
    const auto value = [&](size_t p) { return sign * double{vector[p].real()} / top.value; };
    bool lorentzian = true, finite = crest.last - crest.first >= 2;
    for (size_t p = crest.first; p <= crest.last; ++p) {
        finite = finite && std::isfinite(value(p));
        lorentzian = lorentzian && value(p) > 0.15;
    }
    const FoundPeak plain = {static_cast<double>(top.at), sign * top.value};
    if (!finite) return plain;
    ParabolaFit fit;
    for (size_t p = crest.first; p <= crest.last; ++p) {
        const double x = (static_cast<double>(p) - static_cast<double>(top.at)) / scale, y = value(p);
        // The noise of a reciprocal grows with the square of its value.
        fit.take(x, lorentzian ? 1 / y : y, lorentzian ? y * y * y * y : 1);
    }
    const Parabola curve = fit.solve();
    if (!curve.found || !(lorentzian ? curve.a > 0 : curve.a < 0)) return plain;
    const double x = -curve.b / (2 * curve.a), extreme = curve.c + curve.b * x / 2;
    const double height = lorentzian ? 1 / extreme : extreme, place = plain.point + x * scale;
    const bool sensible =
        place >= static_cast<double>(crest.first) && place <= static_cast<double>(crest.last) && height > 0.5 && height < 2;
    return sensible ? FoundPeak{place, plain.height * height} : plain;
}

}  // namespace

SignalToNoise signal_to_noise(std::span<const Complex> vector, size_t first, size_t end, double noise) {
    SignalToNoise found;
    found.noise = noise;
    for (size_t p = first; p < std::min(end, vector.size()); ++p) {
        const double value = static_cast<double>(vector[p].real());
        if (std::isfinite(value) && value > found.tallest) found.tallest = value, found.tallest_at = p;
    }
    return found;
}

std::vector<FoundPeak> find_peaks(std::span<const Complex> vector, double noise, bool negative, bool interpolate) {
    std::vector<FoundPeak> peaks;
    // Without any noise the rounding of the transform is left.
    float largest = 0;
    for (const Complex& point : vector)
        if (std::isfinite(point.real())) largest = std::max(largest, std::abs(point.real()));
    const double least = std::max(noise, 2e-7 * double{largest});
    for (const double sign : {1.0, -1.0}) {
        if (sign < 0 && !negative) continue;
        for (const Top& top : tops_of(vector, sign, least))
            if (top.value > 0)
                peaks.push_back(interpolate ? vertex_of(vector, sign, top)
                                            : FoundPeak{static_cast<double>(top.at), sign * top.value});
    }
    if (negative) std::sort(peaks.begin(), peaks.end(), [](const auto& a, const auto& b) { return a.point < b.point; });
    return peaks;
}

double height_at(std::span<const Complex> vector, double point) {
    if (!(point >= 0) || vector.empty() || point > static_cast<double>(vector.size() - 1)) return 0;
    const auto middle = std::clamp<size_t>(static_cast<size_t>(point + 0.5), 1, std::max<size_t>(vector.size(), 3) - 2);
    const auto value = [&](size_t p) { return p < vector.size() ? double{vector[p].real()} : double{vector.back().real()}; };
    const double x = point - static_cast<double>(middle), before = value(middle - 1), here = value(middle),
                 next = value(middle + 1);
    const double height = here + x * (next - before) / 2 + x * x * (next - 2 * here + before) / 2;
    return std::isfinite(height) ? height : 0;
}

}  // namespace zolt
