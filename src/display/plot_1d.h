// The current vector of a data set as a picture: trace, axis, title line.
#pragma once

#include "display/picture.h"
#include "state/dataset.h"

namespace zolt {

struct PlotOptions {
    double width = 1100, height = 620;  ///< pixels; 16 to 65536 each
    double columns_per_pixel = 1;       ///< fineness of the trace: 2 for screens of double density and for printing
    bool heading = true;                ///< title, nucleus, frequency and solvent along the top
};

/// The real part of the whole current vector over its axis (dims[0].axis_unit; time for data not yet transformed). A
/// spectrum stands with its baseline at an eighth of the height and its tallest peak at nine tenths, what lies deeper
/// than the axis is clipped; when the data reach further down than up, they are shown whole instead. Time-domain
/// data lie about the middle. Points that are not finite are left out. Without data: an empty sheet.
Picture plot_1d(const DataSet& data, const PlotOptions& options);

}  // namespace zolt
