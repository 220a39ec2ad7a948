// Appends to ZOLT.LOG in the root folder.
#include "macro/command_log.h"

#include <string>

#include "common/file.h"
#include "config/paths.h"
#include "platform/platform.h"
#include "state/session.h"

namespace zolt {

void append_to_command_log(std::string_view line) {
    if (!session.log_on) return;
    const std::string path = root_path() + "/ZOLT.LOG";
    const std::string entry = std::string(line) + "\r\n";
    File file(path, "ab");
    if (file.write(entry.data(), entry.size()) && file.close()) return;
    session.log_on = false;
    refuse("The command log " + path + " cannot be written. Logging is off.");
}

}  // namespace zolt
