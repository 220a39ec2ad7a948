// Varian and Agilent data: file and block headers, the parameters of procpar, the points.
#include "import/varian.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <vector>

#include "common/bytes.h"
#include "common/numbers.h"
#include "common/text.h"
#include "import/labelled.h"
#include "import/quantities.h"
#include "import/varian_pairs.h"
#include "import/varian_procpar.h"
#include "platform/platform.h"

namespace zolt {

namespace {

constexpr const char* parameter_stage = "VARU_procpar";
constexpr const char* data_stage = "VARUData";

constexpr size_t file_header_bytes = 32, block_header_bytes = 28;

enum StatusBit {
    status_spectrum = 0x02,
    status_32_bits = 0x04,
    status_floats = 0x08,
    status_complex = 0x10,
    status_hypercomplex = 0x20,
    status_second_transform = 0x80
};

// ----------------------------------------------------------------------------------------------------------- the file

// Where the values stand: blocks of `traces` rows of `values` words each, behind the block's headers.
struct FidLayout {
    uint64_t blocks = 0, traces = 0, values = 0, word_bytes = 0, header_bytes = 0;
    int status = 0;

    bool floats() const { return (status & status_floats) != 0; }
    bool spectrum() const { return (status & status_spectrum) != 0; }
    uint64_t row_bytes() const { return values * word_bytes; }
    uint64_t block_bytes() const { return header_bytes + traces * row_bytes(); }
};

// The headers of a block, in bytes: the candidate with which the blocks fill the file, else the first with which they fit
// into it.
bool find_header_bytes(FidLayout& layout, std::span<const uint64_t> candidates, uint64_t file_bytes) {
    const uint64_t room = file_bytes - file_header_bytes;
    for (const bool exactly : {true, false})
        for (const uint64_t candidate : candidates) {
            if (candidate < block_header_bytes || candidate % block_header_bytes != 0 || candidate > room) continue;
            layout.header_bytes = candidate;
            const uint64_t held = room / layout.block_bytes(), left = room % layout.block_bytes();
            if (exactly ? held == layout.blocks && left == 0 : held >= layout.blocks) return true;
        }
    return false;
}

bool read_layout(Translation& t, FidLayout& layout, const char* stage) {
    const auto refuse_file = [&](const std::string& why) {
        return t.fail(format_text("File %s cannot be imported: %s.\n", t.path.c_str(), why.c_str()) + stage_line(stage));
    };
    std::array<char, file_header_bytes + block_header_bytes> bytes{};
    if (!t.input.seek(0) || !t.input.read(bytes.data(), bytes.size())) return refuse_file("it ends within its header");
    std::array<int64_t, 9> words{};
    for (size_t i = 0; i < words.size(); ++i) words[i] = load_word<int32_t>(bytes.data() + 4 * i, ByteOrder::big);
    const auto [blocks, traces, values, value_bytes, trace_bytes, block_bytes, version_status, headers, block] = words;
    if (blocks < 1 || traces < 1 || values < 2)
        return refuse_file(format_text("its header gives %lld blocks of %lld traces of %lld values", static_cast<long long>(blocks),
                                       static_cast<long long>(traces), static_cast<long long>(values)));
    layout.status = static_cast<int>(version_status & 0xFFFF);
    const bool wide = value_bytes == 4 || (value_bytes != 2 && (layout.status & status_32_bits) != 0);
    if (!layout.floats() && !wide && value_bytes != 2)
        return refuse_file(format_text("its integers are %lld bytes wide", static_cast<long long>(value_bytes)));
    layout.word_bytes = layout.floats() || wide ? 4 : 2;
    layout.blocks = static_cast<uint64_t>(blocks);
    layout.traces = static_cast<uint64_t>(traces);
    layout.values = static_cast<uint64_t>(values);

    const bool hypercomplex = (block & status_hypercomplex) != 0;
    const uint64_t room = t.input_bytes / layout.row_bytes() >= layout.traces ? layout.traces * layout.row_bytes() : 0;
    // The count of headers is the least reliable field: what the size of a block leaves beside its values goes first, with
    // the width of the values as they are and then as the header says it.
    const uint64_t candidates[] = {static_cast<uint64_t>(block_bytes) - room,
                                   static_cast<uint64_t>(block_bytes - traces * trace_bytes),
                                   (static_cast<uint64_t>(headers & 0xF) + (hypercomplex ? 1 : 0)) * block_header_bytes};
    if (room == 0 || !find_header_bytes(layout, candidates, t.input_bytes) ||
        layout.blocks * layout.traces > std::numeric_limits<int32_t>::max())
        return refuse_file(format_text("its %llu bytes are too few for %lld blocks of %lld traces of %lld values",
                                       static_cast<unsigned long long>(t.input_bytes), static_cast<long long>(blocks),
                                       static_cast<long long>(traces), static_cast<long long>(values)));
    return true;
}

// A phased spectrum holds its real parts alone: fn/2 values. Other data are pairs whatever their complex bit says.
bool real_parts_only(const FidLayout& layout, const Procpar& procpar) {
    const double fn = procpar.number_or_zero("fn");
    return layout.spectrum() && (layout.status & status_complex) == 0 && fn > 0 && 2 * static_cast<double>(layout.values) == fn;
}

// ---------------------------------------------------------------------------------------------------------- parameters

bool procpar_beside(Translation& t, Procpar& procpar, const char* stage) {
    const std::string path = find_companion(folder_of(t.path), "procpar");
    if (!path.empty() && read_procpar(path, procpar) && !procpar.entries.empty()) return true;
    return t.fail(format_text("File %s cannot be imported: there is no parameter file procpar beside it, or it cannot be read.\n",
                              t.path.c_str()) +
                  stage_line(stage));
}

// Names of the parameters that describe a dimension.
struct AxisNames {
    const char *width, *line, *position, *source;
};
constexpr AxisNames axis_names[] = {
    {"sw", "rfl", "rfp", ""}, {"sw1", "rfl1", "rfp1", "refsource1"}, {"sw2", "rfl2", "rfp2", "refsource2"}};

constexpr struct {
    const char *frequency, *nucleus;
} channels[] = {{"sfrq", "tn"}, {"dfrq", "dn"}, {"dfrq2", "dn2"}, {"dfrq3", "dn3"}, {"dfrq4", "dn4"}};

void take_axis(const Procpar& p, const AxisNames& names, Dimension& dimension) {
    const double width = p.number_or_zero(names.width);
    dimension.sw = positive_or_zero(width);
    // A reference line at rfl Hz from the right edge has the frequency rfp.
    dimension.offset = float_or_zero(width / 2 - p.number_or_zero(names.line) + p.number_or_zero(names.position));
    const std::string source = p.text(names.source);
    const auto* channel =
        std::find_if(std::begin(channels), std::end(channels), [&](const auto& c) { return source == c.frequency; });
    if (channel == std::end(channels)) channel = channels;
    dimension.sf = positive_or_zero(p.number_or_zero(channel->frequency));
    dimension.nucleus = nucleus_name(p.text(channel->nucleus));
}

constexpr struct {
    const char* name;
    double DataSet::*value;
} values_taken[] = {{"d1", &DataSet::d1}, {"pw", &DataSet::p1}, {"tof", &DataSet::o1}, {"dof", &DataSet::o2}};

constexpr struct {
    const char* name;
    std::string DataSet::*text;
} texts_taken[] = {{"seqfil", &DataSet::experiment},
                   {"solvent", &DataSet::solvent},
                   {"date", &DataSet::date},
                   {"operator_", &DataSet::user},
                   {"operator_", &DataSet::owner}};

void take_common(const Procpar& p, DataSet& data) {
    for (const auto& row : values_taken) data.*row.value = p.number_or_zero(row.name);
    for (const auto& row : texts_taken) data.*row.text = cut(p.text(row.name), longest_text);
    data.scans = count_or_zero(p.number_or_zero("ct"));
    data.lb() = positive_or_zero(p.number_or_zero("lb"));
}

// The phases are those of the pivot at the left edge; there they count from the right one, growing leftwards.
void take_phases(const Procpar& p, DataSet& data) {
    const auto rp = p.number("rp"), lp = p.number("lp");
    if (!rp && !lp) return;
    data.phase = {float_or_zero(rp.value_or(0) + lp.value_or(0)), float_or_zero(0 - lp.value_or(0)), 0};
}

void take_dimensions(const Procpar& p, const RowPlan& plan, const FidLayout& layout, DataSet& data) {
    take_axis(p, axis_names[0], data.dims[0]);
    for (size_t d = 1; d < 3; ++d) {
        Dimension& dimension = data.dims[d];
        dimension.points = plan.points[d];
        if (dimension.points > 1) take_axis(p, axis_names[plan.axis[d]], dimension);
    }
    data.process_type = plan.process_type;
    data.array_values = plan.values;
    data.dims[0].frequency = layout.spectrum();
    if (plan.series) {
        data.dims[1].axis_unit = unit_points;
        if (data.dims[1].sw == 0) data.dims[1].offset = 0;
    } else {
        const bool transformed = layout.spectrum() && (layout.status & status_second_transform) != 0;
        data.dims[1].frequency = transformed && plan.points[1] > 1;
        data.dims[1].sense = data.dims[1].frequency ? 1 : plan.sense;
        if (plan.process_type == "2D_TPPI") data.dims[1].domain_code = domain_sequential;
    }
    if (!layout.spectrum()) take_phases(p, data);
}

// The comment is the first line of `text`. Data without one are as good.
void take_comment(const std::string& folder, DataSet& data) {
    std::array<char, 2048> start{};
    File file = open_for_reading(find_companion(folder, "text"));
    if (!file) {
        refuse("No TEXT file found for comment");
        return;
    }
    const std::string text = readable_text({start.data(), std::fread(start.data(), 1, start.size(), file.stream())});
    std::string_view rest = text, line;
    take_line(rest, line);
    data.comment = data.title = cut(trimmed(line), longest_text);
}

// -------------------------------------------------------------------------------------------------------------- points

float short_word(const char* at) {
    return static_cast<float>(static_cast<int16_t>(static_cast<unsigned char>(at[0]) << 8 | static_cast<unsigned char>(at[1])));
}
float long_word(const char* at) { return static_cast<float>(load_word<int32_t>(at, ByteOrder::big)); }
float float_word(const char* at) { return load_word<float>(at, ByteOrder::big); }

// One loop a kind of word, so that the conversion is compiled into it.
template <float (*word)(const char* at), size_t bytes>
void take_words(const char* at, bool real_only, std::span<Complex> points) {
    for (Complex& point : points) {
        point = {word(at), real_only ? 0 : word(at + bytes)};
        at += real_only ? bytes : 2 * bytes;
    }
}

// Reads the rows of a file in order.
class RowReader {
public:
    RowReader(File& input, const FidLayout& layout, bool real_only) : input_(input), layout_(layout), real_only_(real_only) {}

    bool read(uint64_t row, std::span<Complex> points) {
        words_.resize(layout_.row_bytes());
        const uint64_t block = row / layout_.traces;
        const bool first_of_block = row % layout_.traces == 0;
        if (first_of_block && !input_.seek(file_header_bytes + block * layout_.block_bytes() + layout_.header_bytes)) return false;
        if (!input_.read(words_.data(), words_.size())) return false;
        const auto take = layout_.floats()          ? take_words<float_word, 4>
                          : layout_.word_bytes == 4 ? take_words<long_word, 4>
                                                    : take_words<short_word, 2>;
        take(words_.data(), real_only_, points);
        return true;
    }

private:
    File& input_;
    const FidLayout& layout_;
    bool real_only_;
    std::vector<char> words_;
};

}  // namespace

bool VARU_procpar(Translation& t) {
    FidLayout layout;
    Procpar procpar;
    if (!read_layout(t, layout, parameter_stage) || !procpar_beside(t, procpar, parameter_stage)) return false;
    if (procpar.text("seqfil").empty())
        return t.fail("No Experiment listed in imported data header\n" + stage_line(parameter_stage));
    take_common(procpar, t.parameters);
    const RowPlan plan = plan_rows(procpar, layout.blocks * layout.traces);
    t.parameters.dims[0].points = static_cast<int32_t>(real_parts_only(layout, procpar) ? layout.values : layout.values / 2);
    take_dimensions(procpar, plan, layout, t.parameters);
    take_comment(folder_of(t.path), t.parameters);
    return true;
}

bool VARUData(Translation& t) {
    const auto misplaced = [&](const char* where) {
        return t.fail(format_text("Can't move file pointer to desired location\nin %s.\n", where) + stage_line(data_stage));
    };
    if (!t.input.seek(0)) return misplaced("data input file");
    if (!t.real.seek(0)) return misplaced("data temporary file 1");
    if (!t.imaginary.seek(0)) return misplaced("temporary file 2");
    FidLayout layout;
    Procpar procpar;
    if (!read_layout(t, layout, data_stage) || !procpar_beside(t, procpar, data_stage)) return false;
    const uint64_t rows = layout.blocks * layout.traces;
    const RowPlan plan = plan_rows(procpar, rows);
    RowReader reader(t.input, layout, real_parts_only(layout, procpar));
    const uint64_t together = plan.combination ? 2 : 1;
    std::array<std::vector<Complex>, 2> points;
    for (auto& row : points) row.resize(static_cast<size_t>(t.parameters.dims[0].points));
    for (uint64_t row = 0; row < rows; row += together) {
        for (uint64_t i = 0; i < together; ++i)
            if (!reader.read(row + i, points[i]))
                return t.fail(format_text("File %s ends before its last point.\n", t.path.c_str()) + stage_line(data_stage));
        if (plan.combination) combine_rows(*plan.combination, points[0], points[1]);
        for (uint64_t i = 0; i < together; ++i)
            if (!write_points(t, points[i], data_stage)) return false;
    }
    return true;
}

}  // namespace zolt
