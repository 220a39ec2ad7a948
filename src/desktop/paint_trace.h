// A long trace on the screen: smooth, with round joins, and in time that does not depend on how often it crosses itself.
#pragma once

#include <QColor>
#include <QPainter>
#include <vector>

#include "display/picture.h"

namespace zolt {

/// Paints a line whose points go from left to right.
void paint_trace(QPainter& painter, const std::vector<Point>& points, const QColor& ink, double width);

}  // namespace zolt
