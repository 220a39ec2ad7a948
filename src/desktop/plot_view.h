// The plot: paints the picture of the current data and turns the mouse into command lines.
#pragma once

#include <QPixmap>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <optional>
#include <string>

#include "display/plot_1d.h"

namespace zolt {

class PlotView : public QWidget {
public:
    explicit PlotView(QWidget* parent);

    /// A gesture of the mouse has ended: this line is to be carried out.
    std::function<void(const std::string& line)> on_line;
    /// The readout under the mouse; "" when it has left the plot.
    std::function<void(const std::string& text)> on_readout;
    /// Commands are at work: the picture stays as it was, and the mouse does nothing.
    std::function<bool()> is_busy;

    /// The data or the view have changed.
    void refresh();
    /// The plot as it is shown, without cursors.
    QPixmap picture();
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
    void paint_cursors(QPainter& painter);
    void paint_flag(QPainter& painter, double x, double y, const QString& text);
    bool inert() const;
    bool in_plot(QPointF at) const { return at.x() >= layout_.left && at.x() <= layout_.right; }

    PlotCache cache_;
    PlotLayout layout_;
    QPixmap pixmap_;
    bool stale_ = true;
    std::optional<QPointF> mouse_, pressed_;
    std::optional<double> pinned_;  ///< a point of the vector
    QTimer settle_;                 ///< a turning wheel becomes one line when it rests
    bool region_moved_ = false, height_moved_ = false;
};

}  // namespace zolt
