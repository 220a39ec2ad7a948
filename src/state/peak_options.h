// How peaks are picked and labelled: for the run, whatever the data set.
#pragma once

namespace zolt {

/// What the minimum height of a peak is a multiple of.
enum class HeightUnit {
    automatic,  ///< the larger of 5 times the noise and 2 % of the tallest
    intensity,
    percent,  ///< of the tallest of the vector
    noise
};

enum class LabelUnit { axis, ppm, hz };
enum class LabelDirection { configured, vertical, horizontal };

struct PeakOptions {
    HeightUnit height_unit = HeightUnit::automatic;
    double height = 0;
    bool negative = false;  ///< lines that point down are picked, too
    bool shown = true;      ///< labels are
    bool line = false;      ///< the minimum height is drawn,
    double line_at = 0;     ///< which is this intensity of the present vector
    bool in_hand = false;   ///< a sub-routine draws the labels of peaks to come in place of those of the list
    LabelUnit unit = LabelUnit::axis;
    LabelDirection direction = LabelDirection::configured;
};

}  // namespace zolt
