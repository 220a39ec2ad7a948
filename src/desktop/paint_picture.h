// Pictures on screen and paper: the same records that SVG export writes.
#pragma once

#include <QPainter>

#include "display/palette.h"
#include "display/picture.h"

namespace zolt {

/// The screen has its pixels and the configuration's colour of axis labels; an image has pixels, paper lines and letters in
/// sizes of its dots, and both the colours of the palette alone.
enum class Medium { screen, image, paper };

void paint_picture(QPainter& painter, const Picture& picture, const Palette& palette, Medium medium = Medium::screen);

}  // namespace zolt
