// Finding the peaks of one vector: noise, tops that stand out, places and heights between points.
#pragma once

#include <span>
#include <vector>

#include "state/vectors.h"

namespace zolt {

struct FoundPeak {
    double point = 0, height = 0;
};

/// Standard deviation of the real part about the straight line through these points; 0 for fewer than three, or when one
/// is not finite.
double deviation_from_line(std::span<const Complex> points);

/// Standard deviation of the noise of the real part: that of its quiet stretches. Of all stretches (of 32 to 256 points,
/// each about its own line, without the outermost twentieth at both ends, where filters fall off) the value that a tenth of
/// them stays below, so that neither lines nor a rolling baseline count, less the bias of that choice. 0 when there is none.
double noise_level(std::span<const Complex> vector);

struct SignalToNoise {
    double tallest = 0, noise = 0;
    size_t tallest_at = 0;
    double ratio() const { return tallest / (2 * noise); }
};
/// The tallest of the points [first, end) over twice the noise.
SignalToNoise signal_to_noise(std::span<const Complex> vector, size_t first, size_t end, double noise);

/// Every maximum of the real part that lies above zero and stands out of both sides, in order; with `negative` also every
/// minimum below zero, with its negative height. How far a top has to stand out grows with the number d of points down to
/// the foot, as the range of noise does (5 + 1.2 sqrt(2 ln d) times the noise; Fisher and Tippett, Proc. Camb. Phil. Soc.
/// 24 (1928) 180): no bump on a flank or on a raised baseline counts, and close lines stay two. With `interpolate`, place and
/// height are those of the vertex of the Lorentzian through the upper third of the line: its reciprocal is a parabola, exact
/// for three points, fitted by weighted least squares where there are more; a parabola where the line falls too steeply
/// for that. (A Gaussian of two points or more in width is placed within a tenth of a point, too.) Points that are not finite count
/// for nothing. One pass, no dependence on a region.
std::vector<FoundPeak> find_peaks(std::span<const Complex> vector, double noise, bool negative, bool interpolate);

/// The interpolated value of the real part at a place between points; 0 outside or beside values that are not finite.
double height_at(std::span<const Complex> vector, double point);

}  // namespace zolt
