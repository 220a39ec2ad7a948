// Parameter files made of labelled records, one a line: ##LABEL= value.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zolt {

struct LabelledRecord {
    std::string label;      ///< with its "##"
    std::string value;      ///< the token behind the label, "" for none
    std::string text;       ///< all behind the label's "=", without the angle brackets around it
    std::string following;  ///< the lines up to the next record: the values of an array

    /// Value `index` (from 0) of an array record; nothing when it has fewer.
    std::optional<double> element(size_t index) const;
};

struct LabelledFile {
    std::vector<LabelledRecord> records;  ///< in the order of the file, up to ##END

    /// The last record of a label (letter case counts), as a later one overrides; nullptr without one.
    const LabelledRecord* find(std::string_view label) const;
    /// The finite number a record begins with; nothing without such a record or number.
    std::optional<double> number(std::string_view label) const;
};

/// Splits lines, of which 2047 characters count as one, at blank = , tab < > and line ends. False when the file cannot
/// be read or is larger than any parameter file. A file without ##END is taken to its end.
bool read_labelled(const std::string& path, LabelledFile& file);

/// Text of a foreign file as UTF-8: bytes that are no UTF-8 are taken as Latin-1, control characters become blanks.
std::string readable_text(std::string_view bytes);

}  // namespace zolt
