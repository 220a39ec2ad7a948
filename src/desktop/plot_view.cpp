// Paints from a kept pixmap, so that a moving crosshair costs no redraw of the data.
#include "desktop/plot_view.h"

#include <QMouseEvent>
#include <QPainter>
#include <cmath>

#include "common/text.h"
#include "desktop/appearance.h"
#include "desktop/paint_picture.h"
#include "desktop/text.h"
#include "display/view.h"
#include "display/view_commands.h"
#include "state/session.h"

namespace zolt {

namespace {

constexpr double drag_distance = 5;  // pixels; less is a click
constexpr int settle_time = 300;     // ms

// Position and intensity of a place on the plot.
std::string readout_of(double point, double value) {
    const Dimension& dimension = zolt::show.dims[0];
    std::string text = format_text("%.1f pt", point + 1);
    const Axis axis = dimension.axis();
    if (dimension.frequency) {
        text += format_text("  %.2f Hz", axis.hz(point));
        if (axis.has_ppm()) text += format_text("  %.4f ppm", axis.ppm(point));
    } else if (axis.sw > 0) {
        text += format_text("  %.6f s", point / axis.sw);
    }
    return text + format_text("  %.4g", value);
}

// The value of the real part at the point nearest to a place.
double value_at(std::span<const Complex> points, double point) {
    const auto nearest = static_cast<size_t>(std::clamp(point + 0.5, 0.0, static_cast<double>(points.size()) - 0.5));
    return nearest < points.size() ? static_cast<double>(points[nearest].real()) : 0;
}

Qt::CursorShape shape_of(Pointer pointer) {
    constexpr Qt::CursorShape shapes[] = {Qt::CrossCursor, Qt::SizeAllCursor, Qt::SplitHCursor, Qt::SplitVCursor};
    return shapes[static_cast<size_t>(pointer)];
}

std::string difference_text(double from, double to) {
    const Axis axis = zolt::show.dims[0].axis();
    if (!zolt::show.dims[0].frequency)
        return axis.sw > 0 ? format_text("\u0394 %.6f s", (to - from) / axis.sw) : format_text("\u0394 %.1f pt", to - from);
    std::string text = format_text("\u0394 %.2f Hz", std::abs(axis.hz(to) - axis.hz(from)));
    if (axis.has_ppm()) text += format_text("  %.4f ppm", std::abs(axis.ppm(to) - axis.ppm(from)));
    return text;
}

}  // namespace

PlotView::PlotView(QWidget* parent) : QWidget(parent) {
    setMouseTracking(true);
    setMinimumSize(240, 160);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setCursor(Qt::CrossCursor);
    settle_.setSingleShot(true);
    settle_.setInterval(settle_time);
    connect(&settle_, &QTimer::timeout, this, [this] { show_view(); });
}

bool PlotView::inert() const { return !zolt::show.loaded || (is_busy && is_busy()); }

PlotOptions PlotView::options() const {
    PlotOptions wanted = configured_options();
    wanted.width = width();
    wanted.height = height();
    wanted.columns_per_pixel = devicePixelRatioF();
    const SubRoutine* routine = session.sub_routine;
    if (routine != nullptr && routine->preview != nullptr && zolt::show.loaded) wanted.preview = routine->preview();
    return wanted;
}

void PlotView::refresh() {
    cache_.forget();
    stale_ = true;
    update();
}

void PlotView::draw_picture() {
    const double density = devicePixelRatioF();
    const QSize size = this->size() * density;
    if (pixmap_.size() != size) pixmap_ = QPixmap(size);
    pixmap_.setDevicePixelRatio(density);
    const PlotOptions wanted = options();
    const Picture drawn = plot_1d(zolt::show, wanted, cache_);
    layout_ = plot_layout(zolt::show, wanted, cache_);
    QPainter painter(&pixmap_);
    painter.setFont(font());
    paint_picture(painter, drawn, plot_palette());
    stale_ = false;
}

QPixmap PlotView::picture() {
    if (stale_ && !(is_busy && is_busy())) draw_picture();
    return pixmap_;
}

void PlotView::paintEvent(QPaintEvent* /*event*/) {
    const bool busy = is_busy && is_busy();
    if (stale_ && !busy) draw_picture();
    QPainter painter(this);
    if (pixmap_.isNull())
        painter.fillRect(rect(), colour(plot_palette(), Ink::background));
    else
        painter.drawPixmap(rect(), pixmap_);
    if (inert()) return;
    paint_routine(painter);
    paint_cursors(painter);
}

void PlotView::paint_routine(QPainter& painter) {
    if (session.sub_routine == nullptr || session.sub_routine->draw == nullptr) return;
    Picture over;
    over.width = layout_.width;
    over.height = layout_.height;
    session.sub_routine->draw(over, layout_);
    painter.setFont(font());
    paint_picture(painter, over, plot_palette());
}

void PlotView::follow_routine() {
    setCursor(shape_of(session.sub_routine != nullptr ? session.sub_routine->pointer : Pointer::cross));
    update();
}

void PlotView::paint_flag(QPainter& painter, double x, double y, const QString& text) {
    const WindowColours& c = window_colours();
    const QFontMetricsF metrics(painter.font());
    const double width = metrics.horizontalAdvance(text) + 12, height = metrics.height() + 6;
    const double left = std::clamp(x - width / 2, 4.0, std::max(4.0, this->width() - width - 4));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(c.line);
    painter.setBrush(c.raised);
    painter.drawRoundedRect(QRectF(std::floor(left) + 0.5, std::floor(y) + 0.5, width, height), 4, 4);
    painter.setPen(c.text);
    painter.drawText(QRectF(left, y, width, height), Qt::AlignCenter, text);
}

void PlotView::paint_cursors(QPainter& painter) {
    const Palette palette = plot_palette();
    QColor ink = colour(palette, Ink::cursor);
    const auto upright = [&](double x) {
        painter.drawLine(QPointF(std::floor(x) + 0.5, 0), QPointF(std::floor(x) + 0.5, layout_.bottom));
    };
    painter.setFont(font());
    if (pinned_ && *pinned_ >= layout_.first && *pinned_ <= layout_.last) {
        painter.setPen(QPen(ink, 1));
        upright(layout_.x(*pinned_));
    }
    if (!mouse_ || !in_plot(*mouse_)) return;
    // Where a drag has no place, a crosshair would only stand in the way.
    if (session.sub_routine != nullptr && session.sub_routine->pointer == Pointer::phase) return;
    if (pressed_ && owner_ == nullptr && std::abs(mouse_->x() - pressed_->x()) >= drag_distance) {
        const double from = std::min(pressed_->x(), mouse_->x()), to = std::max(pressed_->x(), mouse_->x());
        QColor band = window_colours().accent;
        painter.setPen(QPen(band, 1));
        upright(from);
        upright(to);
        band.setAlpha(40);
        painter.fillRect(QRectF(from, 0, to - from, layout_.bottom), band);
        paint_flag(painter, (from + to) / 2, 8, qt(difference_text(layout_.point(from), layout_.point(to))));
        return;
    }
    ink.setAlpha(150);
    painter.setPen(QPen(ink, 1));
    upright(mouse_->x());
    if (mouse_->y() < layout_.bottom) {
        const double y = std::floor(mouse_->y()) + 0.5;
        painter.drawLine(QPointF(layout_.left, y), QPointF(layout_.right, y));
    }
    const double point = layout_.point(mouse_->x());
    if (layout_.axis.kind != AxisKind::none)
        paint_flag(painter, mouse_->x(), layout_.bottom + 10, qt(axis_text(layout_.axis, layout_.axis.value(point))));
    if (pinned_) paint_flag(painter, (layout_.x(*pinned_) + mouse_->x()) / 2, 8, qt(difference_text(*pinned_, point)));
}

void PlotView::read_out() {
    if (!on_readout) return;
    if (!mouse_ || inert() || !in_plot(*mouse_)) return on_readout("");
    const double point = layout_.point(mouse_->x());
    on_readout(readout_of(point, value_at(drawn_points(zolt::show, options()), point)));
}

bool PlotView::offer(MouseEvent::Kind kind, const QSinglePointEvent& event, double steps) {
    const QPointF at = event.position();
    MouseEvent told;
    told.kind = kind;
    told.point = layout_.point(std::clamp(at.x(), layout_.left, layout_.right));
    told.value = layout_.value(at.y());
    if (pressed_) {
        told.right = at.x() - pressed_->x();
        told.up = pressed_->y() - at.y();
    }
    told.width = layout_.right - layout_.left;
    told.height = layout_.bottom - layout_.top;
    told.steps = steps;
    told.shift = event.modifiers().testFlag(Qt::ShiftModifier);
    told.control = event.modifiers().testFlag(Qt::ControlModifier);
    return on_mouse && on_mouse(told);
}

// True for a gesture that a sub-routine has begun with, also when that one has ended meanwhile: the plot must not take up
// the rest of it.
bool PlotView::give_gesture(MouseEvent::Kind kind, const QSinglePointEvent& event) {
    if (owner_ == nullptr) return false;
    mouse_ = event.position();
    if (owner_ == session.sub_routine && !inert()) offer(kind, event);
    read_out();
    update();
    return true;
}

void PlotView::resizeEvent(QResizeEvent* /*event*/) { stale_ = true; }

void PlotView::mousePressEvent(QMouseEvent* event) {
    if (inert()) return;
    if (event->button() == Qt::RightButton) unpin();
    if (event->button() == Qt::LeftButton) {
        pressed_ = mouse_ = event->position();
        const SubRoutine* active = session.sub_routine;
        owner_ = offer(MouseEvent::Kind::press, *event) ? active : nullptr;
    }
    update();
}

void PlotView::mouseMoveEvent(QMouseEvent* event) {
    if (give_gesture(MouseEvent::Kind::drag, *event)) return;
    mouse_ = event->position();
    if (pressed_) mouse_->setX(std::clamp(mouse_->x(), layout_.left, layout_.right));
    read_out();
    update();
}

void PlotView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !pressed_) return;
    if (give_gesture(MouseEvent::Kind::release, *event)) {
        owner_ = nullptr;
        pressed_.reset();
        return;
    }
    const double from = pressed_->x(), to = std::clamp(event->position().x(), layout_.left, layout_.right);
    pressed_.reset();
    if (inert()) return;
    if (std::abs(to - from) < drag_distance) {
        pinned_ = layout_.point(to);
        update();
        return;
    }
    const double left = layout_.axis.value(layout_.point(std::min(from, to)));
    const double right = layout_.axis.value(layout_.point(std::max(from, to)));
    if (layout_.axis.kind == AxisKind::none) {
        on_line(format_text("SETX %.1f %.1f", layout_.point(std::min(from, to)), layout_.point(std::max(from, to))));
    } else {
        const int decimals = layout_.axis.decimals() + 1;
        on_line(format_text("SETX %.*f %.*f", decimals, left, decimals, right));
    }
}

void PlotView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || inert() || offer(MouseEvent::Kind::double_click, *event)) return;
    unpin();
    pressed_.reset();
    on_line("XYZ FULL");
}

void PlotView::wheelEvent(QWheelEvent* event) {
    event->accept();
    if (inert()) return;
    const QPoint turned = event->angleDelta();
    // With Shift some systems turn the wheel sideways.
    const bool scale = event->modifiers().testFlag(Qt::ShiftModifier);
    const double steps = (scale && turned.y() == 0 ? turned.x() : turned.y()) / 120.0;
    if (offer(MouseEvent::Kind::wheel, *event, steps)) return;
    if (scale) {
        view_of(zolt::show).height = std::clamp(view_of(zolt::show).height * std::pow(1.25, steps), 1e-6, 1e9);
        height_moved_ = true;
    } else {
        if (steps != 0) zoom_view(zolt::show, std::pow(0.8, steps), layout_.point(event->position().x()));
        if (turned.x() != 0) pan_view(zolt::show, -turned.x() / 1200.0);
        region_moved_ = true;
    }
    mouse_ = event->position();
    stale_ = true;
    update();
    settle_.start();
}

void PlotView::show_view() {
    if (inert()) return;
    if (std::exchange(region_moved_, false)) on_line(setx_line(zolt::show));
    if (std::exchange(height_moved_, false)) on_line(setz_line(zolt::show));
    read_out();
}

void PlotView::leaveEvent(QEvent* /*event*/) {
    if (!pressed_) mouse_.reset();
    read_out();
    update();
}

bool PlotView::unpin() {
    const bool was = pinned_.has_value();
    pinned_.reset();
    update();
    return was;
}

}  // namespace zolt
