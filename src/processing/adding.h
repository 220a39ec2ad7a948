// Adding one spectrum to another, or subtracting it: AS.
#pragma once

#include <span>
#include <string>

#include "common/arguments.h"
#include "state/overlay.h"

namespace zolt {

/// x += factor * other, both parts. Point p of the other stands at point start + step * p of x; between its points it is
/// the cubic through the four next ones (E. Catmull, R. Rom, Computer Aided Geometric Design, 1974), beyond its ends 0.
/// Where points meet exactly the sum is that of the points.
void add_aligned(std::span<Complex> x, std::span<const Complex> other, const Alignment& at, double factor);

/// The same, and the offset of the configuration (AS_DC) onto the real parts.
void add_with_offset(std::span<Complex> x, const Companion& other, const Alignment& at, double factor);

/// How the companion is to be added to the data set; with a refusal where that makes no sense.
Alignment align_for_sum(const DataSet& data, const Companion& other, double shift_points);

/// The typed form of AS: all but the bare word.
int add_spectra(Arguments& args);

extern const char* const add_spectra_usage;

}  // namespace zolt
