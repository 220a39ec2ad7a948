// Keys that are no characters, as codes beyond the last Unicode character.
#pragma once

namespace zolt {

enum NamedKey {
    key_backspace = 8,
    key_line_feed = 10,
    key_enter = 13,
    key_escape = 27,
    key_delete = 127,
    key_control_f1 = 0x110001,  ///< Ctrl+F2 to Ctrl+F12 follow; they run the macros of the configuration
    key_left = 0x110021,
    key_right,
    key_up,
    key_down,
    key_home,
    key_end,
    key_page_up,
    key_page_down,
    key_pan_left,  ///< Ctrl+Left and Ctrl+Right: the plot moves, whatever the command line holds
    key_pan_right,
    key_forward_delete,
    key_complete,  ///< the Tab key (the character 9 is Ctrl+I)
    key_last
};

}  // namespace zolt
