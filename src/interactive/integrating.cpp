// ID: the sub-routine that integrates with mouse and keys. Whatever it does is a line that could have been typed.
#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "analysis/integral_commands.h"
#include "common/keys.h"
#include "common/numbers.h"
#include "common/text.h"
#include "datafile/integrals.h"
#include "display/plot_integrals.h"
#include "display/view.h"
#include "interactive/interactive_commands.h"
#include "interactive/routine.h"
#include "platform/platform.h"
#include "state/session.h"

namespace zolt {

namespace {

constexpr double drag_distance = 5, grip = 5;  // pixels: less is a click; a limit is taken hold of from this near

struct {
    std::vector<Integral> at_entry;
    float scale_at_entry = 1;
    std::optional<int64_t> place;  // last clicked point: the region that holds it is the selected one
    std::optional<int64_t> pressed, dragged;
    std::optional<size_t> gripped;  // region whose limit the mouse has hold of,
    int64_t other_limit = 0;        // and its other limit
} work;

std::optional<size_t> selected() { return work.place ? integral_at(show.integrals, *work.place) : std::nullopt; }

int64_t point_at(double place) { return std::llround(std::clamp(place, 0.0, std::max(show.pts1d() - 1.0, 0.0))); }

std::string position(int64_t point) { return integral_position(show.dims[0], point); }

std::string limits(int64_t one, int64_t other) { return position(std::min(one, other)) + " " + position(std::max(one, other)); }

void read_out(int64_t point) { platform().reply(integral_readout(show, point)); }

bool need_selection() {
    if (selected()) return true;
    platform().beep();
    platform().reply(show.integrals.empty() ? "  - There are no integrals yet: drag over a signal, or press A."
                                            : "  - Click an integral first.");
    return false;
}

void select_region(size_t index) {
    const Integral& region = show.integrals[index];
    work.place = (int64_t{region.start} + region.end) / 2;
    read_out(*work.place);
}

// The next region to the right (+1) or to the left (-1); without a selection, the first or the last.
void step_selection(int step) {
    const auto count = static_cast<int64_t>(show.integrals.size());
    if (count == 0) return (void)need_selection();
    const auto now = selected();
    const int64_t from = now ? static_cast<int64_t>(*now) : step > 0 ? -1 : count;
    select_region(static_cast<size_t>(std::clamp<int64_t>(from + step, 0, count - 1)));
}

// Pixels between two points of the shown region.
double pixels_between(int64_t one, int64_t other, double width) {
    const auto [first, last] = shown_points(show);
    return last > first ? std::abs(static_cast<double>(one - other)) * width / (last - first) : 0;
}

void click(int64_t point) {
    work.place = point;
    if (!selected() && !show.integrals.empty()) {
        // Beside all regions: the nearest.
        const auto distance = [&](const Integral& r) {
            return std::min(std::abs(int64_t{r.start} - point), std::abs(int64_t{r.end} - point));
        };
        const auto nearest = std::min_element(show.integrals.begin(), show.integrals.end(),
                                              [&](const Integral& a, const Integral& b) { return distance(a) < distance(b); });
        return select_region(static_cast<size_t>(nearest - show.integrals.begin()));
    }
    read_out(point);
}

void press(int64_t point, double width) {
    work.pressed = work.dragged = point;
    work.gripped = selected();
    if (!work.gripped) return;
    const Integral& region = show.integrals[*work.gripped];
    const double to_start = pixels_between(point, region.start, width), to_end = pixels_between(point, region.end, width);
    work.other_limit = to_start <= to_end ? region.end : region.start;
    if (std::min(to_start, to_end) > grip) work.gripped.reset();
}

void drop(int64_t point, double right) {
    const auto from = std::exchange(work.pressed, std::nullopt);
    const auto grip_of = std::exchange(work.gripped, std::nullopt);
    work.dragged.reset();
    if (!from) return;
    if (std::abs(right) < drag_distance || point == *from) return click(point);
    const int64_t other = grip_of ? work.other_limit : *from;
    if (grip_of)
        type_line(format_text("ID move %zu %s", *grip_of + 1, limits(point, other).c_str()));
    else
        type_line("ID " + limits(point, other));
    work.place = (point + other) / 2;
}

bool integrating_mouse(const MouseEvent& event) {
    const int64_t point = point_at(event.point);
    switch (event.kind) {
        case MouseEvent::Kind::press:
            press(point, event.width);
            break;
        case MouseEvent::Kind::drag:
            work.dragged = point;
            read_out(point);
            break;
        case MouseEvent::Kind::release:
            drop(point, event.right);
            break;
        case MouseEvent::Kind::double_click:
            break;
        case MouseEvent::Kind::wheel:
            return false;  // the plot zooms
    }
    platform().redraw();
    return true;
}

void delete_selected() {
    if (!need_selection()) return;
    type_line(format_text("ID delete %zu", *selected() + 1));
    work.place.reset();
}

// At the clicked place; a region that was selected by keys, at the lowest point between its outer thirds.
void split_selected() {
    if (!need_selection()) return;
    const Integral& region = show.integrals[*selected()];
    const int64_t low = std::min(region.start, region.end), high = std::max(region.start, region.end);
    int64_t at = *work.place;
    if (at == (low + high) / 2) {
        const auto points = show.cvNMRdata();
        const auto height = [&](int64_t p) { return points[static_cast<size_t>(p)].real(); };
        for (int64_t p = low + (high - low) / 3; p <= high - (high - low) / 3 && p < static_cast<int64_t>(points.size()); ++p)
            if (height(p) < height(at)) at = p;
    }
    type_line("ID split " + position(at));
    work.place = at;
}

void calibrate_selected() {
    if (!need_selection()) return;
    const size_t index = *selected();
    const double now = std::abs(double{show.integrals[index].value} * double{show.rel_value});
    const std::string offered = now >= 0.5 && now < 1000 ? format_text("%.0f", now) : "1";
    const auto answer = platform().input_box("Calibrate Integral", "Number of protons", offered);
    if (!answer) return;
    const auto value = leading_number(*answer);
    if (!value || !std::isfinite(*value) || *value == 0) {
        platform().beep();
        return platform().reply("  - An integral is calibrated by a number other than 0.");
    }
    type_line(format_text("ID calibrate %zu %.9g", index + 1, *value));
}

bool same_region(const Integral& a, const Integral& b) { return a.start == b.start && a.end == b.end && a.label == b.label; }

// What is in one list and not in the other, with its index.
template <class Use>
void each_missing(const std::vector<Integral>& from, const std::vector<Integral>& in, Use use) {
    std::vector<Integral> rest = in;
    for (size_t i = 0; i < from.size(); ++i) {
        const auto found = std::find_if(rest.begin(), rest.end(), [&](const Integral& r) { return same_region(r, from[i]); });
        if (found != rest.end())
            rest.erase(found);
        else
            use(i, from[i]);
    }
}

// Types what turns the list into that of the beginning, so that a log that is played again ends with the same list.
void take_back() {
    size_t deleted = 0;
    each_missing(show.integrals, work.at_entry,
                 [&](size_t i, const Integral&) { type_line(format_text("ID delete %zu", i + 1 - deleted++)); });
    each_missing(work.at_entry, show.integrals, [](size_t, const Integral& region) {
        type_line("ID " + limits(region.start, region.end) + (region.label != 0 ? format_text(" %d", region.label) : ""));
    });
    if (show.rel_value != work.scale_at_entry) type_line(format_text("ID REL_VALUE %.9g", double{work.scale_at_entry}));
    leave_routine();
}

void show_keys();

constexpr RoutineKey keys[] = {
    {'D', delete_selected},
    {key_delete, delete_selected},
    {key_forward_delete, delete_selected},
    {'S', split_selected},
    {'C', calibrate_selected},
    {'A', [] { type_line("AI"); }},
    {'+', [] { step_selection(1); }},
    {key_right, [] { step_selection(1); }},
    {'-', [] { step_selection(-1); }},
    {key_left, [] { step_selection(-1); }},
    {'?', show_keys},
    {key_enter, leave_routine},
    {'Q', leave_routine},
    {key_escape, take_back},
};

bool integrating_key(int character) {
    if (!act_on_key(keys, character)) return false;
    platform().redraw();
    return true;
}

// The limits of the selected region, or those that the mouse is drawing; a bracket, where there is room for it.
void draw_selection(Picture& picture, const PlotLayout& layout) {
    const bool drawing = work.pressed && work.dragged && *work.pressed != *work.dragged;
    const auto region = selected();
    if (!drawing && !region) return;
    Integral marked = region ? show.integrals[*region] : Integral{};
    if (drawing) {
        marked.start = static_cast<int32_t>(*work.dragged);
        marked.end = static_cast<int32_t>(work.gripped ? work.other_limit : *work.pressed);
    }
    for (const int32_t limit : {marked.start, marked.end}) {
        const double x = std::floor(layout.x(limit)) + 0.5;
        if (x >= layout.left && x <= layout.right)
            picture.records.emplace_back(Stroke{{{x, layout.top}, {x, layout.bottom}}, Ink::cursor, 1, false});
    }
    std::vector<Point> bracket = integral_bracket(layout, marked);
    if (!bracket.empty()) picture.records.emplace_back(Stroke{std::move(bracket), Ink::cursor, 2, false});
}

const SubRoutine integrating = {
    "ID",
    "ID:  drag a region   click selects   D delete   S split   C calibrate   A automatic   + - next   Enter keeps   Esc takes back",
    integrating_key,
    integrating_mouse,
    draw_selection,
    Pointer::region,
};

void show_keys() { platform().reply(integrating.keys); }

}  // namespace

int cmd_id(Arguments& args) {
    if (!args.peek().empty()) return typed_id(args);
    work = {};
    work.at_entry = show.integrals;
    work.scale_at_entry = show.rel_value;
    session.integrals_shown = true;
    return enter_routine(integrating);
}

}  // namespace zolt
