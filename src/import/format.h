// What the import layer shares: the rows of the format table, a file whose format is looked for, a translation under way.
#pragma once

#include <any>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/bytes.h"
#include "common/file.h"
#include "common/text.h"
#include "state/dataset.h"

namespace zolt {

/// A file whose format is looked for. Names, extensions and companions compare without regard to case.
struct Candidate {
    explicit Candidate(const std::string& absolute_path);

    std::string path, folder, name;
    std::string stem, extension;  ///< of the name; the extension without its dot, "" for none
    File input;                   ///< open from the tests of content on
    std::string head;             ///< the first kilobytes, from then on
    uint64_t bytes = 0;           ///< length of the file, from then on
    bool may_ask = true;          ///< false: a question counts as answered No

    /// Opens the file and fills head and bytes; false when it cannot be read.
    bool open();
    bool named(std::string_view word) const { return same_word(name, word); }
    bool has_extension(std::string_view word) const { return same_word(extension, word); }
    /// Path of the file of this name in the same folder, "" without one.
    std::string companion(std::string_view file_name) const;
    bool beside(std::string_view file_name) const { return !companion(file_name).empty(); }
    /// Path of the other file of the same folder and stem that has this extension, "" without one.
    std::string twin(std::string_view other_extension) const;
    /// The first kilobytes of that file.
    std::string head_of_twin(std::string_view other_extension) const;
    /// 32-bit word `index` of the head; 0 where the file is shorter.
    uint32_t word(size_t index, ByteOrder order = ByteOrder::little) const;

private:
    mutable std::optional<std::vector<std::string>> names_;  ///< of the folder, listed once when first needed
};

struct ImportOptions {
    std::optional<bool> swap_parts;  ///< the value read second is the real part; nothing: as configured for the format
};

/// How the words of raw data stand in their file: signed 32-bit integers, or 64-bit floats.
struct RawWords {
    bool big_endian = false;
    bool from_24_bits = false;  ///< bytes reversed, value in the low 24 bits
    bool doubles = false;

    size_t bytes() const { return doubles ? 8 : 4; }
};

struct Format;

/// A translation under way: what the stages of a translator share. A stage returns false after setting `message`.
struct Translation {
    const Format& format;
    std::string path;  ///< the data file, absolute
    File& input;
    uint64_t input_bytes;
    DataSet& parameters;  ///< counts of 1 in every dimension at first; its vectors stay empty
    File& real;           ///< temporary files 1 and 2: 32-bit floats in the machine's order, slice after slice
    File& imaginary;
    RawWords raw = {};   ///< set by the parameter stage for the data stage
    std::any plan = {};  ///< what else the parameter stage leaves for the data stage of its family
    std::string message = {};
    std::string notes = {};  ///< sentences for the reply line of an import that worked

    void note(const std::string& sentence) { notes += (notes.empty() ? "" : " ") + sentence; }
    bool fail(std::string text) {
        message = std::move(text);
        return false;
    }
};

/// One row of the table of formats. A translator is its stages; nullptr where a format has no test of its own or is
/// recognised only.
struct Format {
    int number;
    const char* key;     ///< typed with the import command, "" for none
    const char* name;    ///< display name; "unknown" for numbers without one
    const char* phrase;  ///< of the announcement; nullptr: made from the name
    int sense;           ///< of FIDs: -1 where a line above the carrier turns as e^(+iwt); 0: the file says it itself
    bool (*test)(Candidate& file) = nullptr;
    bool (*parameters)(Translation& t) = nullptr;
    bool (*data)(Translation& t) = nullptr;
};

/// Every format, numbers 1 to 83 in order.
std::span<const Format> formats();

/// The row of a number; nullptr outside the table.
const Format* format_of_number(int number);
/// The row of a key, ignoring case; nullptr for an unknown or empty key.
const Format* format_of_key(std::string_view key);

/// "of <name> data type.", or the row's own phrase.
std::string description(const Format& format);

/// Whether the configuration has real and imaginary parts swapped on reading this format.
bool parts_swapped_by_default(const Format& format);

/// What the user reads about data that are recognised but have no translator yet.
std::string not_importable(const Format& format);

}  // namespace zolt
