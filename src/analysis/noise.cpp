// Least-squares lines through segments, and an order statistic of what is left.
#include "analysis/noise.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace zolt {

namespace {

constexpr size_t most_segments = 32, least_points = 16;

// With n - 2 degrees of freedom, those of a line taken off.
double deviation_about_line(std::span<const Complex> points) {
    const double n = static_cast<double>(points.size()), middle = (n - 1) / 2;
    double mean = 0, slope = 0;
    for (size_t i = 0; i < points.size(); ++i) {
        const double value = static_cast<double>(points[i].real());
        mean += value / n;
        slope += (static_cast<double>(i) - middle) * value;
    }
    slope /= n * (n * n - 1) / 12;
    double squares = 0;
    for (size_t i = 0; i < points.size(); ++i) {
        const double rest = static_cast<double>(points[i].real()) - mean - slope * (static_cast<double>(i) - middle);
        squares += rest * rest;
    }
    return std::sqrt(squares / (n - 2));
}

}  // namespace

double noise_deviation(std::span<const Complex> spectrum) {
    const size_t segments = std::min(most_segments, spectrum.size() / least_points);
    std::vector<double> found;
    for (size_t i = 0; i < segments; ++i) {
        const size_t begin = spectrum.size() * i / segments, end = spectrum.size() * (i + 1) / segments;
        const double deviation = deviation_about_line(spectrum.subspan(begin, end - begin));
        if (std::isfinite(deviation) && deviation > 0) found.push_back(deviation);
    }
    if (found.empty()) return 0;
    const auto eighth = found.begin() + static_cast<std::ptrdiff_t>(found.size() / 8);
    std::nth_element(found.begin(), eighth, found.end());
    return *eighth;
}

}  // namespace zolt
