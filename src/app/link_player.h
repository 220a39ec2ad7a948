// Playback of a command text as keystrokes: links, and later the lines of macros.
#pragma once

#include <string_view>

#include "common/arguments.h"

namespace zolt {

/// Starts to play a text, `;` standing for Enter; false while another playback runs.
bool start_link(std::string_view text);
/// Posts the next character, or ends the playback with "Link Finished".
void link_step();
void stop_link();

int play_link(int number);

template <int number>
int cmd_link(Arguments& /*args*/) {
    return play_link(number);
}

}  // namespace zolt
