// Playback of a command text as keystrokes: the links A0 to A9 and L0 to L9, and the lines of macros.
#pragma once

#include <string_view>

#include "common/arguments.h"

namespace zolt {

/// Starts to play a text, `;` standing for Enter; false while another playback runs. The end gives "Link Finished".
bool start_link(std::string_view text);
/// The same for the line of a macro: Enter follows at its end, and the end is silent.
bool start_macro_line(std::string_view line);
/// Posts the next character, or ends the playback.
void link_step();
void stop_link();
/// Tells the player that a line it has typed failed.
void link_line_failed(std::string_view line);

/// Holds link and macro until the time in milliseconds is over (negative: for ever) or `until` says true.
void hold_playback(double milliseconds, bool (*until)());
void release_playback();
/// True while they are held; waits a moment itself, so that the loop around it does not spin.
bool playback_held();

/// Forgets everything (for a fresh start).
void reset_playback();

int play_link(int number);
int repeat_link(int number);

template <int number>
int cmd_link(Arguments& /*args*/) {
    return play_link(number);
}

template <int number>
int cmd_link_of_slices(Arguments& /*args*/) {
    return repeat_link(number);
}

int cmd_sleep(Arguments& args);

}  // namespace zolt
