// The program's directories, found from the place of its executable, and the scratch folder of the running process.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zolt {

/// Sets the root directory; "" takes ZOLT_ROOT of the environment, or finds it from the executable. Called once at
/// start-up.
void set_root_path(const std::string& path);
const std::string& root_path();
/// The root, or, where that may not be written to, the user's own configuration folder.
const std::string& writable_root();

/// DATADIR when set, else DATA of the writable root. `make` creates it when missing.
std::string data_path(bool make);
/// IMPORTDIR when set, else the data directory.
std::string import_path();
/// MACRODIR when set, else MAC of the writable root.
std::string macro_path();
std::string ini_path();
/// The system's temporary path with the name of the temporary file.
std::string temporary_file_path();

/// A macro by its name as typed, with or without the extension .mac: looked for in the folder `beside` ("" for none), in
/// the macro directory, in the root's MAC, and in the current directory; "" when it is in none.
std::string find_macro(std::string_view name, const std::string& beside);

/// A folder of this process alone for temporary files, inside the root (inside the system's temporary path when the
/// root is not writable). Made at the first call; "" when neither place takes one.
const std::string& scratch_folder();
void remove_scratch_folder();

/// Scratch folders in the root that killed processes left.
std::vector<std::string> scratch_folders_of_dead_processes();
/// True for the names of the files that undo writes.
bool is_snapshot_name(std::string_view name);
/// Removes those folders; `keep_recent` leaves one that holds a snapshot for a week, so that a start with a user before
/// it can offer to recover it.
enum class Snapshots { keep_recent, remove };
void remove_leftovers_of_dead_processes(Snapshots snapshots);

}  // namespace zolt
