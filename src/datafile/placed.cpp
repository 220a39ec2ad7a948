// Meta objects, notes and data buffers as lines of text.
#include "datafile/placed.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "common/numbers.h"
#include "common/text.h"

namespace zolt {

namespace {

constexpr size_t longest_text = 127;
constexpr int most_buffers = 64;

int32_t whole(std::string_view field) {
    return static_cast<int32_t>(std::clamp<int64_t>(integer_or_zero(field), INT32_MIN, INT32_MAX));
}

}  // namespace

std::string meta_objects_section(const DataRecord& data, MetaForm form) {
    if (data.meta_objects.empty()) return {};
    const bool prefixed = form == MetaForm::prefixed;
    const std::string mark = prefixed ? "##$" : "", blank_mark = prefixed ? "##$ " : "";
    std::string text = mark + "MO_LIST\r\n";
    if (form != MetaForm::listing) {
        text += blank_mark + "FileName\r\n";
        text += blank_mark + "SHOW  ScreenX  ScreenY  PlotX    PlotY   X0      Y0      XW      YW\r\n";
    }
    for (const MetaObject& object : data.meta_objects) {
        text += blank_mark + one_line(object.file) + "\r\n" + blank_mark;
        text += format_text("% 2d    % 5d    % 5d   % 5d   % 5d  % 6.2f  % 6.2f  % 6.2f  % 6.2f\r\n", object.shown, object.screen_x,
                            object.screen_y, object.plot_x, object.plot_y, object.x0, object.y0, object.width, object.height);
    }
    return text + mark + "END_MO_LIST\r\n";
}

void read_meta_object_line(std::string_view line, DataRecord& data) {
    const auto fields = split_fields(line, " \t\r\n");
    if (fields.empty() || same_word(trimmed(line), "FileName") || same_word(fields[0], "SHOW")) return;
    const bool numbers =
        std::all_of(fields.begin(), fields.end(), [](std::string_view f) { return leading_number(f).has_value(); });
    // A name may be a number too: values come only behind a name, and are several.
    if (!numbers || fields.size() < 2 || data.meta_objects.empty()) {
        data.meta_objects.emplace_back().file = trimmed(line);
        return;
    }
    MetaObject& object = data.meta_objects.back();
    int32_t* const integers[] = {&object.shown, &object.screen_x, &object.screen_y, &object.plot_x, &object.plot_y};
    double* const reals[] = {&object.x0, &object.y0, &object.width, &object.height};
    constexpr size_t first_real = std::size(integers);
    for (size_t i = 0; i < std::min(fields.size(), first_real + std::size(reals)); ++i) {
        if (i < first_real)
            *integers[i] = whole(fields[i]);
        else
            *reals[i - first_real] = number_or_zero(fields[i]);
    }
}

namespace {

// In the order of Note::Unit; then those of y.
constexpr const char* note_units[] = {"PPM", "HZ", "SECONDS", "POINTS"};
constexpr const char *share_unit = "SHARE", *intensity_unit = "INTENSITY";

}  // namespace

std::string notes_section(const DataRecord& data, bool prefixed) {
    if (data.notes.empty()) return {};
    const std::string mark = prefixed ? "##$" : "";
    std::string text = mark + "NOTES\r\n";
    for (const Note& note : data.notes)
        text += mark +
                format_text("NOTE=%.10g %s %.10g %s ", note.x, note_units[static_cast<size_t>(note.unit)], note.y,
                            note.y_is_share ? share_unit : intensity_unit) +
                one_line(note.text) + "\r\n";
    return text + mark + "END_NOTES\r\n";
}

void read_note_line(std::string_view line, DataRecord& data) {
    constexpr size_t most_notes = 1000;
    const auto next = [&] {
        line.remove_prefix(std::min(line.find_first_not_of(" =\t"), line.size()));
        const std::string_view field = line.substr(0, line.find_first_of(" =\t"));
        line.remove_prefix(field.size());
        return field;
    };
    if (!same_word(next(), "NOTE") || data.notes.size() >= most_notes) return;
    Note note;
    note.x = number_or_zero(next());
    const std::string_view unit = next();
    const auto row = std::find_if(std::begin(note_units), std::end(note_units), [&](const char* u) { return same_word(unit, u); });
    if (row == std::end(note_units)) return;
    note.unit = static_cast<Note::Unit>(row - std::begin(note_units));
    note.y = number_or_zero(next());
    note.y_is_share = !same_word(next(), intensity_unit);
    note.text = cut(trimmed(line), longest_text);
    if (!note.text.empty() && std::isfinite(note.x) && std::isfinite(note.y)) data.notes.push_back(std::move(note));
}

std::string buffer_lines(const DataRecord& data) {
    std::string text;
    for (const DataBuffer& b : data.buffers) {
        const auto add = [&](const std::string& rest) { text += format_text("##$BUFFER=%d=", b.number) + rest + "\r\n"; };
        add("comment=" + one_line(b.comment));
        add(format_text("pts=%d", static_cast<int>(b.points.size())));
        add(format_text("sf=%24.12E", b.sf));
        add(format_text("startPPM=%24.12E", b.start_ppm));
        // The letter behind these two exponents belongs to the format.
        add(format_text("endPPM=%24.12Ef", b.end_ppm));
        add(format_text("PPMperpt=%24.12Ef", b.ppm_per_point));
        add(format_text("color=%d=%d=%d", b.color[0], b.color[1], b.color[2]));
        add(format_text("penWscr=%d", b.screen_pen));
        add(format_text("penWprt=%d", b.print_pen));
        add(format_text("amp=%f", b.amplitude));
        add(format_text("scale=%f", b.scale));
        add(format_text("dc=%f", b.dc));
        add(format_text("show=%d", b.shown ? 1 : 0));
        add(format_text("offsety=%f", b.offset_y));
        add(format_text("transparent=%d", b.transparent ? 1 : 0));
    }
    return text;
}

namespace {

// The buffer of a number, made when it is not there yet; kept in order of numbers.
DataBuffer& buffer_numbered(DataRecord& data, int number) {
    const auto place =
        std::lower_bound(data.buffers.begin(), data.buffers.end(), number, [](const DataBuffer& b, int n) { return b.number < n; });
    if (place != data.buffers.end() && place->number == number) return *place;
    DataBuffer fresh;
    fresh.number = number;
    return *data.buffers.insert(place, std::move(fresh));
}

// Keys whose value is one number.
constexpr struct {
    const char* key;
    void (*set)(DataBuffer&, double);
} number_keys[] = {
    {"sf", [](DataBuffer& b, double v) { b.sf = v; }},
    {"startPPM", [](DataBuffer& b, double v) { b.start_ppm = v; }},
    {"endPPM", [](DataBuffer& b, double v) { b.end_ppm = v; }},
    {"PPMperpt", [](DataBuffer& b, double v) { b.ppm_per_point = v; }},
    {"penWscr", [](DataBuffer& b, double v) { b.screen_pen = static_cast<int>(std::clamp(v, 0.0, 100.0)); }},
    {"penWprt", [](DataBuffer& b, double v) { b.print_pen = static_cast<int>(std::clamp(v, 0.0, 100.0)); }},
    {"amp", [](DataBuffer& b, double v) { b.amplitude = v; }},
    {"scale", [](DataBuffer& b, double v) { b.scale = v; }},
    {"dc", [](DataBuffer& b, double v) { b.dc = v; }},
    {"show", [](DataBuffer& b, double v) { b.shown = v != 0; }},
    {"offsety", [](DataBuffer& b, double v) { b.offset_y = v; }},
    {"transparent", [](DataBuffer& b, double v) { b.transparent = v != 0; }},
};

}  // namespace

bool read_buffer_line(std::string_view line, DataRecord& data) {
    const auto next = [&] {
        const size_t equals = std::min(line.find('='), line.size());
        const std::string_view field = trimmed(line.substr(0, equals));
        line.remove_prefix(std::min(equals + 1, line.size()));
        return field;
    };
    const std::string_view label = next();
    if (!same_word(label, "##$BUFFER") && !same_word(label, "BUFFER")) return false;
    const int64_t number = integer_or_zero(next());
    if (number < 1 || number > most_buffers) return true;
    DataBuffer& buffer = buffer_numbered(data, static_cast<int>(number));
    const std::string_view key = next();
    if (same_word(key, "comment")) {
        buffer.comment = cut(line, longest_text);
    } else if (same_word(key, "pts")) {
        buffer.promised_points = std::clamp<int64_t>(integer_or_zero(line), 0, INT32_MAX);
    } else if (same_word(key, "color")) {
        for (int& part : buffer.color) part = static_cast<int>(std::clamp<int64_t>(integer_or_zero(next()), 0, 255));
    } else {
        for (const auto& row : number_keys)
            if (same_word(key, row.key)) row.set(buffer, number_or_zero(line));
    }
    return true;
}

DataBuffer buffer_of(const DataSet& data, int number, std::string comment) {
    DataBuffer buffer;
    buffer.number = number;
    buffer.comment = std::move(comment);
    const auto points = data.cvNMRdata();
    buffer.points.assign(points.begin(), points.end());
    const Axis axis = data.dims[0].axis();
    buffer.nucleus = data.dims[0].nucleus;
    buffer.color = usual_overlay_colour(number);
    buffer.sf = axis.sf;
    if (!data.dims[0].frequency) return buffer;
    buffer.start_ppm = axis.ppm(0);
    buffer.end_ppm = axis.ppm(axis.points - 1);
    buffer.ppm_per_point = axis.points > 1 ? (buffer.end_ppm - buffer.start_ppm) / (axis.points - 1) : 0;
    return buffer;
}

void set_buffer(DataRecord& data, DataBuffer buffer) { buffer_numbered(data, buffer.number) = std::move(buffer); }

}  // namespace zolt
