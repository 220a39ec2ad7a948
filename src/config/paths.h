// The program's directories, found from the place of its executable, and the scratch folder of the running process.
#pragma once

#include <string>

namespace zolt {

/// Sets the root directory; "" finds it from the executable. Called once at start-up.
void set_root_path(const std::string& path);
const std::string& root_path();

/// DATADIR when set, else DATA of the root. `make` creates it when missing.
std::string data_path(bool make);
std::string macro_path();
std::string ini_path();

/// A folder of this process alone for temporary files, inside the root (inside the system's temporary path when the
/// root is not writable). Made at the first call; "" when neither place takes one.
const std::string& scratch_folder();
void remove_scratch_folder();
/// Removes the scratch folders that killed processes left in the root. Called at start-up.
void remove_leftovers_of_dead_processes();

}  // namespace zolt
