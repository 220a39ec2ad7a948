// From the sheet's top down: labels, a line each, room for the mark of the tallest peak, the traces.
#include "display/plot_peaks.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "common/text.h"
#include "config/settings.h"
#include "display/label_placement.h"
#include "display/lettering.h"
#include "state/session.h"

namespace zolt {

namespace {

constexpr double mark_gap = 3, mark_length = 6, mark_room = 11;  // above the top of a peak
constexpr double upright = 4, slanted = 15, label_gap = 3;       // of the line from a label to its peak
constexpr double lines_room = mark_room + 2 * upright + slanted + label_gap;
constexpr double longest_label = 120, least_plot_height = 140;

struct LabelStyle {
    AxisKind kind = AxisKind::ppm;
    int decimals = 3;
    double size_up = 12, size_level = 12;  ///< of vertical and horizontal ones, pixels
};

LabelStyle style_of(const DataSet& data, const PlotLayout& layout) {
    const PeakOptions& options = session.peaks;
    const Axis axis = data.dims[0].axis();
    LabelStyle style;
    style.kind = layout.axis.kind;
    if (options.unit == LabelUnit::hz) style.kind = AxisKind::hz;
    if (options.unit == LabelUnit::ppm || style.kind == AxisKind::none) style.kind = AxisKind::ppm;
    if (style.kind == AxisKind::ppm && !axis.has_ppm()) style.kind = AxisKind::hz;
    if (style.kind == AxisKind::hz && !(axis.sw > 0)) style.kind = AxisKind::points;
    // A third decimal where points are that close: those of protons, as a rule, and not those of carbon.
    const double spacing = std::abs(axis.ppm(0) - axis.ppm(1));
    style.decimals = style.kind == AxisKind::ppm && spacing < 0.0015 ? 3 : style.kind == AxisKind::ppm ? 2 : 1;
    style.size_up = setting_number("Peak_VER") * 4 / 3;  // points to pixels
    style.size_level = setting_number("Peak_HOR") * 4 / 3;
    return style;
}

std::string number_of(const DataSet& data, const LabelStyle& style, double point) {
    const Axis axis = data.dims[0].axis();
    const double value = style.kind == AxisKind::ppm ? axis.ppm(point) : style.kind == AxisKind::hz ? axis.hz(point) : point;
    std::string text = format_text("%.*f", style.decimals, value);
    if (text.find_first_not_of("-0.") == std::string::npos && text[0] == '-') text.erase(0, 1);
    if (text[0] == '-') text.replace(0, 1, "\u2212");
    return text;
}

std::string text_of(const DataSet& data, const LabelStyle& style, const Peak& peak, double size) {
    const std::string own = display_line(peak.label);
    return own.empty() ? number_of(data, style, peak.point) : shortened(own, size, longest_label);
}

bool is_level(const Peak& peak) {
    const LabelDirection chosen = session.peaks.direction;
    if (chosen != LabelDirection::configured) return chosen == LabelDirection::horizontal;
    return peak.horizontal != 0 || setting_text("1D_DP_Labels") == "horizontal";
}

bool is_shown(const Peak& peak) { return peak.point_2 < 0; }

void add_line(Picture& picture, std::vector<Point> points, double width = 1) {
    picture.records.emplace_back(Stroke{std::move(points), Ink::peak, width, false});
}

double pixel_middle(double position) { return std::floor(position) + 0.5; }

// A short upright line over the top of a peak, or under one that points down, where that is on the plot.
void add_mark(Picture& picture, const PlotLayout& layout, const Peak& peak) {
    const double x = pixel_middle(layout.x(peak.point)), top = layout.y(peak.intensity), way = peak.intensity < 0 ? 1 : -1;
    const double from = top + way * mark_gap, to = from + way * mark_length;
    if (std::min(from, to) < layout.ceiling - mark_room || std::max(from, to) > layout.bottom - 1) return;
    if (from >= 0 && to >= 0) add_line(picture, {{x, from}, {x, to}});
}

struct Label {
    const Peak* peak = nullptr;
    std::string text;
    double size = 12;
    bool level = false;
};

// The peaks that can have a label: those on the plot, and no more than fit beside one another.
std::vector<Label> candidates(const PlotLayout& layout, const DataSet& data, std::span<const Peak> peaks, double pitch) {
    std::vector<Label> labels;
    for (const Peak& peak : peaks)
        if (is_shown(peak) && peak.point >= layout.first && peak.point <= layout.last && std::isfinite(peak.intensity))
            labels.push_back({&peak, {}, 0, false});
    const auto most = static_cast<size_t>(layout.width / pitch) + 1;
    if (labels.size() > most) {
        std::nth_element(labels.begin(), labels.begin() + static_cast<std::ptrdiff_t>(most), labels.end(),
                         [](auto& a, auto& b) { return std::abs(a.peak->intensity) > std::abs(b.peak->intensity); });
        labels.resize(most);
    }
    std::sort(labels.begin(), labels.end(), [](auto& a, auto& b) { return a.peak->point < b.peak->point; });
    const LabelStyle style = style_of(data, layout);
    for (Label& label : labels) {
        label.level = is_level(*label.peak);
        label.size = label.level ? style.size_level : style.size_up;
        label.text = text_of(data, style, *label.peak, label.size);
    }
    return labels;
}

// Where the label's lower end stands: in the row above the traces, or, if so configured, right above its peak.
double foot_of(const PlotLayout& layout, const Label& label, bool on_top) {
    const double row = layout.ceiling - lines_room;
    if (!on_top) return row;
    const double above = layout.y(std::max(label.peak->intensity, 0.0)) - lines_room;
    return std::clamp(above, row, std::max(row, layout.bottom - lines_room));
}

void add_label(Picture& picture, const PlotLayout& layout, const Label& label, double x, bool on_top) {
    const double peak_x = layout.x(label.peak->point), foot = foot_of(layout, label, on_top);
    // The baseline of upright letters is at their right; three tenths of the size is half the height of figures.
    const double lift = 0.36 * label.size;
    if (label.level)
        picture.records.emplace_back(Text{{x, foot}, label.text, Ink::peak, label.size, Anchor::middle, 0, false});
    else
        picture.records.emplace_back(Text{{x + lift, foot}, label.text, Ink::peak, label.size, Anchor::start, 90, false});
    if (!setting_switch("DP_WITHLINE")) return;
    const double top = foot + label_gap, upper = top + upright, lower = upper + slanted, end = lower + upright;
    // A line of less than half a pixel aside is drawn straight, and crisp.
    if (std::abs(x - peak_x) < 0.75)
        add_line(picture, {{pixel_middle(peak_x), top}, {pixel_middle(peak_x), end}});
    else
        add_line(picture, {{x, top}, {x, upper}, {peak_x, lower}, {peak_x, end}});
}

}  // namespace

double peak_label_room(const DataSet& data, const PlotLayout& layout) {
    const bool any = session.peaks.in_hand || std::any_of(data.peaks.begin(), data.peaks.end(), is_shown);
    if (!session.peaks.shown || !any || !data.dims[0].frequency) return 0;
    const LabelStyle style = style_of(data, layout);
    const bool level = is_level(data.peaks.empty() ? Peak{} : data.peaks.front());
    double room = level ? style.size_level : 0;
    if (!level) {
        // The numbers at both ends of the axis are the longest there are.
        for (const double point : {0.0, static_cast<double>(data.cvNMRdata().size()) - 1})
            room = std::max(room, text_width(number_of(data, style, point), style.size_up));
    }
    for (const Peak& peak : data.peaks) {
        if (peak.label.empty() && is_level(peak) == level) continue;
        const double size = is_level(peak) ? style.size_level : style.size_up;
        room = std::max(room, is_level(peak) ? size : text_width(text_of(data, style, peak, size), size));
    }
    room = std::ceil(room + 2 + lines_room);
    return layout.bottom - layout.top - room >= least_plot_height ? room : 0;
}

void add_peaks(Picture& picture, const PlotLayout& layout, const DataSet& data, std::span<const Peak> peaks) {
    // One mark for each column of pixels: that of its tallest peak.
    const Peak* tallest = nullptr;
    for (const Peak& peak : peaks) {
        if (!is_shown(peak) || !(peak.point >= layout.first && peak.point <= layout.last)) continue;
        const bool same = tallest != nullptr && std::floor(layout.x(tallest->point)) == std::floor(layout.x(peak.point));
        if (tallest != nullptr && !same) add_mark(picture, layout, *tallest);
        if (!same || std::abs(peak.intensity) > std::abs(tallest->intensity)) tallest = &peak;
    }
    if (tallest != nullptr) add_mark(picture, layout, *tallest);
    if (!(layout.ceiling > 0)) return;

    const bool on_top = setting_switch("DP_ONTOP"), spreads = setting_switch("DP_PREVENT_OVERLAP");
    const double pitch = 1.15 * setting_number("Peak_VER") * 4 / 3;
    const std::vector<Label> labels = candidates(layout, data, peaks, spreads ? pitch : 1);
    std::vector<LabelWish> wishes;
    for (const Label& label : labels) {
        const double width = label.level ? text_width(label.text, label.size) + 6 : 1.15 * label.size;
        const double aside = std::isfinite(label.peak->offset_x) ? std::clamp(label.peak->offset_x, -500.0, 500.0) : 0;
        wishes.push_back({layout.x(label.peak->point) + aside, width, std::abs(label.peak->intensity)});
    }
    // Labels right above their peaks cannot go far: their lines would run through the neighbours.
    const double farthest = on_top ? pitch : 6 * pitch;
    const auto places = place_labels(wishes, layout.margin, layout.width - layout.margin, farthest);
    for (size_t i = 0; i < labels.size(); ++i) {
        if (!spreads)
            add_label(picture, layout, labels[i], wishes[i].place, on_top);
        else if (places[i])
            add_label(picture, layout, labels[i], *places[i], on_top);
    }
}

void add_height_line(Picture& picture, const PlotLayout& layout, double height, const std::string& text) {
    for (const double sign : {1.0, -1.0}) {
        const double y = pixel_middle(layout.y(sign * height));
        if ((sign < 0 && !session.peaks.negative) || !(y >= 0 && y <= layout.bottom)) continue;
        picture.records.emplace_back(Stroke{{{layout.left, y}, {layout.right, y}}, Ink::cursor, 1, false});
        if (sign > 0 && !text.empty())
            picture.records.emplace_back(
                Text{{layout.right, y > 20 ? y - 5 : y + 16}, text, Ink::cursor, 12, Anchor::end, 0, false});
    }
}

void add_peak_list(Picture& picture, const PlotLayout& layout, const DataSet& data) {
    const PeakOptions& options = session.peaks;
    if (!data.dims[0].frequency || options.in_hand) return;
    if (options.line) add_height_line(picture, layout, options.line_at, "");
    if (options.shown) add_peaks(picture, layout, data, data.peaks);
}

}  // namespace zolt
