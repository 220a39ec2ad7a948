// Which key of the configuration sets which ink, and the colours that File B and the buffers were given.
#include "display/configured_palette.h"

#include "config/settings.h"
#include "display/plot_overlays.h"
#include "state/overlay.h"
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
    // One that nobody has chosen stays that of the appearance.
    for (const Companion& other : companions_of(show)) {
        const auto [red, green, blue] = other.look.color;
        if (other.look.color == usual_overlay_colour(other.number)) continue;
        palette.colours[static_cast<size_t>(overlay_ink(other.number))] = static_cast<uint32_t>(red << 16 | green << 8 | blue);
    }
    return palette;
}

}  // namespace zolt
