// TailerExport: the text behind the data as a file of its own.
#include "common/file.h"
#include "common/text.h"
#include "datafile/file_commands.h"
#include "datafile/native_file.h"
#include "platform/platform.h"
#include "state/dataset.h"

namespace zolt {

int cmd_tailerexport(Arguments& args) {
    if (args.ask_usage()) return show_reply("TailerExport");
    if (show.file_a.empty()) return refuse("No FileName A.");
    File file = open_for_reading(show.file_a);
    const uint64_t size = file_facts(show.file_a).size;
    NativeLayout layout;
    DataRecord record;
    if (!file || !read_native_header(file, size, layout, record).empty()) return refuse("Could not open File A.");
    if (layout.type == 3) return refuse("No tailers used with header type 3");
    const std::string tailer = read_native_tailer(file, size, layout, record);
    if (tailer.empty()) return refuse("No tailer detected in file.");
    const std::string path = without_extension(show.file_a) + ".tlr";
    if (overwrite_refused(path) || !may_replace(path)) return 0;
    ReplacedFile output;
    if (!output.open(path) || !output.write(tailer) || !output.commit())
        return refuse(format_text("Could not open File: %s", path.c_str()));
    platform().reply(format_text("  - Tailer written to %s", path.c_str()));
    return 1;
}

}  // namespace zolt
