// Root, configuration and default values at the start; tidying at the end.
#include "app/startup.h"

#include "app/command_line.h"
#include "app/dispatcher.h"
#include "app/link_player.h"
#include "app/main_loop.h"
#include "app/undo.h"
#include "common/file.h"
#include "config/ini.h"
#include "config/paths.h"
#include "config/settings.h"
#include "datafile/native_file.h"
#include "datafile/sections.h"
#include "macro/macro_commands.h"
#include "macro/macro_host.h"
#include "platform/platform.h"
#include "state/dataset.h"
#include "state/session.h"

namespace zolt {

namespace {

// A statement of a macro issues a command as if it had been typed.
int execute_for_macro(std::string_view line) {
    ResetCommandText();
    AppendCommandText(line);
    return ExecuteCommandLine(13, LineSource::macro);
}

void post_key_for_macro(int character) { post_character(character, LineSource::macro); }

}  // namespace

void start_up(const std::string& root, const std::string& ini) {
    macro_host = {.play_line = start_macro_line,
                  .execute = execute_for_macro,
                  .post_key = post_key_for_macro,
                  .command_text = GetCommandText,
                  .wait = hold_playback,
                  .redraw = RedrawDisplay};
    set_root_path(root);
    remove_leftovers_of_dead_processes(Snapshots::keep_recent);
    read_configuration(ini);
    if (settings.data_dir.empty()) data_path(true);
    show.phase = {static_cast<float>(settings.default_pa), static_cast<float>(settings.default_pb),
                  static_cast<float>(settings.default_pc)};
    const std::string macro = setting_text("AutoExecMacro");
    if (!macro.empty()) run_macro(macro);
}

namespace {

bool save_file_a() {
    const std::string path =
        show.file_a.empty() ? platform().file_dialog(FileChoice::save, "Save File A").value_or("") : show.file_a;
    if (path.empty() || !FileWrite(absolute_path(path), show)) return false;
    mark_saved(show);
    return true;
}

}  // namespace

bool may_close() {
    if (!is_unsaved(show)) return true;
    if (show.dims[1].points > 1) {
        platform().message("ZOLT", Icon::exclamation, "2D file.\nSingle step save not possible!");
        return platform().question("ZOLT", "Leave without saving the changes?", Buttons::yes_no) == Answer::yes;
    }
    const std::string name = show.file_a.empty() ? "(untitled)" : show.file_a;
    switch (platform().question("ZOLT", "Save current changes in " + name + "?", Buttons::yes_no_cancel)) {
        case Answer::yes:
            return save_file_a();
        case Answer::no:
            return true;
        case Answer::cancel:
            break;
    }
    return false;
}

void shut_down() {
    DeleteUndoFiles();
    remove_scratch_folder();
}

const char* version_text() { return ZOLT_VERSION; }

}  // namespace zolt
