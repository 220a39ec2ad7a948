// Notes: texts at places of the plot.
#pragma once

#include <optional>

#include "display/plot_1d.h"

namespace zolt {

constexpr double note_size = 13;  ///< of the letters, pixels

/// The point of the data set at which a note stands; nothing where its axis is another one (a note in ppm on an FID).
std::optional<double> point_of_note(const DataSet& data, const Note& note);

/// Where the middle of a note's baseline is on the sheet, kept on it; nothing for a note beside the shown region.
std::optional<Point> place_of_note(const PlotLayout& layout, const DataSet& data, const Note& note);

/// Adds the notes of the shown region.
void add_notes(Picture& picture, const PlotLayout& layout, const DataSet& data);

}  // namespace zolt
