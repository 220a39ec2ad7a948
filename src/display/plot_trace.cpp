// Walks the shown points column by column and draws what stays on the sheet.
#include "display/plot_trace.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace zolt {

namespace {

constexpr double dot_width = 3;

// Draws a line that stays between two heights: where it leaves them it ends, where it comes back a new one begins.
class Pen {
public:
    Pen(Picture& picture, Ink ink, double width, double top, double bottom)
        : picture_(picture), ink_(ink), width_(width), top_(top), bottom_(bottom) {}

    void draw_to(Point to) {
        if (!down_) {
            if (inside(to)) line_.push_back(to);
        } else {
            draw_segment(last_, to);
        }
        last_ = to;
        down_ = true;
    }
    void lift() {
        finish_line();
        down_ = false;
    }

private:
    bool inside(Point p) const { return p.y >= top_ && p.y <= bottom_; }

    void draw_segment(Point from, Point to) {
        if (inside(from) && inside(to)) return line_.push_back(to);
        const auto crossing = [&](double y) { return Point{from.x + (to.x - from.x) * (y - from.y) / (to.y - from.y), y}; };
        const auto clipped = [&](Point p) { return inside(p) ? p : crossing(p.y < top_ ? top_ : bottom_); };
        if (std::max(from.y, to.y) < top_ || std::min(from.y, to.y) > bottom_) return;
        if (!inside(from)) line_.push_back(clipped(from));
        line_.push_back(clipped(to));
        if (!inside(to)) finish_line();
    }

    void finish_line() {
        if (line_.empty()) return;
        const bool alone = line_.size() == 1;
        if (alone) line_.push_back(line_.front());
        picture_.records.emplace_back(Stroke{std::exchange(line_, {}), ink_, alone ? dot_width : width_, true});
    }

    Picture& picture_;
    Ink ink_;
    double width_, top_, bottom_;
    std::vector<Point> line_;
    Point last_;
    bool down_ = false;
};

// The points that the line of one column goes through: its first, lowest, highest and last, in their own order, so that
// no peak loses height and the line enters and leaves where the data do. Returns how many; none without a finite point.
size_t column_points(const TraceSummary& summary, size_t begin, size_t end, std::array<size_t, 4>& chosen) {
    const Extremes found = summary.between(begin, end);
    if (!found.any) return 0;
    size_t first = begin, last = end - 1;
    while (!std::isfinite(summary.value(first))) ++first;
    while (!std::isfinite(summary.value(last))) --last;
    chosen = {first, std::min(found.low, found.high), std::max(found.low, found.high), last};
    return static_cast<size_t>(std::unique(chosen.begin(), chosen.end()) - chosen.begin());
}

// The value at a place between two points; NaN beside a point that is not finite.
double value_between(const TraceSummary& summary, double place) {
    const auto before = static_cast<size_t>(place);
    const double share = place - std::floor(place);
    const double low = static_cast<double>(summary.value(before));
    return share > 0 ? low + (static_cast<double>(summary.value(before + 1)) - low) * share : low;
}

}  // namespace

void add_trace(Picture& picture, const PlotLayout& layout, const TraceSummary& summary, size_t count, Ink ink, double pen_width,
               double columns_wanted) {
    if (count == 0) return;
    // Whole points of the region; where it ends between two, the line ends there, too.
    const auto begin = static_cast<size_t>(std::ceil(layout.first)), end = std::min(static_cast<size_t>(layout.last) + 1, count);
    Pen pen(picture, ink, pen_width, layout.ceiling, layout.bottom);
    const auto draw_cut = [&](double place) {
        const double value = value_between(summary, place);
        if (std::isfinite(value)) pen.draw_to({layout.x(place), layout.y(value)});
    };
    if (static_cast<double>(begin) > layout.first) draw_cut(layout.first);

    const size_t inside = end > begin ? end - begin : 0;
    // A column of four points or fewer keeps them all: every point is then its own column.
    const size_t wide = static_cast<size_t>(std::max(1.0, std::ceil(columns_wanted)));
    const size_t columns = inside > 4 * wide ? wide : inside;
    std::array<size_t, 4> chosen{};
    for (size_t column = 0; column < columns; ++column) {
        const size_t used =
            column_points(summary, begin + column * inside / columns, begin + (column + 1) * inside / columns, chosen);
        if (used == 0) pen.lift();
        for (size_t i = 0; i < used; ++i)
            pen.draw_to({layout.x(static_cast<double>(chosen[i])), layout.y(static_cast<double>(summary.value(chosen[i])))});
    }
    if (static_cast<double>(end - 1) < layout.last && end < count) draw_cut(layout.last);
    pen.lift();
}

void add_dots(Picture& picture, const PlotLayout& layout, const TraceSummary& summary, size_t count, Ink ink) {
    constexpr double least_gap = 4;  // pixels between points
    const double shown = layout.last - layout.first;
    if (count == 0 || shown * least_gap > layout.right - layout.left) return;
    const auto end = std::min(static_cast<size_t>(layout.last) + 1, count);
    for (auto i = static_cast<size_t>(std::ceil(layout.first)); i < end; ++i) {
        const Point at{layout.x(static_cast<double>(i)), layout.y(static_cast<double>(summary.value(i)))};
        if (at.y >= layout.ceiling && at.y <= layout.bottom) picture.records.emplace_back(Stroke{{at, at}, ink, dot_width + 0.5, true});
    }
}

}  // namespace zolt
