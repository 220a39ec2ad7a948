// MH without arguments: the minimum height is dragged while the peaks above it show, and single peaks are clicked in and out.
#include <algorithm>
#include <cmath>

#include "analysis/peak_list.h"
#include "common/keys.h"
#include "common/text.h"
#include "display/plot_peaks.h"
#include "display/view.h"
#include "interactive/interactive_commands.h"
#include "interactive/peak_region.h"
#include "interactive/routine.h"
#include "platform/platform.h"
#include "state/session.h"

namespace zolt {

namespace {

// Nothing of the data set is changed before Enter: the list to be is drawn in place of its own.
struct Work {
    HeightScale scale;
    std::vector<Peak> all;     ///< every peak of the vector, whatever its height
    std::vector<Peak> listed;  ///< the list at entry
    double height = 0;
    bool moved = false;  ///< the height was
    bool picks = false;  ///< the list to be is picked by the height, not that of the entry
    bool dragging = false;
    std::vector<std::pair<double, bool>> edits;  ///< points clicked: added, or taken out
};
Work work;

// The list that Enter makes.
std::vector<Peak> list_to_be() {
    std::vector<Peak> list = work.listed;
    if (work.picks) {
        list.clear();
        const auto [first, last] = shown_points(show);
        for (const Peak& peak : work.all)
            if (std::abs(peak.intensity) >= work.height && peak.point >= first && peak.point <= last) list.push_back(peak);
    }
    for (const auto& [point, added] : work.edits) {
        std::erase_if(list, [at = point](const Peak& peak) { return std::abs(peak.point - at) < 0.5; });
        if (added) list.push_back(peak_at(show, point, height_at(show.cvNMRdata(), point)));
    }
    std::sort(list.begin(), list.end(), [](const Peak& a, const Peak& b) { return a.point < b.point; });
    return list;
}

bool peak_key(int character);
bool peak_mouse(const MouseEvent& event);
void draw_list_to_be(Picture& picture, const PlotLayout& layout);

const SubRoutine picking = {"MH",
                            "MH:  drag, U D height   click adds, takes out   Enter picks   Esc takes back",
                            peak_key,
                            peak_mouse,
                            draw_list_to_be,
                            Pointer::level};

std::string state_text() {
    const size_t count = list_to_be().size();
    std::string text = format_text("%zu peak%s", count, count == 1 ? "" : "s");
    if (work.scale.tallest > 0) text += format_text(" \u00b7 %.3g %%", 100 * work.height / work.scale.tallest);
    return text;
}

void tell() { platform().reply(std::string(picking.keys) + "   now: " + state_text()); }

void set_height(double height) {
    work.height = std::max(height, 0.0);
    work.picks = work.moved = true;
    work.edits.clear();
    tell();
}

void leave() {
    session.peaks.in_hand = false;
    leave_routine();
    platform().redraw();
}

// The height in the unit that it was given in before, so that a line that is played back fits other spectra, too.
std::string height_line() {
    if (session.peaks.height_unit == HeightUnit::noise && work.scale.noise > 0)
        return format_text("MH rms %.5g", work.height / work.scale.noise);
    if (session.peaks.height_unit == HeightUnit::intensity || !(work.scale.tallest > 0)) return format_text("MH %.6g", work.height);
    return format_text("MH -p %.5g", 100 * work.height / work.scale.tallest);
}

void keep() {
    if (work.moved) type_line(height_line());
    if (work.picks || work.edits.empty()) type_line("DP");
    for (const auto& [point, added] : work.edits) type_line((added ? "DP add " : "DP delete at ") + position_word(point));
    leave();
}

// A click near a peak of the list takes it out, elsewhere it adds the peak that stands there.
void click(const MouseEvent& event) {
    const auto [first, last] = shown_points(show);
    const double reach = 8 * (last - first) / std::max(event.width, 1.0);
    const auto near = [&](const std::vector<Peak>& list) {
        const int nearest = nearest_peak(list, event.point);
        return nearest >= 0 && std::abs(list[static_cast<size_t>(nearest)].point - event.point) <= reach ? nearest : -1;
    };
    const std::vector<Peak> list = list_to_be();
    if (const int old = near(list); old >= 0) {
        const double point = list[static_cast<size_t>(old)].point;
        const size_t before = work.edits.size();
        std::erase_if(work.edits, [&](const auto& edit) { return std::abs(edit.first - point) < 0.5; });
        // What was added by a click is gone with it.
        if (work.edits.size() == before) work.edits.emplace_back(point, false);
    } else if (const int fresh = near(work.all); fresh >= 0) {
        const double point = work.all[static_cast<size_t>(fresh)].point;
        const size_t before = work.edits.size();
        std::erase_if(work.edits, [&](const auto& edit) { return std::abs(edit.first - point) < 0.5; });
        if (work.edits.size() == before) work.edits.emplace_back(point, true);
    } else {
        platform().beep();
    }
    tell();
}

bool peak_mouse(const MouseEvent& event) {
    constexpr double drag_distance = 4;  // pixels; less is a click
    using Kind = MouseEvent::Kind;
    if (event.kind == Kind::press) work.dragging = false;
    if (event.kind == Kind::drag && (work.dragging || std::abs(event.up) >= drag_distance)) {
        work.dragging = true;
        set_height(std::abs(event.value));
    }
    if (event.kind == Kind::release && !work.dragging && std::hypot(event.right, event.up) < drag_distance) click(event);
    return event.kind != Kind::wheel;
}

constexpr RoutineKey keys[] = {
    {'U', [] { set_height(work.height * 1.1); }},
    {'+', [] { set_height(work.height * 1.1); }},
    {key_up, [] { set_height(work.height * 1.1); }},
    {'D', [] { set_height(work.height / 1.1); }},
    {'-', [] { set_height(work.height / 1.1); }},
    {key_down, [] { set_height(work.height / 1.1); }},
    {'?', tell},
    {key_enter, keep},
    {'Q', keep},
    {key_escape, leave},
};

bool peak_key(int character) { return act_on_key(keys, character); }

void draw_list_to_be(Picture& picture, const PlotLayout& layout) {
    add_peaks(picture, layout, show, list_to_be());
    add_height_line(picture, layout, work.height, state_text());
}

}  // namespace

int enter_peak_picking() {
    work = {};
    work.scale = height_scale(show, session.peaks);
    work.height = minimum_height(work.scale, session.peaks);
    work.all = peaks_between(show, session.peaks, 0, static_cast<double>(show.cvNMRdata().size()), 0);
    work.listed = show.peaks;
    work.picks = work.listed.empty();
    session.peaks.in_hand = true;
    enter_routine(picking);
    tell();
    platform().redraw();
    return 2;
}

}  // namespace zolt
