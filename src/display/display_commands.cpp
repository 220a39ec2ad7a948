// metafile: the current data as a picture file.
#include "display/display_commands.h"

#include <optional>
#include <string>

#include "common/file.h"
#include "common/numbers.h"
#include "common/text.h"
#include "datafile/native_file.h"
#include "display/configured_palette.h"
#include "display/plot_1d.h"
#include "display/svg.h"
#include "platform/platform.h"
#include "state/dataset.h"

namespace zolt {

namespace {

constexpr const char* metafile_usage = "  - USAGE: metafile NAME.svg [width height]";
constexpr double least_side = 64, largest_side = 16384;  // pixels

// The size typed behind the name: none, or both sides.
bool take_size(Arguments& args, PlotOptions& options) {
    const std::string width = args.next(), height = args.next();
    if (width.empty()) return true;
    const std::optional<double> w = leading_number(width), h = leading_number(height);
    const auto fits = [](std::optional<double> side) { return side && *side >= least_side && *side <= largest_side; };
    if (!fits(w) || !fits(h)) return false;
    options.width = *w;
    options.height = *h;
    return true;
}

bool write_file(const std::string& path, const std::string& content) {
    ReplacedFile file;
    return file.open(path) && file.write(content) && file.commit();
}

}  // namespace

int cmd_metafile(Arguments& args) {
    if (args.ask_usage()) return show_reply(metafile_usage);
    std::string name = args.next();
    PlotOptions options = configured_options();
    options.columns_per_pixel = 2;  // the file is looked at enlarged and on dense screens
    if (!take_size(args, options)) return show_reply(metafile_usage);
    if (name.empty()) name = platform().file_dialog(FileChoice::save, "Save Picture").value_or("");
    if (name.empty()) return 0;

    std::string path = typed_path(name);
    if (path.ends_with('/')) return refuse(format_text("%s is a folder.\nGive the name of a file in it.", path.c_str()));
    path = absolute_path(path);
    const std::string extension = extension_of(path);
    if (extension.empty()) path += path.ends_with('.') ? "svg" : ".svg";
    if (!extension.empty() && !same_word(extension, "svg"))
        return refuse(format_text("Only SVG is written now, not .%s.\nGive a name that ends in .svg.", extension.c_str()));
    if (overwrite_refused(path)) return 0;
    if (!write_file(path, svg_text(plot_1d(show, options), configured_palette(light_palette))))
        return refuse(format_text("Could not open File: %s", path.c_str()));
    platform().reply(format_text("  - Picture written to %s", path.c_str()));
    return 1;
}

}  // namespace zolt
