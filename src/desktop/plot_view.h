// The plot: paints the picture of the current data and turns the mouse into command lines.
#pragma once

#include <QPixmap>
#include <QSinglePointEvent>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <optional>
#include <string>

#include "display/plot_1d.h"
#include "state/sub_routine.h"

namespace zolt {

class PlotView : public QWidget {
public:
    explicit PlotView(QWidget* parent);

    /// A gesture of the mouse has ended: this line is to be carried out.
    std::function<void(const std::string& line)> on_line;
    /// Offers the mouse to the sub-routine that is active; false when the plot is to do what it always does.
    std::function<bool(const MouseEvent& event)> on_mouse;
    /// The readout under the mouse; "" when it has left the plot.
    std::function<void(const std::string& text)> on_readout;
    /// Commands are at work: the picture stays as it was, and the mouse does nothing.
    std::function<bool()> is_busy;

    /// The data or the view have changed.
    void refresh();
    /// The plot as it is shown, without cursors.
    QPixmap picture();
    /// A sub-routine has begun, ended or changed what it shows over the plot.
    void follow_routine();
    /// Drops the pinned cursor; false when there was none.
    bool unpin();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    PlotOptions options() const;
    void draw_picture();
    void show_view();
    void read_out();
    bool offer(MouseEvent::Kind kind, const QSinglePointEvent& event, double steps = 0);
    bool give_gesture(MouseEvent::Kind kind, const QSinglePointEvent& event);
    void paint_routine(QPainter& painter);
    void paint_cursors(QPainter& painter);
    void paint_flag(QPainter& painter, double x, double y, const QString& text);
    bool inert() const;
    bool in_plot(QPointF at) const { return at.x() >= layout_.left && at.x() <= layout_.right; }

    PlotCache cache_;
    PlotLayout layout_;
    QPixmap pixmap_;
    bool stale_ = true;
    std::optional<QPointF> mouse_, pressed_;
    const SubRoutine* owner_ = nullptr;  ///< whose gesture it is; nullptr: the plot's own
    std::optional<double> pinned_;       ///< a point of the vector
    QTimer settle_;                      ///< a turning wheel becomes one line when it rests
    bool region_moved_ = false, height_moved_ = false;
};

}  // namespace zolt
