// Splits ZOLT.INI into pairs and applies them.
#include "config/ini.h"

#include "common/file.h"
#include "common/text.h"
#include "config/settings.h"
#include "platform/platform.h"

namespace zolt {

namespace {
constexpr uint64_t largest_ini = 1 << 20;
}

bool read_ini(const std::string& path) {
    std::string content;
    const std::string above = folder_of(folder_of(absolute_path(path))) + "/ZOLT.INI";
    if (!read_whole_file(path, content, largest_ini) && !read_whole_file(above, content, largest_ini)) {
        platform().beep();
        platform().message("ZOLT", Icon::exclamation, "No ZOLT.INI file found.");
        return false;
    }
    std::string_view rest = content;
    for (std::string_view line; take_line(rest, line);) {
        const size_t end = line.find_first_of("=\t");
        if (end != std::string_view::npos) apply_setting(trimmed(line.substr(0, end)), line.substr(end + 1));
    }
    return true;
}

}  // namespace zolt
