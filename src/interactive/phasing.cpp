// PH and PE: the sub-routines that phase by mouse and keys. What is seen meanwhile is a turned copy of the current vector;
// the data stay untouched until Enter types the PC that turns all vectors as the copy was.
#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "common/keys.h"
#include "common/text.h"
#include "config/settings.h"
#include "display/plot_1d.h"
#include "display/view.h"
#include "interactive/interactive_commands.h"
#include "interactive/routine.h"
#include "platform/platform.h"
#include "processing/phase.h"
#include "processing/values.h"
#include "state/session.h"

namespace zolt {

namespace {

constexpr double coarse = 10, fine = 1;  // steps of the keys, degrees
constexpr double click_distance = 4;     // pixels; a drag begins beyond

// Which vector the angles are meant for.
struct Subject {
    std::string file;
    std::array<int32_t, 3> slices{};
    size_t selected = 0, points = 0;
    int level = 0;
    bool operator==(const Subject&) const = default;
};

Subject subject_now() {
    return {show.file_a, {show.slice, show.slice_3, show.slice_4}, show.selected, show.cvNMRdata().size(), show.level};
}

// The orders are doubles in degrees, zero order at the pivot, second order at the end of the vector.
struct Angles {
    std::array<double, 3> orders{};
    double pivot = 0;  // points
};

enum class Drag { none, undecided, zero_order, first_order };

struct Phasing {
    Subject subject;
    Angles now;
    size_t order = 0;       // that + and - change
    bool expanded = false;  // PE: what is shown counts, not the whole vector
    Drag drag = Drag::none;
    Angles at_press;
    double way_lost = 0;  // pixels, signed: before the drag was known as one
    Buffer<Complex> turned;
} phasing;

double whole_turns_off(double degrees) { return degrees - 360 * std::ceil((degrees - 180) / 360); }

// Four decimals and no more: the line that is typed and the preview are then turned by the same numbers.
std::string degrees_text(double degrees) {
    std::string text = format_text("%.4f", degrees);
    text.resize(text.find_last_not_of('0') + 1);
    if (text.ends_with('.')) text.pop_back();
    return text == "-0" ? "0" : text;
}

// The angles of PC, which counts the first order from point 0.
std::array<std::string, 3> angles_of_pc(const Angles& angles) {
    const auto n = static_cast<double>(std::max<size_t>(show.cvNMRdata().size(), 1));
    const auto& [a, b, c] = angles.orders;
    return {degrees_text(whole_turns_off(a - b * angles.pivot / n)), degrees_text(b), degrees_text(c)};
}

PhaseAngles numbers_of(const std::array<std::string, 3>& words) {
    PhaseAngles degrees{};
    for (size_t order = 0; order < degrees.size(); ++order) degrees[order] = static_cast<float>(number_or_zero(words[order]));
    return degrees;
}

std::string pc_line(const std::array<std::string, 3>& words) { return "PC " + words[0] + " " + words[1] + " " + words[2]; }

// The point of the largest magnitude, which no phase moves.
double tallest_between(double first, double last) {
    const auto points = show.cvNMRdata();
    const auto start = static_cast<size_t>(std::clamp(std::ceil(first), 0.0, static_cast<double>(points.size())));
    const auto end = static_cast<size_t>(std::clamp(std::floor(last) + 1, 0.0, static_cast<double>(points.size())));
    size_t tallest = start;
    float most = -1;
    for (size_t i = start; i < end; ++i)
        if (const float power = std::norm(points[i]); power > most) most = power, tallest = i;
    return static_cast<double>(tallest);
}

double tallest_in_view() {
    const auto [first, last] = shown_points(show);
    return tallest_between(first, last);
}

void begin(bool expanded) {
    phasing.subject = subject_now();
    phasing.now = {};
    phasing.now.pivot = expanded ? tallest_in_view() : tallest_between(0, static_cast<double>(show.cvNMRdata().size()));
    phasing.order = 0;
    phasing.expanded = expanded;
    phasing.drag = Drag::none;
}

// A macro, a link or an undo may have put other data in place of those that were being phased.
void follow_data() {
    if (!(phasing.subject == subject_now())) begin(phasing.expanded);
}

// The phase of every point stays as it is.
void move_pivot(double point) {
    const auto n = static_cast<double>(std::max<size_t>(phasing.subject.points, 1));
    double& a = phasing.now.orders[0];
    a = whole_turns_off(a + phasing.now.orders[1] * (point - phasing.now.pivot) / n);
    phasing.now.pivot = point;
}

// To the decimal that is shown, so that no "-0.0" appears.
double to_tenths(double value) { return std::round(value * 10) / 10 + 0.0; }

std::string pivot_text() {
    const Dimension& dimension = show.dims[0];
    const Axis axis = dimension.axis();
    if (!dimension.frequency || axis.sw <= 0) return format_text("Pivot pt = % 4.0f", phasing.now.pivot + 1);
    return format_text("Pivot pt = % 4.1f %s", to_tenths(axis.ppm(phasing.now.pivot)), axis.has_ppm() ? "ppm" : "Hz");
}

std::string readout() {
    const auto& [a, b, c] = phasing.now.orders;
    return format_text("A = % 5.1f   B = % 5.1f   C = % 5.1f   ", to_tenths(a), to_tenths(b), to_tenths(c)) + pivot_text();
}

void show_phase() {
    platform().status(0, readout());
    platform().redraw();
}

void turn(size_t order, double degrees) {
    double& angle = phasing.now.orders[order];
    angle = order == 0 ? whole_turns_off(angle + degrees) : angle + degrees;
}

void leave() {
    leave_routine();
    phasing.drag = Drag::none;
    phasing.turned = {};
    platform().status(0, session.status_text);
    platform().redraw();
}

void keep() {
    const auto words = angles_of_pc(phasing.now);
    leave();
    if (numbers_of(words) != PhaseAngles{}) type_line(pc_line(words));
}

constexpr RoutineKey keys[] = {
    {'A', [] { phasing.order = 0; }},
    {'B', [] { phasing.order = 1; }},
    {'C', [] { phasing.order = 2; }},
    {'+', [] { turn(phasing.order, coarse); }},
    {'-', [] { turn(phasing.order, -coarse); }},
    {key_up, [] { turn(0, fine); }},
    {key_down, [] { turn(0, -fine); }},
    {key_right, [] { turn(1, fine); }},
    {key_left, [] { turn(1, -fine); }},
    {'9', [] { turn(0, 90); }},
    {'1', [] { turn(0, 180); }},
    {'0', [] { phasing.now.orders = {}; }},
    {'P', [] { move_pivot(tallest_in_view()); }},
    {'?', [] { platform().reply(session.sub_routine->keys); }},
    {key_enter, keep},
    {key_escape, leave},
};

bool phasing_key(int character) {
    follow_data();
    const SubRoutine* before = session.sub_routine;
    if (!act_on_key(keys, character)) return false;
    if (session.sub_routine == before) show_phase();
    return true;
}

// What a drag turns is settled by the way it sets out: a hand that goes up is not to change the first order, too.
void decide_drag(const MouseEvent& event) {
    const bool upright = std::abs(event.up) >= std::abs(event.right);
    const double way = upright ? event.up : event.right;
    if (std::abs(way) < click_distance) return;
    phasing.drag = upright ? Drag::zero_order : Drag::first_order;
    phasing.way_lost = std::copysign(click_distance, way);
}

// Degrees of the dragged order for one pixel. Of PE, so much over what is shown, which is a part of the first order's whole.
double degrees_per_pixel() {
    const double scaling = setting_number(phasing.expanded ? "MOUSE_SCALING_PE" : "MOUSE_SCALING_PH");
    if (phasing.drag == Drag::zero_order) return setting_text("MOUSE_DIRECTION") == "DOWN" ? -scaling : scaling;
    if (!phasing.expanded) return scaling;
    const auto [first, last] = shown_points(show);
    return scaling * static_cast<double>(phasing.subject.points) / std::max(last - first, 1.0);
}

void follow_drag(const MouseEvent& event) {
    if (phasing.drag == Drag::undecided) decide_drag(event);
    if (phasing.drag == Drag::none || phasing.drag == Drag::undecided) return;
    const double way = (phasing.drag == Drag::zero_order ? event.up : event.right) - phasing.way_lost;
    phasing.now = phasing.at_press;
    turn(phasing.drag == Drag::zero_order ? 0 : 1, way * degrees_per_pixel() * (event.shift ? 0.1 : 1));
    show_phase();
}

// The pivot goes to the peak that the hand has aimed at.
void click(const MouseEvent& event) {
    const auto [first, last] = shown_points(show);
    const double reach = click_distance * (last - first) / std::max(event.width, 1.0);
    move_pivot(tallest_between(std::min(event.point - reach, std::round(event.point)), event.point + reach));
    show_phase();
}

bool phasing_mouse(const MouseEvent& event) {
    follow_data();
    switch (event.kind) {
        case MouseEvent::Kind::press:
            phasing.drag = Drag::undecided;
            phasing.at_press = phasing.now;
            return true;
        case MouseEvent::Kind::drag:
            follow_drag(event);
            return true;
        case MouseEvent::Kind::release:
            follow_drag(event);
            if (std::exchange(phasing.drag, Drag::none) == Drag::undecided) click(event);
            return true;
        case MouseEvent::Kind::double_click:
            phasing.now = phasing.at_press;  // it shows the whole, its first click was not meant for the pivot
            show_phase();
            return false;
        case MouseEvent::Kind::wheel:
            return false;
    }
    return false;
}

void draw_phasing(Picture& picture, const PlotLayout& layout) {
    constexpr double size = 12, gap = 6, room = 150, dash = 3, step = 8;
    if (phasing.now.pivot < layout.first || phasing.now.pivot > layout.last) return;
    const double x = std::floor(layout.x(phasing.now.pivot)) + 0.5;
    // Dashes leave the peak to be seen that it stands on.
    for (double y = layout.top; y + dash <= layout.bottom; y += step)
        picture.records.emplace_back(Stroke{{{x, y}, {x, y + dash}}, Ink::cursor, 1, false});
    const bool left = x + gap + room > layout.right;
    const Point at{left ? x - gap : x + gap, layout.top + size};
    picture.records.emplace_back(Text{at, pivot_text(), Ink::cursor, size, left ? Anchor::end : Anchor::start, 0, false});
}

std::span<const Complex> turned_vector() {
    follow_data();
    const auto points = show.cvNMRdata();
    if (phasing.turned.size() != points.size() && !phasing.turned.allocate(points.size())) return {};
    std::copy(points.begin(), points.end(), phasing.turned.data());
    rotate(phasing.turned.span(), rotation_by(numbers_of(angles_of_pc(phasing.now)), 0, points.size()));
    return phasing.turned.span();
}

constexpr const char* key_line =
    "drag upward A, sideways B   click or P pivot   A B C then + -   arrows fine   9 1 by 90 180   0 none   Enter keeps   Esc "
    "undoes";

const SubRoutine by_mouse = {"PH", key_line, phasing_key, phasing_mouse, draw_phasing, Pointer::phase, turned_vector};
const SubRoutine by_mouse_expanded = {"PE", key_line, phasing_key, phasing_mouse, draw_phasing, Pointer::phase, turned_vector};

// PH A B C pivot: at once, logged as the PC that it is, since the first pivot depends on data and view.
int phase_as_typed(Arguments& args) {
    for (size_t i = 0; !args.peek().empty(); ++i) {
        const std::string word = args.next();
        const auto value = number_argument(word);
        if (!value) return not_a_number(word);
        if (i < 3) phasing.now.orders[i] = double{*value};
        if (i == 3) phasing.now.pivot = show.dims[0].axis().point_of_ppm(double{*value});
    }
    const auto words = angles_of_pc(phasing.now);
    session.log_line = pc_line(words);
    const WaitCursor wait;
    return phase_correct(numbers_of(words), 0, true);
}

int phase_by(const SubRoutine& routine, bool expanded, Arguments& args) {
    if (args.ask_usage()) return show_reply(format_text("  - USAGE:  %s   [A   [B   [C   [Pivot ppm]]]]", routine.keyword));
    if (show.level > 3) return refuse(format_text("Phase Correct is not supported with Arrayed mode level %d", show.level));
    begin(expanded);
    if (!args.peek().empty()) return phase_as_typed(args);
    platform().status(0, readout());
    return enter_routine(routine);
}

}  // namespace

int cmd_ph(Arguments& args) { return phase_by(by_mouse, false, args); }

int cmd_pe(Arguments& args) { return phase_by(by_mouse_expanded, true, args); }

}  // namespace zolt
