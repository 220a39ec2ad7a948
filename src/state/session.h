// What belongs to the run and not to a data set: the flags that commands share, and the configuration values.
#pragma once

#include <array>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "state/peak_options.h"

namespace zolt {

struct SubRoutine;

/// Flags and texts of the running program.
struct Session {
    bool macro_running = false;
    bool link_running = false;
    bool no_log = false;                       ///< set by a handler whose own line is not to be logged
    bool request_pending = false;              ///< a dialog-like sub-routine waits for its own answer: no line is dispatched
    const SubRoutine* sub_routine = nullptr;   ///< has taken over the keys; nullptr: they build the command line
    std::deque<std::string> lines_of_routine;  ///< typed by a sub-routine, to be carried out once its key or gesture is done
    std::string log_line;                      ///< what the log records instead of the typed line, "" for the line itself
    bool undo_enabled = false;
    int undo_slot = -1;  ///< index of the newest snapshot, -1 before the first
    bool expert = false;
    bool integrals_shown = true;  ///< the plot shows curves and values of the integrals
    bool log_on = false;
    bool fills_clipboard = true;  ///< commands put the lists that they show on the clipboard, too
    PeakOptions peaks;
    int header_type = 3;                ///< configured type of written native files, 1 to 3
    int byte_order = 1;                 ///< of written native files: 1 Intel order, 2 and 3 big-endian
    std::string status_text = "Ready";  ///< shown in pane 0 after a command that worked
    int last_result = 0;                ///< of the last command line: 0, 1 or 2
    int failed_macros = 0;              ///< macros of this run that ended in an error or an abort
    /// What SET, ASK and DO statements of macros leave for the commands, by keyword in capitals (ZOF1PPM, RDPTS …).
    std::map<std::string, std::string, std::less<>> macro_values;
};

extern Session session;

/// Configuration values, as ZOLT.INI sets them; config/settings.cpp has their table of keys.
struct Settings {
    bool no_file_overwrite = false;
    bool bruker_filter = true;  ///< false: the group delay of digitally filtered data is left alone
    bool ri_on_import = false, bruker_xwin_ri = false, bruker_aspect_ri = false;  ///< imports swap real and imaginary
    double default_pa = 0, default_pb = 0, default_pc = 0;
    std::string data_dir, import_dir, macro_dir, import_out_dir, zz_file_path, fft_wisdom;
    std::array<std::string, 10> links;  ///< LINK0 to LINK9
    /// Keys without a field above that were set, as text, by name in capitals; setting_text() of config/settings.h reads them.
    std::map<std::string, std::string, std::less<>> values;
};

extern Settings settings;

/// Puts a list that a command shows on the clipboard, too, unless the user has switched that off.
void list_to_clipboard(std::string_view text);

/// True while a link run or a macro plays commands: questions of destructive commands are then not asked.
bool playing_back();

}  // namespace zolt
