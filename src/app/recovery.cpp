// Looks through the scratch folders of dead processes for the newest snapshot.
#include "app/recovery.h"

#include <filesystem>
#include <string>
#include <utility>

#include "config/paths.h"
#include "datafile/native_file.h"
#include "platform/platform.h"
#include "state/dataset.h"

namespace zolt {

namespace fs = std::filesystem;

namespace {

std::string newest_snapshot_of_the_dead() {
    std::string newest;
    fs::file_time_type time = fs::file_time_type::min();
    for (const std::string& folder : scratch_folders_of_dead_processes()) {
        std::error_code error;
        for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
            std::error_code ignored;
            const fs::file_time_type written = entry->last_write_time(ignored);
            if (ignored || !is_snapshot_name(entry->path().filename().string()) || written < time) continue;
            newest = entry->path().string();
            time = written;
        }
    }
    return newest;
}

}  // namespace

void offer_recovery() {
    const std::string snapshot = newest_snapshot_of_the_dead();
    if (!snapshot.empty() &&
        platform().question("ZOLT", "Recover the data set of an interrupted run?", Buttons::yes_no) == Answer::yes) {
        DataSet data;
        if (FileRead(snapshot, data)) {
            // It belongs to no file until the user saves it.
            data.file_a.clear();
            data.path.clear();
            data.changed = true;
            data.phase = show.phase;
            show = std::move(data);
        }
    }
    remove_leftovers_of_dead_processes(Snapshots::remove);
}

}  // namespace zolt
