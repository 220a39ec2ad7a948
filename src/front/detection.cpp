// Asks the table of formats about each file, without importing it.
#include "front/detection.h"

#include "common/file.h"
#include "common/text.h"
#include "front/events.h"
#include "import/locate.h"
#include "import/tranauto.h"

namespace zolt {

namespace {

// Tells the format of one file; false when it has none.
bool print_format(const std::string& typed) {
    const std::string path = absolute_path(typed);
    std::string reason = file_facts(path).exists ? "" : "Could not find file - " + path;
    const std::string file = reason.empty() ? data_file_of(path, reason) : "";
    const Detection found = file.empty() ? Detection{nullptr, "", reason} : detect_format(file, false);
    const bool known = found.format != nullptr;
    print_detection(one_line(typed), known ? found.format->number : 0, known ? found.format->key : "",
                    known ? found.format->name : one_line(found.message.substr(0, found.message.find('\n'))), found.step);
    return known;
}

}  // namespace

bool print_formats(const Options& options) {
    set_json_output(options.json);
    bool all = true;
    for (const std::string& file : options.detect) all = print_format(file) && all;
    return all;
}

}  // namespace zolt
