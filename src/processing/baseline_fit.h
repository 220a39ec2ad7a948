// Fitted baseline correction of one vector: which points are baseline, and the curve through them.
#pragma once

#include <span>
#include <vector>

#include "state/vectors.h"

namespace zolt {

/// The curve that is fitted: a polynomial, or (without one) the smoothest curve by penalised least squares.
struct BaselineCurve {
    int order = -1;       ///< of the polynomial, 0 to 8; below 0: penalised least squares
    double lambda = 1e9;  ///< weight of the squared second differences, for a spectrum of 32768 points
    static constexpr int highest_order = 8;
    static constexpr size_t fewest_points = 64;
};

/// The points that hold no signal: the power of a difference of neighbouring points is high in signals (after Dietrich, Ruedel,
/// Neumann, J. Magn. Reson. 91 (1991) 1). Second differences, which a rolling baseline does not show in, give a first curve; once
/// it is subtracted, first differences give the points; both at two widths. Signals are widened by half their own width for
/// their feet.
std::vector<bool> find_baseline_points(std::span<const double> spectrum);

/// The baseline of a spectrum at each of its points: the polynomial by least squares (of a lower order where it would run away
/// across an end full of signals), or z that minimises
/// sum w (y - z)^2 + lambda sum (z'')^2 over the points of the mask, lambda scaled by (n / 32768)^4 so that the number of
/// points does not matter (Whittaker, Proc. Edinburgh Math. Soc. 41 (1923) 63). With `positive` the weights w fall off for
/// points above the curve (Baek, Park, Ahn, Choo, Analyst 140 (2015) 250), else for points on either side.
std::vector<double> fit_baseline(std::span<const double> spectrum, const std::vector<bool>& baseline_points,
                                 const BaselineCurve& curve, bool positive);

/// Subtracts the fitted baseline, of real and imaginary parts apart; signals of the real part are taken to be positive. False,
/// and the vector as it was, with fewer than 64 points or a value that is not finite.
bool correct_fitted_baseline(std::span<Complex> x, const BaselineCurve& curve);

}  // namespace zolt
