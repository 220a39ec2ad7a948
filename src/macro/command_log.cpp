// Appends to the log file, and to the history that data sets carry into their files.
#include "macro/command_log.h"

#include <algorithm>

#include "common/file.h"
#include "config/paths.h"
#include "platform/platform.h"
#include "state/dataset.h"
#include "state/session.h"

namespace zolt {

namespace {

std::string chosen_path;

}  // namespace

std::string command_log_path() { return chosen_path.empty() ? data_path(true) + "/ZOLT.LOG" : chosen_path; }

void set_command_log_path(const std::string& path) { chosen_path = path; }

void append_to_command_log(std::string_view line) {
    if (!session.log_on) return;
    const std::string path = command_log_path();
    const std::string entry = std::string(line) + "\r\n";
    const FileFacts facts = file_facts(path);
    // Writing to a pipe could wait for ever.
    File file;
    if (!facts.exists || facts.regular) file = File(path, "ab");
    if (file.write(entry) && file.close()) return show.command_log.append(line);
    session.log_on = false;
    refuse("The command log " + path + " cannot be written. Logging is off.");
}

void reset_command_log() { chosen_path.clear(); }

bool clear_command_log() {
    show.command_log = {};
    const std::string path = command_log_path();
    const FileFacts facts = file_facts(path);
    if (!facts.exists || !facts.regular) return !facts.exists;
    File file(path, "wb");
    return file && file.close();
}

std::string command_log_text(size_t limit) {
    const std::string path = command_log_path();
    const uint64_t size = file_facts(path).size;
    std::string text(std::min<uint64_t>(size, limit), '\0');
    File file = open_for_reading(path);
    if (!file.seek(size - text.size()) || !file.read(text.data(), text.size())) return {};
    // Half an entry at the front is none.
    return text.size() < size ? text.substr(std::min(text.find('\n'), text.size() - 1) + 1) : text;
}

}  // namespace zolt
