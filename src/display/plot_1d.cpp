// Lays a spectrum or FID out on its sheet: axis ends, vertical scale, decimated and clipped trace, ticks, heading.
#include "display/plot_1d.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <initializer_list>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "common/file.h"
#include "common/text.h"
#include "display/lettering.h"
#include "display/ticks.h"

namespace zolt {

namespace {

constexpr double side_margin = 24, top_margin = 16;
constexpr double label_size = 12, title_size = 15, detail_size = 12;
constexpr double trace_width = 1.2, dot_width = 3;
constexpr double heading_baseline = 34, heading_bottom = 48;
constexpr double axis_room = 40;  // from the axis line to the lower edge
constexpr double major_tick = 7, minor_tick = 4, label_drop = 21;
constexpr double least_heading_height = 160, least_axis_height = 96, least_axis_width = 96;

double margin_of(const Picture& picture) { return std::min(side_margin, picture.width / 8); }

struct Area {
    double left = 0, right = 0, top = 0, bottom = 0;
    double width() const { return right - left; }
};

// What the first and the last point stand for; no unit: no axis.
struct AxisEnds {
    double first = 0, last = 0;
    std::string unit;
};

AxisEnds axis_ends(const DataSet& data, size_t count) {
    const Dimension& dimension = data.dims[0];
    Axis axis = dimension.axis();
    axis.points = static_cast<double>(count);
    const double last_point = axis.points - 1;
    const auto usable = [](double first, double last) { return std::isfinite(first) && std::isfinite(last) && first > last; };

    if (dimension.axis_unit == unit_none || count == 0) return {};
    if (dimension.axis_unit != unit_points && axis.sw > 0) {
        if (!dimension.frequency) {
            if (const double end = last_point / axis.sw; usable(end, 0)) return {0, end, "s"};
        } else {
            const bool shift = dimension.axis_unit == unit_ppm && axis.has_ppm();
            if (shift && usable(axis.ppm(0), axis.ppm(last_point))) return {axis.ppm(0), axis.ppm(last_point), "ppm"};
            if (usable(axis.hz(0), axis.hz(last_point))) return {axis.hz(0), axis.hz(last_point), "Hz"};
        }
    }
    return {0, last_point, "points"};
}

// Value to place on the sheet, downward.
struct Scale {
    double zero = 0, per_unit = 0;
    double y(float value) const { return zero - per_unit * static_cast<double>(value); }
};

Scale vertical_scale(std::span<const Complex> points, bool spectrum, const Area& area) {
    double low = 0, high = 0;
    for (const Complex& point : points) {
        const double value = point.real();
        if (!std::isfinite(value)) continue;
        low = std::min(low, value);
        high = std::max(high, value);
    }
    const double peak = std::max(area.bottom * 0.1, area.top);  // nine tenths up, unless the heading needs more
    const auto spread = [](double pixels, double values) { return values > 0 ? pixels / values : 0.0; };
    if (!spectrum) {
        const double middle = (peak + area.bottom * 0.9) / 2;
        return {middle, spread(middle - peak, std::max(high, -low))};
    }
    const double floor = area.bottom * 0.875;
    if (-low <= high) return {floor, spread(floor - peak, high)};
    // Upside down: the same places, turned over.
    const double ceiling = std::max(area.bottom * 0.125, area.top + 8);
    const double per_unit = spread(area.bottom * 0.9 - ceiling, high - low);
    return {ceiling + per_unit * high, per_unit};
}

// Draws a line that stays between two heights: where it leaves them it ends, where it comes back a new one begins.
class Pen {
public:
    Pen(Picture& picture, double top, double bottom) : picture_(picture), top_(top), bottom_(bottom) {}

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
        picture_.records.emplace_back(Stroke{std::exchange(line_, {}), Ink::real_trace, alone ? dot_width : trace_width, true});
    }

    Picture& picture_;
    double top_, bottom_;
    std::vector<Point> line_;
    Point last_;
    bool down_ = false;
};

// The points that the line of one column goes through: its first, lowest, highest and last, in their own order, so that
// no peak loses height and the line enters and leaves where the data do. Returns how many; none without a finite point.
size_t column_points(std::span<const Complex> points, size_t begin, size_t end, std::array<size_t, 4>& chosen) {
    size_t first = end, last = end, low = end, high = end;
    for (size_t i = begin; i < end; ++i) {
        const float value = points[i].real();
        if (!std::isfinite(value)) continue;
        if (first == end) first = low = high = i;
        if (value < points[low].real()) low = i;
        if (value > points[high].real()) high = i;
        last = i;
    }
    if (first == end) return 0;
    chosen = {first, std::min(low, high), std::max(low, high), last};
    return static_cast<size_t>(std::unique(chosen.begin(), chosen.end()) - chosen.begin());
}

void add_trace(Picture& picture, std::span<const Complex> points, const Area& area, const Scale& scale, double columns_wanted) {
    const size_t count = points.size();
    if (count == 0) return;
    const double per_point = count > 1 ? area.width() / static_cast<double>(count - 1) : 0;
    const double start = count > 1 ? area.left : (area.left + area.right) / 2;
    // A column of four points or fewer keeps them all: every point is then its own column.
    const size_t wide = static_cast<size_t>(std::max(1.0, std::ceil(columns_wanted)));
    const size_t columns = count > 4 * wide ? wide : count;

    Pen pen(picture, 0, area.bottom);
    std::array<size_t, 4> chosen{};
    for (size_t column = 0; column < columns; ++column) {
        const size_t used = column_points(points, column * count / columns, (column + 1) * count / columns, chosen);
        if (used == 0) pen.lift();
        for (size_t i = 0; i < used; ++i)
            pen.draw_to({start + static_cast<double>(chosen[i]) * per_point, scale.y(points[chosen[i]].real())});
    }
    pen.lift();
}

// Thin upright and level lines are sharp when they run through the middle of pixels.
double pixel_middle(double position) { return std::floor(position) + 0.5; }

void add_line(Picture& picture, Point from, Point to) { picture.records.emplace_back(Stroke{{from, to}, Ink::axis, 1, false}); }

void add_axis(Picture& picture, const AxisEnds& ends, const Area& area) {
    const double y = pixel_middle(area.bottom);
    add_line(picture, {area.left, y}, {area.right, y});
    std::vector<Tick> ticks = axis_ticks(ends.first, ends.last, area.width(), label_size);
    double per_unit = 0, start = area.left;
    if (ends.first != ends.last) {
        per_unit = area.width() / (ends.last - ends.first);
    } else {
        ticks = {{ends.first, true, "0"}};  // one point: it has its place and no extent
        start = (area.left + area.right) / 2;
    }
    const double unit_right = picture.width - margin_of(picture);
    const double unit_left = unit_right - text_width(ends.unit, label_size);
    std::vector<Text> labels;
    for (Tick& tick : ticks) {
        const double x = start + (tick.value - ends.first) * per_unit;
        add_line(picture, {pixel_middle(x), y}, {pixel_middle(x), y + (tick.major ? major_tick : minor_tick)});
        const double half = text_width(tick.label, label_size) / 2;
        if (tick.major && x - half >= 2 && x + half <= unit_left - 4)
            labels.push_back({{x, y + label_drop}, std::move(tick.label), Ink::axis, label_size, Anchor::middle, 0, false});
    }
    for (Text& label : labels) picture.records.emplace_back(std::move(label));
    picture.records.emplace_back(Text{{unit_right, y + label_drop}, ends.unit, Ink::axis, label_size, Anchor::end, 0, false});
}

std::string joined(std::initializer_list<std::string> parts) {
    std::string all;
    for (const std::string& part : parts) {
        if (!all.empty() && !part.empty()) all += " \u00b7 ";
        all += part;
    }
    return all;
}

std::string title_of(const DataSet& data) {
    std::string title = display_line(data.title);
    if (title.empty()) {
        // Comments are often fields joined by commas, the last ones empty.
        std::string comment = display_line(data.comment);
        comment.resize(comment.find_last_not_of(" ,;") + 1);
        title = joined({display_line(data.experiment), comment});
    }
    return title.empty() ? display_line(name_of(data.file_a)) : title;
}

std::string details_of(const DataSet& data) {
    const Dimension& dimension = data.dims[0];
    const bool known = dimension.sf > 0 && std::isfinite(dimension.sf);
    return joined({isotope_name(display_line(dimension.nucleus)),
                   known ? format_text("%.2f MHz", static_cast<double>(dimension.sf)) : std::string(), display_line(data.solvent)});
}

// The details keep their room up to half of the line; the title has the rest.
void add_heading(Picture& picture, const DataSet& data) {
    constexpr double gap = 32;
    const double margin = margin_of(picture), room = picture.width - 2 * margin;
    const std::string details = shortened(details_of(data), detail_size, room / 2);
    const double taken = details.empty() ? 0 : text_width(details, detail_size) + gap;
    const std::string title = shortened(picture.title, title_size, room - taken);
    if (!title.empty())
        picture.records.emplace_back(Text{{margin, heading_baseline}, title, Ink::text, title_size, Anchor::start, 0, false});
    if (!details.empty())
        picture.records.emplace_back(
            Text{{picture.width - margin, heading_baseline}, details, Ink::axis, detail_size, Anchor::end, 0, false});
}

Area plot_area(const Picture& picture, const std::string& unit, bool heading) {
    const double margin = margin_of(picture);
    Area area{margin, picture.width - margin, heading ? heading_bottom : std::min(top_margin, picture.height / 8), picture.height};
    if (unit.empty())
        area.bottom -= std::min(top_margin, picture.height / 8);
    else {
        area.bottom -= axis_room;
        area.right -= text_width(unit, label_size) + 8;  // the unit stands behind the end of the axis
    }
    return area;
}

}  // namespace

Picture plot_1d(const DataSet& data, const PlotOptions& options) {
    const auto side = [](double pixels) { return pixels >= 16 ? std::min(pixels, 65536.0) : 16.0; };  // 16 for NaN, too
    Picture picture;
    picture.width = side(options.width);
    picture.height = side(options.height);
    picture.title = title_of(data);
    const double w = picture.width, h = picture.height;
    picture.records.emplace_back(Fill{{{0, 0}, {w, 0}, {w, h}, {0, h}}, Ink::background});

    const std::span<const Complex> points = data.cvNMRdata();
    AxisEnds ends = axis_ends(data, points.size());
    if (w < least_axis_width || h < least_axis_height) ends.unit.clear();
    const bool heading = options.heading && h >= least_heading_height;
    const Area area = plot_area(picture, ends.unit, heading);

    const double columns = area.width() * (options.columns_per_pixel > 0 ? std::min(options.columns_per_pixel, 16.0) : 1);
    add_trace(picture, points, area, vertical_scale(points, data.dims[0].frequency, area), columns);
    if (!ends.unit.empty()) add_axis(picture, ends, area);
    if (heading) add_heading(picture, data);
    return picture;
}

}  // namespace zolt
