// Lines of a macro file and the search among them.
#include "macro/script.h"

#include "common/arguments.h"
#include "common/file.h"
#include "common/text.h"

namespace zolt {

namespace {
constexpr uint64_t largest_macro = 64 << 20;
}

bool is_comment(std::string_view piece) { return piece.starts_with(';') || piece.starts_with(' ') || trimmed(piece).empty(); }

std::string first_word(std::string_view piece) { return Arguments(piece).next(statement_delimiters); }

bool Script::open(const std::string& path) {
    path_ = path;
    place_ = {};
    std::string text;
    if (!read_whole_file(path, text, largest_macro)) return false;
    text_ = std::make_shared<const std::string>(std::move(text));
    return true;
}

bool Script::next(std::string_view& piece) {
    if (place_.position >= text_->size()) return false;
    piece = std::string_view(*text_).substr(place_.position, longest_piece);
    const size_t end = piece.find('\n');
    if (end != std::string_view::npos) piece = piece.substr(0, end + 1);
    place_.position += piece.size();
    ++place_.line;
    if (piece.ends_with('\n')) piece.remove_suffix(1);
    if (piece.ends_with('\r')) piece.remove_suffix(1);
    return true;
}

void Script::skip_line() {
    std::string_view piece;
    do {
        if (!next(piece)) return;
    } while (is_comment(piece));
    const std::string_view first = piece;
    while (place_.position < text_->size() && (*text_)[place_.position - 1] != '\n')
        if (!next(piece)) break;
    skip_block(first);
}

void Script::skip_block(std::string_view piece) {
    const std::string word = first_word(piece);
    if (same_word(word, "QUESTION")) {
        for (int count = 1; count <= question_lines && next(piece); ++count)
            if (same_word(first_word(piece), "END_QUESTION")) return;
    } else if (same_word(word, "LOOP")) {
        if (ScriptPlace end; find_loop_end(end)) place_ = end;
    }
}

bool Script::find_label(std::string_view name, ScriptPlace& place) const {
    Script search(*this);
    search.place_ = {};
    for (std::string_view piece; search.next(piece);)
        if (piece.starts_with(':') && same_word(trimmed(piece.substr(1)), name)) {
            place = search.place_;
            return true;
        }
    return false;
}

bool Script::find_loop_end(ScriptPlace& place) const {
    Script search(*this);
    int depth = 1;
    for (std::string_view piece; search.next(piece);) {
        if (is_comment(piece)) continue;
        const std::string word = first_word(piece);
        if (same_word(word, "LOOP")) ++depth;
        if (same_word(word, "END_LOOP")) --depth;
        if (same_word(word, "QUESTION")) search.skip_block(piece);
        if (depth > 0) continue;
        place = search.place_;
        return true;
    }
    return false;
}

}  // namespace zolt
