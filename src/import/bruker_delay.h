// The delay that a Bruker digital filter puts in front of an FID.
#pragma once

#include <cstdint>

namespace zolt {

/// What a parameter file says of the filter.
struct DigitalFilter {
    double stated_delay = 0;  ///< GRPDLY, complex points
    bool digital = true;      ///< false for DIGMOD 0
    int64_t firmware = 0;     ///< DSPFVS
    double decimation = 0;    ///< DECIM, not always a whole number
};

/// The group delay in complex points: the stated one when above 0, else none for analogue data, else that of the
/// firmware's table; 0 for a filter that is not in it.
double group_delay(const DigitalFilter& filter);

}  // namespace zolt
