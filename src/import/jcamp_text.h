// JCAMP-DX files as a list of labelled records, the blocks that they make, and the values of one record.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/buffer.h"
#include "import/format.h"

namespace zolt {

/// A record: its label without "##" and "=", and all behind it up to the next label.
struct JcampRecord {
    std::string_view label, body;

    /// Labels compare without blanks, hyphens, underscores and letter case; `wanted` has none of them and is in capitals.
    bool is(std::string_view wanted) const;
    /// The first line of the body without its `$$` comment and the blanks around it.
    std::string_view value() const;
    /// The value as text: without the angle brackets around it, as UTF-8, of the length that texts have.
    std::string text() const;
    /// The fields between commas of the value, empty ones kept.
    std::vector<std::string_view> list() const;
    /// Value `index` (from 0) of an array that stands on the lines behind the first.
    std::optional<double> element(size_t index) const;
};

/// A whole file in memory. Its records view its bytes.
struct JcampText {
    Buffer<char> bytes;
    std::vector<JcampRecord> records;
};

/// Reads the file of a translation; false with the message.
bool read_jcamp_text(Translation& t, JcampText& text);

/// Splits text into its records.
std::vector<JcampRecord> split_records(std::string_view text);

/// One data set of a file: the records from a title up to the next.
struct JcampBlock {
    const JcampRecord* begin_ = nullptr;
    const JcampRecord* end_ = nullptr;

    const JcampRecord* begin() const { return begin_; }
    const JcampRecord* end() const { return end_; }
    /// Occurrence `index` (from 0) of a label; nullptr without one. Parameters of a second dimension repeat the labels.
    const JcampRecord* find(std::string_view label, size_t index = 0) const;
    /// The finite number that such a record begins with.
    std::optional<double> number(std::string_view label, size_t index = 0) const;
    /// The text of a record, "" without one.
    std::string text(std::string_view label, size_t index = 0) const;
    /// DATA TYPE in capitals, without blanks.
    std::string data_type() const;
    bool is_nmr() const;
};

std::vector<JcampBlock> blocks_of(const JcampText& text);

/// The text in capitals, without blanks, hyphens and underscores.
std::string folded(std::string_view text);

/// A value read from a text as one of the data set: 0 for what no 32-bit float holds.
float usable(double value);

constexpr size_t longest_jcamp_text = 127;

}  // namespace zolt
