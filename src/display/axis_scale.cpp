// Chooses the unit that parameters and configuration allow.
#include "display/axis_scale.h"

#include <algorithm>
#include <cmath>

#include "common/text.h"
#include "config/settings.h"

namespace zolt {

namespace {

int wanted_unit(const Dimension& dimension) {
    const std::string configured = setting_text("AXIS");
    if (configured == "NONE") return unit_none;
    return configured == "POINTS" ? int{unit_points} : dimension.axis_unit;
}

}  // namespace

int AxisScale::decimals() const {
    const double step = last_point > 0 ? std::abs(last - first) / last_point : 1;
    return step > 0 ? std::clamp(static_cast<int>(std::ceil(-std::log10(step) - 1e-9)), 0, 9) : 0;
}

AxisScale axis_scale(const DataSet& data, size_t count) {
    const Dimension& dimension = data.dims[0];
    const int unit = wanted_unit(dimension);
    if (unit == unit_none || count == 0) return {};
    Axis axis = dimension.axis();
    axis.points = static_cast<double>(count);
    const double end = axis.points - 1;
    const auto usable = [](double first, double last) { return std::isfinite(first) && std::isfinite(last) && first > last; };
    if (unit != unit_points && axis.sw > 0) {
        if (!dimension.frequency) {
            if (usable(end / axis.sw, 0)) return {AxisKind::seconds, 0, end / axis.sw, end, setting_text("AXIS_LABEL_SEC")};
        } else {
            const bool shift = unit == unit_ppm && axis.has_ppm();
            if (shift && usable(axis.ppm(0), axis.ppm(end)))
                return {AxisKind::ppm, axis.ppm(0), axis.ppm(end), end, setting_text("AXIS_LABEL_PPM")};
            if (usable(axis.hz(0), axis.hz(end)))
                return {AxisKind::hz, axis.hz(0), axis.hz(end), end, setting_text("AXIS_LABEL_HZ")};
        }
    }
    return {AxisKind::points, 0, end, end, setting_text("AXIS_LABEL_PTS")};
}

std::string axis_text(const AxisScale& axis, double value, bool with_unit) {
    std::string text = format_text("%.*f", axis.decimals(), value);
    return with_unit && !axis.unit.empty() ? text + " " + axis.unit : text;
}

}  // namespace zolt
