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
/// Drops the last typed character (a whole UTF-8 one); false when there is none.
bool delete_last_character();

/// Carries out the line in the buffer; `key` is 13 or 10. Returns the result of the line.
int ExecuteCommandLine(int key, LineSource source);

}  // namespace zolt
