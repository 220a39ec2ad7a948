// The interactive prompt: a line with editing, history and completion of command words.
#pragma once

#include <string>

namespace zolt {

/// Asks for a line behind the prompt; false at the end of input.
bool read_prompt_line(const char* prompt, std::string& line);
/// Asks for an answer, which does not go into the history.
bool read_prompt_answer(const std::string& prompt, std::string& answer);

/// From now on Ctrl+C ends what a macro or link plays, not the program; a second one, before it was noticed, does.
void catch_interrupts();
/// True when Ctrl+C was pressed; take_interrupt forgets it.
bool interrupt_waiting();
bool take_interrupt();

}  // namespace zolt
