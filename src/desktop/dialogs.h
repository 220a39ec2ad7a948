// Message boxes, questions and input boxes.
#pragma once

#include <QWidget>
#include <optional>
#include <string>
#include <string_view>

#include "platform/platform.h"

namespace zolt {

void show_message(QWidget* parent, std::string_view caption, Icon icon, std::string_view text);
Answer ask_question(QWidget* parent, std::string_view caption, std::string_view text, Buttons buttons);
std::optional<std::string> ask_text(QWidget* parent, std::string_view title, std::string_view prompt, std::string_view initial);
/// One processing value; only a number is taken.
std::optional<std::string> ask_value(QWidget* parent, std::string_view prompt, std::string_view initial);
void show_about(QWidget* parent);

}  // namespace zolt
