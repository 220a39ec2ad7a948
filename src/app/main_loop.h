// The message queue, the idle step and the loop that runs them; a front end only pumps it.
#pragma once

#include "platform/platform.h"

namespace zolt {

/// Queues a character for the keystroke handler.
void post_character(int character, LineSource source);
/// Queues the close message: the program is to end.
void post_close();

/// Handles queued messages and runs idle steps until nothing is left to do, a message waits outside the core's queue,
/// or the close message came. False once it has come.
bool run_main_loop();

/// One idle step: the next keystroke of a link that plays, else the next line of a macro that runs. False when there is
/// nothing to do.
bool idle_step();

/// Forgets queued messages, a close message, and what plays (for a fresh start).
void reset_main_loop();

}  // namespace zolt
