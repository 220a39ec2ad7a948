// What each key does: Enter, editing keys, control keys, and characters of the line.
#include "app/keystrokes.h"

#include "app/command_line.h"
#include "app/dispatcher.h"
#include "app/undo.h"

namespace zolt {

namespace {

enum Key { key_backspace = 8, key_line_feed = 10, key_enter = 13, key_redo = 25, key_undo = 26, key_escape = 27, key_delete = 127 };

// Control keys whose work is planned (display option, bitmap copy, display modes …) beep.
void handle_control_key(int key) {
    const bool stepped = key == key_undo ? undo_step() : key == key_redo && redo_step();
    if (!stepped) return platform().beep();
    platform().status(0, key == key_undo ? "Undo" : "Redo");
    RedrawDisplay();
}

}  // namespace

void handle_keystroke(int character, LineSource source) {
    switch (character) {
        case key_enter:
        case key_line_feed:
            ExecuteCommandLine(character, source);
            return;
        case key_backspace:
        case key_delete:
            if (!delete_last_character()) platform().beep();
            return;
        case key_escape:
            ResetCommandText();
            return;
        default:
            break;
    }
    if (character < 32) return handle_control_key(character);
    const bool empty = typed_text().empty();
    // On an empty line < and > are keys of their own; within a line they are characters. ^ begins the control-key prefix.
    if (empty && (character == '<' || character == '>')) return handle_control_key(character);
    const char text = static_cast<char>(character);
    if (!AppendCommandText({&text, 1})) platform().beep();
}

}  // namespace zolt
