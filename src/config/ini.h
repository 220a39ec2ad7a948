// Reading the configuration file ZOLT.INI.
#pragma once

#include <string>

namespace zolt {

/// Applies every known key of the file, or, when it cannot be opened, of the ZOLT.INI in the folder above the one that
/// holds it. Neither there: a beep, "No ZOLT.INI file found.", false, and all settings as they were.
bool read_ini(const std::string& path);

}  // namespace zolt
