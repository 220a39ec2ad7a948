// Group delays of the firmware versions that do not state their own, measured by the field on stored spectra.
#include "import/bruker_delay.h"

#include <cmath>

namespace zolt {

namespace {

struct Row {
    int decimation;
    double delay[4];  ///< firmware 10 to 13; 0: no such filter
};

constexpr Row table[] = {
    {2, {44.75, 46, 46, 2.75}},
    {3, {33.5, 36.5, 36.5, 2.8333333333333333}},
    {4, {66.625, 48, 48, 2.875}},
    {6, {59.083333333333333, 50.166666666666667, 50.166666666666667, 2.9166666666666667}},
    {8, {68.5625, 53.25, 53.25, 2.9375}},
    {12, {60.375, 69.5, 69.5, 2.9583333333333333}},
    {16, {69.53125, 72.25, 71.625, 2.96875}},
    {24, {61.020833333333333, 70.166666666666667, 70.166666666666667, 2.9791666666666667}},
    {32, {70.015625, 72.75, 72.125, 2.984375}},
    {48, {61.34375, 70.5, 70.5, 2.9895833333333333}},
    {64, {70.2578125, 73, 72.375, 2.9921875}},
    {96, {61.505208333333333, 70.666666666666667, 70.666666666666667, 2.9947916666666667}},
    {128, {70.37890625, 72.5, 72.5, 0}},
    {192, {61.5859375, 71.333333333333333, 71.333333333333333, 0}},
    {256, {70.439453125, 72.25, 72.25, 0}},
    {384, {61.626302083333333, 71.666666666666667, 71.666666666666667, 0}},
    {512, {70.4697265625, 72.125, 72.125, 0}},
    {768, {61.646484375, 71.833333333333333, 71.833333333333333, 0}},
    {1024, {70.48486328125, 72.0625, 72.0625, 0}},
    {1536, {61.656575520833333, 71.916666666666667, 71.916666666666667, 0}},
    {2048, {70.492431640625, 72.03125, 72.03125, 0}},
};

}  // namespace

double group_delay(const DigitalFilter& filter) {
    if (std::isfinite(filter.stated_delay) && filter.stated_delay > 0) return filter.stated_delay;
    if (!filter.digital || filter.firmware < 10 || filter.firmware > 13) return 0;
    const double decimation = std::round(filter.decimation);
    for (const Row& row : table)
        if (row.decimation == decimation) return row.delay[filter.firmware - 10];
    return 0;
}

}  // namespace zolt
