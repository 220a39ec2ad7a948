// Pictures on the screen: the same records that SVG export writes.
#pragma once

#include <QPainter>

#include "display/palette.h"
#include "display/picture.h"

namespace zolt {

void paint_picture(QPainter& painter, const Picture& picture, const Palette& palette);

}  // namespace zolt
