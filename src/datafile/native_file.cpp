// Reads and writes native files: header, slices, tailer, and their messages.
#include "datafile/native_file.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>
#include <vector>

#include "common/text.h"
#include "datafile/header.h"
#include "datafile/tailer.h"
#include "platform/platform.h"
#include "state/session.h"

namespace zolt {

namespace {

constexpr uint64_t largest_tailer = 256 << 20;

std::string missing_file_text(const std::string& path) {
    return format_text(
        "File [ %s ] not found.\nIn Module FILE function FileRead\nSpelled correctly?\nPath correct?\nDoes the file exist?",
        path.c_str());
}

// One slice into the only vector of the record.
bool read_data_from_file(File& file, const std::string& path, const NativeLayout& layout, uint64_t slice, DataSet& data) {
    if (CurrentArrayedLevel() != 0)
        return fail(format_text("Try to read a file in Arrayed Mode level = %d  ???", CurrentArrayedLevel()));
    if (!data.store.allocate(1, static_cast<size_t>(data.pts1d())))
        return fail("Memory allocation failure for read_data_from_file in File.cp");
    if (read_native_slice(file, layout, slice, data.store.all())) return true;
    return fail(format_text("File %s cannot be read: its data end too early.", path.c_str()));
}

bool write_failed(const std::string& path, const ReplacedFile& file) {
    return fail(
        format_text("Unable to open file\n%s\nfor writing!\n Error Code %ld", path.c_str(), static_cast<long>(file.error())));
}

}  // namespace

const char* const wrong_marker_text =
    "Wrong key word found for file!\nIt is not a PC based CDFF file.\nTry a File / Import / Auto Detect\non this file.";

namespace {

constexpr uint64_t usual_dxb_header = 1 << 16, largest_dxb_header = 16 << 20;

// The text header of type 3; most are short, ones with long lists are read again whole.
std::string read_dxb_header(File& file, uint64_t size, NativeLayout& layout, DataRecord& data) {
    std::string wrong;
    for (const uint64_t most : {usual_dxb_header, largest_dxb_header}) {
        std::string text(static_cast<size_t>(std::min(size, most)), '\0');
        if (!file.seek(0) || !file.read(text.data(), text.size())) return "it cannot be read to its end";
        DataRecord fresh;
        wrong = decode_dxb_header(text, size, layout, fresh);
        if (wrong.empty()) data = std::move(fresh);
        if (wrong.empty() || size <= most) break;
    }
    return wrong;
}

}  // namespace

std::string read_native_header(File& file, uint64_t size, NativeLayout& layout, DataRecord& data) {
    std::array<unsigned char, full_header_bytes> bytes{};
    const size_t start = static_cast<size_t>(std::min<uint64_t>(size, 512));
    if (!file.seek(0) || !file.read(bytes.data(), start)) return wrong_marker_text;
    if (is_dxb_start({reinterpret_cast<const char*>(bytes.data()), start})) return read_dxb_header(file, size, layout, data);
    if (!decode_header_start({bytes.data(), start}, layout)) return wrong_marker_text;
    const size_t whole = layout.type == 2 ? full_header_bytes : short_header_bytes;
    if (size < whole || !file.seek(0) || !file.read(bytes.data(), whole)) return "it ends inside its header";
    return decode_header({bytes.data(), whole}, size, layout, data);
}

namespace {

bool many_planes(const DataRecord& data) { return data.dims[2].points > 1 || data.dims[3].points > 1; }

// Bytes of the slice that holds a data buffer.
uint64_t buffer_bytes(const DataBuffer& buffer, const NativeLayout& layout) {
    return static_cast<uint64_t>(buffer.promised_points) * sizeof(Complex) + layout.prefix_bytes();
}

// Where the text begins in what follows the data: behind the slices of the buffers that it describes.
size_t start_of_text(std::string_view text, const NativeLayout& layout) {
    constexpr std::string_view keyword = "INFORMATION\r\n";
    // Points that read as the keyword by chance are hardly to be thought of; many are none of ours.
    constexpr int most_tried = 8;
    if (text.find("##$BUFFER=") == std::string_view::npos) return 0;
    size_t at = text.find(keyword);
    for (int tried = 0; at != std::string_view::npos && tried < most_tried; at = text.find(keyword, at + 1), ++tried) {
        DataRecord described;
        read_tailer(text.substr(at), described);
        uint64_t bytes = 0;
        for (const DataBuffer& buffer : described.buffers) bytes += buffer_bytes(buffer, layout);
        if (bytes == at) return at;
    }
    return 0;
}

}  // namespace

std::string read_native_tailer(File& file, uint64_t size, const NativeLayout& layout, DataRecord& data) {
    // Behind the planes of 3D and 4D files nothing follows the data.
    const uint64_t start = layout.slice_offset(layout.slices);
    if (layout.type == 3 || many_planes(data) || start >= size) return {};
    std::string text(static_cast<size_t>(std::min(size - start, largest_tailer)), '\0');
    if (!file.seek(start) || !file.read(text.data(), text.size())) return {};
    text.erase(0, start_of_text(text, layout));
    read_tailer(text, data);
    return text;
}

void read_native_buffers(File& file, uint64_t size, const NativeLayout& layout, DataRecord& data) {
    if (data.buffers.empty() || layout.slices_in(size) < data.all_slices()) {
        data.buffers.clear();
        return;
    }
    uint64_t offset = layout.slice_offset(data.all_slices());
    std::vector<DataBuffer> described = std::exchange(data.buffers, {});
    for (DataBuffer& buffer : described) {
        const uint64_t bytes = buffer_bytes(buffer, layout);
        if (offset > size || bytes > size - offset) return;
        buffer.points.resize(static_cast<size_t>(buffer.promised_points));
        if (!file.seek(offset + layout.prefix_bytes()) || !file.read(buffer.points.data(), buffer.points.size() * sizeof(Complex)))
            return;
        to_machine_order(buffer.points.data(), 2 * buffer.points.size(), layout.order);
        offset += bytes;
        data.buffers.push_back(std::move(buffer));
    }
}

FileClass classify_file(const std::string& path) {
    if (!file_facts(path).exists) return FileClass::missing;
    File file = open_for_reading(path);
    std::array<unsigned char, 512> start{};
    NativeLayout layout;
    if (!file) return FileClass::foreign;
    const size_t held = std::fread(start.data(), 1, start.size(), file.stream());
    if (is_dxb_start({reinterpret_cast<const char*>(start.data()), held})) return FileClass::native;
    if (held < 16 || !decode_header_start(start, layout)) return FileClass::foreign;
    if (layout.order == ByteOrder::big) return FileClass::swapped_native;
    return layout.data_type != 0 ? FileClass::integer_native : FileClass::native;
}

bool FileRead(const std::string& path, DataSet& into) {
    const FileFacts facts = file_facts(path);
    if (!facts.exists) return fail(missing_file_text(path));
    File file = open_for_reading(path);
    if (!file)
        return fail(
            format_text("File %s cannot be opened for reading: it is no ordinary file, or you may not read it.", path.c_str()));

    DataSet fresh;
    NativeLayout layout;
    const std::string wrong = read_native_header(file, facts.size, layout, fresh);
    if (wrong == wrong_marker_text) {
        platform().beep();
        return fail(wrong);
    }
    if (wrong.ends_with('.') || wrong.ends_with("_header")) return fail(wrong);  // a sentence of its own
    if (!wrong.empty()) return fail(format_text("File %s cannot be read: %s.", path.c_str(), wrong.c_str()));
    if (layout.data_type != 0)
        return fail(format_text("File %s holds integers, which are not read directly. Use IM.", path.c_str()));
    if (!read_data_from_file(file, path, layout, 0, fresh)) return false;
    fresh.file_a = absolute_path(path);
    read_native_tailer(file, facts.size, layout, fresh);
    read_native_buffers(file, facts.size, layout, fresh);
    if (fresh.path.empty()) fresh.path = folder_of(fresh.file_a);
    fresh.loaded = true;
    into = std::move(fresh);
    return true;
}

// A file of type 3 says in its header that it is in Intel order.
NativeForm configured_form() {
    const bool little = session.byte_order == 1 || session.header_type == 3;
    return {session.header_type, little ? ByteOrder::little : ByteOrder::big};
}

bool write_native_header(File& file, NativeForm form, const DataRecord& data, const DataSummary& summary, NativeLayout& layout) {
    layout = {};
    layout.type = form.type;
    layout.order = form.order;
    layout.slices = static_cast<uint64_t>(data.dims[1].points);
    layout.slice_bytes = static_cast<uint64_t>(data.pts1d()) * sizeof(Complex) + layout.prefix_bytes();
    if (layout.type == 3) {
        const std::string header = encode_dxb_header(data, summary, false);
        layout.header_bytes = header.size();
        return file.write(header);
    }
    const auto header = encode_header(data, layout.type, layout.order);
    layout.header_bytes = header.size();
    return file.write(header.data(), header.size());
}

bool begin_native_slice(File& file, NativeForm form, size_t points) {
    std::array<unsigned char, 4> count{};
    store_word(count.data(), static_cast<uint32_t>(2 * points), form.order);
    return form.type != 1 || file.write(count.data(), count.size());
}

bool write_native_points(File& file, NativeForm form, std::span<const Complex> points) {
    if (form.order == machine_order) return file.write(points.data(), points.size_bytes());
    std::array<Complex, 4096> swapped;
    for (; !points.empty(); points = points.subspan(std::min(points.size(), swapped.size()))) {
        const auto part = points.first(std::min(points.size(), swapped.size()));
        std::copy(part.begin(), part.end(), swapped.begin());
        to_machine_order(swapped.data(), 2 * part.size(), form.order);
        if (!file.write(swapped.data(), part.size_bytes())) return false;
    }
    return true;
}

bool write_native_slice(File& file, NativeForm form, std::span<const Complex> slice) {
    return begin_native_slice(file, form, slice.size()) && write_native_points(file, form, slice);
}

bool write_native_end(File& file, NativeForm form, const DataRecord& data, std::string_view replaced) {
    // A tailer is what describes the buffers of types 1 and 2.
    if (form.type != 3 && many_planes(data)) return true;
    for (const DataBuffer& buffer : data.buffers)
        if (!write_native_slice(file, form, buffer.points)) return false;
    return form.type == 3 || file.write(tailer_text(data, replaced));
}

namespace {

// Slices with their counts, put together so that many are written at once.
bool write_counted_vectors(File& file, NativeForm form, const VectorStore& store) {
    constexpr size_t together = size_t{1} << 20;
    const size_t slice_bytes = 4 + store.points() * sizeof(Complex);
    const size_t at_a_time = std::clamp<size_t>(together / slice_bytes, 1, std::max<size_t>(store.count(), 1));
    Buffer<unsigned char> block;
    if (!block.allocate(at_a_time * slice_bytes)) return false;
    for (size_t i = 0; i < store.count(); i += at_a_time) {
        const size_t some = std::min(at_a_time, store.count() - i);
        for (size_t k = 0; k < some; ++k) {
            unsigned char* to = block.data() + k * slice_bytes;
            store_word(to, static_cast<uint32_t>(2 * store.points()), form.order);
            std::memcpy(to + 4, store.vector(i + k).data(), slice_bytes - 4);
        }
        if (!file.write(block.data(), some * slice_bytes)) return false;
    }
    return true;
}

// Every vector of the store; in one piece where nothing stands between them.
bool write_vectors(File& file, NativeForm form, const VectorStore& store) {
    if (form.order == machine_order)
        return form.type == 1 ? write_counted_vectors(file, form, store) : write_native_slice(file, form, store.all());
    for (size_t i = 0; i < store.count(); ++i)
        if (!write_native_slice(file, form, store.vector(i))) return false;
    return true;
}

// Only the text header tells of the points.
DataSummary summary_for(NativeForm form, std::span<const Complex> points) {
    DataSummary summary;
    if (form.type == 3) summary.add(points);
    return summary;
}

}  // namespace

bool write_native_file(File& file, const DataSet& data, NativeLayout& layout) {
    const NativeForm form = configured_form();
    return write_native_header(file, form, data, summary_for(form, data.store.all()), layout) &&
           write_vectors(file, form, data.store) && write_native_end(file, form, data);
}

DataRecord record_of_level(const DataRecord& data) {
    DataRecord record = data;
    if (data.level < 1) record.dims[1].points = 1;
    if (data.level < 3) record.dims[2].points = 1;
    if (data.level < 4) record.dims[3].points = 1;
    return record;
}

bool write_MD_file(const std::string& path, const DataSet& data) {
    const NativeForm form = configured_form();
    if (data.level == 2 && form.type != 3) return fail("PairWise Complex file writes only supported with header type 3. ");
    if (overwrite_refused(path)) return false;
    ReplacedFile file;
    if (!file.open(path)) return write_failed(path, file);
    const DataRecord record = record_of_level(data);
    const DataSummary summary = summary_for(form, data.store.all());
    NativeLayout layout;
    if (!write_native_header(file, form, record, summary, layout)) return fail("Could not write header in write_MD_file.");
    if (write_vectors(file, form, data.store) && write_native_end(file, form, record) && file.commit()) return true;
    return fail(format_text(data.level == 2 ? "Failed trying to save PairWise Complex section A of file\n%s\n"
                                            : "Failed trying to save file\n%s\nDisk Full ???",
                            path.c_str()));
}

bool read_native_slice(File& file, const NativeLayout& layout, uint64_t index, std::span<Complex> points, size_t first) {
    const uint64_t offset = layout.slice_offset(index) + layout.prefix_bytes() + first * sizeof(Complex);
    if (!file.seek(offset) || !file.read(points.data(), points.size_bytes())) return false;
    to_machine_order(points.data(), 2 * points.size(), layout.order);
    return true;
}

bool overwrite_refused(const std::string& path) {
    if (!settings.no_file_overwrite || !file_facts(path).exists) return false;
    refuse("System configured to prevent Overwriting of existing files.");
    return true;
}

bool FileWrite(const std::string& path, const DataSet& data) {
    if (overwrite_refused(path)) return false;
    ReplacedFile file;
    if (!file.open(path)) return write_failed(path, file);
    DataRecord one_slice = data;
    one_slice.level = 0;
    one_slice = record_of_level(one_slice);
    NativeLayout layout;
    const NativeForm form = configured_form();
    const DataSummary summary = summary_for(form, data.cvNMRdata());
    if (!write_native_header(file, form, one_slice, summary, layout)) return fail("Could not write header in FileWrite.");
    const bool slice_written = write_native_slice(file, form, data.cvNMRdata());
    if (!slice_written || !write_native_end(file, form, one_slice) || !file.commit())
        return fail(format_text("Failed trying to save file\n%s\nDisk Full ???", path.c_str()));
    return true;
}

}  // namespace zolt
