// Reading UTF-8 that may be wrong, estimating widths from classes of letters, raising the digits of isotopes.
#include "display/lettering.h"

#include <cstddef>
#include <cstdint>

#include "common/text.h"

namespace zolt {

namespace {

constexpr char32_t replacement = 0xFFFD;
constexpr std::string_view ellipsis = "\u2026";

bool is_digit(char c) { return c >= '0' && c <= '9'; }
bool is_letter(char c) { return upper(c) >= 'A' && upper(c) <= 'Z'; }

// Advance in thousandths of the size. The common sans-serif fonts differ by a tenth; these are the widest of them.
int advance(char32_t c) {
    constexpr std::string_view narrow = "iljI|'", slim = " .,:;!fr()[]/\\t", broad = "mwMW@%";
    if (c >= 0x1100) return c >= 0x2000 && c < 0x2E80 ? (c == U'\u2026' ? 1000 : 840) : 1000;
    if (c >= 0x300 && c < 0x370) return 0;
    if (c == 0xB9 || c == 0xB2 || c == 0xB3) return 410;
    if (c == 0xB7) return 330;
    if (c >= 0x80) return 700;
    const char ascii = static_cast<char>(c);
    if (narrow.find(ascii) != std::string_view::npos) return 340;
    if (slim.find(ascii) != std::string_view::npos) return 420;
    if (broad.find(ascii) != std::string_view::npos) return 990;
    return ascii >= 'A' && ascii <= 'Z' ? 780 : 640;
}

}  // namespace

char32_t take_character(std::string_view& text) {
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(0);
    const size_t length = lead < 0x80 ? 1 : lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    char32_t character = lead;
    bool good = lead < 0x80 || (lead >= 0xC2 && lead <= 0xF4 && text.size() >= length);
    if (good && length > 1) {
        character = lead & (0x7FU >> length);
        for (size_t i = 1; i < length; ++i) {
            good = good && (byte(i) & 0xC0U) == 0x80U;
            character = character << 6 | (byte(i) & 0x3FU);
        }
        // Longer forms than needed, halves of surrogate pairs and numbers beyond the last plane are not UTF-8.
        constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
        good = good && character >= smallest[length] && character <= 0x10FFFF && (character < 0xD800 || character > 0xDFFF);
    }
    text.remove_prefix(good ? length : 1);
    return good ? character : replacement;
}

void append_character(std::string& text, char32_t character) {
    const auto put = [&](char32_t byte) { text += static_cast<char>(byte); };
    if (character < 0x80) return put(character);
    if (character < 0x800) {
        put(0xC0 | character >> 6);
    } else {
        if (character < 0x10000) {
            put(0xE0 | character >> 12);
        } else {
            put(0xF0 | character >> 18);
            put(0x80 | (character >> 12 & 0x3F));
        }
        put(0x80 | (character >> 6 & 0x3F));
    }
    put(0x80 | (character & 0x3F));
}

std::string display_line(std::string_view text) {
    std::string line;
    std::string_view raw;
    while (line.empty() && take_line(text, raw)) {
        raw = trimmed(raw);
        while (!raw.empty()) {
            const char32_t c = take_character(raw);
            append_character(line, c < 0x20 || (c >= 0x7F && c < 0xA0) ? U' ' : c);
        }
        line = trimmed(line);
    }
    return line;
}

double text_width(std::string_view text, double size) {
    int thousandths = 0;
    while (!text.empty()) thousandths += advance(take_character(text));
    return thousandths * size / 1000;
}

std::string shortened(std::string_view text, double size, double room) {
    if (text_width(text, size) <= room) return std::string(text);
    const double left = room - text_width(ellipsis, size);
    std::string kept;
    double used = 0;
    while (!text.empty()) {
        const char32_t character = take_character(text);
        used += advance(character) * size / 1000;
        if (used > left) break;
        append_character(kept, character);
    }
    const std::string_view start = trimmed(kept);
    return start.empty() ? std::string() : std::string(start) + std::string(ellipsis);
}

std::string isotope_name(std::string_view nucleus) {
    static constexpr std::string_view raised[] = {"\u2070", "\u00b9", "\u00b2", "\u00b3", "\u2074",
                                                  "\u2075", "\u2076", "\u2077", "\u2078", "\u2079"};
    const auto run = [&](size_t from, bool (*kind)(char)) {
        size_t end = from;
        while (end < nucleus.size() && kind(nucleus[end])) ++end;
        return nucleus.substr(from, end - from);
    };
    const bool number_first = !run(0, is_digit).empty();
    const std::string_view front = run(0, number_first ? is_digit : is_letter);
    const std::string_view back = run(front.size(), number_first ? is_letter : is_digit);
    const std::string_view number = number_first ? front : back, element = number_first ? back : front;
    const bool known = number.size() + element.size() == nucleus.size() && !number.empty() && number.size() <= 3 &&
                       !element.empty() && element.size() <= 2;
    if (!known) return std::string(nucleus);
    std::string name;
    for (const char digit : number) name += raised[digit - '0'];
    return name + std::string(element);
}

}  // namespace zolt
