// In each quarter of a pixel column the line covers one stretch of heights; a round brush widens it by those of the
// neighbouring quarters, and the four stretches of a pixel column add up to the coverage of its pixels. As an outline, the
// same line would be filled by the rules of its thousands of crossings, which takes seconds.
#include "desktop/paint_trace.h"

#include <QImage>
#include <QRect>
#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace zolt {

namespace {

constexpr int quarters = 4;

struct Stretch {
    float low = std::numeric_limits<float>::max(), high = std::numeric_limits<float>::lowest();
    bool any() const { return low <= high; }
    void take(double y) {
        low = std::min(low, static_cast<float>(y));
        high = std::max(high, static_cast<float>(y));
    }
};

const std::vector<Point>& points_of(const PictureRecord& record) { return std::get_if<Stroke>(&record)->points; }

// The part of the device that the pieces cover, in its pixels.
QRect device_area(std::span<const PictureRecord> strokes, double density, int margin) {
    const Point start = points_of(strokes[0])[0];
    double top = start.y, bottom = top, left = start.x, right = left;
    for (const PictureRecord& stroke : strokes) {
        left = std::min(left, points_of(stroke).front().x);
        right = std::max(right, points_of(stroke).back().x);
        for (const Point& point : points_of(stroke)) {
            top = std::min(top, point.y);
            bottom = std::max(bottom, point.y);
        }
    }
    const auto down = [&](double place) { return static_cast<int>(std::floor(place * density)) - margin; };
    const auto up = [&](double place) { return static_cast<int>(std::ceil(place * density)) + margin; };
    return {QPoint(down(left), down(top)), QPoint(up(right), up(bottom))};
}

// Adds the heights that a line covers in each quarter column, in device pixels from the left end on.
void add_stretches(std::vector<Stretch>& all, const std::vector<Point>& points, double density, double left) {
    const auto quarter = [&](double x) {
        return std::min(static_cast<size_t>(std::max(0.0, (x * density - left) * quarters)), all.size() - 1);
    };
    for (size_t i = 0; i + 1 < points.size(); ++i) {
        const Point from = points[i], to = points[i + 1];
        const size_t first = quarter(from.x), last = quarter(to.x);
        all[first].take(from.y * density);
        all[last].take(to.y * density);
        for (size_t k = first; k < last; ++k) {
            // Where it goes from one quarter into the next it belongs to both.
            const double x = ((static_cast<double>(k) + 1) / quarters + left) / density;
            const double y = from.y + (to.y - from.y) * (x - from.x) / (to.x - from.x);
            all[k].take(y * density);
            all[k + 1].take(y * density);
        }
    }
}

// The stretch with the brush drawn along it.
Stretch brushed(const std::vector<Stretch>& all, std::ptrdiff_t at, double radius) {
    Stretch result;
    const auto reach = static_cast<std::ptrdiff_t>(radius * quarters);
    for (std::ptrdiff_t k = -reach; k <= reach; ++k) {
        if (at + k < 0 || at + k >= static_cast<std::ptrdiff_t>(all.size())) continue;
        const Stretch& stretch = all[static_cast<size_t>(at + k)];
        if (!stretch.any()) continue;
        const double away = static_cast<double>(k) / quarters;
        const double half = std::sqrt(std::max(radius * radius - away * away, 0.0));
        result.take(static_cast<double>(stretch.low) - half);
        result.take(static_cast<double>(stretch.high) + half);
    }
    return result;
}

// The coverage of one column of pixels, built from where stretches begin and end.
class Coverage {
public:
    explicit Coverage(int rows) : steps_(static_cast<size_t>(rows) + 2), rows_(rows) {}

    void add(const Stretch& stretch, float top) {
        if (!stretch.any()) return;
        step(stretch.low - top, 1.0F / quarters);
        step(stretch.high - top, -1.0F / quarters);
    }
    // Blends the ink into a column of the image and empties the coverage for the next.
    void blend(QRgb* column, qsizetype stride, const QColor& ink) {
        if (first_ > last_) return;
        float covered = 0;
        for (int row = first_; row < std::min(last_ + 1, rows_); ++row) {
            covered += steps_[static_cast<size_t>(row)];
            const int alpha = std::clamp(static_cast<int>(covered * 255 + 0.5F), 0, 255);
            if (alpha > 0)
                column[row * stride] = qRgba(ink.red() * alpha / 255, ink.green() * alpha / 255, ink.blue() * alpha / 255, alpha);
        }
        std::fill(steps_.begin() + first_, steps_.begin() + std::min(last_ + 2, rows_ + 2), 0.0F);
        first_ = rows_;
        last_ = 0;
    }

private:
    // From this height on the coverage is larger by so much; its own row has the share below it.
    void step(float height, float by) {
        const float inside = std::clamp(height, 0.0F, static_cast<float>(rows_));
        const int row = static_cast<int>(inside);
        const float share = inside - static_cast<float>(row);
        steps_[static_cast<size_t>(row)] += by * (1 - share);
        steps_[static_cast<size_t>(row) + 1] += by * share;
        first_ = std::min(first_, row);
        last_ = std::max(last_, row + 1);
    }

    std::vector<float> steps_;
    int rows_, first_ = rows_, last_ = 0;
};

}  // namespace

void paint_trace(QPainter& painter, std::span<const PictureRecord> strokes, const QColor& ink, double width) {
    if (strokes.empty()) return;
    constexpr int largest = 32768;
    const double density = painter.device()->devicePixelRatioF();
    const double radius = std::max(width * density / 2, 0.5);
    const QRect area = device_area(strokes, density, static_cast<int>(radius) + 1);
    if (area.isEmpty() || area.width() > largest || area.height() > largest) return;
    QImage image(area.size(), QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) return;
    image.fill(Qt::transparent);

    std::vector<Stretch> all(static_cast<size_t>(area.width()) * quarters);
    for (const PictureRecord& stroke : strokes) add_stretches(all, points_of(stroke), density, area.left());
    Coverage coverage(area.height());
    auto* pixels = reinterpret_cast<QRgb*>(image.bits());
    const qsizetype stride = image.bytesPerLine() / static_cast<qsizetype>(sizeof(QRgb));
    for (int column = 0; column < area.width(); ++column) {
        for (int k = 0; k < quarters; ++k)
            coverage.add(brushed(all, std::ptrdiff_t{column} * quarters + k, radius), static_cast<float>(area.top()));
        coverage.blend(pixels + column, stride, ink);
    }
    image.setDevicePixelRatio(density);
    painter.drawImage(QPointF(area.topLeft()) / density, image);
}

}  // namespace zolt
