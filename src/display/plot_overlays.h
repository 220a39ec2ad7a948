// File B and the data buffers beside the trace of File A, and the legend that tells them apart.
#pragma once

#include "display/plot_1d.h"

namespace zolt {

/// The ink of File B (0) or of a data buffer.
Ink overlay_ink(int number);

/// Height that the legend takes above the traces, 0 where there is nothing beside File A.
double legend_room(const DataSet& data);

/// Adds the traces of all that is shown beside the data set, each aligned with it by its axis, on the intensities of the
/// data set, the part of the points that the view shows. What lies beyond the data set's axis is left out.
void add_overlays(Picture& picture, const PlotLayout& layout, const DataSet& data, const PlotOptions& options, PlotCache& cache);

/// Adds one line above the traces: a stroke and the name for the data set and everything beside it.
void add_legend(Picture& picture, const PlotLayout& layout, const DataSet& data);

}  // namespace zolt
