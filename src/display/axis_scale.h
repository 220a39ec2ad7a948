// The axis of the current vector in the unit it is shown in.
#pragma once

#include <cstddef>
#include <string>

#include "state/dataset.h"

namespace zolt {

enum class AxisKind { none, points, seconds, hz, ppm };

/// What the points 0 and `last_point` stand for; linear between them.
struct AxisScale {
    AxisKind kind = AxisKind::none;
    double first = 0, last = 0, last_point = 0;
    std::string unit;  ///< the label of the configuration; "" for no axis

    double value(double point) const { return last_point > 0 ? first + (last - first) * point / last_point : first; }
    double point(double value) const { return last != first ? (value - first) / (last - first) * last_point : 0; }
    /// Decimals that tell one point from its neighbours, 0 to 9.
    int decimals() const;
};

/// The axis of a vector of `count` points: seconds for an FID, Hz or ppm for a spectrum as dims[0].axis_unit and the
/// configuration ask for and the parameters allow, else points.
AxisScale axis_scale(const DataSet& data, size_t count);

/// A value of the axis with its unit: "7.2600 ppm".
std::string axis_text(const AxisScale& axis, double value, bool with_unit = true);

}  // namespace zolt
