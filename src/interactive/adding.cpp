// AS: the sub-routine that finds factor and shift of a sum or difference by keys and mouse, with the result drawn over the
// data. Enter types the line that makes it.
#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "common/keys.h"
#include "common/text.h"
#include "config/settings.h"
#include "display/plot_trace.h"
#include "display/trace_summary.h"
#include "interactive/interactive_commands.h"
#include "interactive/routine.h"
#include "platform/platform.h"
#include "processing/adding.h"
#include "state/overlay.h"
#include "state/session.h"

namespace zolt {

namespace {

struct Sum {
    int number = 0;  // of the companion
    double factor = 1, shift = 0;
    bool fine = false;
};

Sum sum;
double shift_at_press = 0;

double factor_step() { return sum.fine ? 0.01 : 0.1; }
double shift_step() { return sum.fine ? 0.1 : 1; }

bool can_be_added(const Companion& other) { return align_for_sum(show, other, 0).refusal.empty(); }

// Steps are of 0.01; without rounding, many of them would leave -1.0000000000000002.
void add_to_factor(double by) { sum.factor = std::round((sum.factor + by) * 1e4) / 1e4; }
void add_to_shift(double by) {
    const double most = static_cast<double>(show.cvNMRdata().size());
    sum.shift = std::clamp(std::round((sum.shift + by) * 1e3) / 1e3, -most, most);
}

void next_companion() {
    const auto all = companions_of(show);
    const auto usable = [](const Companion& other) { return can_be_added(other); };
    auto next = std::find_if(all.begin(), all.end(), [&](const Companion& c) { return c.number > sum.number && usable(c); });
    if (next == all.end()) next = std::find_if(all.begin(), all.end(), usable);
    if (next != all.end()) sum.number = next->number;
}

void keep() {
    const std::string word = sum.number == 0 ? "B" : format_text("B%d", sum.number);
    type_line(format_text("AS %s %.6g %.6g points", word.c_str(), sum.factor, sum.shift));
    leave_routine();
}

constexpr RoutineKey keys[] = {
    {'+', [] { add_to_factor(factor_step()); }},
    {key_up, [] { add_to_factor(factor_step()); }},
    {'-', [] { add_to_factor(-factor_step()); }},
    {key_down, [] { add_to_factor(-factor_step()); }},
    {key_left, [] { add_to_shift(-shift_step()); }},
    {key_right, [] { add_to_shift(shift_step()); }},
    {'S', [] { sum.factor = -sum.factor; }},
    {'F', [] { sum.fine = !sum.fine; }},
    {'N', next_companion},
    {'R',
     [] {
         sum = {sum.number, setting_number("AS_MULT"), 0, sum.fine};
     }},
    {'?', [] {}},
    {key_enter, keep},
    {'Q', leave_routine},
    {key_escape, leave_routine},
};

bool sum_key(int character);
bool sum_mouse(const MouseEvent& event);
void draw_sum(Picture& picture, const PlotLayout& layout);

const SubRoutine adding = {
    "AS",     "AS:  + - factor   Left Right shift   F fine   S sign   N next   R reset   Enter adds   Esc leaves",
    sum_key,  sum_mouse,
    draw_sum, Pointer::level};

void show_sum() {
    const auto other = companion_of(show, sum.number);
    if (!other) return;
    platform().reply(format_text("File A %c %.4g * %s, shifted %.4g points   %s", sum.factor < 0 ? '-' : '+', std::abs(sum.factor),
                                 other->label.c_str(), sum.shift, adding.keys));
}

bool sum_key(int character) {
    if (!act_on_key(keys, character)) return false;
    if (session.sub_routine == &adding) show_sum();
    platform().redraw();
    return true;
}

// A drag shifts, the wheel changes the factor.
bool sum_mouse(const MouseEvent& event) {
    const auto [first, last] = shown_points(show);
    switch (event.kind) {
        case MouseEvent::Kind::press:
            shift_at_press = sum.shift;
            break;
        case MouseEvent::Kind::drag:
        case MouseEvent::Kind::release: {
            const double points = event.right / std::max(event.width, 1.0) * (last - first);
            // Whole points keep the shapes of the lines; Shift, or F, gives tenths.
            const double step = event.shift || sum.fine ? 0.1 : 1;
            sum.shift = shift_at_press;
            add_to_shift(std::round(points / step) * step);
            break;
        }
        case MouseEvent::Kind::wheel:
            add_to_factor(event.steps * factor_step());
            break;
        case MouseEvent::Kind::double_click:
            return true;
    }
    show_sum();
    platform().redraw();
    return true;
}

void draw_sum(Picture& picture, const PlotLayout& layout) {
    const auto other = companion_of(show, sum.number);
    if (!other) return;
    const Alignment at = align_for_sum(show, *other, sum.shift);
    if (!at.refusal.empty()) return;
    const auto points = show.cvNMRdata();
    std::vector<Complex> result(points.begin(), points.end());
    add_with_offset(result, *other, at, sum.factor);
    TraceSummary summary;
    summary.build(result, Part::real);
    constexpr double pen = 1.2, columns_per_pixel = 2;
    add_trace(picture, layout, summary, result.size(), Ink::text, pen, (layout.right - layout.left) * columns_per_pixel);
}

}  // namespace

int cmd_as(Arguments& args) {
    if (!args.peek().empty()) return add_spectra(args);
    const auto all = companions_of(show);
    if (all.empty()) return refuse("There is nothing to add: open File B with GB, or keep a spectrum in a buffer with B1 or B2.");
    const auto first = std::find_if(all.begin(), all.end(), can_be_added);
    if (first == all.end()) return refuse(align_for_sum(show, all.front(), 0).refusal);
    sum = {first->number, setting_number("AS_MULT"), 0, false};
    enter_routine(adding);
    show_sum();
    return 2;
}

}  // namespace zolt
