// Extremes of blocks of a vector, so that a redraw of millions of points visits a few thousand of them.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "state/vectors.h"

namespace zolt {

enum class Part { real, imaginary, magnitude };

inline float value_of(Complex point, Part part) {
    if (part == Part::real) return point.real();
    if (part == Part::imaginary) return point.imag();
    const double re = static_cast<double>(point.real()), im = static_cast<double>(point.imag());
    return static_cast<float>(std::sqrt(re * re + im * im));
}

/// Points of the lowest and the highest value; values that are not finite count for nothing.
struct Extremes {
    bool any = false;
    size_t low = 0, high = 0;
    float low_value = 0, high_value = 0;

    void take(size_t point, float value) {
        if (!std::isfinite(value)) return;
        if (!any || value < low_value) low = point, low_value = value;
        if (!any || value > high_value) high = point, high_value = value;
        any = true;
    }
};

/// Lowest and highest finite value; `any` is false without one.
struct Range {
    bool any = false;
    float low = 0, high = 0;
};

class TraceSummary {
public:
    /// One pass over the vector, which has to stay in its place and unchanged as long as the summary is used.
    void build(std::span<const Complex> points, Part part);
    bool built() const { return built_; }
    void forget() { built_ = false; }

    /// Of the whole vector, without their places.
    const Range& all() const { return all_; }
    /// Of the points begin to end - 1.
    Extremes between(size_t begin, size_t end) const;
    float value(size_t point) const { return value_of(points_[point], part_); }

private:
    static constexpr size_t block = 64;
    void take_points(Extremes& into, size_t begin, size_t end) const;
    Range range_of(size_t begin, size_t end) const;

    std::span<const Complex> points_;
    Part part_ = Part::real;
    std::vector<Range> blocks_;
    Range all_;
    bool built_ = false;
};

/// The summaries of one vector, kept from one redraw to the next. Whoever keeps it calls forget() when the data change.
class PlotCache {
public:
    const TraceSummary& summary(std::span<const Complex> points, Part part);
    /// The cache of another vector that is drawn on the same plot, by its number from 0.
    PlotCache& of_overlay(size_t number);
    void forget();

private:
    TraceSummary parts_[3];
    const Complex* data_ = nullptr;
    size_t count_ = 0;
    std::vector<PlotCache> overlays_;
};

}  // namespace zolt
