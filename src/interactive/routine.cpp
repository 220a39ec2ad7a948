// Entering and leaving sub-routines.
#include "interactive/routine.h"

#include <algorithm>

#include "common/text.h"
#include "platform/platform.h"
#include "state/session.h"

namespace zolt {

int enter_routine(const SubRoutine& routine) {
    session.sub_routine = &routine;
    platform().reply(routine.keys);
    return 2;
}

void leave_routine() {
    session.sub_routine = nullptr;
    platform().reply("");
}

bool act_on_key(std::span<const RoutineKey> keys, int character) {
    const int key = character < 128 ? upper(static_cast<char>(character)) : character;
    const auto row = std::find_if(keys.begin(), keys.end(), [key](const RoutineKey& known) { return known.key == key; });
    if (row == keys.end()) return false;
    row->act();
    return true;
}

void type_line(std::string_view line) { session.lines_of_routine.emplace_back(line); }

}  // namespace zolt
