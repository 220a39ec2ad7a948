// What the macro stepper asks of the program around it: the keystroke player, the dispatcher, the message queue. Filled
// in at start-up, so that macros need not know who does it.
#pragma once

#include <string_view>

namespace zolt {

struct MacroHost {
    /// Types a line into the command line by the keystroke player, Enter at its end; false while another playback runs.
    bool (*play_line)(std::string_view line);
    /// Carries a command line out at once; its result.
    int (*execute)(std::string_view line);
    /// Posts a key to the main window.
    void (*post_key)(int character);
    /// The text of the command line, prompt included.
    const char* (*command_text)();
    /// Holds the playback until the time is over, or `until` (which may be empty) says true; negative: for ever.
    void (*wait)(double milliseconds, bool (*until)());
    void (*redraw)();
};

extern MacroHost macro_host;

}  // namespace zolt
