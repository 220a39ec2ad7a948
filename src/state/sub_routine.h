// The interactive sub-routine that has taken over the keys and the mouse, while one is active.
#pragma once

#include <span>

#include "state/vectors.h"

namespace zolt {

struct Picture;
struct PlotLayout;

/// What the mouse did over the plot, in terms of the data.
struct MouseEvent {
    enum class Kind { press, drag, release, double_click, wheel } kind = Kind::press;
    double point = 0, value = 0;   ///< of the current vector, under the mouse
    double right = 0, up = 0;      ///< pixels from where the button went down
    double width = 1, height = 1;  ///< of the plot, in pixels; from left to right the points that are shown
    double steps = 0;              ///< of the wheel
    bool shift = false, control = false;
};

/// What the mouse pointer looks like over the plot: it says what a drag will do.
enum class Pointer { cross, phase, region, level };

/// The command starts it by storing its address in the session; leaving it stores nullptr. What it changes it changes by
/// command lines (type_line of interactive/routine.h), so that the log has them and can be replayed.
struct SubRoutine {
    const char* keyword;  ///< the command that starts it
    const char* keys;     ///< its sub-commands in one line, for the reply line
    /// Carries out one key (a character, Enter, Escape, or a named key of common/keys.h); false for an unknown one.
    bool (*key)(int character);
    /// False: the plot does what it does outside of sub-routines. nullptr: always so. A press that is taken brings the drag
    /// and the release of the same gesture, and nothing else does.
    bool (*mouse)(const MouseEvent& event) = nullptr;
    /// Adds what only the sub-routine shows, over the plot. The traces are not drawn anew for it, unless the platform has
    /// been asked for a redraw.
    void (*draw)(Picture& picture, const PlotLayout& layout) = nullptr;
    Pointer pointer = Pointer::cross;
    /// Points to be shown in place of those of the current vector, as many; valid until it is asked again. The data
    /// themselves stay as they are, whatever may happen to them meanwhile.
    std::span<const Complex> (*preview)() = nullptr;
};

}  // namespace zolt
