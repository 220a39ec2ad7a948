// Start and end of the program, the same for every front end.
#pragma once

#include <string>

namespace zolt {

/// Sets the root folder ("": found from the executable), reads the configuration ("": ZOLT.INI of the root), clears
/// away what killed processes left, and starts the macro AutoExecMacro, which the main loop then runs.
void start_up(const std::string& root, const std::string& ini);
/// Asks what becomes of unsaved changes before the program ends; false when it is to stay.
bool may_close();
/// Removes the scratch folder.
void shut_down();

const char* version_text();

}  // namespace zolt
