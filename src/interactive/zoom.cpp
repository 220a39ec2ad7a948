// ZO: the sub-routine that zooms by single keys.
#include "common/keys.h"
#include "common/text.h"
#include "display/view.h"
#include "display/view_commands.h"
#include "interactive/interactive_commands.h"
#include "interactive/routine.h"
#include "platform/platform.h"
#include "state/session.h"

namespace zolt {

namespace {

View at_entry;  // what Escape returns to

void zoom_about_middle(double factor) {
    const auto [first, last] = shown_points(show);
    zoom_view(show, factor, (first + last) / 2);
}

void multiply_height(double factor) { view_of(show).height *= factor; }

void leave_unchanged() {
    const auto regions = view_of(show).regions;
    view_of(show) = at_entry;
    view_of(show).regions = regions;
    leave_routine();
}

constexpr RoutineKey keys[] = {
    {'+', [] { zoom_about_middle(0.5); }},
    {'-', [] { zoom_about_middle(2); }},
    {'L', [] { pan_view(show, -0.25); }},
    {key_left, [] { pan_view(show, -0.25); }},
    {'R', [] { pan_view(show, 0.25); }},
    {key_right, [] { pan_view(show, 0.25); }},
    {'U', [] { multiply_height(1.25); }},
    {key_up, [] { multiply_height(1.25); }},
    {'D', [] { multiply_height(0.8); }},
    {key_down, [] { multiply_height(0.8); }},
    {'F', [] { show_all(show); }},
    {'?', [] {}},
    {key_enter, leave_routine},
    {'Q', leave_routine},
    {key_escape, leave_unchanged},
};

bool zoom_key(int character);

const SubRoutine zoom = {
    "ZO", "ZO:  + in   - out   L R move   U D height   F full   0-9 stored region   Enter keeps   Esc takes back", zoom_key};

bool zoom_key(int character) {
    const bool region = character >= '0' && character <= '9';
    if (region && recall_zoom_region(character - '0') == 0) platform().beep();
    if (!region && !act_on_key(keys, character)) return false;
    if (session.sub_routine == &zoom && !region) platform().reply(zoom.keys);
    platform().redraw();
    return true;
}

}  // namespace

int cmd_zo(Arguments& args) {
    if (args.ask_usage()) return show_reply("ZO [from to]");
    if (!args.peek().empty()) return cmd_setx(args);
    at_entry = view_of(show);
    return enter_routine(zoom);
}

}  // namespace zolt
