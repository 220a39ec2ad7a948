// The traces of a picture, decimated to the columns of the sheet and clipped to it.
#pragma once

#include "display/plot_1d.h"

namespace zolt {

/// Adds one part of the shown region. `columns` of the sheet keep their first, lowest, highest and last point each.
void add_trace(Picture& picture, const PlotLayout& layout, const TraceSummary& summary, size_t count, Ink ink, double pen,
               double columns);

/// Adds a dot for each point where points stand clear of one another.
void add_dots(Picture& picture, const PlotLayout& layout, const TraceSummary& summary, size_t count, Ink ink);

}  // namespace zolt
