// The peak list of a data set: picking by the minimum height, single peaks, keeping up with the data, tables.
#pragma once

#include <string>
#include <vector>

#include "analysis/peaks.h"
#include "state/dataset.h"
#include "state/peak_options.h"

namespace zolt {

/// What the minimum height is measured by: noise and tallest point (upright or, with `negative`, of either sign) of the
/// current vector.
struct HeightScale {
    double noise = 0, tallest = 0;
};
HeightScale height_scale(const DataSet& data, const PeakOptions& options);

/// The minimum height as an intensity.
double minimum_height(const HeightScale& scale, const PeakOptions& options);
/// "1.2e+06 (2 % of the tallest, 14 times the noise)".
std::string height_text(const HeightScale& scale, double height);

/// The peaks of the current vector between two points, ends included and in order, as list entries. `height` 0: all.
std::vector<Peak> peaks_between(const DataSet& data, const PeakOptions& options, double first, double last, double height);

/// A list entry at a place; positions in Hz and ppm follow.
Peak peak_at(const DataSet& data, double point, double height);
/// Puts a peak into the list, in order of position and in place of one within half a point.
void add_peak(DataSet& data, const Peak& peak);
/// The number in the list, from 0, of the peak of this spectrum nearest to a place; -1 without one.
int nearest_peak(const std::vector<Peak>& list, double point);

/// Lets the list keep up with the data: positions in Hz and ppm follow the axis; of another slice the heights are taken; when
/// the points were changed, each peak moves to the maximum (minimum) of now within two points, and is dropped when there is
/// none; of another number of points, or another domain, no peak is left. Peaks of 2D spectra stay as they are.
/// The line of the minimum height, where it is drawn, keeps up, too.
void refresh_peaks(DataSet& data);

/// Number, point, Hz, ppm, height, height relative to the tallest of the list, label; columns padded, or separated by tabs.
std::string peak_table(const DataSet& data, const std::vector<Peak>& list, bool tabs);

}  // namespace zolt
