// The command line: its buffer, and the executor that carries a finished line out.
#pragma once

#include <string>
#include <string_view>

#include "platform/platform.h"

namespace zolt {

/// The buffer of 256 characters: the prompt `>`, the typed text from character 1, and zeros.
const char* GetCommandText();
/// Copies a whole text, prompt included, over the buffer.
void SetCommandText(std::string_view text);
/// False when the text does not fit; the line is then marked as too long and will not be carried out.
bool AppendCommandText(std::string_view text);
void ResetCommandText();

/// The text behind the prompt.
std::string_view typed_text();
/// Where the next typed character goes, in bytes of the typed text.
size_t caret();
/// Moves the caret by whole characters; false at the end of the text.
bool move_caret(int characters);
/// To the start or the end of the typed text.
void move_caret_to(bool end);
/// Puts one byte of the text in at the caret; false when the line is full.
bool insert_at_caret(char byte);
/// Drops the character before or behind the caret (a whole UTF-8 one); false when there is none.
bool delete_before_caret();
bool delete_at_caret();

/// Carries out a line that was not typed, such as one of a menu or of the mouse; what the user has typed so far stays. A
/// command that changes no more than the view takes no undo snapshot.
int run_line(std::string_view line, LineSource source);

/// Carries out the line in the buffer; `key` is 13 or 10. Returns the result of the line.
int ExecuteCommandLine(int key, LineSource source);

}  // namespace zolt
