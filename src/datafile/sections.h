// The text sections of native files: one table for tailers and JCAMP-DXB headers.
#pragma once

#include <string>
#include <string_view>

#include "datafile/integrals.h"
#include "state/dataset.h"

namespace zolt {

struct Section;

/// Takes the sections of a text line by line into a data set, with or without the prefixes of a JCAMP-DXB header.
class SectionReader {
public:
    explicit SectionReader(DataRecord& data) : data_(data) {}
    ~SectionReader() { order_integrals(data_); }
    SectionReader(const SectionReader&) = delete;
    SectionReader& operator=(const SectionReader&) = delete;
    /// True when the line belongs to a section (its keywords included) or describes a data buffer.
    bool take(std::string_view line);

private:
    DataRecord& data_;
    const Section* section_ = nullptr;
    bool peaks_2d_ = false;
};

/// The sections of a tailer, without its end line.
std::string tailer_sections(const DataRecord& data);
/// Those of them that a JCAMP-DXB header carries, with its prefixes.
std::string header_sections(const DataRecord& data);

/// Notes that the file has the annotations of now; the data, too.
void annotations_saved(DataRecord& data);
void mark_saved(DataRecord& data);
/// A data set is there whose data or annotations differ from its file: those of a single spectrum alone, as those of a larger
/// set follow the slices.
bool is_unsaved(const DataRecord& data);

/// Cuts every section of this keyword out of a tailer, from the keyword's line through that of its end.
void remove_section(std::string& tailer, std::string_view keyword, std::string_view end);
/// A tailer brought up to date: the known sections are those of the data set, everything else stays.
std::string updated_tailer(std::string_view tailer, const DataRecord& data);

}  // namespace zolt
