// Which key of the configuration sets which ink.
#include "display/configured_palette.h"

#include "config/settings.h"
#include "state/session.h"

namespace zolt {

Palette configured_palette(const Palette& appearance) {
    static constexpr struct {
        const char* key;
        Ink ink;
    } rows[] = {{"BACKGROUND_COLOR", Ink::background}, {"AXIS_COLOR", Ink::axis},         {"REAL_COLOR", Ink::real_trace},
                {"IMAG_COLOR", Ink::imaginary_trace},  {"INTEGRAL_COLOR", Ink::integral}, {"PEAKPICK_FONT_COLOR", Ink::peak},
                {"PARAMETER_FONT_COLOR", Ink::text}};
    Palette palette = appearance;
    for (const auto& row : rows)
        if (settings.values.contains(row.key)) palette.colours[static_cast<size_t>(row.ink)] = setting_colour(row.key);
    return palette;
}

}  // namespace zolt
