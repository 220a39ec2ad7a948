// Sums the shown parts of regions column by column, and finds places for their values.
#include "display/plot_integrals.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "common/text.h"
#include "config/settings.h"
#include "display/label_placement.h"
#include "display/lettering.h"
#include "state/session.h"

namespace zolt {

namespace {

constexpr double bracket_height = 5, value_gap = 4, leader_height = 10, edge = 4;
constexpr double least_height = 240;                    // of a sheet with values
constexpr double least_share = 0.55, most_share = 0.1;  // heights between which the curves lie

bool drawn(const DataSet& data) { return session.integrals_shown && !data.integrals.empty() && !data.cvNMRdata().empty(); }

double shown_value(const DataSet& data, const Integral& region) { return double{region.value} * double{data.rel_value}; }

// Two decimals; sums that nobody has calibrated may be far too long for them.
std::string value_text(double value) {
    const double size = std::abs(value);
    std::string text = format_text(size < 9999.995 ? "%.2f" : size < 999999.5 ? "%.0f" : "%.2e", value);
    if (text[0] == '-') text.replace(0, 1, "\u2212");
    return text;
}

// Pixels; the configuration has points. No larger than what leaves most of the sheet to the traces.
double value_size(const PlotLayout& layout, bool horizontal) {
    return std::min(setting_number(horizontal ? "INTEGRAL_HORIZONTAL" : "INTEGRAL_VERTICAL") * 4 / 3, layout.height / 30);
}

// First and last point of a region, whatever order a file had them in, within the vector.
std::pair<int64_t, int64_t> limits_of(const Integral& region, size_t count) {
    const int64_t end = static_cast<int64_t>(count) - 1;
    return std::minmax({std::clamp<int64_t>(region.start, 0, end), std::clamp<int64_t>(region.end, 0, end)});
}

// The part of a region that is shown, in points; false when none is. A point reaches half way to its neighbours.
bool shown_part(const PlotLayout& layout, const Integral& region, double& from, double& to) {
    from = std::max(std::min(region.start, region.end) - 0.5, layout.first);
    to = std::min(std::max(region.start, region.end) + 0.5, layout.last);
    return from < to;
}

// Height of a value on the sheet: all integrals lie between two heights, one scale for all.
struct CurveScale {
    double zero = 0, per_unit = 0, highest = 0, lowest = 0;

    double y(double value) const { return std::clamp(zero - per_unit * value, highest, lowest); }
};

CurveScale curve_scale(const PlotLayout& layout, const DataSet& data) {
    double low = 0, high = 0;
    for (const Integral& region : data.integrals) {
        const double value = double{region.value};
        if (!std::isfinite(value)) continue;
        low = std::min(low, value);
        high = std::max(high, value);
    }
    CurveScale scale;
    scale.lowest = layout.bottom * least_share;
    scale.highest = std::max(layout.bottom * most_share, layout.top + 4);
    scale.per_unit = high > low ? (scale.lowest - scale.highest) / (high - low) : 0;
    scale.zero = scale.lowest + scale.per_unit * low;
    return scale;
}

void add_curve(Picture& picture, const PlotLayout& layout, const DataSet& data, const Integral& region, const CurveScale& scale,
               const PlotOptions& options) {
    double from = 0, to = 0;
    if (!shown_part(layout, region, from, to)) return;
    const auto points = data.cvNMRdata();
    const double spacing = std::abs(data.dims[0].axis().ppm(0) - data.dims[0].axis().ppm(1));
    const auto [first, last] = limits_of(region, points.size());
    const double pixels = layout.x(to) - layout.x(from);
    const double columns = std::max(pixels * std::clamp(options.columns_per_pixel, 1.0, 16.0), 2.0);
    const auto step = std::max<int64_t>(static_cast<int64_t>((to - from) / columns), 1);

    Stroke stroke{{}, Ink::integral, options.pen, false};
    double sum = 0;
    const auto visit = [&](double place, double before) {
        if (place >= from && place <= to) stroke.points.push_back({layout.x(place), scale.y(before)});
    };
    // Where the view cuts a region, its curve goes on to the very edge.
    double last_place = static_cast<double>(first) - 0.5, last_sum = 0;
    visit(last_place, 0);
    for (int64_t p = first; p <= last; ++p) {
        const double value = double{points[static_cast<size_t>(p)].real()};
        if (std::isfinite(value)) sum += value * spacing;
        if ((p - first) % step != 0 && p != last) continue;
        const double place = static_cast<double>(p) + 0.5;
        const auto between = [&](double at) { return last_sum + (sum - last_sum) * (at - last_place) / (place - last_place); };
        if (last_place < from && place > from) visit(from, between(from));
        visit(place, sum);
        if (last_place < to && place > to) {
            visit(to, between(to));
            break;
        }
        last_place = place;
        last_sum = sum;
    }
    if (stroke.points.size() > 1) picture.records.emplace_back(std::move(stroke));
}

struct Value {
    double centre = 0, weight = 0;
    std::string text;
};

// The places of the values; the room that one takes along the axis is that of its text, or of a line of text.
std::vector<std::optional<double>> places_of(const std::vector<Value>& values, const PlotLayout& layout, bool horizontal,
                                             double size) {
    std::vector<LabelWish> wishes;
    for (const Value& value : values) {
        const double width = horizontal ? text_width(value.text, size) + 6 : size + 2;
        wishes.push_back({value.centre, width, value.weight});
    }
    return place_labels(wishes, layout.margin, layout.width - layout.margin, layout.width);
}

void add_values(Picture& picture, const PlotLayout& layout, const std::vector<Value>& values) {
    const double away = layout.values_depth > 0 ? 1 : -1;  // from the traces
    bool horizontal = setting_switch("ID_HORIZONTAL_FONT");
    double size = value_size(layout, horizontal);
    auto places = places_of(values, layout, horizontal, size);
    bool crowded = false;
    for (size_t i = 0; i < places.size(); ++i) crowded = crowded || !places[i] || std::abs(*places[i] - values[i].centre) > size;
    if (horizontal && crowded) {
        horizontal = false;
        size = value_size(layout, false);
        places = places_of(values, layout, false, size);
    }
    const double from = layout.brackets + away * bracket_height, leaders = horizontal ? 0 : leader_height;
    const double text_at = from + away * (value_gap + leaders);
    for (size_t i = 0; i < places.size(); ++i) {
        if (!places[i]) continue;
        const double place = *places[i];
        if (!horizontal)
            picture.records.emplace_back(
                Stroke{{{values[i].centre, from}, {place, from + away * leader_height}}, Ink::integral, 0.7, false});
        Text text{{place, text_at}, values[i].text, Ink::integral, size, Anchor::middle, 0, false};
        if (horizontal && away > 0) text.at.y += size * 0.75;
        if (!horizontal) {
            // Read from below; the middle of the digits stands at the place.
            text.angle = 90;
            text.at.x += size * 0.36;
            text.anchor = away > 0 ? Anchor::end : Anchor::start;
        }
        picture.records.emplace_back(std::move(text));
    }
}

}  // namespace

void reserve_integrals(PlotLayout& layout, const DataSet& data, const PlotOptions& options) {
    if (!drawn(data) || layout.height < least_height) return;
    double widest = 0;
    for (const Integral& region : data.integrals)
        widest = std::max(widest, text_width(value_text(shown_value(data, region)), value_size(layout, false)));
    const double depth = bracket_height + value_gap + leader_height + widest;
    if (setting_text("ID_DISPLAY") == "TOP") {
        layout.brackets = layout.top + depth;
        layout.values_depth = -depth;
        layout.top += depth + bracket_height;
        return;
    }
    // Below the labels of the axis, the margin under them staying as it is.
    const double labels = layout.axis.unit.empty() ? edge : options.label_size + 14;
    const double margin = layout.height - layout.bottom - labels;
    layout.bottom -= depth + std::max(0.0, edge - margin);
    layout.brackets = layout.bottom + labels;
    layout.values_depth = depth;
}

std::vector<Point> integral_bracket(const PlotLayout& layout, const Integral& region) {
    double from = 0, to = 0;
    if (layout.values_depth == 0 || !shown_part(layout, region, from, to)) return {};
    double left = layout.x(from), right = layout.x(to);
    // Regions that touch keep a gap between their brackets.
    const double inset = right - left > 6 ? 1 : 0;
    left += inset;
    right -= inset;
    const double y = layout.brackets, base = y + (layout.values_depth > 0 ? bracket_height : -bracket_height);
    std::vector<Point> bracket;
    if (from > layout.first) bracket.push_back({left, y});
    bracket.push_back({left, base});
    bracket.push_back({right, base});
    if (to < layout.last) bracket.push_back({right, y});
    return bracket;
}

void add_integrals(Picture& picture, const PlotLayout& layout, const DataSet& data, const PlotOptions& options) {
    if (!drawn(data)) return;
    const CurveScale scale = curve_scale(layout, data);
    std::vector<Value> values;
    for (const Integral& region : data.integrals) {
        add_curve(picture, layout, data, region, scale, options);
        std::vector<Point> bracket = integral_bracket(layout, region);
        if (bracket.empty()) continue;
        const double value = shown_value(data, region);
        const auto [left, right] = std::minmax_element(bracket.begin(), bracket.end(), [](Point a, Point b) { return a.x < b.x; });
        values.push_back({(left->x + right->x) / 2, std::abs(value), value_text(value)});
        picture.records.emplace_back(Stroke{std::move(bracket), Ink::integral, 1, false});
    }
    std::stable_sort(values.begin(), values.end(), [](const Value& a, const Value& b) { return a.centre < b.centre; });
    add_values(picture, layout, values);
}

}  // namespace zolt
