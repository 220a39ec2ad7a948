// Phase correction: every point turned by an angle of zero, first and second order.
#pragma once

#include <array>
#include <cstddef>
#include <span>

#include "common/buffer.h"
#include "state/vectors.h"

namespace zolt {

/// The phase of the points of a vector: A + B (k - pivot)/n + C (k/n)^2 at point k of n. The second-order term counts from
/// point 0 and not from the pivot.
class Rotation {
public:
    static constexpr size_t block = 64;

    /// Angles in radians.
    Rotation(double zero_order, double first_order, double second_order, double pivot, size_t n);

    double phase(size_t k) const;
    /// cos and sin of the phase at the points first ... first + block - 1, to the rounding of a double.
    void fill(size_t first, std::array<double, block>& cosine, std::array<double, block>& sine) const;
    /// All points have the same phase.
    bool constant() const { return first_order_ == 0 && second_order_ == 0; }

private:
    double zero_order_, first_order_, second_order_, pivot_, n_;
    // e^(-i phase) over a block splits into its value at the first point, times what depends on the place in the block
    // alone (these tables), times a power of e^(-i step) where there is a second order: two sine-cosine pairs a block.
    std::array<double, block> cosine_, sine_;
};

/// Multiplies the points by e^(-i phase); x[0] has the phase of point `first`.
void rotate(std::span<Complex> x, const Rotation& rotation, size_t first = 0);

/// The cosines and sines of a rotation, for many vectors or for the places along another dimension.
class RotationTable {
public:
    /// Those of n points; false without memory.
    [[nodiscard]] bool fill(const Rotation& rotation, size_t n);
    /// Turns each point by its own angle, with one rounding to single precision.
    void rotate(std::span<Complex> x) const;
    /// Turns all of them by the angle of one place.
    void rotate_all(std::span<Complex> x, size_t place) const;

private:
    Buffer<double> cosine_, sine_;
};

/// Rotates every vector of the store, one alone by the angles themselves, many by a table of them. False, and every point
/// as before, when the user has cancelled.
bool rotate_vectors(VectorStore& store, const Rotation& rotation);

/// Angles of a phase correction in degrees: zero, first and second order.
using PhaseAngles = std::array<float, 3>;

/// The rotation of n points by angles in degrees.
Rotation rotation_by(const PhaseAngles& degrees, double pivot, size_t n);

/// Rotates the vectors of the current level about a pivot (in points). With `update_totals` the angles are added to the
/// totals of dimension 1. 1 when done; at a level without it, 0 with its message and nothing changed.
int phase_correct(const PhaseAngles& degrees, double pivot, bool update_totals);

/// Rotates along dimension 2, 3 or 4 about its first point, and adds the angles to its totals. 1 when done.
int phase_correct_along(int dimension, const PhaseAngles& degrees);

}  // namespace zolt
