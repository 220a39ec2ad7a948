// What each key does: Enter, editing keys, control keys, and characters of the line.
#include "app/keystrokes.h"

#include <charconv>

#include "app/command_line.h"
#include "app/completion.h"
#include "app/dispatcher.h"
#include "app/line_history.h"
#include "app/link_player.h"
#include "app/main_loop.h"
#include "app/undo.h"
#include "display/view.h"
#include "display/view_commands.h"
#include "macro/macro_commands.h"
#include "macro/stepper.h"
#include "state/dataset.h"
#include "state/session.h"
#include "state/sub_routine.h"

namespace zolt {

namespace {

bool report_step(bool stepped, const char* what) {
    if (!stepped) return false;
    platform().status(0, what);
    RedrawDisplay();
    return true;
}

// Control keys act at once; those whose work is planned (display modes …) beep.
constexpr struct {
    char letter;
    bool (*act)();
} control_keys[] = {
    {'A', [] { return step_traces(), true; }},
    {'C', [] { return platform().copy_picture(); }},
    {'P', [] { return run_line("Print", LineSource::user) != 0; }},
    {'Y', [] { return report_step(redo_step(), "Redo"); }},
    {'Z', [] { return report_step(undo_step(), "Undo"); }},
};

bool handle_control_key(int key) {
    for (const auto& row : control_keys)
        if (row.letter - '@' == key) return row.act();
    return false;
}

// Arrow keys belong to the line while it holds text; on an empty one they move the plot.
bool move_in_line_or_plot(int characters, double share) {
    if (!typed_text().empty()) return move_caret(characters);
    if (!show.loaded) return false;
    pan_view(show, share);
    RedrawDisplay();
    return true;
}

bool walk_history(bool (*step)(std::string& text)) {
    std::string text(typed_text());
    if (!step(text)) return false;
    ResetCommandText();
    return AppendCommandText(text);
}

bool scale_plot(double factor) {
    if (!show.loaded) return false;
    view_of(show).height *= factor;
    RedrawDisplay();
    return true;
}

bool pan_plot(double share) {
    if (!show.loaded) return false;
    pan_view(show, share);
    RedrawDisplay();
    return true;
}

bool complete_line() {
    const std::string line(typed_text()), longer = completed(line);
    if (longer == line) {
        platform().reply(hint_for(line));
        return false;
    }
    ResetCommandText();
    return AppendCommandText(longer);
}

// Keys that are no characters; one row, one key.
constexpr struct {
    int key;
    bool (*act)();
} named_keys[] = {
    {key_backspace, delete_before_caret},
    {key_delete, delete_before_caret},
    {key_forward_delete, delete_at_caret},
    {key_left, [] { return move_in_line_or_plot(-1, -0.1); }},
    {key_right, [] { return move_in_line_or_plot(1, 0.1); }},
    {key_up, [] { return walk_history(older_line); }},
    {key_down, [] { return walk_history(newer_line); }},
    {key_home, [] { return move_caret_to(false), true; }},
    {key_end, [] { return move_caret_to(true), true; }},
    {key_page_up, [] { return scale_plot(1.25); }},
    {key_page_down, [] { return scale_plot(0.8); }},
    {key_pan_left, [] { return pan_plot(-0.1); }},
    {key_pan_right, [] { return pan_plot(0.1); }},
    {key_complete, complete_line},
};

bool is_walk(int key) { return key == key_up || key == key_down; }

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
    const int named = code == 'r' ? key_enter : code == 'e' ? key_escape : code == 'b' ? key_backspace : 0;
    return named != 0 ? named : static_cast<unsigned char>(code);
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

namespace {

bool is_control(int character) { return character < 32 && character != key_enter && character != key_escape; }

void run_lines_of_routine() {
    while (!session.lines_of_routine.empty()) {
        const std::string line = session.lines_of_routine.front();
        session.lines_of_routine.pop_front();
        run_line(line, LineSource::user);
    }
}

// A sub-routine that is active has every key but control keys and those of macros; Escape still ends what plays.
bool given_to_sub_routine(int character, LineSource source) {
    const bool ends_playback = character == key_escape && source == LineSource::user && playing_back();
    const bool macro_key = character >= key_control_f1 && character < key_control_f1 + function_keys;
    if (session.sub_routine == nullptr || is_control(character) || macro_key || ends_playback) return false;
    if (!session.sub_routine->key(character)) {
        platform().beep();
        platform().status(0, "Sub-Command not known.");
    }
    run_lines_of_routine();
    return true;
}

bool act_on_key(int character, LineSource source) {
    if (character == key_escape) return handle_escape(source), true;
    for (const auto& row : named_keys)
        if (row.key == character) return row.act();
    if (character < 32) return handle_control_key(character);
    // On an empty line < and > are keys of their own; within a line they are characters. ^ begins the control-key prefix.
    if (typed_text().empty() && (character == '<' || character == '>')) return false;
    return character < 256 && insert_at_caret(static_cast<char>(character));
}

}  // namespace

bool handle_mouse(const MouseEvent& event) {
    if (session.sub_routine == nullptr || session.sub_routine->mouse == nullptr) return false;
    const bool taken = session.sub_routine->mouse(event);
    run_lines_of_routine();
    return taken;
}

void handle_keystroke(int character, LineSource source) {
    if (given_to_sub_routine(character, source)) return;
    if (!is_walk(character)) end_walk();
    if (character == key_enter || character == key_line_feed) {
        ExecuteCommandLine(character, source);
        return;
    }
    if (character >= key_control_f1 && character < key_control_f1 + function_keys)
        return run_key_macro(character - key_control_f1 + 1);
    if (!act_on_key(character, source)) platform().beep();
}

}  // namespace zolt
