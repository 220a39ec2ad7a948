// The keystroke handler: control keys act at once, other characters build the command line, Enter carries it out.
#pragma once

#include <string_view>

#include "common/arguments.h"
#include "common/keys.h"
#include "platform/platform.h"

namespace zolt {

struct MouseEvent;

constexpr int function_keys = 12;

/// What one key does: a character, a control character, or a named key of common/keys.h.
void handle_keystroke(int character, LineSource source);

/// What the mouse does over the plot while a sub-routine is active; false when the plot is to do what it does without one.
bool handle_mouse(const MouseEvent& event);

/// Posts keys written as text: \r Enter, \e Escape, \b backspace, \F5 Ctrl+F5, \\ backslash, ^X Ctrl+X, ^^ a caret;
/// anything else stands for itself.
void post_keys(std::string_view text, LineSource source);

int cmd_sendkey(Arguments& args);

}  // namespace zolt
