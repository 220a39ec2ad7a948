// The text of one macro file: its lines in pieces of 128 characters, counted as they are read, and the places that GOTO,
// LOOP and IF look for.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace zolt {

/// A place between two lines of a macro.
struct ScriptPlace {
    size_t position = 0;
    int line = 0;  ///< number of the line before it
};

class Script {
public:
    static constexpr size_t longest_piece = 128;

    /// Reads the file; false when it is none or cannot be read.
    bool open(const std::string& path);

    const std::string& path() const { return path_; }
    int line() const { return place_.line; }
    ScriptPlace place() const { return place_; }
    void go_to(ScriptPlace place) { place_ = place; }

    /// The next piece, without its line end; false at the end of the file.
    bool next(std::string_view& piece);
    /// Skips the next line that could run, the whole block if it begins one.
    void skip_line();

    /// The place behind the label line `:name`, searched from the start of the file.
    bool find_label(std::string_view name, ScriptPlace& place) const;
    /// The place behind the END_LOOP that closes the loop whose body begins at the present place.
    bool find_loop_end(ScriptPlace& place) const;

private:
    void skip_block(std::string_view piece);

    std::string path_;
    std::shared_ptr<const std::string> text_;  // shared with the copies that searches make
    ScriptPlace place_;
};

constexpr std::string_view statement_delimiters = " (),\t\r\n=";
constexpr int question_lines = 19;  ///< a QUESTION block is read no further

/// True for a line that never runs: a comment, an indented or a blank one.
bool is_comment(std::string_view piece);
/// The statement word or command word that the line begins with.
std::string first_word(std::string_view piece);

}  // namespace zolt
