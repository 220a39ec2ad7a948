// A long trace on the screen: smooth, with round joins, and in time that does not depend on how often it crosses itself.
#pragma once

#include <QColor>
#include <QPainter>
#include <span>

#include "display/picture.h"

namespace zolt {

/// Paints the pieces of one trace, whose points go from left to right.
void paint_trace(QPainter& painter, std::span<const PictureRecord> strokes, const QColor& ink, double width);

}  // namespace zolt
