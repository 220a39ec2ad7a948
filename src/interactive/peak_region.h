// Places that peak commands are given and say, in the unit of the axis that is shown.
#pragma once

#include <string>

#include "display/axis_scale.h"

namespace zolt {

/// The axis on the plot; in points where there is none.
AxisScale peak_axis();
/// A position as a word of a command line, with two decimals more than tell points apart.
std::string position_word(double point);

}  // namespace zolt
