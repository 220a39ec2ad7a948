// The command line buffer, and what follows a dispatch: status, log, "Not a Valid Command".
#include "app/command_line.h"

#include <algorithm>
#include <array>

#include "app/commands.h"
#include "app/dispatcher.h"
#include "app/line_history.h"
#include "app/link_player.h"
#include "config/settings.h"
#include "macro/command_log.h"
#include "state/session.h"

namespace zolt {

namespace {

constexpr char prompt = '>';
constexpr size_t buffer_size = 256;

std::array<char, buffer_size> buffer = {prompt};
size_t length = 1;
size_t place = 1;          // of the caret, from 1 to length
bool too_long = false;     // characters were lost: half a line is never carried out
std::string last_command;  // of the user, for a lone Enter

}  // namespace

const char* GetCommandText() { return buffer.data(); }

void SetCommandText(std::string_view text) {
    ResetCommandText();
    length = std::min(text.size(), buffer_size - 1);
    std::copy_n(text.begin(), length, buffer.begin());
    length = std::max<size_t>(length, 1);
    place = length;
    too_long = length < text.size();
}

bool AppendCommandText(std::string_view text) {
    if (text.size() > buffer_size - 1 - length) {
        too_long = true;
        return false;
    }
    std::copy(text.begin(), text.end(), buffer.begin() + static_cast<std::ptrdiff_t>(length));
    length += text.size();
    place = length;
    return true;
}

void ResetCommandText() {
    buffer.fill('\0');
    buffer[0] = prompt;
    length = 1;
    place = 1;
    too_long = false;
}

std::string_view typed_text() { return length > 0 ? std::string_view(buffer.data() + 1, length - 1) : std::string_view(); }

size_t caret() { return place - 1; }

bool move_caret(int characters) {
    const auto inside = [](size_t at) { return (static_cast<unsigned char>(buffer[at]) & 0xC0U) == 0x80U; };
    const size_t before = place;
    for (; characters < 0 && place > 1; ++characters)
        while (--place > 1 && inside(place)) {
        }
    for (; characters > 0 && place < length; --characters)
        while (++place < length && inside(place)) {
        }
    return place != before;
}

void move_caret_to(bool end) { place = end ? length : 1; }

bool insert_at_caret(char byte) {
    const size_t at = place;
    if (!AppendCommandText({&byte, 1})) return false;
    const auto from = buffer.begin() + static_cast<std::ptrdiff_t>(at), to = buffer.begin() + static_cast<std::ptrdiff_t>(length);
    std::rotate(from, to - 1, to);
    place = at + 1;
    return true;
}

bool delete_at_caret() {
    const size_t at = place;
    if (!move_caret(1)) return false;
    const size_t count = place - at;
    std::copy(buffer.begin() + static_cast<std::ptrdiff_t>(place), buffer.end(), buffer.begin() + static_cast<std::ptrdiff_t>(at));
    std::fill(buffer.end() - static_cast<std::ptrdiff_t>(count), buffer.end(), '\0');
    length -= count;
    place = at;
    return true;
}

bool delete_before_caret() { return move_caret(-1) && delete_at_caret(); }

namespace {

// The answer a sub-routine waits for is no command: the line is not dispatched, only marked and logged.
int refuse_while_request_pends(const std::string& line, LineSource source) {
    SetCommandText(" ?");
    append_to_command_log(line);
    ResetCommandText();
    session.request_pending = false;
    platform().line_done(line, 0, source);
    return 0;
}

// The line to carry out. Where the configuration says so, Enter alone stands for the user's last command.
std::string entered_line(LineSource source) {
    if (source != LineSource::user) return std::string(typed_text());
    if (typed_text().empty() && !last_command.empty() && setting_switch("CR_FOR_COMMANDS")) AppendCommandText(last_command);
    if (!typed_text().empty()) {
        last_command = typed_text();
        remember_line(last_command);
    }
    return std::string(typed_text());
}

}  // namespace

int ExecuteCommandLine(int key, LineSource source) {
    const std::string line = entered_line(source);
    if (session.request_pending) return refuse_while_request_pends(line, source);
    session.log_line.clear();
    int result = 0;
    if (too_long)
        platform().message("ZOLT", Icon::exclamation,
                           "The command line holds at most 254 characters. The line was longer and was not carried out.");
    else
        result = DispatchCommand();

    session.last_result = result;
    if (result == 1) {
        platform().status(0, session.status_text);
        if (!session.no_log) append_to_command_log(session.log_line.empty() ? line : session.log_line);
    } else if (result != 2) {
        platform().beep();
        platform().status(0, "Not a Valid Command");
        if (length < 80) AppendCommandText(" ?");
        // A line that no key entered is a step of the link itself.
        if (session.link_running && key != 13 && key != 10) platform().status(0, line + " - Not a Valid Command");
    }
    ResetCommandText();
    RedrawDisplay();
    platform().line_done(line, result, source);
    if (result == 0 && (source == LineSource::link || source == LineSource::macro)) link_line_failed(line);
    return result;
}

int run_line(std::string_view line, LineSource source) {
    const std::string typed(typed_text());
    const size_t at = place;
    ResetCommandText();
    AppendCommandText(line);
    Arguments args(line);
    const std::string word = args.next();
    const Command* command = find_command(word);
    if (command == nullptr) command = find_fallback(line);
    const bool undo = session.undo_enabled;
    const bool view_only = command != nullptr && (command->flags & views) != 0;
    if (view_only) session.undo_enabled = false;
    const int result = ExecuteCommandLine(13, source);
    if (view_only) session.undo_enabled = undo;
    AppendCommandText(typed);
    place = at;
    return result;
}

}  // namespace zolt
