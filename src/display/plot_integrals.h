// Integrals on a plot: curves above the trace, brackets and values beside the axis.
#pragma once

#include "display/plot_1d.h"

namespace zolt {

/// Takes the room of brackets and values off the area of the traces; none without integrals, where they are hidden, or on
/// sheets too small for them. It does not depend on the region that is shown.
void reserve_integrals(PlotLayout& layout, const DataSet& data, const PlotOptions& options);

/// Adds, for every integral that the view touches, its running sum from its left limit, all to one scale, and a bracket
/// with its value. Values are written horizontally where they fit near their brackets, else vertically and spread sideways;
/// where even that leaves no room for all, the smallest go without.
void add_integrals(Picture& picture, const PlotLayout& layout, const DataSet& data, const PlotOptions& options);

/// The bracket of a region in the view; empty outside of it or without room for brackets.
std::vector<Point> integral_bracket(const PlotLayout& layout, const Integral& region);

}  // namespace zolt
