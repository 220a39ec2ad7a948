// The keystroke handler: control keys act at once, other characters build the command line, Enter carries it out.
#pragma once

#include <string_view>

#include "common/arguments.h"
#include "platform/platform.h"

namespace zolt {

/// The key Ctrl+F1 as a character code; Ctrl+F2 to Ctrl+F12 follow. They run the macros of the configuration.
constexpr int key_control_f1 = 0x11001;
constexpr int function_keys = 12;

void handle_keystroke(int character, LineSource source);

/// Posts keys written as text: \r Enter, \e Escape, \b backspace, \F5 Ctrl+F5, \\ backslash, ^X Ctrl+X, ^^ a caret;
/// anything else stands for itself.
void post_keys(std::string_view text, LineSource source);

int cmd_sendkey(Arguments& args);

}  // namespace zolt
