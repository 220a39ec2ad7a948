// Entering and leaving sub-routines.
#include "interactive/routine.h"

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

void type_line(std::string_view line) { session.lines_of_routine.emplace_back(line); }

}  // namespace zolt
