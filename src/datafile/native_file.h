// The native data file in its three header types: classification, reading into a data set, writing.
#pragma once

#include <span>
#include <string>

#include "common/file.h"
#include "datafile/dxb.h"
#include "datafile/header.h"
#include "state/dataset.h"

namespace zolt {

/// What the first words of a file say it is.
enum class FileClass { missing, native, integer_native, swapped_native, foreign };

FileClass classify_file(const std::string& path);

/// Reads a native file into a fresh record: header, first slice, tailer. `into` is changed only on success; the caller
/// commits it to `show`. Failures are reported in a message box. file_a of `into` becomes the absolute path.
bool FileRead(const std::string& path, DataSet& into);

/// Stores the current slice of the data set as a one-dimensional file of the configured type.
bool FileWrite(const std::string& path, const DataSet& data);

/// Stores every vector of an Arrayed level as a file of the configured type. False, after its message.
bool write_MD_file(const std::string& path, const DataSet& data);

/// The record of what a level holds: one slice at level 0, one plane at levels 1 and 2, one cube at level 3.
DataRecord record_of_level(const DataRecord& data);

/// Header type and byte order of a file to be written.
struct NativeForm {
    int type = 2;
    ByteOrder order = ByteOrder::little;
};
/// The form that the configuration asks for.
NativeForm configured_form();

/// The pieces of a whole native file, for writers that produce one slice after another: header (the data set's counts),
/// every slice in order, end. Each returns false when the disk does not take it. The header of type 3 describes the
/// points, which are summarised beforehand; `layout` tells where the slices will stand.
bool write_native_header(File& file, NativeForm form, const DataRecord& data, const DataSummary& summary, NativeLayout& layout);
bool write_native_slice(File& file, NativeForm form, std::span<const Complex> slice);
/// What stands behind the data: the slices of the data buffers and, for types 1 and 2, the tailer; with the text of one
/// that it replaces, sections which the program does not know are kept.
bool write_native_end(File& file, NativeForm form, const DataRecord& data, std::string_view replaced = {});
/// The same in portions, for writers that do not hold a whole slice: what stands in front of it, then its points.
bool begin_native_slice(File& file, NativeForm form, size_t points);
bool write_native_points(File& file, NativeForm form, std::span<const Complex> points);

/// All of it from memory: header, every vector of the store, tailer. `layout` tells where the slices stand.
bool write_native_file(File& file, const DataSet& data, NativeLayout& layout);

/// Takes the header of an open file of `size` bytes into the data set and completes the layout. An empty text on
/// success, else what is wrong; `wrong_marker_text` when it is no native file.
std::string read_native_header(File& file, uint64_t size, NativeLayout& layout, DataRecord& data);
/// Takes the tailer behind the slices, if there is one, and returns its text.
std::string read_native_tailer(File& file, uint64_t size, const NativeLayout& layout, DataRecord& data);
/// Reads the points of the data buffers that header or tailer have described; those the file does not hold are dropped.
void read_native_buffers(File& file, uint64_t size, const NativeLayout& layout, DataRecord& data);

extern const char* const wrong_marker_text;

/// Reads slice `index` (from 0) into `points`, from point `first` of it on; or, but for type 1, several slices, which
/// follow one another.
bool read_native_slice(File& file, const NativeLayout& layout, uint64_t index, std::span<Complex> points, size_t first = 0);

/// True, after its message, when the configuration forbids to write over this existing file.
bool overwrite_refused(const std::string& path);

}  // namespace zolt
