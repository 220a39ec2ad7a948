// Where the display stands: the region of the current vector that is shown, its height, the traces, stored regions.
#pragma once

#include <array>
#include <string>
#include <utility>

#include "state/dataset.h"

namespace zolt {

/// What Ctrl+A steps through.
enum class Traces { real, both, imaginary, magnitude, dots };
constexpr int trace_choices = 5;

struct StoredRegion {
    bool stored = false;
    bool on_axis = false;        ///< ends in the unit of a frequency axis; else in shares of the vector
    double first = 0, last = 1;  ///< left and right end
    double height = 1;
};

struct View {
    double first = 0, last = 0;  ///< points at the left and right end of the plot; last not above first: all
    double height = 1;           ///< magnification of intensities
    bool range_set = false;      ///< intensities from low to high fill the plot, times height
    double low = 0, high = 0;
    Traces traces = Traces::real;
    std::array<StoredRegion, 10> regions;
};

/// The view of the current data set. Another vector length, domain or file shows the whole again.
View& view_of(const DataSet& data);

/// The points at the left and right end of the plot, within the vector.
std::pair<double, double> shown_points(const DataSet& data);

/// Shows a region; ends in any order. It is kept within the vector and at least two steps wide.
void show_points(const DataSet& data, double one_end, double other_end);
void show_all(const DataSet& data);
/// Moves the region by a share of its width.
void pan_view(const DataSet& data, double share);
/// Widens (factor above 1) or narrows the region about a point that stays where it is.
void zoom_view(const DataSet& data, double factor, double at_point);

void store_region(const DataSet& data, int number);
/// False when nothing is stored there.
bool recall_region(const DataSet& data, int number);

const char* name_of(Traces traces);

}  // namespace zolt
