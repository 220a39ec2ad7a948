// The root folder and its parts, and the locked scratch folder of the process.
#include "config/paths.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string_view>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "common/arguments.h"
#include "common/file.h"
#include "common/text.h"
#include "state/session.h"

namespace zolt {

namespace fs = std::filesystem;

namespace {

std::string root, writable;

// The scratch folder of this process: kept locked while it lives, so that others can tell it from a dead one's.
struct Scratch {
    std::string path;
    int lock = -1;
} scratch;

constexpr std::string_view scratch_prefix = "zolt-scratch-";

// The folder of the executable; its parent when that is a build folder, so that a development build finds the files of
// the tree above it. The current folder when the system does not say.
std::string root_of_executable() {
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    if (error) return absolute_path(".");
    const fs::path folder = program.parent_path();
    for (const char* build : {"DEBUG", "RELEASE", "SHARE_DEBUG", "SHARE_REL"})
        if (same_word(folder.filename().string(), build)) return folder.parent_path().string();
    // Installed as systems do it, the program has its files in share/zolt beside its bin.
    if (folder.filename() == "bin") {
        const std::string share = (folder.parent_path() / "share" / "zolt").string();
        if (file_facts(share).folder) return share;
    }
    return folder.string();
}

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

// The folder of the user's own files; the root where the system names none.
std::string user_folder() {
    const std::string configured = environment("XDG_CONFIG_HOME"), home = environment("HOME");
    if (configured.starts_with('/')) return configured + "/zolt";
    return home.starts_with('/') ? home + "/.config/zolt" : root;
}

bool may_be_written(const std::string& folder) { return !file_facts(folder).exists || ::access(folder.c_str(), W_OK) == 0; }

std::string folder_setting(const std::string& configured, const std::string& otherwise) {
    return configured.empty() ? otherwise : absolute_path(typed_path(configured));
}

// Takes the lock of a folder without waiting; -1 when another process holds it.
int lock_folder(const std::string& path) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor >= 0 && ::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        ::close(descriptor);
        return -1;
    }
    return descriptor;
}

// Calls use(path) for every scratch folder whose process is gone: nobody holds its lock any more. It stays locked for
// the time of the call.
template <class Use>
void each_dead_scratch_folder(const std::string& parent, Use use) {
    std::error_code error;
    for (fs::directory_iterator entry(parent, error), end; !error && entry != end; entry.increment(error)) {
        if (!entry->path().filename().string().starts_with(scratch_prefix)) continue;
        const int lock = lock_folder(entry->path().string());
        if (lock < 0) continue;
        use(entry->path());
        ::close(lock);
    }
}

bool holds_recent_snapshot(const fs::path& folder) {
    constexpr auto week = std::chrono::hours(24 * 7);
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        std::error_code ignored;
        if (is_snapshot_name(entry->path().filename().string()) &&
            fs::file_time_type::clock::now() - entry->last_write_time(ignored) < week)
            return true;
    }
    return false;
}

void remove_dead_scratch_folders(const std::string& parent, Snapshots snapshots) {
    each_dead_scratch_folder(parent, [snapshots](const fs::path& folder) {
        std::error_code ignored;
        if (snapshots == Snapshots::remove || !holds_recent_snapshot(folder)) fs::remove_all(folder, ignored);
    });
}

// Makes and locks a scratch folder. It gets its final name only once it is locked, so that no other process can take it
// for a dead one's in between.
bool make_scratch_folder(const std::string& parent) {
    std::string name = parent + "/zolt-new-XXXXXX";
    if (::mkdtemp(name.data()) == nullptr) return false;
    const int lock = lock_folder(name);
    const std::string path = format_text("%s/%s%d%s", parent.c_str(), std::string(scratch_prefix).c_str(),
                                         static_cast<int>(::getpid()), name.substr(name.size() - 7).c_str());
    if (lock < 0 || ::rename(name.c_str(), path.c_str()) != 0) {
        if (lock >= 0) ::close(lock);
        ::rmdir(name.c_str());
        return false;
    }
    scratch = {path, lock};
    return true;
}

}  // namespace

void set_root_path(const std::string& path) {
    const std::string named = path.empty() ? environment("ZOLT_ROOT") : path;
    root = named.empty() ? root_of_executable() : absolute_path(named);
    writable = may_be_written(root) ? root : user_folder();
}

const std::string& root_path() { return root; }
const std::string& writable_root() { return writable; }

std::string data_path(bool make) {
    const std::string path = folder_setting(settings.data_dir, writable + "/DATA");
    std::error_code ignored;
    if (make) fs::create_directories(path, ignored);
    return path;
}

std::string import_path() { return folder_setting(settings.import_dir, data_path(false)); }

std::string macro_path() { return folder_setting(settings.macro_dir, writable + "/MAC"); }

std::string ini_path() { return root + "/ZOLT.INI"; }

std::string temporary_file_path() {
    std::error_code error;
    const fs::path folder = fs::temp_directory_path(error);
    return (error ? std::string("/tmp") : folder.string()) + "/ZOLTFILE.TMP";
}

std::string find_macro(std::string_view name, const std::string& beside) {
    const std::string typed = typed_path(name);
    for (const std::string& folder : {beside, macro_path(), root + "/MAC", absolute_path(".")}) {
        if (typed.empty() || folder.empty()) continue;
        const std::string path = typed.starts_with('/') ? typed : folder + "/" + typed;
        for (const std::string& file : {path, path + ".mac"})
            if (file_facts(file).regular) return absolute_path(file);
    }
    return {};
}

const std::string& scratch_folder() {
    if (!scratch.path.empty()) return scratch.path;
    std::error_code error;
    const fs::path temporary = fs::temp_directory_path(error);
    for (const std::string& parent : {root, error ? std::string("/tmp") : temporary.string()}) {
        if (make_scratch_folder(parent)) break;
    }
    return scratch.path;
}

void remove_scratch_folder() {
    if (scratch.path.empty()) return;
    std::error_code ignored;
    fs::remove_all(scratch.path, ignored);
    ::close(scratch.lock);
    scratch = {};
}

std::vector<std::string> scratch_folders_of_dead_processes() {
    std::vector<std::string> folders;
    each_dead_scratch_folder(root, [&](const fs::path& folder) { folders.push_back(folder.string()); });
    return folders;
}

bool is_snapshot_name(std::string_view name) { return name.starts_with("Undo") && name.ends_with(".tmp"); }

void remove_leftovers_of_dead_processes(Snapshots snapshots) {
    remove_dead_scratch_folders(root, snapshots);
    std::error_code error;
    const fs::path temporary = fs::temp_directory_path(error);
    // The place that takes over where the root is not writable.
    if (!error && ::access(root.c_str(), W_OK) != 0) remove_dead_scratch_folders(temporary.string(), snapshots);
}

}  // namespace zolt
