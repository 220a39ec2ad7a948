// Writes the records of a picture as SVG elements; coordinates are written as integers of a hundredth.
#include "display/svg.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <string_view>

#include "display/lettering.h"

namespace zolt {

namespace {

constexpr std::string_view font_family = "system-ui, -apple-system, 'Segoe UI', Roboto, 'Helvetica Neue', Arial, sans-serif";

// Hundredths as an integer are much faster to write than a floating-point number, and a spectrum has many thousands.
void append_number(std::string& out, double value) {
    constexpr double limit = 1e9;
    if (!(std::abs(value) <= limit)) value = value > 0 ? limit : value < 0 ? -limit : 0;
    auto hundredths = static_cast<int64_t>(value * 100 + (value < 0 ? -0.5 : 0.5));
    if (hundredths < 0) {
        out += '-';
        hundredths = -hundredths;
    }
    char digits[24];
    char* end = std::to_chars(digits, digits + sizeof digits, hundredths / 100).ptr;
    if (const auto fraction = static_cast<int>(hundredths % 100); fraction != 0) {
        *end++ = '.';
        *end++ = static_cast<char>('0' + fraction / 10);
        if (fraction % 10 != 0) *end++ = static_cast<char>('0' + fraction % 10);
    }
    out.append(digits, end);
}

void append_attribute(std::string& out, std::string_view name, double value) {
    out.append(" ").append(name).append("=\"");
    append_number(out, value);
    out += '"';
}

void append_colour(std::string& out, std::string_view name, uint32_t colour) {
    constexpr std::string_view hex = "0123456789abcdef";
    out.append(" ").append(name).append("=\"#");
    for (int shift = 20; shift >= 0; shift -= 4) out += hex[colour >> static_cast<unsigned>(shift) & 0xFU];
    out += '"';
}

std::string_view entity_of(char32_t c) {
    if (c == U'&') return "&amp;";
    if (c == U'<') return "&lt;";
    if (c == U'>') return "&gt;";
    if (c == U'"') return "&quot;";
    if (c == U'\t' || c == U'\n' || c == U'\r') return " ";
    // Characters that XML forbids, with or without escaping, and control characters.
    if (c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0xFFFE || c == 0xFFFF) return "\uFFFD";
    return {};
}

void append_escaped(std::string& out, std::string_view text) {
    while (!text.empty()) {
        const char32_t c = take_character(text);
        const std::string_view entity = entity_of(c);
        if (entity.empty())
            append_character(out, c);
        else
            out += entity;
    }
}

void append_outline(std::string& out, const std::vector<Point>& points) {
    char command = 'M';
    for (const Point& point : points) {
        out += command;
        append_number(out, point.x);
        out += ' ';
        append_number(out, point.y);
        command = 'L';
    }
}

bool same_pen(const Stroke& a, const Stroke& b) { return a.ink == b.ink && a.width == b.width && a.round_ends == b.round_ends; }

// Strokes of one pen in a row make one path: the ticks of an axis are one element, not sixty.
size_t append_strokes(std::string& out, const std::vector<PictureRecord>& records, size_t at, const Palette& palette) {
    const Stroke& first = *std::get_if<Stroke>(&records[at]);
    out += "<path fill=\"none\"";
    append_colour(out, "stroke", palette[first.ink]);
    append_attribute(out, "stroke-width", first.width);
    if (first.round_ends) out += " stroke-linecap=\"round\"";
    out += " d=\"";
    for (; at < records.size(); ++at) {
        const Stroke* stroke = std::get_if<Stroke>(&records[at]);
        if (stroke == nullptr || !same_pen(first, *stroke)) break;
        append_outline(out, stroke->points);
    }
    out += "\"/>\n";
    return at;
}

void append_fill(std::string& out, const Fill& fill, const Palette& palette) {
    if (fill.outline.empty()) return;
    out += "<path";
    append_colour(out, "fill", palette[fill.ink]);
    out += " d=\"";
    append_outline(out, fill.outline);
    out += "Z\"/>\n";
}

void append_text(std::string& out, const Text& text, const Palette& palette) {
    out += "<text";
    append_attribute(out, "x", text.at.x);
    append_attribute(out, "y", text.at.y);
    append_attribute(out, "font-size", text.size);
    append_colour(out, "fill", palette[text.ink]);
    if (text.anchor != Anchor::start) out += text.anchor == Anchor::middle ? " text-anchor=\"middle\"" : " text-anchor=\"end\"";
    if (text.bold) out += " font-weight=\"bold\"";
    if (text.angle != 0) {
        // SVG turns clockwise, since its y runs downward.
        out += " transform=\"rotate(";
        append_number(out, -text.angle);
        out += ' ';
        append_number(out, text.at.x);
        out += ' ';
        append_number(out, text.at.y);
        out += ")\"";
    }
    out += '>';
    append_escaped(out, text.text);
    out += "</text>\n";
}

size_t expected_length(const Picture& picture) {
    size_t length = 1024;
    for (const PictureRecord& record : picture.records) {
        const Stroke* stroke = std::get_if<Stroke>(&record);
        length += stroke != nullptr ? stroke->points.size() * 15 : 160;
    }
    return length;
}

}  // namespace

std::string svg_text(const Picture& picture, const Palette& palette) {
    std::string out;
    out.reserve(expected_length(picture));
    out += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" version=\"1.1\"";
    append_attribute(out, "width", picture.width);
    append_attribute(out, "height", picture.height);
    out += " viewBox=\"0 0 ";
    append_number(out, picture.width);
    out += ' ';
    append_number(out, picture.height);
    out.append("\" stroke-linejoin=\"round\" font-family=\"").append(font_family).append("\">\n");
    if (!picture.title.empty()) {
        out += "<title>";
        append_escaped(out, picture.title);
        out += "</title>\n";
    }
    for (size_t at = 0; at < picture.records.size();) {
        const PictureRecord& record = picture.records[at];
        if (std::get_if<Stroke>(&record) != nullptr) {
            at = append_strokes(out, picture.records, at, palette);
            continue;
        }
        if (const Fill* fill = std::get_if<Fill>(&record)) append_fill(out, *fill, palette);
        if (const Text* text = std::get_if<Text>(&record)) append_text(out, *text, palette);
        ++at;
    }
    out += "</svg>\n";
    return out;
}

}  // namespace zolt
