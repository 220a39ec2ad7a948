// Light and dark: the colours of the window around the plot, and fonts.
#pragma once

#include <QColor>
#include <QFont>

#include "display/palette.h"

namespace zolt {

/// What the palette of the plot does not have.
struct WindowColours {
    QColor window, raised, line, text, dimmed, accent;
};

/// Whether the configuration, or the system where it leaves it to that, wants dark colours.
bool dark_appearance();
const WindowColours& window_colours();
/// The colours of the plot, those of ZOLT.INI among them.
Palette plot_palette();
QColor colour(const Palette& palette, Ink ink);

/// Gives the application the colours that apply now.
void apply_appearance();

/// The font of command line, reply line and tables.
QFont fixed_font(double points = 0);

}  // namespace zolt
