// The current vector of a data set as a picture: traces, axis, title line; and where each point stands on it.
#pragma once

#include <optional>
#include <span>

#include "display/axis_scale.h"
#include "display/picture.h"
#include "display/trace_summary.h"
#include "display/view.h"
#include "state/dataset.h"

namespace zolt {

struct PlotOptions {
    double width = 1100, height = 620;  ///< pixels; 16 to 65536 each
    double columns_per_pixel = 1;       ///< fineness of the trace: 2 for screens of double density and for printing
    bool heading = true;                ///< title, nucleus, frequency and solvent along the top
    bool grid = false;
    double pen = 1.2;        ///< width of traces, pixels
    double label_size = 12;  ///< of the axis, pixels
    /// Margins that replace those of the layout, pixels.
    std::optional<double> left = {}, right = {}, top = {}, bottom = {};
    /// Shown in place of the points of the current vector, which are as many, while their phase is being changed: on a scale
    /// that no phase alters, with room below the baseline. Empty: the vector's own.
    std::span<const Complex> preview = {};
};

/// The points that are drawn: the preview where there is one, else those of the current vector.
std::span<const Complex> drawn_points(const DataSet& data, const PlotOptions& options);

/// The options that the configuration asks for.
PlotOptions configured_options();

/// Points and intensities on the sheet, in pixels.
struct PlotLayout {
    double width = 0, height = 0;                     ///< of the sheet
    double left = 0, right = 0, top = 0, bottom = 0;  ///< of the traces; the axis stands at the bottom
    double legend = 0;                                ///< baseline of the legend; 0 for none
    double margin = 0;                                ///< at both sides of the heading
    double first = 0, last = 0;                       ///< points at left and right
    AxisScale axis;
    double ceiling = 0;             ///< the traces end here; above 0 where peak labels stand over them
    double zero = 0, per_unit = 0;  ///< y = zero - per_unit * intensity
    bool heading = false;
    double brackets = 0;      ///< y of the brackets of integrals, which open towards the traces; 0: no room for them
    double values_depth = 0;  ///< pixels from there to the end of their values, upward when negative

    double x(double point) const {
        return last > first ? left + (point - first) * (right - left) / (last - first) : (left + right) / 2;
    }
    double point(double x_pixel) const { return right > left ? first + (x_pixel - left) * (last - first) / (right - left) : first; }
    double y(double value) const { return zero - per_unit * value; }
    double value(double y_pixel) const { return per_unit > 0 ? (zero - y_pixel) / per_unit : 0; }
};

PlotLayout plot_layout(const DataSet& data, const PlotOptions& options, PlotCache& cache);

/// What the view shows of the current vector over its axis. The whole of a spectrum stands with its baseline at an eighth
/// of the height and its tallest peak at nine tenths, what lies deeper than the axis is clipped; when the data reach
/// further down than up, they are shown whole instead. Time-domain data lie about the middle. Points that are not finite
/// are left out. Without data: an empty sheet. Regions of the vector keep the scale of the whole.
Picture plot_1d(const DataSet& data, const PlotOptions& options, PlotCache& cache);
Picture plot_1d(const DataSet& data, const PlotOptions& options);

/// What names the data in one line: their title, else experiment and comment, else their file.
std::string title_of(const DataSet& data);

}  // namespace zolt
