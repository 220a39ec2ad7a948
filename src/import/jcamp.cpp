// JCAMP-DX files: the block that is imported, and its tables row by row into the temporary files.
#include "import/jcamp.h"

#include <algorithm>
#include <array>
#include <limits>

#include "common/text.h"
#include "import/jcamp_asdf.h"
#include "import/jcamp_block.h"
#include "platform/platform.h"

namespace zolt {

namespace {

constexpr const char* parameter_module = "\nError in JCAMP_Parm Module";
constexpr const char* data_module = "\nError in JCAMP_Data Module";

// A repetition of one letter and some digits stands for as many points as it likes. What a file of this size may hold:
// enough for spectra and planes that are zero for the most part.
uint64_t most_points_of_row(uint64_t bytes) { return std::max<uint64_t>(uint64_t{1} << 20, 32 * bytes); }
uint64_t most_points(uint64_t bytes) { return std::max<uint64_t>(uint64_t{1} << 22, 64 * bytes); }

bool cannot_import(Translation& t, const std::string& why, const char* module) {
    return t.fail(format_text("File %s cannot be imported: %s.\n%s", t.path.c_str(), why.c_str(), module));
}

std::string name_of_block(const JcampBlock& block) {
    const std::string type = block.text("DATATYPE"), title = block.text("TITLE");
    return (type.empty() ? "no data type" : type) + (title.empty() ? "" : ": " + title);
}

// The first block of NMR data with points; the first of NMR data at all, so that its refusal can be told, without one.
// A block that does not say what it holds counts as NMR.
const JcampBlock* chosen_block(const std::vector<JcampBlock>& blocks) {
    const JcampBlock* without_points = nullptr;
    for (const JcampBlock& block : blocks) {
        if (!block.is_nmr() && !block.data_type().empty()) continue;
        if (block.find("XYDATA") != nullptr || block.find("NTUPLES") != nullptr) return &block;
        if (without_points == nullptr) without_points = &block;
    }
    return without_points;
}

void list_blocks(const std::string& path, const std::vector<JcampBlock>& blocks, const JcampBlock& taken) {
    std::string text;
    size_t data_blocks = 0;
    constexpr size_t most_listed = 20;
    for (const JcampBlock& block : blocks) {
        if (block.data_type() == "LINK" || ++data_blocks > most_listed) continue;
        text += format_text("\n%zu  %s%s", data_blocks, name_of_block(block).c_str(), &block == &taken ? "  (imported)" : "");
    }
    if (data_blocks < 2) return;
    platform().message("Import", Icon::information,
                       format_text("File %s holds %zu data sets:%s", path.c_str(), data_blocks, text.c_str()));
}

struct Opened {
    JcampText text;
    std::vector<JcampBlock> blocks;
    JcampLayout layout;
    const JcampBlock* taken = nullptr;
};

bool open_layout(Translation& t, Opened& opened, const char* module) {
    if (!read_jcamp_text(t, opened.text)) {
        t.message += module;
        return false;
    }
    opened.blocks = blocks_of(opened.text);
    if (opened.blocks.empty()) return cannot_import(t, "it holds no ##LABEL= lines of JCAMP-DX", module);
    opened.taken = chosen_block(opened.blocks);
    if (opened.taken == nullptr) {
        const std::string what = name_of_block(opened.blocks.back());
        return cannot_import(t, "it holds no NMR data (" + what + ")", module);
    }
    const std::string wrong = read_layout(*opened.taken, opened.layout);
    return wrong.empty() || cannot_import(t, wrong, module);
}

// The lines of a table; a file that ends within them has been cut short.
std::string table_lines(const JcampText& text, const JcampTable& table, std::string_view& lines) {
    const std::string_view body = table.record->body;
    lines = body.substr(std::min(body.size(), body.find('\n')));
    if (!lines.empty()) lines.remove_prefix(1);
    const bool at_end = body.data() + body.size() == text.bytes.data() + text.bytes.size();
    return at_end ? "it ends within a table: a part of it is missing" : "";
}

// Points of a row: as declared, else as the first table has them. 0 with the message.
int64_t points_of_row(Translation& t, const Opened& opened) {
    const auto most =
        static_cast<int64_t>(std::min<uint64_t>(most_points_of_row(t.input_bytes), std::numeric_limits<int32_t>::max()));
    const JcampLayout& layout = opened.layout;
    if (layout.points > most) {
        cannot_import(t,
                      format_text("its header promises %lld points, more than a file of its size can hold",
                                  static_cast<long long>(layout.points)),
                      parameter_module);
        return 0;
    }
    if (layout.points > 0) return layout.points;
    std::string_view lines;
    std::string wrong = table_lines(opened.text, layout.real_rows[0], lines);
    Buffer<float> values;
    if (wrong.empty() && !values.allocate(static_cast<size_t>(most))) wrong = "there is no memory for its points";
    DecodedTable decoded;
    if (wrong.empty()) decoded = decode_table(lines, layout.y.squeezed, 1, values.span());
    if (wrong.empty()) wrong = decoded.wrong;
    if (wrong.empty() && decoded.count == 0) wrong = "its table is empty";
    if (!wrong.empty()) cannot_import(t, wrong, parameter_module);
    return wrong.empty() ? static_cast<int64_t>(decoded.count) : 0;
}

// The counts are those of the rows that the tables make.
bool counts_agree(const DataSet& data, int64_t points, uint64_t rows) {
    uint64_t counted = 1;
    for (size_t d = 1; d < 4; ++d) {
        const int32_t count = data.dims[d].points;
        if (count < 1 || counted > rows / static_cast<uint64_t>(count)) return false;
        counted *= static_cast<uint64_t>(count);
    }
    return data.pts1d() == points && counted == rows;
}

// Decodes one row; `values` has room for all its points.
std::string read_row(const Opened& opened, const JcampTable& table, const JcampColumn& column, std::span<float> values,
                     size_t& count) {
    std::string_view lines;
    std::string wrong = table_lines(opened.text, table, lines);
    if (!wrong.empty()) return wrong;
    DecodedTable decoded = decode_table(lines, column.squeezed, column.factor, values);
    count = decoded.count;
    if (!opened.layout.descending_x) std::reverse(values.begin(), values.begin() + static_cast<ptrdiff_t>(count));
    return decoded.wrong;
}

// Some writers count the steps instead of the points, or the other way round: a single row may differ by one from what its
// header gives.
bool acceptable_count(const Opened& opened, size_t count, size_t points, bool first_table) {
    const bool single = first_table && opened.layout.real_rows.size() == 1 && !opened.layout.own && points > 2;
    return count == points || (single && (count + 1 == points || count == points + 1));
}

std::string write_rows(Translation& t, const Opened& opened, size_t& points) {
    const JcampLayout& layout = opened.layout;
    Buffer<float> values, zeros;
    if (!values.allocate(points + 1) || !zeros.allocate_zeroed(layout.imaginary_rows.empty() ? points + 1 : 0))
        return "there is no memory for its points";
    const auto write_table = [&](const JcampTable& table, const JcampColumn& column, File& file) -> std::string {
        size_t count = 0;
        std::string wrong = read_row(opened, table, column, values.span(), count);
        if (!wrong.empty()) return wrong;
        if (!acceptable_count(opened, count, points, &table == layout.real_rows.data()))
            return format_text("a table holds %zu of the %zu points that the header gives", count, points);
        points = count;
        return file.write(values.data(), count * sizeof(float)) ? "" : "the temporary files cannot be written";
    };
    const size_t rows = layout.real_rows.size();
    for (size_t i = 0; i < rows; ++i) {
        const size_t row = layout.descending_page ? i : rows - 1 - i;
        std::string wrong = write_table(layout.real_rows[row], layout.y, t.real);
        if (!wrong.empty()) return wrong;
        if (!layout.imaginary_rows.empty())
            wrong = write_table(layout.imaginary_rows[row], layout.imaginary, t.imaginary);
        else if (!t.imaginary.write(zeros.data(), points * sizeof(float)))
            wrong = "the temporary files cannot be written";
        if (!wrong.empty()) return wrong;
    }
    return {};
}

}  // namespace

bool JCAMP_Parm(Translation& t) {
    Opened opened;
    if (!open_layout(t, opened, parameter_module)) return false;
    const JcampLayout& layout = opened.layout;
    const int64_t points = points_of_row(t, opened);
    if (points == 0) return false;
    const uint64_t rows = layout.real_rows.size();
    if (rows > most_points(t.input_bytes) / static_cast<uint64_t>(points))
        return cannot_import(t, "its header promises more points than a file of its size can hold", parameter_module);
    take_parameters(layout, t.parameters);
    set_axes(layout, points, t.parameters);
    if (!counts_agree(t.parameters, points, rows))
        return cannot_import(t, "the counts of its header do not agree with one another", parameter_module);
    list_blocks(t.path, opened.blocks, *opened.taken);
    return true;
}

bool JCAMP_Data(Translation& t) {
    Opened opened;
    if (!open_layout(t, opened, data_module)) return false;
    if (!t.real.seek(0) || !t.imaginary.seek(0))
        return t.fail(std::string("Can't move file pointer to desired location\nin data temporary file.\n") + data_module);
    auto points = static_cast<size_t>(t.parameters.pts1d());
    const std::string wrong = write_rows(t, opened, points);
    if (!wrong.empty()) return cannot_import(t, wrong, data_module);
    if (points != static_cast<size_t>(t.parameters.pts1d())) set_axes(opened.layout, static_cast<int64_t>(points), t.parameters);
    return true;
}

}  // namespace zolt
