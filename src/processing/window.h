// Windows: exponential and Gaussian line broadening, and the sine bell.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "processing/along.h"
#include "processing/phase.h"
#include "state/dataset.h"

namespace zolt {

enum class WindowShape { exponential, gaussian };

/// Weights of the points of a vector that decay with their distance t from an echo centre (point 0 without one):
/// e^(-a t) or e^(-a^2 t^2 / 2.7724), a = pi dt LB.
class Window : public Weights {
public:
    /// `lb` in Hz, `dwell` in s, n points. The echo centre 0 stands for none; below 0 it is taken as 0, above n as n - 1.
    Window(WindowShape shape, double lb, double dwell, size_t n, int64_t echo_centre = 0);

    void fill(size_t first, std::array<float, block>& weights) const override;

private:
    double weight(size_t distance) const;
    void fill_behind(size_t distance, std::array<float, block>& weights) const;

    double linear_, square_;  // the weight is e^-(linear t + square t^2)
    size_t centre_;
    std::array<double, block> head_;  // the weights of the first block; others follow by one or two factors
};

/// sin(pi (offset + (end - offset) k / (n - 1)))^power at point k of n.
class SineBell : public Weights {
public:
    SineBell(double offset, double end, double power, size_t n);

    void fill(size_t first, std::array<float, block>& weights) const override;

private:
    Rotation angle_;
    double power_;
};

/// Seconds from point to point of a dimension; 0 when its width is not positive.
double dwell_time(const Dimension& dimension);

}  // namespace zolt
