// The macro stepper: one line of the running macro for each idle step of the main loop.
#pragma once

#include <string>

namespace zolt {

/// Starts the macro in a file; a running one is left. False, after its message, when the file cannot be opened or does
/// not begin with ZOLTMACRO.
bool StartMacro(const std::string& path);

/// Runs a macro of the program's own, which its first failed line ends: as one that the running macro calls, or else by
/// itself. False, after its message.
bool run_own_macro(const std::string& path);
/// Whether a line that fails ends the running macro.
bool stops_on_error();

/// Carries out the next line, or hands it to the keystroke player. Called while session.macro_running is set and
/// session.link_running is not. False when no macro is on its way.
bool MacroStep();

/// The three ends of a macro, with their messages. Those of failure end the macros that called it, too.
void EndMacro();
void AbortMacro();
void MacroError();

/// Forgets macro and registers (for a fresh start).
void reset_macros();

}  // namespace zolt
