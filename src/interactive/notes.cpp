// NO: the sub-routine in which notes are written, dragged and deleted. Each change is a line of its own.
#include <algorithm>
#include <cmath>
#include <optional>
#include <string>

#include "common/keys.h"
#include "common/text.h"
#include "display/lettering.h"
#include "display/note_commands.h"
#include "display/plot_notes.h"
#include "interactive/interactive_commands.h"
#include "interactive/routine.h"
#include "platform/platform.h"
#include "state/session.h"

namespace zolt {

namespace {

size_t chosen = 0;             // index of the note that keys act on
std::optional<Point> dragged;  // where its middle is while the mouse holds it
Point grip;                    // from the mouse to the middle of the note
std::optional<PlotLayout> drawn;

PlotLayout layout_now() {
    if (drawn) return *drawn;
    PlotCache cache;
    return plot_layout(show, configured_options(), cache);
}

std::optional<Point> place_of_chosen(const PlotLayout& layout) {
    return chosen < show.notes.size() ? place_of_note(layout, show, show.notes[chosen]) : std::nullopt;
}

void move_chosen(const PlotLayout& layout, Point to) { type_line(move_note_line(layout, chosen + 1, layout.point(to.x), to.y)); }

// By shares of the plot, to the right and upward.
void nudge(double right, double up) {
    const PlotLayout layout = layout_now();
    if (const auto at = place_of_chosen(layout))
        move_chosen(layout, {at->x + right * (layout.right - layout.left), at->y - up * (layout.bottom - layout.top)});
}

void write_note(double point, double y) {
    const PlotLayout layout = layout_now();
    const auto text = platform().input_box("Note", "Text of the note", "");
    if (text && !trimmed(*text).empty()) type_line(new_note_line(layout, point, y, std::string(trimmed(*text))));
}

void write_note_in_the_middle() {
    const PlotLayout layout = layout_now();
    write_note((layout.first + layout.last) / 2, layout.bottom - 0.8 * (layout.bottom - layout.top));
}

void edit_chosen() {
    if (chosen >= show.notes.size()) return write_note_in_the_middle();
    const auto text = platform().input_box("Note", "Text of the note", show.notes[chosen].text);
    if (text && !trimmed(*text).empty()) type_line(format_text("NO %zu ", chosen + 1) + std::string(trimmed(*text)));
}

void delete_chosen() {
    if (chosen < show.notes.size()) type_line(format_text("NO delete %zu", chosen + 1));
    if (chosen + 1 >= show.notes.size() && chosen > 0) --chosen;
}

constexpr double small = 0.005;

constexpr RoutineKey keys[] = {
    {'A', write_note_in_the_middle},
    {'E', edit_chosen},
    {'D', delete_chosen},
    {key_forward_delete, delete_chosen},
    {'N', [] { chosen = show.notes.empty() ? 0 : (chosen + 1) % show.notes.size(); }},
    {key_left, [] { nudge(-small, 0); }},
    {key_right, [] { nudge(small, 0); }},
    {key_up, [] { nudge(0, 2 * small); }},
    {key_down, [] { nudge(0, -2 * small); }},
    {'?', [] {}},
    {key_enter, leave_routine},
    {'Q', leave_routine},
    {key_escape, leave_routine},
};

bool note_key(int character);
bool note_mouse(const MouseEvent& event);
void draw_chosen(Picture& picture, const PlotLayout& layout);

const SubRoutine noting = {"NO", "NO:  drag moves   A new   E edit   D delete   N next   arrows move   Enter leaves", note_key,
                           note_mouse, draw_chosen};

bool note_key(int character) {
    if (!act_on_key(keys, character)) return false;
    if (session.sub_routine == &noting) platform().reply(noting.keys);
    platform().redraw();
    return true;
}

// The note within reach of the mouse that is nearest to it.
std::optional<size_t> note_under(const PlotLayout& layout, Point mouse) {
    constexpr double reach = 24;
    double least = reach;
    std::optional<size_t> found;
    for (size_t i = 0; i < show.notes.size(); ++i) {
        const auto at = place_of_note(layout, show, show.notes[i]);
        if (!at) continue;
        const double half = text_width(show.notes[i].text, note_size) / 2;
        const double away = std::hypot(std::max(std::abs(mouse.x - at->x) - half, 0.0), mouse.y - (at->y - note_size / 3));
        if (away < least) least = away, found = i;
    }
    return found;
}

// False where no note is under the mouse: the plot then does what it always does.
bool note_mouse(const MouseEvent& event) {
    const PlotLayout layout = layout_now();
    const Point mouse{layout.x(event.point), layout.y(event.value)};
    switch (event.kind) {
        case MouseEvent::Kind::press: {
            dragged.reset();
            const auto found = note_under(layout, mouse);
            if (!found) return false;
            chosen = *found;
            const Point at = *place_of_chosen(layout);
            dragged = at;
            grip = {at.x - mouse.x, at.y - mouse.y};
            break;
        }
        case MouseEvent::Kind::drag:
        case MouseEvent::Kind::release: {
            if (!dragged) return false;
            const Point to{mouse.x + grip.x, mouse.y + grip.y};
            dragged = to;
            if (event.kind == MouseEvent::Kind::drag) break;
            constexpr double click = 3;  // pixels
            if (std::hypot(event.right, event.up) >= click) move_chosen(layout, to);
            dragged.reset();
            break;
        }
        case MouseEvent::Kind::double_click: {
            dragged.reset();
            const auto found = note_under(layout, mouse);
            if (found) chosen = *found;
            if (found)
                edit_chosen();
            else
                write_note(event.point, mouse.y);
            break;
        }
        case MouseEvent::Kind::wheel:
            return false;
    }
    platform().redraw();
    return true;
}

// A line under the chosen note; while it is dragged, the note where it would be.
void draw_chosen(Picture& picture, const PlotLayout& layout) {
    drawn = layout;
    const auto at = dragged ? dragged : place_of_chosen(layout);
    if (!at || chosen >= show.notes.size()) return;
    const std::string text = display_line(show.notes[chosen].text);
    const double half = text_width(text, note_size) / 2, y = std::floor(at->y + 4) + 0.5;
    if (dragged) picture.records.emplace_back(Text{*at, text, Ink::cursor, note_size, Anchor::middle, 0, false});
    picture.records.emplace_back(Stroke{{{at->x - half, y}, {at->x + half, y}}, Ink::cursor, 1, false});
}

}  // namespace

int cmd_no(Arguments& args) {
    if (!args.peek().empty()) return note_command(args);
    chosen = 0;
    dragged.reset();
    drawn.reset();
    return enter_routine(noting);
}

}  // namespace zolt
