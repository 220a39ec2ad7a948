// A list with the newest line last, and the place of the walk in it.
#include "app/line_history.h"

namespace zolt {

namespace {

constexpr size_t most_lines = 500;

std::vector<std::string> lines;
bool walking = false;
size_t place = 0;   // lines.size(): at the text the walk began with
std::string start;  // that text

}  // namespace

void remember_line(std::string_view line) {
    walking = false;
    if (line.empty() || (!lines.empty() && lines.back() == line)) return;
    if (lines.size() == most_lines) lines.erase(lines.begin());
    lines.emplace_back(line);
}

bool older_line(std::string& text) {
    if (!walking) {
        walking = true;
        place = lines.size();
        start = text;
    }
    for (size_t i = place; i > 0; --i)
        if (lines[i - 1].starts_with(start) && lines[i - 1] != text) {
            place = i - 1;
            text = lines[place];
            return true;
        }
    return false;
}

bool newer_line(std::string& text) {
    if (!walking || place >= lines.size()) return false;
    while (++place < lines.size())
        if (lines[place].starts_with(start) && lines[place] != text) break;
    text = place < lines.size() ? lines[place] : start;
    return true;
}

void end_walk() { walking = false; }

const std::vector<std::string>& entered_lines() { return lines; }

void set_entered_lines(std::vector<std::string> kept) {
    walking = false;
    lines = std::move(kept);
}

}  // namespace zolt
