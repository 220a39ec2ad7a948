// Places the parts of the page; the plot is that of the window, moved to its place.
#include "display/page.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "common/file.h"
#include "common/text.h"
#include "config/settings.h"
#include "display/configured_palette.h"
#include "display/lettering.h"
#include "display/page_tables.h"
#include "display/plot_1d.h"
#include "state/parameter_list.h"

namespace zolt {

namespace {

constexpr double title_size = 16, line_height = 1.35;
constexpr double gap = 16;                                         // between the parts, pixels
constexpr double parameter_share = 0.62, widest_parameters = 520;  // of the width, for the parameters; pixels
constexpr double largest_table_share = 0.4;                        // of the height between the margins
constexpr size_t title_lines = 3;
constexpr double plot_margin = 24;       // what a plot leaves at its sides: it reaches so far into the page's own margins
constexpr double columns_per_pixel = 4;  // of the trace: as fine as a printer shows it

/// A rectangle of the sheet.
struct Area {
    double left = 0, top = 0, right = 0, bottom = 0;
    double width() const { return right - left; }
    double height() const { return bottom - top; }
};

void add_text(Picture& picture, Point at, std::string text, double size, bool bold = false) {
    if (!text.empty()) picture.records.emplace_back(Text{at, std::move(text), Ink::text, size, Anchor::start, 0, bold});
}

void add_line(Picture& picture, std::vector<Point> points) {
    picture.records.emplace_back(Stroke{std::move(points), Ink::axis, 0.75, false});
}

// The words of a line broken where a line is full; what the last line cannot hold is shortened.
std::vector<std::string> broken(std::string_view words, double size, double room, size_t most) {
    constexpr size_t longest = 1000;
    std::vector<std::string> lines;
    words = cut(words, longest);
    while (!words.empty()) {
        size_t end = words.size();
        while (lines.size() + 1 < most && end != std::string_view::npos && text_width(words.substr(0, end), size) > room)
            end = end == 0 ? std::string_view::npos : words.rfind(' ', end - 1);
        // A single word may be longer than the line.
        if (end == std::string_view::npos || end == 0) end = std::min(words.find(' ', 1), words.size());
        lines.push_back(shortened(words.substr(0, end), size, room));
        words.remove_prefix(std::min(end + 1, words.size()));
    }
    return lines;
}

// Title, and below it what else names the data. Returns where it ends.
double add_title(Picture& page, const DataSet& data, const Area& area, const std::string& title, double size) {
    double y = area.top;
    for (const std::string& line : broken(title, title_size, area.width(), title_lines)) {
        add_text(page, {area.left, y + title_size * 0.85}, line, title_size, true);
        y += title_size * line_height;
    }
    const auto add = [&](const std::string& text) {
        if (text.empty() || title.find(text) != std::string::npos) return;
        add_text(page, {area.left, y + size}, shortened(text, size, area.width()), size);
        y += size * line_height;
    };
    std::string comment = display_line(data.comment);
    comment.resize(comment.find_last_not_of(" ,;") + 1);
    add(comment);
    add(display_line(name_of(data.file_a)));
    return y;
}

std::vector<NamedValue> page_values(const DataSet& data) {
    std::vector<NamedValue> values = experiment_values(data);
    for (NamedValue& value : dimension_values(data.dims[0])) values.push_back(std::move(value));
    for (NamedValue& value : values) {
        value.value = display_line(value.value);
        if (value.name == "Nucleus") value.value = isotope_name(value.value);
    }
    return values;
}

// Two columns of "name: value", the first one filled first. Returns where they end.
double add_parameters(Picture& page, const DataSet& data, const Area& area, double size) {
    std::vector<NamedValue> values = page_values(data);
    const auto room = static_cast<size_t>(std::max(area.height() / (size * line_height), 1.0));
    if (values.size() > 2 * room) values.resize(2 * room);
    const size_t rows = (values.size() + 1) / 2;
    const double column = (area.width() - gap) / 2;
    for (size_t i = 0; i < values.size(); ++i) {
        const Point at{area.left + (i < rows ? 0 : column + gap),
                       area.top + size + static_cast<double>(i % rows) * size * line_height};
        add_text(page, at, shortened(values[i].name + ": " + values[i].value, size, column), size);
    }
    return area.top + static_cast<double>(rows) * size * line_height;
}

void move_by(PictureRecord& record, double x, double y) {
    const auto move = [&](Point& point) {
        point.x += x;
        point.y += y;
    };
    if (Stroke* stroke = std::get_if<Stroke>(&record)) std::for_each(stroke->points.begin(), stroke->points.end(), move);
    if (Fill* fill = std::get_if<Fill>(&record)) std::for_each(fill->outline.begin(), fill->outline.end(), move);
    if (Text* text = std::get_if<Text>(&record)) move(text->at);
}

// Puts the plot on the page, without its ground.
void add_plot(Picture& page, Picture plot, const Area& area) {
    for (PictureRecord& record : plot.records) {
        const Fill* fill = std::get_if<Fill>(&record);
        if (fill != nullptr && fill->ink == Ink::background && &record == &plot.records.front()) continue;
        move_by(record, area.left, area.top);
        page.records.push_back(std::move(record));
    }
}

void add_box(Picture& page, const Area& area) {
    add_line(page, {{area.left, area.top},
                    {area.right, area.top},
                    {area.right, area.bottom},
                    {area.left, area.bottom},
                    {area.left, area.top}});
}

Picture plot_within(const DataSet& data, const PageOptions& options, const Area& area) {
    PlotOptions plot;
    plot.width = area.width();
    plot.height = area.height();
    plot.columns_per_pixel = columns_per_pixel;
    plot.heading = false;
    plot.grid = setting_switch("GRIDLINES");
    plot.pen = options.pen;
    return plot_1d(data, plot);
}

double limited(double value, double low, double high) { return value >= low ? std::min(value, high) : low; }  // low for NaN, too

// Luminance of sRGB after IEC 61966-2-1; the contrast to white is that of the web's accessibility guidelines.
double contrast_to_white(uint32_t colour) {
    const auto part = [&](unsigned shift) {
        const double value = static_cast<double>(colour >> shift & 0xFFU) / 255;
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 1.05 / (0.2126 * part(16) + 0.7152 * part(8) + 0.0722 * part(0) + 0.05);
}

}  // namespace

PageOptions configured_page() {
    constexpr double a4[] = {297, 210}, letter[] = {279.4, 215.9};
    const auto& paper = setting_text("PRINT_PAPER") == "LETTER" ? letter : a4;
    const bool portrait = setting_text("PRINT_ORIENTATION") == "PORTRAIT";
    PageOptions options;
    options.width = paper[portrait ? 1 : 0] * pixels_per_mm;
    options.height = paper[portrait ? 0 : 1] * pixels_per_mm;
    options.margin = setting_number("PRINT_MARGIN") * pixels_per_mm;
    options.parameters = setting_switch("PRINT_PARAMETERS");
    options.box = setting_switch("PRINT_BOX");
    options.text_size = setting_number("Parm") * pixels_per_inch / 72;
    options.pen = setting_number("PEN_WIDTH_PRINTER") * pixels_per_mm;
    return options;
}

Picture page_picture(const DataSet& data, const PageOptions& options) {
    constexpr double least_side = 64, largest_side = 16384;
    Picture page;
    page.width = limited(options.width, least_side, largest_side);
    page.height = limited(options.height, least_side, largest_side);
    const double margin = limited(options.margin, 0, std::min(page.width, page.height) / 4);
    const double size = limited(options.text_size, 4, 128);
    const Area sheet{0, 0, page.width, page.height};
    Area area{margin, margin, page.width - margin, page.height - margin};
    page.records.emplace_back(Fill{{{0, 0}, {sheet.right, 0}, {sheet.right, sheet.bottom}, {0, sheet.bottom}}, Ink::background});

    const std::string title = title_of(data);
    page.title = title;
    Area head = area;
    double below = area.top;
    if (options.parameters) {
        Area block = area;
        block.bottom = area.top + area.height() / 2 - gap;
        block.left = area.right - std::min(area.width() * parameter_share, widest_parameters * size / (32.0 / 3));
        below = add_parameters(page, data, block, size);
        head.right = block.left - gap;
    }
    below = std::max(below, add_title(page, data, head, title, size));

    // However much stands above it, the plot keeps half of the sheet.
    Area plot = area;
    plot.top = std::min(below + gap, area.top + area.height() / 2);
    if (options.tables) {
        const std::vector<PageTable> tables = page_tables(data);
        const double height = tables_height(tables, area.width(), plot.height() * largest_table_share, size);
        add_tables(page, tables, {area.left, area.bottom - height}, area.width(), height, size);
        if (!tables.empty()) plot.bottom -= height + gap;
    }
    if (options.box) add_box(page, plot);
    if (!options.box && margin >= plot_margin) plot.left -= plot_margin, plot.right += plot_margin;
    add_plot(page, plot_within(data, options, plot), plot);
    return page;
}

Palette print_palette() {
    constexpr uint32_t white = 0xffffff, black = 0x000000;
    constexpr double least_contrast = 3;
    const bool coloured = setting_switch("PRINT_COLOR");
    Palette paper = light_palette;
    paper.colours[static_cast<size_t>(Ink::axis)] = paper.colours[static_cast<size_t>(Ink::text)] = black;
    const Palette configured = configured_palette(paper);
    for (size_t i = 0; i < paper.colours.size(); ++i) {
        const Ink ink = static_cast<Ink>(i);
        if (ink == Ink::background)
            paper.colours[i] = white;
        else if (ink == Ink::grid)
            continue;
        else if (!coloured)
            paper.colours[i] = black;
        else if (contrast_to_white(configured.colours[i]) >= least_contrast)
            paper.colours[i] = configured.colours[i];
    }
    return paper;
}

}  // namespace zolt
