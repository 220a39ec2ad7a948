// What each key does: Enter, editing keys, control keys, and characters of the line.
#include "app/keystrokes.h"

#include <charconv>

#include "app/command_line.h"
#include "app/dispatcher.h"
#include "app/link_player.h"
#include "app/main_loop.h"
#include "app/undo.h"
#include "macro/macro_commands.h"
#include "macro/stepper.h"
#include "state/session.h"

namespace zolt {

namespace {

enum Key {
    key_none = 0,
    key_backspace = 8,
    key_line_feed = 10,
    key_enter = 13,
    key_redo = 25,
    key_undo = 26,
    key_escape = 27,
    key_delete = 127
};

// Control keys whose work is planned (display option, bitmap copy, display modes …) beep.
void handle_control_key(int key) {
    const bool stepped = key == key_undo ? undo_step() : key == key_redo && redo_step();
    if (!stepped) return platform().beep();
    platform().status(0, key == key_undo ? "Undo" : "Redo");
    RedrawDisplay();
}

// Escape of the user: what plays is ended, a macro only when he agrees; else the typed line is dropped.
void handle_escape(LineSource source) {
    const bool users = source == LineSource::user;
    if (users && session.macro_running) {
        if (platform().question("Macro", "Abort macro?", Buttons::yes_no) != Answer::yes) return;
        AbortMacro();
    } else if (users && session.link_running) {
        stop_link();
    }
    if (users) release_playback();
    ResetCommandText();
}

// The number behind \F, 1 to 12; 0, and nothing taken, without one.
int take_function_key(std::string_view& text) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + std::min<size_t>(text.size(), 2), number);
    if (error != std::errc{} || number < 1) return 0;
    const bool two_digits = end - text.data() == 2 && number <= function_keys;
    if (end - text.data() == 2 && !two_digits) number /= 10;
    text.remove_prefix(two_digits ? 2 : 1);
    return number;
}

// The key that the text begins with, taken off its front.
int take_key(std::string_view& text) {
    const char first = text[0];
    text.remove_prefix(1);
    if ((first != '\\' && first != '^') || text.empty()) return static_cast<unsigned char>(first);
    const char code = text[0];
    text.remove_prefix(1);
    if (first == '^') return code == '^' ? '^' : code & 0x1F;
    if (code == 'F')
        if (const int number = take_function_key(text)) return key_control_f1 + number - 1;
    const Key named = code == 'r' ? key_enter : code == 'e' ? key_escape : code == 'b' ? key_backspace : key_none;
    return named != key_none ? int{named} : static_cast<unsigned char>(code);
}

}  // namespace

void post_keys(std::string_view text, LineSource source) {
    while (!text.empty()) post_character(take_key(text), source);
}

int cmd_sendkey(Arguments& args) {
    std::string_view keys = args.rest();
    keys.remove_prefix(std::min(keys.find_first_not_of(" ="), keys.size()));
    if (keys.empty() || keys == "?" || keys == "/?")
        return show_reply(
            "SENDKEY <keys>: \\r Enter, \\e Escape, \\b backspace, \\F5 Ctrl+F5, \\\\ backslash, ^X Ctrl+X, ^^ a caret");
    post_keys(keys, session.macro_running ? LineSource::macro : session.link_running ? LineSource::link : LineSource::user);
    return 1;
}

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
            handle_escape(source);
            return;
        default:
            break;
    }
    if (character >= key_control_f1 && character < key_control_f1 + function_keys)
        return run_key_macro(character - key_control_f1 + 1);
    if (character < 32) return handle_control_key(character);
    const bool empty = typed_text().empty();
    // On an empty line < and > are keys of their own; within a line they are characters. ^ begins the control-key prefix.
    if (empty && (character == '<' || character == '>')) return handle_control_key(character);
    const char text = static_cast<char>(character);
    if (!AppendCommandText({&text, 1})) platform().beep();
}

}  // namespace zolt
