// An overlay is drawn as any trace, on a layout of its own whose points are those of the overlay.
#include "display/plot_overlays.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "common/file.h"
#include "config/settings.h"
#include "display/lettering.h"
#include "display/plot_trace.h"
#include "state/overlay.h"

namespace zolt {

namespace {

constexpr double legend_size = 12, legend_height = 20, swatch = 18, swatch_gap = 6, entry_gap = 24;

// The layout on which the points of an overlay stand where they belong; nothing when none of them is on the plot.
std::optional<PlotLayout> layout_of(const PlotLayout& layout, const Companion& other, const Alignment& at) {
    const auto own = [&](double point) { return (point - at.start) / at.step; };
    PlotLayout result = layout;
    result.first = std::max(own(layout.first), 0.0);
    result.last = std::min(own(layout.last), static_cast<double>(other.points.size()) - 1);
    if (!(result.last > result.first)) return std::nullopt;
    result.left = layout.x(at.start + at.step * result.first);
    result.right = layout.x(at.start + at.step * result.last);
    result.zero = layout.y(other.look.constant + (other.number == 0 ? setting_number("DC_OFFSET") : 0));
    result.per_unit = layout.per_unit * other.look.factor;
    return result;
}

Part shown_part(const DataSet& data) {
    const Traces traces = view_of(data).traces;
    return traces == Traces::magnitude ? Part::magnitude : traces == Traces::imaginary ? Part::imaginary : Part::real;
}

struct Entry {
    std::string name;
    Ink ink;
};

std::vector<Entry> entries_of(const DataSet& data) {
    const auto named = [](const std::string& label, std::string name) {
        name = display_line(name);
        return name.empty() ? label : label + ": " + name;
    };
    std::vector<Entry> entries{{named("A", name_of(data.file_a)), Ink::real_trace}};
    for (const Companion& other : drawn_companions(data))
        entries.push_back({named(other.number == 0 ? "B" : other.label, other.name), overlay_ink(other.number)});
    return entries;
}

}  // namespace

Ink overlay_ink(int number) {
    constexpr int first = static_cast<int>(Ink::overlay_1), count = ink_count - first;
    return static_cast<Ink>(first + std::max(number, 0) % count);
}

double legend_room(const DataSet& data) { return drawn_companions(data).empty() ? 0 : legend_height; }

void add_overlays(Picture& picture, const PlotLayout& layout, const DataSet& data, const PlotOptions& options, PlotCache& cache) {
    const double fineness = options.columns_per_pixel > 0 ? std::min(options.columns_per_pixel, 16.0) : 1;
    for (const Companion& other : drawn_companions(data)) {
        const auto own = layout_of(layout, other, align(data, other));
        if (!own) continue;
        const TraceSummary& summary = cache.of_overlay(static_cast<size_t>(other.number)).summary(other.points, shown_part(data));
        add_trace(picture, *own, summary, other.points.size(), overlay_ink(other.number), options.pen,
                  (own->right - own->left) * fineness);
    }
}

void add_legend(Picture& picture, const PlotLayout& layout, const DataSet& data) {
    if (layout.legend <= 0) return;
    const std::vector<Entry> entries = entries_of(data);
    const double left = layout.margin, right = layout.width - layout.margin;
    const double room = (right - left) / static_cast<double>(entries.size()) - swatch - swatch_gap - entry_gap;
    double x = left;
    for (const Entry& entry : entries) {
        const std::string name = shortened(entry.name, legend_size, room);
        const double y = std::floor(layout.legend - legend_size / 3) + 0.5;
        picture.records.emplace_back(Stroke{{{x, y}, {x + swatch, y}}, entry.ink, 2, false});
        picture.records.emplace_back(
            Text{{x + swatch + swatch_gap, layout.legend}, name, Ink::text, legend_size, Anchor::start, 0, false});
        x += swatch + swatch_gap + text_width(name, legend_size) + entry_gap;
    }
}

}  // namespace zolt
