// Splits ZOLT.INI into pairs, applies them, and writes the file back with what has changed.
#include "config/ini.h"

#include <filesystem>
#include <map>
#include <vector>

#include "common/file.h"
#include "common/text.h"
#include "config/paths.h"
#include "config/settings.h"
#include "platform/platform.h"

namespace zolt {

namespace {

constexpr uint64_t largest_ini = 1 << 20;

// The files of the last read_configuration.
struct Sources {
    std::string named;  // as it was called for
    std::string own;    // the file that save_ini writes to
    std::string below;  // what is read before it, "" for nothing
} sources;

struct Pair {
    std::string_view key, value;
};

// The pair of a line; an empty key for a comment or a line that is none.
Pair pair_of(std::string_view line) {
    if (line.starts_with("\xEF\xBB\xBF")) line.remove_prefix(3);
    const std::string_view text = trimmed(line);
    const size_t end = text.find_first_of("=\t");
    if (end == std::string_view::npos || text[0] == ';' || text[0] == '#') return {};
    const size_t value = text.find_first_not_of("=\t ", end);
    return {trimmed(text.substr(0, end)), value == std::string_view::npos ? std::string_view{} : text.substr(value)};
}

template <class Use>
void each_pair(std::string_view content, Use use) {
    for (std::string_view line; take_line(content, line);) {
        const Pair pair = pair_of(line);
        if (!pair.key.empty()) use(pair);
    }
}

std::string fallback_of(const std::string& path) { return folder_of(folder_of(absolute_path(path))) + "/ZOLT.INI"; }

// The file that serves for this path: itself, or the one above; "" when neither can be read.
std::string readable_ini(const std::string& path, std::string& content) {
    for (const std::string& file : {path, fallback_of(path)})
        if (read_whole_file(file, content, largest_ini)) return file;
    return {};
}

void apply(std::string_view content) {
    each_pair(content, [](const Pair& pair) { apply_setting(pair.key, pair.value); });
}

bool no_ini_found() {
    platform().beep();
    platform().message("ZOLT", Icon::exclamation, "No ZOLT.INI file found.");
    return false;
}

}  // namespace

bool read_ini(const std::string& path) {
    std::string content;
    if (readable_ini(path, content).empty()) return no_ini_found();
    apply(content);
    return true;
}

bool read_configuration(const std::string& path) {
    const std::string first = absolute_path(path.empty() ? ini_path() : path);
    std::string content;
    const std::string found = readable_ini(first, content);
    apply(content);
    sources = {path, found.empty() ? first : found, ""};
    bool read = !found.empty();
    if (path.empty() && writable_root() != root_path()) {
        sources = {path, writable_root() + "/ZOLT.INI", found};
        if (read_whole_file(sources.own, content, largest_ini)) {
            apply(content);
            read = true;
        }
    }
    return read || no_ini_found();
}

bool read_configuration_again() { return read_configuration(std::string(sources.named)); }

// ------------------------------------------------------------------------------------------------------------- writing

namespace {

using Values = std::map<const SettingKey*, std::string>;

void read_values(std::string_view content, Values& values) {
    each_pair(content, [&](const Pair& pair) {
        const SettingKey* key = find_setting(pair.key);
        const auto text = key != nullptr ? canonical_value(*key, pair.value) : std::nullopt;
        if (text) values[key] = *text;
    });
}

std::vector<std::string> lines_of(std::string_view content) {
    std::vector<std::string> lines;
    for (std::string_view line; take_line(content, line);) lines.emplace_back(line);
    return lines;
}

// The last line that sets the key, or (commented) shows it; npos without one.
size_t find_line(const std::vector<std::string>& lines, const SettingKey& key, bool commented) {
    for (size_t i = lines.size(); i-- > 0;) {
        std::string_view line = lines[i];
        if (commented) {
            if (!line.starts_with(';') && !line.starts_with('#')) continue;
            line = trimmed(line.substr(1));
        }
        if (same_word(pair_of(line).key, key.name)) return i;
    }
    return std::string::npos;
}

void put_value(std::vector<std::string>& lines, const SettingKey& key, const std::string& value) {
    if (const size_t i = find_line(lines, key, false); i != std::string::npos) {
        std::string& line = lines[i];
        const size_t separator = line.find_first_of("=\t");
        const size_t old = line.find_first_not_of("=\t ", separator);
        line = line.substr(0, old == std::string::npos ? line.size() : old) + value;
        return;
    }
    const size_t shown = find_line(lines, key, true);
    const auto place = shown == std::string::npos ? lines.end() : lines.begin() + static_cast<std::ptrdiff_t>(shown) + 1;
    lines.insert(place, std::string(key.name) + "=" + value);
}

std::string changed_content(const std::string& content, const Values& before) {
    std::vector<std::string> lines = lines_of(content);
    for (const SettingKey& key : setting_keys()) {
        const auto known = before.find(&key);
        const std::string value = setting_text(key);
        if (value != (known != before.end() ? known->second : key.fallback)) put_value(lines, key, value);
    }
    const size_t end = content.find('\n');
    const char* line_end = end != std::string::npos && end > 0 && content[end - 1] == '\r' ? "\r\n" : "\n";
    std::string changed;
    for (const std::string& line : lines) changed += line + line_end;
    return changed;
}

}  // namespace

bool save_ini(std::string& path) {
    const bool own = path.empty() || absolute_path(path) == sources.own;
    path = own ? sources.own : absolute_path(path);
    Values before;
    std::string content;
    if (own && read_whole_file(sources.below, content, largest_ini)) read_values(content, before);
    content.clear();
    if (file_facts(path).exists && !read_whole_file(path, content, largest_ini)) return false;
    read_values(content, before);
    std::error_code ignored;
    std::filesystem::create_directories(folder_of(path), ignored);
    ReplacedFile file;
    return file.open(path) && file.write(changed_content(content, before)) && file.commit();
}

std::string sample_ini() {
    std::string text =
        "; Configuration of ZOLT, read at start-up from the program's folder or from the folder above it.\n"
        "; KEY=VALUE, one a line; case of the keys does not matter, a later line wins. Switches are TRUE or FALSE.\n"
        "; Take the ; away in front of a key to set it. What stands behind a ; is what holds without it.\n"
        "; The command \"ini list\" shows what holds now, \"ini save\" writes what has been changed into this file.\n";
    for (const SettingKey& key : setting_keys()) {
        const std::string_view title = group_title(key);
        if (!title.empty()) text += format_text("\n\n; --- %s\n", std::string(title).c_str());
        text += format_text("\n; %s", key.help);
        if (key.type == SettingType::choice) text += format_text(" (%s)", key.words);
        if ((key.type == SettingType::whole || key.type == SettingType::number) && key.highest < 1e300)
            text += format_text(" (%.15g to %.15g)", key.lowest, key.highest);
        text += format_text("\n%s%s=%s\n", key.shipped != nullptr ? "" : ";", key.name,
                            key.shipped != nullptr ? key.shipped : key.fallback);
    }
    return text;
}

}  // namespace zolt
