// Appends to the log file, and keeps the entries of this run for data files.
#include "macro/command_log.h"

#include <algorithm>
#include <deque>

#include "common/file.h"
#include "config/paths.h"
#include "platform/platform.h"
#include "state/session.h"

namespace zolt {

namespace {

constexpr size_t largest_section = 256 << 10;

std::string chosen_path;
std::deque<std::string> entries;  // of this run, line ends included
size_t entry_bytes = 0;

void keep(const std::string& entry) {
    entries.push_back(entry);
    for (entry_bytes += entry.size(); entry_bytes > largest_section; entries.pop_front()) entry_bytes -= entries.front().size();
}

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
    if (file.write(entry) && file.close()) return keep(entry);
    session.log_on = false;
    refuse("The command log " + path + " cannot be written. Logging is off.");
}

void reset_command_log() {
    entries.clear();
    entry_bytes = 0;
    chosen_path.clear();
}

bool clear_command_log() {
    entries.clear();
    entry_bytes = 0;
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

std::string command_log_section() {
    if (entries.empty()) return {};
    std::string section = "##$CMD_LOG\r\n";
    // An entry must not look like a label of the file around it.
    for (const std::string& entry : entries) section += (entry.starts_with("##") ? " " : "") + entry;
    return section + "##$END_CMD_LOG\r\n";
}

}  // namespace zolt
