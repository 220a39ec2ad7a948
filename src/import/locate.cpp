// Data files of folders: an experiment by its raw data, else by its processed ones; a sample by its only experiment.
#include "import/locate.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <vector>

#include "common/file.h"
#include "common/text.h"

namespace zolt {

namespace fs = std::filesystem;

namespace {

// The data file that stands for a folder, raw data before processed ones; "" when it holds none.
std::string own_data_of(const std::string& folder) {
    for (const char* name : {"fid", "ser", "3rrr", "2rr", "1r", "phasefile"}) {
        const std::string found = find_companion(folder, name);
        if (!found.empty()) return found;
    }
    return {};
}

// The same; an experiment without raw data is its first processed data.
std::string data_of_experiment(const std::string& folder) {
    const std::string own = own_data_of(folder);
    return own.empty() ? own_data_of(folder + "/pdata/1") : own;
}

// Numbered folders with data in a sample's folder, or in the folder of an experiment's processed data, as sorted names.
std::vector<std::string> experiments_of(const std::string& folder) {
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        if (all_digits(name) && !data_of_experiment(entry->path().string()).empty()) names.push_back(name);
    }
    std::sort(names.begin(), names.end(),
              [](const std::string& a, const std::string& b) { return a.size() != b.size() ? a.size() < b.size() : a < b; });
    return names;
}

std::string several_experiments(const std::string& folder, const std::vector<std::string>& names) {
    constexpr size_t most_named = 10;
    std::string list;
    for (size_t i = 0; i < std::min(names.size(), most_named); ++i) list += (i > 0 ? ", " : "") + names[i];
    return format_text("Folder %s holds several experiments (%s%s). Name one of them.", folder.c_str(), list.c_str(),
                       names.size() > most_named ? ", ..." : "");
}

// A file with something in it, "" with the reason.
std::string usable_file(const std::string& path, std::string& reason) {
    const FileFacts facts = file_facts(path);
    if (facts.regular && facts.size > 0) return path;
    reason = facts.regular ? format_text("File %s is empty.", path.c_str())
                           : format_text("%s is no ordinary file: there are no data to read.", path.c_str());
    return {};
}

}  // namespace

bool all_digits(const std::string& text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

std::string data_file_of(const std::string& path, std::string& reason) {
    if (!file_facts(path).folder) return usable_file(path, reason);
    const std::string own = data_of_experiment(path);
    if (!own.empty()) return usable_file(own, reason);
    const auto names = experiments_of(path);
    if (names.size() == 1) return usable_file(data_of_experiment(path + "/" + names[0]), reason);
    reason = names.empty() ? format_text("Folder %s holds no data file (such as fid or ser) and no numbered experiment that does.",
                                         path.c_str())
                           : several_experiments(path, names);
    return {};
}

}  // namespace zolt
