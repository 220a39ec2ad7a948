// Strokes, fills and texts by QPainter.
#include "desktop/paint_picture.h"

#include <QFontMetricsF>
#include <QPolygonF>
#include <span>

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
    QPen pen(colour(palette, stroke.ink), stroke.width);
    pen.setJoinStyle(Qt::RoundJoin);
    pen.setCapStyle(stroke.round_ends ? Qt::RoundCap : Qt::FlatCap);
    painter.setRenderHint(QPainter::Antialiasing, !is_ruler_line(stroke) || painter.device()->devicePixelRatioF() != 1);
    painter.setPen(pen);
    painter.drawPolyline(points_of(stroke.points), static_cast<int>(stroke.points.size()));
}

// Pieces of a trace; a dot is none.
const Stroke* trace_piece(const PictureRecord& record) {
    const Stroke* stroke = std::get_if<Stroke>(&record);
    if (stroke == nullptr || !stroke->round_ends || stroke->points.size() < 2) return nullptr;
    const Point first = stroke->points.front(), last = stroke->points.back();
    return last.x > first.x || stroke->points.size() > 2 ? stroke : nullptr;
}

bool continues(const Stroke& trace, const Stroke* next) {
    return next != nullptr && next->ink == trace.ink && next->width == trace.width;
}

void paint_fill(QPainter& painter, const Fill& fill, const Palette& palette) {
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour(palette, fill.ink));
    painter.drawPolygon(points_of(fill.outline), static_cast<int>(fill.outline.size()));
    painter.setBrush(Qt::NoBrush);
}

void paint_text(QPainter& painter, const Text& text, const Palette& palette, Medium medium) {
    // In the dots of the paper, of which a pixel has many: letters have sizes of whole dots.
    const double dots = medium == Medium::paper ? painter.transform().m11() : 1;
    QFont font = painter.font();
    font.setPixelSize(std::max(1, static_cast<int>(text.size * dots + 0.5)));
    if (medium == Medium::paper) font.setHintingPreference(QFont::PreferNoHinting);
    font.setBold(text.bold);
    if (text.ink == Ink::axis && settings.values.contains("AXISFONT")) font.setFamily(qt(setting_text("AxisFont")));
    if (text.ink == Ink::text && medium != Medium::screen && settings.values.contains("PARMFONT"))
        font.setFamily(qt(setting_text("ParmFont")));
    painter.save();
    painter.setFont(font);
    const bool label = medium == Medium::screen && text.ink == Ink::axis && settings.values.contains("AXIS_FONT_COLOR");
    painter.setPen(label ? QColor(setting_colour("AXIS_FONT_COLOR")) : colour(palette, text.ink));
    painter.translate(text.at.x, text.at.y);
    painter.rotate(-text.angle);
    painter.scale(1 / dots, 1 / dots);
    const QString words = qt(text.text);
    const double width = text.anchor == Anchor::start ? 0 : QFontMetricsF(font, painter.device()).horizontalAdvance(words);
    painter.drawText(QPointF(text.anchor == Anchor::middle ? -width / 2 : -width, 0), words);
    painter.restore();
}

}  // namespace

void paint_picture(QPainter& painter, const Picture& picture, const Palette& palette, Medium medium) {
    const std::span<const PictureRecord> records = picture.records;
    for (size_t i = 0; i < records.size(); ++i) {
        const Stroke* stroke = medium != Medium::paper ? trace_piece(records[i]) : nullptr;
        if (stroke != nullptr) {
            size_t end = i + 1;
            while (end < records.size() && continues(*stroke, trace_piece(records[end]))) ++end;
            paint_trace(painter, records.subspan(i, end - i), colour(palette, stroke->ink), stroke->width);
            i = end - 1;
        } else if ((stroke = std::get_if<Stroke>(&records[i])) != nullptr) {
            paint_stroke(painter, *stroke, palette);
        }
        if (const Fill* fill = std::get_if<Fill>(&records[i])) paint_fill(painter, *fill, palette);
        if (const Text* text = std::get_if<Text>(&records[i])) paint_text(painter, *text, palette, medium);
    }
}

}  // namespace zolt
