// Reads axis values in the unit that is shown, moves the view, and says where it stands.
#include "display/view_commands.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include "common/numbers.h"
#include "common/text.h"
#include "display/axis_scale.h"
#include "display/view.h"
#include "platform/platform.h"
#include "state/session.h"

namespace zolt {

namespace {

AxisScale shown_axis() {
    AxisScale axis = axis_scale(show, show.cvNMRdata().size());
    // Without an axis on the plot, regions are given in points.
    if (axis.kind == AxisKind::none) {
        const double end = static_cast<double>(show.cvNMRdata().size()) - 1;
        axis = {AxisKind::points, 0, end, end, "points"};
    }
    return axis;
}

std::string region_text() {
    const AxisScale axis = shown_axis();
    const auto [first, last] = shown_points(show);
    return axis_text(axis, axis.value(first), false) + " to " + axis_text(axis, axis.value(last));
}

std::string intensities_text() {
    const View& view = view_of(show);
    return view.range_set ? format_text("%.6g to %.6g", view.low, view.high) : "from the data";
}

std::string number_text(double value) { return format_text("%.7g", value); }

// Exactly `count` finite numbers, or nothing.
std::optional<std::vector<double>> take_numbers(Arguments& args, size_t count) {
    std::vector<double> numbers;
    for (std::string word = args.next(); !word.empty(); word = args.next()) {
        const auto value = leading_number(word);
        if (!value || !std::isfinite(*value)) return std::nullopt;
        numbers.push_back(*value);
    }
    if (numbers.size() != count) return std::nullopt;
    return numbers;
}

bool take_word(Arguments& args, std::string_view word) {
    if (!same_word(args.peek(), word)) return false;
    args.next();
    return true;
}

int usage(const char* line, const std::string& now) { return show_reply(format_text("%s   now: %s", line, now.c_str())); }

int done(const std::string& what) {
    platform().reply("  - " + what);
    return 1;
}

void set_region(double from, double to) {
    const AxisScale axis = shown_axis();
    show_points(show, axis.point(from), axis.point(to));
}

bool set_intensities(double low, double high) {
    if (!(low < high)) return false;
    View& view = view_of(show);
    view.range_set = true;
    view.low = low;
    view.high = high;
    view.height = 1;
    return true;
}

}  // namespace

int cmd_axis(Arguments& args) {
    constexpr const char* usage_line = "Axis <None / Points / Seconds / Hz / PPM>";
    static constexpr struct {
        std::string_view word;
        int unit;
    } words[] = {{"none", unit_none}, {"points", unit_points}, {"pts", unit_points}, {"hz", unit_hz}, {"ppm", unit_ppm}};
    const std::string word = args.next();
    const Dimension& dimension = show.dims[0];
    const AxisScale axis = axis_scale(show, show.cvNMRdata().size());
    if (word.empty() || word == "?" || word == "/?") return usage(usage_line, axis.unit.empty() ? "none" : axis.unit);
    int unit = -1;
    for (const auto& row : words)
        if (same_word(row.word, word)) unit = row.unit;
    if (same_word(word, "s") || same_word(word, "sec") || same_word(word, "seconds")) {
        if (dimension.frequency) return show_reply("  - A spectrum has no axis in seconds.");
        unit = unit_ppm;  // the unit of the spectrum to come; an FID is shown in seconds with it
    }
    if (unit < 0) return show_reply(usage_line);
    if (unit == unit_ppm && dimension.frequency && !dimension.axis().has_ppm())
        return show_reply("  - An axis in ppm needs a spectrometer frequency: SF1 sets it.");
    show.dims[0].axis_unit = unit;
    return 1;
}

int cmd_setx(Arguments& args) {
    constexpr const char* usage_line = "SETX <from> <to> / full";
    if (args.ask_usage() || args.peek().empty()) return usage(usage_line, region_text());
    if (take_word(args, "full")) {
        show_all(show);
    } else {
        const auto ends = take_numbers(args, 2);
        if (!ends || (*ends)[0] == (*ends)[1]) return usage(usage_line, region_text());
        set_region((*ends)[0], (*ends)[1]);
    }
    return done(region_text());
}

int cmd_sety(Arguments& args) {
    constexpr const char* usage_line = "SETY <lowest> <highest> / auto";
    if (args.ask_usage() || args.peek().empty()) return usage(usage_line, intensities_text());
    if (take_word(args, "auto")) {
        view_of(show).range_set = false;
        view_of(show).height = 1;
    } else {
        const auto ends = take_numbers(args, 2);
        if (!ends || !set_intensities((*ends)[0], (*ends)[1])) return usage(usage_line, intensities_text());
    }
    return done("Intensities " + intensities_text());
}

int cmd_setz(Arguments& args) {
    constexpr const char* usage_line = "SETZ <magnification>";
    constexpr double least = 1e-6, largest = 1e9;
    View& view = view_of(show);
    if (args.ask_usage() || args.peek().empty()) return usage(usage_line, number_text(view.height));
    const auto factor = take_numbers(args, 1);
    if (!factor || !((*factor)[0] >= least && (*factor)[0] <= largest)) return usage(usage_line, number_text(view.height));
    view.height = (*factor)[0];
    return done("Intensities times " + number_text(view.height));
}

int cmd_xyz(Arguments& args) {
    constexpr const char* usage_line = "XYZ <from> <to> [lowest highest [magnification]] / full";
    const std::string now = region_text() + ", intensities " + intensities_text() + ", times " + number_text(view_of(show).height);
    if (args.ask_usage() || args.peek().empty()) return usage(usage_line, now);
    if (take_word(args, "full")) {
        View& view = view_of(show);
        show_all(show);
        view.range_set = false;
        view.height = 1;
        return done(region_text());
    }
    std::vector<double> values;
    for (std::string word = args.next(); !word.empty(); word = args.next()) values.push_back(leading_number(word).value_or(NAN));
    const bool numbers = std::all_of(values.begin(), values.end(), [](double value) { return std::isfinite(value); });
    const size_t count = values.size();
    const bool fits = numbers && (count == 2 || count == 4 || count == 5) && values[0] != values[1] &&
                      (count < 4 || values[2] < values[3]) && (count < 5 || values[4] > 0);
    if (!fits) return usage(usage_line, now);
    set_region(values[0], values[1]);
    if (count >= 4) set_intensities(values[2], values[3]);
    if (count == 5) view_of(show).height = values[4];
    return done(region_text());
}

int store_zoom_region(int number) {
    store_region(show, number);
    return done(format_text("Zoom region %d: %s", number, region_text().c_str()));
}

int recall_zoom_region(int number) {
    if (recall_region(show, number)) return done(format_text("Zoom region %d: %s", number, region_text().c_str()));
    platform().reply(format_text("  - Zoom region %d holds nothing for these data. X%d stores what is shown.", number, number));
    return 0;
}

std::string setx_line(const DataSet& data) {
    const auto [first, last] = shown_points(data);
    if (first <= 0 && last >= static_cast<double>(data.cvNMRdata().size()) - 1) return "SETX FULL";
    const AxisScale axis = shown_axis();
    // One decimal more than tells points apart: a region may end between two.
    const int decimals = axis.decimals() + 1;
    return format_text("SETX %.*f %.*f", decimals, axis.value(first), decimals, axis.value(last));
}

std::string sety_line(double low, double high) { return format_text("SETY %.7g %.7g", low, high); }

std::string setz_line(const DataSet& data) { return format_text("SETZ %.4g", view_of(data).height); }

void step_traces() {
    View& view = view_of(show);
    view.traces = static_cast<Traces>((static_cast<int>(view.traces) + 1) % trace_choices);
    platform().reply(format_text("  - %s", name_of(view.traces)));
    platform().redraw();
}

}  // namespace zolt
