// Reading the configuration file ZOLT.INI, and writing back what has been set.
#pragma once

#include <string>

namespace zolt {

/// Applies every known key of the file, or, when it cannot be opened, of the ZOLT.INI in the folder above the one that
/// holds it. Neither there: a beep, "No ZOLT.INI file found.", false, and all settings as they were.
bool read_ini(const std::string& path);

/// The configuration at the start: the named file alone, or ("") the root folder's and over it the user's own where the
/// root is not writable.
bool read_configuration(const std::string& path);
/// The same once more, from the same place.
bool read_configuration_again();

/// Writes the settings that differ from what the file says into it, every other line and their order kept; "" is the
/// file that read_configuration took. False, after its message, when it cannot be written; `path` is then the file.
bool save_ini(std::string& path);

/// The sample file: every key with its help, default or shipped value.
std::string sample_ini();

}  // namespace zolt
