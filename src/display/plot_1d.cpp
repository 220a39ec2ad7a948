// Assembles the sheet: ground, grid, traces, axis, heading.
#include "display/plot_1d.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "common/file.h"
#include "common/text.h"
#include "display/lettering.h"
#include "display/plot_integrals.h"
#include "display/plot_notes.h"
#include "display/plot_overlays.h"
#include "display/plot_peaks.h"
#include "display/plot_trace.h"
#include "display/ticks.h"

namespace zolt {

namespace {

constexpr double title_size = 15, detail_size = 12, heading_baseline = 34;
constexpr double major_tick = 7, minor_tick = 4;

// Thin upright and level lines are sharp when they run through the middle of pixels.
double pixel_middle(double position) { return std::floor(position) + 0.5; }

void add_line(Picture& picture, Point from, Point to, Ink ink) { picture.records.emplace_back(Stroke{{from, to}, ink, 1, false}); }

// The ticks of the shown part of the axis. A single point has its place and no extent.
std::vector<Tick> ticks_of(const PlotLayout& layout, double size) {
    const double first = layout.axis.value(layout.first), last = layout.axis.value(layout.last);
    if (first == last) return {{first, true, "0"}};
    return axis_ticks(first, last, layout.right - layout.left, size);
}

double tick_x(const PlotLayout& layout, const Tick& tick) { return layout.x(layout.axis.point(tick.value)); }

void add_grid(Picture& picture, const PlotLayout& layout, const std::vector<Tick>& ticks) {
    for (const Tick& tick : ticks) {
        const double x = pixel_middle(tick_x(layout, tick));
        if (tick.major) add_line(picture, {x, layout.heading ? layout.top : 0}, {x, layout.bottom}, Ink::grid);
    }
    const double zero = pixel_middle(layout.zero);
    if (zero > layout.top && zero < layout.bottom) add_line(picture, {layout.left, zero}, {layout.right, zero}, Ink::grid);
}

void add_axis(Picture& picture, const PlotLayout& layout, std::vector<Tick>& ticks, double size) {
    const double y = pixel_middle(layout.bottom), label_y = y + size + 9;
    add_line(picture, {layout.left, y}, {layout.right, y}, Ink::axis);
    const double unit_right = layout.width - layout.margin;
    const double unit_left = unit_right - text_width(layout.axis.unit, size);
    std::vector<Text> labels;
    for (Tick& tick : ticks) {
        const double x = tick_x(layout, tick);
        add_line(picture, {pixel_middle(x), y}, {pixel_middle(x), y + (tick.major ? major_tick : minor_tick)}, Ink::axis);
        const double half = text_width(tick.label, size) / 2;
        if (tick.major && x - half >= 2 && x + half <= unit_left - 4)
            labels.push_back({{x, label_y}, std::move(tick.label), Ink::axis, size, Anchor::middle, 0, false});
    }
    for (Text& label : labels) picture.records.emplace_back(std::move(label));
    picture.records.emplace_back(Text{{unit_right, label_y}, layout.axis.unit, Ink::axis, size, Anchor::end, 0, false});
}

std::string joined(std::initializer_list<std::string> parts) {
    std::string all;
    for (const std::string& part : parts) {
        if (!all.empty() && !part.empty()) all += " \u00b7 ";
        all += part;
    }
    return all;
}

std::string details_of(const DataSet& data) {
    const Dimension& dimension = data.dims[0];
    const bool known = dimension.sf > 0 && std::isfinite(dimension.sf);
    return joined({isotope_name(display_line(dimension.nucleus)),
                   known ? format_text("%.2f MHz", static_cast<double>(dimension.sf)) : std::string(), display_line(data.solvent)});
}

// The details keep their room up to half of the line; the title has the rest.
void add_heading(Picture& picture, const DataSet& data, const PlotLayout& layout) {
    constexpr double gap = 32;
    const double margin = layout.margin, room = picture.width - 2 * margin;
    const std::string details = shortened(details_of(data), detail_size, room / 2);
    const double taken = details.empty() ? 0 : text_width(details, detail_size) + gap;
    const std::string title = shortened(picture.title, title_size, room - taken);
    if (!title.empty())
        picture.records.emplace_back(Text{{margin, heading_baseline}, title, Ink::text, title_size, Anchor::start, 0, false});
    if (!details.empty())
        picture.records.emplace_back(
            Text{{picture.width - margin, heading_baseline}, details, Ink::axis, detail_size, Anchor::end, 0, false});
}

void add_traces(Picture& picture, const DataSet& data, const PlotLayout& layout, const PlotOptions& options, PlotCache& cache) {
    const std::span<const Complex> points = drawn_points(data, options);
    const double fineness = options.columns_per_pixel > 0 ? std::min(options.columns_per_pixel, 16.0) : 1;
    const double columns = (layout.right - layout.left) * fineness;
    const auto add = [&](Part part, Ink ink) {
        add_trace(picture, layout, cache.summary(points, part), points.size(), ink, options.pen, columns);
    };
    const Traces traces = view_of(data).traces;
    if (traces == Traces::both || traces == Traces::imaginary) add(Part::imaginary, Ink::imaginary_trace);
    if (traces == Traces::magnitude) add(Part::magnitude, Ink::real_trace);
    if (traces != Traces::imaginary && traces != Traces::magnitude) add(Part::real, Ink::real_trace);
    if (traces == Traces::dots) add_dots(picture, layout, cache.summary(points, Part::real), points.size(), Ink::real_trace);
}

}  // namespace

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

Picture plot_1d(const DataSet& data, const PlotOptions& options, PlotCache& cache) {
    const PlotLayout layout = plot_layout(data, options, cache);
    Picture picture;
    picture.width = layout.width;
    picture.height = layout.height;
    picture.title = title_of(data);
    const double w = picture.width, h = picture.height;
    picture.records.emplace_back(Fill{{{0, 0}, {w, 0}, {w, h}, {0, h}}, Ink::background});

    std::vector<Tick> ticks;
    if (!layout.axis.unit.empty()) ticks = ticks_of(layout, options.label_size);
    if (options.grid) add_grid(picture, layout, ticks);
    add_overlays(picture, layout, data, options, cache);
    add_traces(picture, data, layout, options, cache);
    add_integrals(picture, layout, data, options);
    if (options.preview.empty()) add_peak_list(picture, layout, data);
    add_legend(picture, layout, data);
    add_notes(picture, layout, data);
    if (!layout.axis.unit.empty()) add_axis(picture, layout, ticks, options.label_size);
    if (layout.heading) add_heading(picture, data, layout);
    return picture;
}

Picture plot_1d(const DataSet& data, const PlotOptions& options) {
    PlotCache cache;
    return plot_1d(data, options, cache);
}

}  // namespace zolt
