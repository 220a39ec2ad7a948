// metafile, Print, StartDoc, EndDoc, clipboard: the current data as a picture file, on paper, on the clipboard.
#include "display/display_commands.h"

#include <cmath>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "common/numbers.h"
#include "common/text.h"
#include "config/settings.h"
#include "datafile/file_commands.h"
#include "display/configured_palette.h"
#include "display/page.h"
#include "display/picture_file.h"
#include "display/plot_1d.h"
#include "platform/platform.h"
#include "state/dataset.h"
#include "state/session.h"

namespace zolt {

namespace {

constexpr const char* metafile_usage = "  - USAGE: metafile NAME.svg / .pdf / .png [width height / page [table]] [dpi number]";
constexpr double least_side = 64, largest_side = 16384;  // pixels
constexpr double least_dpi = 24, largest_dpi = 1200, page_dpi = 300;
constexpr size_t most_pages = 500;

/// What is typed behind the name of a picture.
struct Wanted {
    bool page = false, tables = false;
    std::optional<double> width, height, dpi;
};

bool within(std::optional<double> value, double lowest, double highest) { return value && *value >= lowest && *value <= highest; }

// False for anything that is not one of the words above, each at most once.
bool take_wanted(Arguments& args, Wanted& wanted) {
    for (std::string word = args.next(); !word.empty(); word = args.next()) {
        if (same_word(word, "page") && !wanted.page && !wanted.width) {
            wanted.page = true;
        } else if (same_word(word, "table") && wanted.page && !wanted.tables) {
            wanted.tables = true;
        } else if (same_word(word, "dpi") && !wanted.dpi) {
            wanted.dpi = leading_number(args.next());
            if (!within(wanted.dpi, least_dpi, largest_dpi)) return false;
        } else {
            if (wanted.page || wanted.width) return false;
            wanted.width = leading_number(word);
            wanted.height = leading_number(args.next());
            if (!within(wanted.width, least_side, largest_side) || !within(wanted.height, least_side, largest_side)) return false;
        }
    }
    return true;
}

Picture wanted_picture(const Wanted& wanted) {
    if (wanted.page) {
        PageOptions options = configured_page();
        options.tables = wanted.tables;
        return page_picture(show, options);
    }
    PlotOptions options = configured_options();
    options.columns_per_pixel = 2;  // the file is looked at enlarged and on dense screens
    options.width = wanted.width.value_or(options.width);
    options.height = wanted.height.value_or(options.height);
    return plot_1d(show, options);
}

// The name typed, or chosen in a dialog, where a name is easily that of another file: then the user is asked.
std::string target_argument(const std::string& typed, const char* title, const std::vector<std::string>& extensions) {
    const std::string name = !typed.empty() ? typed : platform().file_dialog(FileChoice::save, title).value_or("");
    if (name.empty()) return {};
    const std::string path = picture_target(name, extensions);
    return !path.empty() && (!typed.empty() || may_replace(path)) ? path : std::string();
}

/// Pages collected between StartDoc and EndDoc; without a path there is no such document.
struct Document {
    std::string path;
    std::vector<Picture> pages;
} document;

int add_page(const PageOptions& options) {
    if (document.pages.size() >= most_pages)
        return refuse(format_text("The document %s is full with %zu pages.\nEndDoc writes it.", document.path.c_str(), most_pages));
    document.pages.push_back(page_picture(show, options));
    platform().reply(format_text("  - Page %zu of %s", document.pages.size(), document.path.c_str()));
    return 1;
}

// What is shown as two columns: position on the axis, and the real part.
std::string shown_text() {
    const auto points = show.cvNMRdata();
    const AxisScale axis = axis_scale(show, points.size());
    const auto [first, last] = shown_points(show);
    const bool tabs = setting_switch("UseTabs");
    const char* form = tabs ? "%.*f\t%.6g\r\n" : "%16.*f %16.6g\r\n";
    const int decimals = axis.kind == AxisKind::none || axis.kind == AxisKind::points ? 0 : axis.decimals() + 1;
    std::string text;
    for (auto i = static_cast<size_t>(std::ceil(first)); i < points.size() && static_cast<double>(i) <= last; ++i) {
        const double place = decimals == 0 ? static_cast<double>(i + 1) : axis.value(static_cast<double>(i));
        text += format_text(form, decimals, place, static_cast<double>(points[i].real()));
    }
    return text;
}

}  // namespace

int cmd_metafile(Arguments& args) {
    if (args.ask_usage()) return show_reply(metafile_usage);
    const std::string name = args.next();
    Wanted wanted;
    if (!take_wanted(args, wanted)) return show_reply(metafile_usage);
    const std::string path = target_argument(name, "Save Picture", {"svg", "pdf", "png"});
    if (path.empty()) return 0;
    const double dpi = wanted.dpi.value_or(wanted.page ? page_dpi : pixels_per_inch);
    const Palette palette = wanted.page ? print_palette() : configured_palette(light_palette);
    if (!write_pictures(path, {wanted_picture(wanted)}, palette, dpi / pixels_per_inch)) return 0;
    platform().reply(format_text("  - Picture written to %s", path.c_str()));
    return 1;
}

int cmd_print(Arguments& args) {
    constexpr const char* usage = "  - USAGE: Print [table]";
    if (args.ask_usage()) return show_reply(usage);
    PageOptions options = configured_page();
    if (const std::string word = args.next(); !word.empty()) {
        if (!same_word(word, "table")) return show_reply(usage);
        options.tables = true;
    }
    if (!document.path.empty()) return add_page(options);
    if (platform().print_page(options)) return 1;
    return refuse("Nobody is here to choose a printer.\nThe printed page goes into a file with metafile NAME.svg page.");
}

int cmd_startdoc(Arguments& args) {
    if (args.ask_usage()) return show_reply("  - USAGE: StartDoc NAME.pdf ... Print [table] ... EndDoc");
    if (!document.path.empty()) return refuse(format_text("%s is not finished.\nEndDoc writes it.", document.path.c_str()));
    const std::string path = target_argument(args.next(), "Document", {"pdf"});
    if (path.empty()) return 0;
    document.path = path;
    platform().reply(format_text("  - Print adds pages to %s, EndDoc writes it.", path.c_str()));
    return 1;
}

int cmd_enddoc(Arguments& args) {
    constexpr const char* usage = "  - USAGE: EndDoc [drop]";
    if (args.ask_usage()) return show_reply(usage);
    const bool drop = same_word(args.peek(), "drop");
    if (!drop && !args.next().empty()) return show_reply(usage);
    if (document.path.empty()) return refuse("There is no document to end.\nStartDoc NAME.pdf begins one.");
    if (drop || document.pages.empty()) {
        const Document dropped = std::exchange(document, {});
        return show_reply(format_text("  - %s is not written.", dropped.path.c_str()));
    }
    // What could not be written can be tried again.
    if (!write_pictures(document.path, document.pages, print_palette(), 1)) return 0;
    const Document written = std::exchange(document, {});
    platform().reply(format_text("  - %zu pages written to %s", written.pages.size(), written.path.c_str()));
    return 1;
}

int cmd_clipboard(Arguments& args) {
    constexpr const char* usage = "CB or clipboard [picture / text / on / off]";
    if (args.ask_usage()) return show_reply(format_text("  - USAGE: %s; it is %s", usage, session.fills_clipboard ? "on" : "off"));
    const std::string word = args.next();
    if (same_word(word, "on") || same_word(word, "off")) {
        session.fills_clipboard = same_word(word, "on");
        return 1;
    }
    const bool text = same_word(word, "text");
    if (!word.empty() && !text && !same_word(word, "picture")) return show_reply(std::string("  - USAGE: ") + usage);
    if (!show.loaded) return refuse("Nothing is shown that could be copied.");
    if (!text)
        return platform().copy_picture() ? 1
                                         : refuse("There is no window whose picture could be copied.\nCB text copies the points.");
    platform().clipboard(shown_text());
    platform().reply("  - The shown points are on the clipboard.");
    return 1;
}

}  // namespace zolt
