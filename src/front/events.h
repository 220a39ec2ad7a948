// Events on standard output: plain text for people, JSON lines for programs. Flushed line by line.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/platform.h"

namespace zolt {

void set_json_output(bool on);
bool json_output();

void print_message(std::string_view caption, Icon icon, std::string_view text);
void print_question(std::string_view caption, std::string_view text, Buttons buttons, Answer answer);
/// kind: open, save, input or box.
void print_dialog(std::string_view kind, std::string_view title, const std::optional<std::string>& answer);
void print_reply(std::string_view text);
void print_status(int pane, std::string_view text);
void print_beep();
void print_post(int character);
void print_clipboard(std::string_view text);
void print_close();
void print_line(std::string_view text, int result, LineSource source);
void print_state();
/// A recognised file; number 0, key "" and the reason as name for another one. One line, tabs between its five fields.
void print_detection(const std::string& file, int number, std::string_view key, std::string_view name, std::string_view step);

}  // namespace zolt
