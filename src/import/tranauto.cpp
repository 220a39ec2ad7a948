// One translation: what the output may replace, the translator's stages through the temporary files, the native file.
#include "import/tranauto.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "common/text.h"
#include "datafile/native_file.h"
#include "import/merge.h"
#include "platform/platform.h"
#include "state/session.h"

namespace zolt {

namespace {

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
    } else if (ReplacedFile probe; !probe.open(output)) {
        // Before the translation, which may take its time.
        message = format_text("Unable to open output file\n%s\nfor writing!", output.c_str());
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

constexpr const char* not_written = "The output file cannot be written.\nDisk Full ???";

bool write_output(TemporaryFiles& temporary, const DataSet& parameters, bool swap, const std::string& path, std::string& message) {
    ReplacedFile output;
    if (!output.open(path)) {
        message = format_text("Error opening file %s for writung", path.c_str());
        return false;
    }
    File &real = temporary.file(1), &imaginary = temporary.file(2);
    const NativeForm form = configured_form();
    DataSummary summary;
    if (form.type == 3 && !summarize_parts(real, imaginary, parameters, swap, summary, message)) return false;
    NativeLayout layout;
    message = not_written;
    if (!write_native_header(output, form, parameters, summary, layout)) return false;
    if (!merge_parts(real, imaginary, parameters, swap, output, message)) return false;
    if (!write_native_end(output, form, parameters) || !output.commit()) return false;
    message.clear();
    return true;
}

bool has_points(const DataSet& parameters) {
    return std::all_of(parameters.dims.begin(), parameters.dims.end(), [](const Dimension& d) { return d.points > 0; });
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
    if (!format.parameters(t) || !has_points(parameters) || !format.data(t)) {
        message = !t.message.empty() ? t.message : format_text("Error in translating %s Data", format.name);
        return false;
    }
    const bool swap = options.swap_parts.value_or(parts_swapped_by_default(format));
    set_senses(format, swap, parameters);
    if (!write_output(temporary, parameters, swap, output, message)) return false;
    if (!t.notes.empty()) platform().reply(t.notes);
    return true;
}

}  // namespace

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
