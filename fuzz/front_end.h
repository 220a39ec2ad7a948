// What the fuzz targets share: a front end that says nothing, and a start in a folder of their own.
#pragma once

#include <cstdlib>

#include <unistd.h>

#include "app/startup.h"
#include "platform/silent_platform.h"

namespace zolt::fuzz {

// A folder of its own, which is the current one and the root, and no rights to write anywhere else.
inline void start_in_own_folder() {
    static SilentPlatform front_end;
    char folder[] = "/tmp/zolt-fuzz-XXXXXX";
    if (mkdtemp(folder) == nullptr || chdir(folder) != 0) std::abort();
    if (geteuid() == 0 && (chown(folder, 65534, 65534) != 0 || setgid(65534) != 0 || setuid(65534) != 0)) std::abort();
    set_platform(&front_end);
    start_up(folder, "");
}

}  // namespace zolt::fuzz
