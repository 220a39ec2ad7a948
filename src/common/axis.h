// The axis of one dimension: point, Hz and ppm into one another.
#pragma once

namespace zolt {

/// What the conversion needs of a dimension: points, sweep width in Hz, spectrometer frequency in MHz, offset in Hz.
struct Axis {
    double points = 0;
    double sw = 0;
    double sf = 0;
    double offset = 0;

    /// Frequency in Hz of a point (counted from 0, fractions allowed); 0 for one point or none.
    double hz(double point) const { return points > 1 ? sw / 2 + offset - point * sw / (points - 1) : 0.0; }
    /// The frequency, in MHz, that stands for 0 ppm.
    double reference() const { return sf - offset / 1e6; }
    bool has_ppm() const { return sf > 0 && reference() > 0; }
    /// Shift in ppm of a point; Hz unchanged without a spectrometer frequency.
    double ppm(double point) const { return has_ppm() ? hz(point) / reference() : hz(point); }
    /// The point at a frequency; 0 without a width.
    double point_of_hz(double value) const { return sw > 0 ? (sw / 2 + offset - value) * (points - 1) / sw : 0.0; }
    double point_of_ppm(double value) const { return point_of_hz(has_ppm() ? value * reference() : value); }
};

}  // namespace zolt
