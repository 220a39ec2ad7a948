// Strokes, fills and texts by QPainter.
#include "desktop/paint_picture.h"

#include <QFontMetricsF>
#include <QPolygonF>

#include "config/settings.h"
#include "desktop/appearance.h"
#include "desktop/paint_trace.h"
#include "desktop/text.h"
#include "state/session.h"

namespace zolt {

namespace {

static_assert(sizeof(QPointF) == sizeof(Point), "both are two doubles, x before y");

const QPointF* points_of(const std::vector<Point>& points) { return reinterpret_cast<const QPointF*>(points.data()); }

// Level and upright lines of one pixel stand in the middle of pixels; smoothing would only blur them on odd densities.
bool is_ruler_line(const Stroke& stroke) {
    return stroke.points.size() == 2 && !stroke.round_ends &&
           (stroke.points[0].x == stroke.points[1].x || stroke.points[0].y == stroke.points[1].y);
}

void paint_stroke(QPainter& painter, const Stroke& stroke, const Palette& palette) {
    constexpr size_t longest_outline = 2;
    if (stroke.points.size() > longest_outline)
        return paint_trace(painter, stroke.points, colour(palette, stroke.ink), stroke.width);
    QPen pen(colour(palette, stroke.ink), stroke.width);
    pen.setJoinStyle(Qt::RoundJoin);
    pen.setCapStyle(stroke.round_ends ? Qt::RoundCap : Qt::FlatCap);
    painter.setRenderHint(QPainter::Antialiasing, !is_ruler_line(stroke) || painter.device()->devicePixelRatioF() != 1);
    painter.setPen(pen);
    painter.drawPolyline(points_of(stroke.points), static_cast<int>(stroke.points.size()));
}

void paint_fill(QPainter& painter, const Fill& fill, const Palette& palette) {
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour(palette, fill.ink));
    painter.drawPolygon(points_of(fill.outline), static_cast<int>(fill.outline.size()));
    painter.setBrush(Qt::NoBrush);
}

void paint_text(QPainter& painter, const Text& text, const Palette& palette) {
    QFont font = painter.font();
    font.setPixelSize(std::max(1, static_cast<int>(text.size + 0.5)));
    font.setBold(text.bold);
    if (text.ink == Ink::axis && settings.values.contains("AXISFONT")) font.setFamily(qt(setting_text("AxisFont")));
    painter.save();
    painter.setFont(font);
    const bool label = text.ink == Ink::axis && settings.values.contains("AXIS_FONT_COLOR");
    painter.setPen(label ? QColor(setting_colour("AXIS_FONT_COLOR")) : colour(palette, text.ink));
    painter.translate(text.at.x, text.at.y);
    painter.rotate(-text.angle);
    const QString words = qt(text.text);
    const double width = text.anchor == Anchor::start ? 0 : QFontMetricsF(font).horizontalAdvance(words);
    painter.drawText(QPointF(text.anchor == Anchor::middle ? -width / 2 : -width, 0), words);
    painter.restore();
}

}  // namespace

void paint_picture(QPainter& painter, const Picture& picture, const Palette& palette) {
    for (const PictureRecord& record : picture.records) {
        if (const Stroke* stroke = std::get_if<Stroke>(&record)) paint_stroke(painter, *stroke, palette);
        if (const Fill* fill = std::get_if<Fill>(&record)) paint_fill(painter, *fill, palette);
        if (const Text* text = std::get_if<Text>(&record)) paint_text(painter, *text, palette);
    }
}

}  // namespace zolt
