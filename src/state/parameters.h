// Commands that set parameters of the data set directly: SF, SW, nucleus, solvent, process type.
#pragma once

#include "common/arguments.h"

namespace zolt {

int set_spectrometer_frequency(int dimension, Arguments& args);
int set_sweep_width(int dimension, Arguments& args);

template <int dimension>
int cmd_sf(Arguments& args) {
    return set_spectrometer_frequency(dimension, args);
}

template <int dimension>
int cmd_sw(Arguments& args) {
    return set_sweep_width(dimension, args);
}

int cmd_nucleus(Arguments& args);
int cmd_solvent(Arguments& args);
int cmd_processtype(Arguments& args);

}  // namespace zolt
