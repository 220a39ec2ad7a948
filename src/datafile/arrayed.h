// The Arrayed modes: levels at which the slices of File A are held in memory, and the ways between them.
#pragma once

#include <string_view>

#include "common/arguments.h"

namespace zolt {

/// Levels by what they hold: 1 the slices of the current plane, 2 the same as pairs, 3 the planes of the current cube,
/// 4 everything.
enum ArrayedLevel { non_arrayed = 0, complex_arrayed = 1, pairwise_arrayed = 2, arrayed_3d = 3, arrayed_4d = 4 };

/// The level at which data of a process type are worked on.
ArrayedLevel level_of_type(std::string_view process_type);

/// The name that the status bar shows for a level.
const char* arrayed_name(int level);

/// Loads File A's slices at a level. `from_tppi` declares dimension 2 sequential on the way in. False, after its message,
/// with the data set as it was.
bool enter_arrayed(ArrayedLevel level, bool from_tppi = false);

/// Back to level 0: header and selected slice come from File A again. Asks about unsaved changes unless commands are
/// played back. False when refused or failed: the mode stays.
bool leave_arrayed();

int cmd_array(Arguments& args);

}  // namespace zolt
