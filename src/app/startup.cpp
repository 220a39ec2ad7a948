// Root, configuration and default values at the start; tidying at the end.
#include "app/startup.h"

#include "app/undo.h"
#include "config/ini.h"
#include "config/paths.h"
#include "state/dataset.h"
#include "state/session.h"

namespace zolt {

void start_up(const std::string& root, const std::string& ini) {
    set_root_path(root);
    remove_leftovers_of_dead_processes(Snapshots::keep_recent);
    read_ini(ini.empty() ? ini_path() : ini);
    show.phase = {static_cast<float>(settings.default_pa), static_cast<float>(settings.default_pb), static_cast<float>(settings.default_pc)};
}

void shut_down() {
    DeleteUndoFiles();
    remove_scratch_folder();
}

const char* version_text() { return ZOLT_VERSION; }

}  // namespace zolt
