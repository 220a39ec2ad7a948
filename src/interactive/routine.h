// What sub-routines have in common: entering, leaving, and typing command lines for the user.
#pragma once

#include <span>
#include <string_view>

#include "state/sub_routine.h"

namespace zolt {

/// Makes it the active one and shows its keys in the reply line. 2, for `return enter_routine(...)` in a handler.
int enter_routine(const SubRoutine& routine);
/// Leaves the active one; the reply line is empty again.
void leave_routine();

/// One row, one key: a character in capitals, or a named key.
struct RoutineKey {
    int key;
    void (*act)();
};
/// Acts as the row of a key says, letters in either case; false for a key without a row.
bool act_on_key(std::span<const RoutineKey> keys, int character);

/// A command line that is carried out as soon as the key or gesture at hand is done, as if the user had typed it: it is
/// logged and can be undone. The sub-routine stays active, if it is.
void type_line(std::string_view line);

}  // namespace zolt
