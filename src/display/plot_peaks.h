// The peak list on the plot: marks at the peaks, labels in a row above the traces, lines from one to the other.
#pragma once

#include <span>

#include "display/picture.h"
#include "display/plot_1d.h"
#include "state/dataset.h"

namespace zolt {

/// Room above the traces that the labels and their lines take; 0 when none are shown. In steps with the list and not with the
/// region, so that nothing moves while one zooms.
double peak_label_room(const DataSet& data, const PlotLayout& layout);

/// Labels stand in one row, spread sideways, none over another and none beside the heading's margins; where they do not all fit,
/// the tallest peaks have theirs and the others only marks.
void add_peaks(Picture& picture, const PlotLayout& layout, const DataSet& data, std::span<const Peak> peaks);

/// The minimum height across the plot (below zero, too, when lines that point down are picked), with a text at its right end.
void add_height_line(Picture& picture, const PlotLayout& layout, double height, const std::string& text);

/// What plot_1d shows: the list of the data set, and the minimum height if it is to be drawn at an intensity.
void add_peak_list(Picture& picture, const PlotLayout& layout, const DataSet& data);

}  // namespace zolt
