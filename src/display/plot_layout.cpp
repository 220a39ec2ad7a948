// Where the traces stand on the sheet: margins, shown points, vertical scale.
#include <algorithm>
#include <cmath>
#include <tuple>

#include "common/text.h"
#include "config/settings.h"
#include "display/lettering.h"
#include "display/plot_1d.h"
#include "display/plot_integrals.h"
#include "display/plot_overlays.h"
#include "display/plot_peaks.h"
#include "state/session.h"

namespace zolt {

namespace {

constexpr double side_margin = 24, top_margin = 16, heading_bottom = 48;
constexpr double axis_room = 28;  // from the axis line to the lower edge, besides the size of its labels
constexpr double least_heading_height = 160, least_axis_height = 96, least_axis_width = 96;

void place_area(PlotLayout& layout, const DataSet& data, const PlotOptions& options, double legend) {
    const double slim = std::min(top_margin, layout.height / 8);
    layout.margin = std::min(side_margin, layout.width / 8);
    layout.left = options.left.value_or(layout.margin);
    layout.right = layout.width - options.right.value_or(layout.margin);
    layout.top = options.top.value_or(layout.heading ? heading_bottom : slim);
    if (legend > 0 && layout.height >= least_heading_height) {
        layout.top += legend;
        layout.legend = layout.top - 8;
    }
    layout.bottom = layout.height;
    if (layout.axis.unit.empty()) {
        layout.bottom -= options.bottom.value_or(slim);
    } else {
        layout.bottom -= std::max(options.bottom.value_or(0), axis_room + options.label_size);
        // The unit stands behind the end of the axis.
        if (!options.right) layout.right -= text_width(layout.axis.unit, options.label_size) + 8;
    }
    reserve_integrals(layout, data, options);
    // Margins of the configuration that leave no room are none.
    if (layout.right - layout.left < 8) layout.left = layout.margin, layout.right = layout.width - layout.margin;
    if (layout.bottom - layout.top < 8) layout.top = layout.legend = 0;
}

// The lowest and highest value of what is drawn, 0 among them.
std::pair<double, double> value_range(const DataSet& data, std::span<const Complex> points, PlotCache& cache) {
    double low = 0, high = 0;
    const auto take = [&](Part part) {
        const Range& all = cache.summary(points, part).all();
        if (!all.any) return;
        low = std::min(low, static_cast<double>(all.low));
        high = std::max(high, static_cast<double>(all.high));
    };
    const Traces traces = view_of(data).traces;
    if (traces == Traces::magnitude)
        take(Part::magnitude);
    else if (traces != Traces::imaginary)
        take(Part::real);
    if (traces == Traces::both || traces == Traces::imaginary) take(Part::imaginary);
    return {low, high};
}

double spread(double pixels, double values) { return values > 0 ? pixels / values : 0.0; }

// Places the whole vector; the view's height then magnifies it about its zero.
void place_values(PlotLayout& layout, bool spectrum, double low, double high) {
    const double peak = std::max(layout.bottom * 0.1, layout.top);  // nine tenths up, unless the heading needs more
    const double floor = layout.bottom * 0.875;
    if (!spectrum) {
        layout.zero = (peak + layout.bottom * 0.9) / 2;
        layout.per_unit = spread(layout.zero - peak, std::max(high, -low));
    } else if (-low <= high) {
        layout.zero = floor;
        layout.per_unit = spread(floor - peak, high);
    } else {
        // Upside down: the same places, turned over.
        const double ceiling = std::max(layout.bottom * 0.125, layout.top + 8);
        layout.per_unit = spread(layout.bottom * 0.9 - ceiling, high - low);
        layout.zero = ceiling + layout.per_unit * high;
    }
}

// The tallest peak keeps its height whatever its phase, and what points downward is seen.
void place_preview(PlotLayout& layout, double magnitude) {
    layout.zero = layout.bottom * 0.6;
    layout.per_unit = spread(layout.zero - std::max(layout.bottom * 0.1, layout.top), magnitude);
}

std::optional<double> margin_setting(const char* key) {
    if (!settings.values.contains(key)) return std::nullopt;
    return setting_number(key);
}

}  // namespace

std::span<const Complex> drawn_points(const DataSet& data, const PlotOptions& options) {
    const auto own = data.cvNMRdata();
    return options.preview.size() == own.size() ? options.preview : own;
}

PlotLayout plot_layout(const DataSet& data, const PlotOptions& options, PlotCache& cache) {
    const auto side = [](double pixels) { return pixels >= 16 ? std::min(pixels, 65536.0) : 16.0; };  // 16 for NaN, too
    PlotLayout layout;
    layout.width = side(options.width);
    layout.height = side(options.height);
    layout.axis = axis_scale(data, data.cvNMRdata().size());
    if (layout.width < least_axis_width || layout.height < least_axis_height) layout.axis.unit.clear();
    layout.heading = options.heading && layout.height >= least_heading_height;
    place_area(layout, data, options, legend_room(data));

    if (const double room = peak_label_room(data, layout); room > 0) layout.ceiling = layout.top += room;

    std::tie(layout.first, layout.last) = shown_points(data);
    const View& view = view_of(data);
    if (view.range_set) {
        layout.per_unit = spread(layout.bottom - layout.top, view.high - view.low);
        layout.zero = layout.bottom + layout.per_unit * view.low;
    } else if (const auto points = drawn_points(data, options); points.data() != data.cvNMRdata().data()) {
        place_preview(layout, static_cast<double>(cache.summary(points, Part::magnitude).all().high));
    } else {
        const auto [low, high] = value_range(data, points, cache);
        place_values(layout, data.dims[0].frequency, low, high);
    }
    layout.per_unit *= view.height;
    return layout;
}

PlotOptions configured_options() {
    PlotOptions options;
    options.grid = setting_switch("GRIDLINES");
    options.pen = setting_number("PEN_WIDTH_SCREEN");
    if (settings.values.contains("AXIS_VER")) options.label_size = setting_number("Axis_Ver") * 4 / 3;  // points to pixels
    options.left = margin_setting("LEFT_MARGIN");
    options.right = margin_setting("RIGHT_MARGIN");
    options.top = margin_setting("TOP_MARGIN");
    options.bottom = margin_setting("BOTTOM_MARGIN");
    return options;
}

}  // namespace zolt
