// Commands that change what the display shows: axis unit, region, height, stored regions.
#pragma once

#include <string>

#include "common/arguments.h"
#include "state/dataset.h"

namespace zolt {

int cmd_axis(Arguments& args);
int cmd_setx(Arguments& args);
int cmd_sety(Arguments& args);
int cmd_setz(Arguments& args);
int cmd_xyz(Arguments& args);

int store_zoom_region(int number);
int recall_zoom_region(int number);

template <int number>
int cmd_x(Arguments& /*args*/) {
    return store_zoom_region(number);
}

template <int number>
int cmd_z(Arguments& /*args*/) {
    return recall_zoom_region(number);
}

/// The line that shows what is shown now: "SETX 7.2512 6.8004", "SETY -10 200", "SETZ 2".
std::string setx_line(const DataSet& data);
std::string sety_line(double low, double high);
std::string setz_line(const DataSet& data);

/// Ctrl+A: the next choice of traces, told in the reply line.
void step_traces();

}  // namespace zolt
