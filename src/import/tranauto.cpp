// Recognising a foreign file step by step, and running its translator through the temporary files.
#include "import/tranauto.h"

#include <array>
#include <filesystem>
#include <system_error>

#include "common/bytes.h"
#include "common/text.h"
#include "datafile/native_file.h"
#include "import/bruker.h"
#include "import/merge.h"
#include "platform/platform.h"
#include "state/session.h"

namespace zolt {

namespace {

constexpr uint32_t native_word = 0x04030201, swapped_native_word = 0x01020304;
constexpr const char* native_found = "Keyword of translated CDFF file found.";

// What one step of the detection says: a format's number, 0 for "go on", or the reason to stop.
struct Verdict {
    int number = 0;
    std::string stop = {};
};

// Word `index` of the open file, in Intel order; 0 where the file is shorter.
uint32_t word_of(Candidate& file, uint64_t index) {
    std::array<char, 4> bytes{};
    if (!file.input.seek(4 * index) || !file.input.read(bytes.data(), bytes.size())) return 0;
    return load_word<uint32_t>(bytes.data(), ByteOrder::little);
}

Verdict bruker_directory(Candidate& file) {
    const int software = xwin_test(file);
    return {software == 1 ? 70 : software == 2 ? 71 : 0};
}

Verdict fid_with_companion(Candidate& file) {
    if (!file.named("fid")) return {};
    if (file.beside("acqus")) return {BRUX_Test(file) ? 27 : 23};
    return {file.beside("procpar") ? 22 : 0};
}

Verdict phasefile_with_companion(Candidate& file) { return {file.named("phasefile") && file.beside("procpar") ? 22 : 0}; }

Verdict processed_1d(Candidate& file) { return {file.named("1r") && (file.beside("acqus") || file.beside("procs")) ? 65 : 0}; }

Verdict ser_file(Candidate& file) {
    if (!file.named("ser")) return {};
    return {BRUU_3D_Test(file) ? 80 : 24};
}

Verdict chemagnetics_names(Candidate& file) {
    if (file.named("d") && file.beside("pb")) return {35};
    return {file.named("data") && file.beside("proc") && file.beside("acq") ? 36 : 0};
}

Verdict open_for_content(Candidate& file) {
    file.input = open_for_reading(file.path);
    if (file.input) return {};
    return {0, format_text("Unable to open file pointer for %s.", file.path.c_str())};
}

Verdict bare_fid(Candidate& file) {
    if (!file.named("fid")) return {};
    if (word_of(file, 0) == native_word) return {0, native_found};
    return {22};
}

Verdict native_keyword(Candidate& file) {
    const uint32_t first = word_of(file, 0);
    if (first == swapped_native_word) return {15};
    if (first != native_word) return {};
    return {word_of(file, 3) == 0 ? 14 : 39};
}

// The order decides: names with their companions first, then strong keywords, weak ones last.
constexpr struct {
    const char* name;
    Verdict (*decide)(Candidate& file);
} steps[] = {
    {"Bruker directory", bruker_directory},
    {"name fid with acqus or procpar", fid_with_companion},
    {"name phasefile with procpar", phasefile_with_companion},
    {"name 1r with acqus or procs", processed_1d},
    {"name ser", ser_file},
    {"names d and data with their companions", chemagnetics_names},
    {"opening of the file", open_for_content},
    {"name fid alone", bare_fid},
    {"native keyword", native_keyword},
};

// Whether the output may be written; false with the message, or after the configuration's own.
bool output_allowed(const std::string& input, const std::string& output, std::string& message) {
    const FileFacts facts = file_facts(output);
    std::error_code error;
    if (input == output || std::filesystem::equivalent(input, output, error)) {
        message = "Input and Output file names are identical.\nNot allowed!";
    } else if (facts.exists && !facts.regular) {
        message = format_text("Unable to open output file\n%s\nfor writing!", output.c_str());
    } else if (overwrite_refused(output)) {
        return false;
    } else if (is_read_only(output)) {
        message = format_text(
            "File: %s\nexists AND is READ ONLY.\nZOLT does not have authority to change the file's permissions\n"
            "The file needs to be deleted from the operating system before the import can work.",
            output.c_str());
    } else if (facts.exists && !playing_back() &&
               platform().question("Replace?", format_text("Target file name already exists: %s\nOverwrite?", output.c_str()),
                                   Buttons::yes_no) != Answer::yes) {
        message = format_text("File %s was kept.\nAnswer Yes to replace it, or name another one: IM file SPECIAL_NAME name",
                              output.c_str());
    }
    return message.empty();
}

// The sense of a format's FIDs, for every dimension that still waits for its transform.
void set_senses(const Format& format, bool swapped, DataSet& parameters) {
    for (size_t d = 0; d < parameters.dims.size() && format.sense != 0; ++d) {
        Dimension& dimension = parameters.dims[d];
        dimension.sense = !dimension.frequency && (d == 0 || dimension.points > 1) ? format.sense : 1;
    }
    if (!swapped || parameters.dims[0].frequency) return;
    // i(x*) for x: the other sense of rotation, a quarter turn away.
    parameters.dims[0].sense = -parameters.dims[0].sense;
    parameters.phase[0] += 90;
}

bool write_output(TemporaryFiles& temporary, const DataSet& parameters, bool swap, const std::string& path, std::string& message) {
    ReplacedFile output;
    if (!output.open(path)) {
        message = format_text("Unable to open output file\n%s\nfor writing!", path.c_str());
        return false;
    }
    DataSummary summary;
    NativeLayout layout;
    if (!summarize_parts(temporary.file(1), temporary.file(2), parameters, swap, summary) ||
        !write_native_header(output, configured_form(), parameters, summary, layout)) {
        message = "The output file cannot be written.\nDisk Full ???";
        return false;
    }
    if (!merge_parts(temporary.file(1), temporary.file(2), parameters, swap, output, message)) return false;
    if (write_native_end(output, configured_form(), parameters) && output.commit()) return true;
    message = "The output file cannot be written.\nDisk Full ???";
    return false;
}

bool run_translator(const Format& format, const std::string& input, const std::string& output, const ImportOptions& options,
                    DataSet& parameters, std::string& message) {
    const WaitCursor waiting;
    TemporaryFiles temporary;
    if (!temporary.open(message)) return false;
    File file = open_for_reading(input);
    if (!file) {
        message = format_text("Unable to open file pointer for %s.", input.c_str());
        return false;
    }
    for (Dimension& dimension : parameters.dims) dimension.points = 1;
    parameters.phase = {static_cast<float>(settings.default_pa), static_cast<float>(settings.default_pb),
                        static_cast<float>(settings.default_pc)};
    parameters.source = format.name;
    parameters.path = folder_of(input);
    Translation t{format, input, file, file_facts(input).size, parameters, temporary.file(1), temporary.file(2)};
    if (!format.parameters(t) || !format.data(t)) {
        message = t.message;
        return false;
    }
    const bool swap = options.swap_parts.value_or(parts_swapped_by_default(format));
    set_senses(format, swap, parameters);
    if (!write_output(temporary, parameters, swap, output, message)) return false;
    if (!t.notes.empty()) platform().reply(t.notes);
    return true;
}

}  // namespace

Detection detect_format(const std::string& path) {
    Candidate file(path);
    for (const auto& step : steps) {
        const Verdict verdict = step.decide(file);
        if (verdict.number != 0 || !verdict.stop.empty()) return {format_of_number(verdict.number), step.name, verdict.stop};
    }
    return {nullptr, "", format_text("Unknown data source for %s\n Don't know what to do with it!!!\n", path.c_str())};
}

bool TRANAUTO(const std::string& input, const std::string& output, const std::string& key, const ImportOptions& options,
              DataSet& parameters, std::string& message) {
    const Format* format = format_of_key(key);
    if (format == nullptr) {
        const Detection detection = detect_format(input);
        format = detection.format;
        message = detection.message;
    }
    if (format == nullptr) return false;
    platform().status(0, format_text("Starting translation for %s %s", input.c_str(), description(*format).c_str()));
    if (format->parameters == nullptr || format->data == nullptr) {
        message = not_importable(*format);
        return false;
    }
    return output_allowed(input, output, message) && run_translator(*format, input, output, options, parameters, message);
}

}  // namespace zolt
