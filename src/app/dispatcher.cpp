// Matches the first word of a line with the tables and runs the row's handler.
#include "app/dispatcher.h"

#include <string>

#include "analysis/peak_list.h"
#include "app/command_line.h"
#include "app/commands.h"
#include "app/help.h"
#include "app/main_loop.h"
#include "app/undo.h"
#include "common/text.h"
#include "datafile/integrals.h"
#include "platform/platform.h"
#include "state/dataset.h"
#include "state/session.h"

namespace zolt {

void RedrawDisplay() { platform().redraw(); }

namespace {

int run_command(const Command& command, Arguments& args) {
    if (command.handler == nullptr) {
        if (args.ask_usage() && command.usage != command.keyword) return show_reply(command.usage);
        platform().reply(format_text("  - %s is planned, but not there yet.", command.keyword));
        return 0;
    }
    // A usage line is given without data, too.
    if ((command.flags & needs_data) != 0 && !show.loaded && !args.ask_usage())
        return refuse(format_text("%s needs a data set.\nOpen one with GA or import one with IM.", command.keyword));
    const int result = command.handler(args);
    refresh_integrals(show);
    refresh_peaks(show);
    if (result == 1 && (command.flags & redraws) != 0) RedrawDisplay();
    return result;
}

// The line ^C acts exactly like the key Ctrl+C.
int post_control_key(char letter) {
    const int character = upper(letter) - 64;
    platform().character_posted(character);
    post_character(character, LineSource::user);
    RedrawDisplay();
    return 1;
}

}  // namespace

int DispatchCommand() {
    const std::string line(typed_text());
    // A typed control key acts as the key does: it is no command, and ^Y must still find what can be redone.
    const bool control_key = line.size() > 1 && line[0] == '^';
    if (IsUndoEnabled() && !control_key) SaveUndoSnapshot();
    session.no_log = false;
    Arguments args(line);
    const std::string word = args.next();
    if (word.empty()) return 0;
    if (control_key) return post_control_key(line[1]);
    if (const Command* command = find_command(word)) return run_command(*command, args);
    if (const Command* command = find_fallback(line)) return run_command(*command, args);
    suggest_commands(word);
    return 0;
}

}  // namespace zolt
