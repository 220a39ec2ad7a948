// From a typed line to the handler that carries it out.
#pragma once

namespace zolt {

/// Dispatches the line in the command line buffer. 0: unknown, refused or cancelled; 1: done; 2: done without status
/// text and log entry.
int DispatchCommand();

/// Asks for a redraw of the display, as nearly every command does after its work.
void RedrawDisplay();

}  // namespace zolt
