// The sections of meta objects, notes and data buffers.
#pragma once

#include <string>
#include <string_view>

#include "state/dataset.h"

namespace zolt {

/// Where a list of meta objects goes: a tailer, a JCAMP-DXB header, or a listing (without column titles).
enum class MetaForm { tailer, prefixed, listing };

/// The MO_LIST section; "" without objects.
std::string meta_objects_section(const DataRecord& data, MetaForm form);
/// Takes one line of the section: a file name begins an object, a line of numbers gives it its place. Missing numbers
/// stay 0.
void read_meta_object_line(std::string_view line, DataRecord& data);

/// The NOTES section; "" without notes.
std::string notes_section(const DataRecord& data, bool prefixed);
/// Takes one line of the section.
void read_note_line(std::string_view line, DataRecord& data);

/// The lines that describe the data buffers, ##$BUFFER=number=key=value.
std::string buffer_lines(const DataRecord& data);
/// Takes such a line; false when it is none. The points are read from their slices behind the data later.
bool read_buffer_line(std::string_view line, DataRecord& data);

/// A buffer with the points and the axis of the current vector.
DataBuffer buffer_of(const DataSet& data, int number, std::string comment);
/// Puts a buffer into the data set in place of that of its number.
void set_buffer(DataRecord& data, DataBuffer buffer);

}  // namespace zolt
