// Sections of names and values, and the listings of integrals and peaks.
#include "analysis/summary.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/peak_list.h"
#include "analysis/peaks.h"
#include "common/file.h"
#include "common/text.h"
#include "datafile/file_commands.h"
#include "datafile/integrals.h"
#include "datafile/native_file.h"
#include "platform/platform.h"
#include "state/parameter_list.h"
#include "state/session.h"

namespace zolt {

namespace {

constexpr size_t most_log_lines = 24;
constexpr int name_width = 14, value_width = 26;

std::string line_of(const char* name, const std::string& value) {
    return value.empty() ? std::string() : format_text("%-*s", name_width, name) + one_line(value) + "\r\n";
}

std::string heading(const char* text) { return std::string("\r\n") + text + "\r\n"; }

// The dimensions side by side, one row a parameter that any of them has.
std::string dimension_table(const DataSet& data) {
    std::vector<std::vector<NamedValue>> columns;
    std::string text = format_text("%-*s", name_width, "Dimension");
    for (size_t d = 0; d < data.dims.size(); ++d) {
        if (d > 0 && data.dims[d].points <= 1) continue;
        columns.push_back(dimension_values(data.dims[d]));
        text += format_text("%-*zu", value_width, d + 1);
    }
    const auto end_line = [&] {
        text.resize(text.find_last_not_of(' ') + 1);
        text += "\r\n";
    };
    end_line();
    for (const char* name : dimension_value_names) {
        const auto find = [&](const std::vector<NamedValue>& column) {
            const auto found = std::find_if(column.begin(), column.end(), [&](const NamedValue& v) { return v.name == name; });
            return found == column.end() ? std::string() : found->value;
        };
        if (std::all_of(columns.begin(), columns.end(), [&](const auto& column) { return find(column).empty(); })) continue;
        text += format_text("%-*s", name_width, name);
        for (const auto& column : columns) text += format_text("%-*s", value_width, find(column).c_str());
        end_line();
    }
    return text;
}

// The last lines of what was done, as far as the command log has it.
std::string log_lines(const DataSet& data) {
    std::vector<std::string_view> lines;
    std::string_view rest = data.command_log.text, line;
    while (take_line(rest, line))
        if (!trimmed(line).empty()) lines.push_back(trimmed(line));
    if (lines.empty()) return {};
    const size_t first = lines.size() > most_log_lines ? lines.size() - most_log_lines : 0;
    std::string text = heading("PROCESSING");
    if (first > 0) text += format_text("\u2026 %zu earlier lines\r\n", first);
    for (size_t i = first; i < lines.size(); ++i) text += one_line(std::string(lines[i])) + "\r\n";
    return text;
}

std::string noise_lines(const DataSet& data) {
    const auto points = data.cvNMRdata();
    const SignalToNoise found = signal_to_noise(points, 0, points.size(), data.dims[0].frequency ? noise_level(points) : 0);
    if (!(found.noise > 0)) return {};
    const Axis axis = data.dims[0].axis();
    const auto at = static_cast<double>(found.tallest_at);
    std::string place = format_text("point %zu", found.tallest_at + 1);
    if (axis.sw > 0) place = axis.has_ppm() ? format_text("%.4f ppm", axis.ppm(at)) : format_text("%.2f Hz", axis.hz(at));
    return line_of("Tallest", format_text("%.6g at %s", found.tallest, place.c_str())) +
           line_of("Noise", format_text("%.4g (rms)", found.noise)) +
           line_of("S/N", format_text("%.1f (tallest over twice the rms noise)", found.ratio()));
}

std::string lists(const DataSet& data) {
    std::string text;
    if (!data.integrals.empty())
        text += heading("INTEGRALS") +
                integral_listing(data.integrals, data.dims[0], static_cast<double>(data.rel_value), ListForm::columns);
    if (!data.peaks.empty()) text += heading("PEAKS") + peak_table(data, data.peaks, false);
    return text;
}

// The file of the report; "" after its message.
std::string summary_target(const std::string& name) {
    std::string path = absolute_path(typed_path(name));
    if (is_device(path)) return refuse(format_text("Could not open File: %s", path.c_str())), "";
    const std::string extension = extension_of(path);
    if (!extension.empty() && !same_word(extension, "txt"))
        return refuse(format_text("The summary is a text, not .%s.\nGive a name that ends in .txt.", extension.c_str())), "";
    if (extension.empty()) path += path.ends_with('.') ? "txt" : ".txt";
    if (path == show.file_a) return refuse("Input and Output file names are identical.\nNot allowed!"), "";
    return !overwrite_refused(path) && may_replace(path) ? path : "";
}

int write_summary(const std::string& name) {
    const std::string path = summary_target(name);
    if (path.empty()) return 0;
    ReplacedFile file;
    if (!file.open(path) || !file.write(summary_text(show)) || !file.commit())
        return refuse(format_text("Could not open File: %s", path.c_str()));
    platform().reply(format_text("  - Summary written to %s", path.c_str()));
    return 1;
}

}  // namespace

std::string summary_text(const DataSet& data) {
    std::string text =
        "SUMMARY\r\n\r\n" + line_of("Title", data.title) + line_of("File", data.file_a) + line_of("Comment", data.comment);
    for (const std::string& name : data.names) text += line_of("Name", name);
    text += line_of("Formula", data.formula);
    for (const NamedValue& value : experiment_values(data)) text += line_of(value.name.c_str(), value.value);
    text += "\r\n" + dimension_table(data);
    if (const std::string noise = noise_lines(data); !noise.empty()) text += "\r\n" + noise;
    return text + log_lines(data) + lists(data);
}

int cmd_summary(Arguments& args) {
    if (args.ask_usage()) return show_reply("  - USAGE: SUMMARY [NAME.txt]");
    if (const std::string name = args.next(); !name.empty()) return write_summary(name);
    const std::string text = summary_text(show);
    list_to_clipboard(text);
    return show_reply(text);
}

}  // namespace zolt
