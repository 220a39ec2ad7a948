// Collects the parameters that are set, dimension by dimension.
#include "app/info_command.h"

#include <algorithm>

#include "common/text.h"
#include "platform/platform.h"
#include "state/session.h"

namespace zolt {

namespace {

class Lines {
public:
    void heading(const std::string& text) { all_ += (all_.empty() ? "" : "\n") + text; }
    void add(const char* name, const std::string& value) {
        if (!value.empty()) all_ += std::string(all_.empty() ? "" : "\n") + name + "\t" + one_line(value);
    }
    void add(const char* name, double value, const char* unit) {
        if (value != 0) add(name, format_text("%.8g %s", value, unit));
    }
    std::string take() { return std::move(all_); }

private:
    std::string all_;
};

const char* domain_name(int code) {
    constexpr const char* names[] = {"real", "complex", "sequential"};
    return code >= 0 && code <= 2 ? names[code] : "unknown";
}

void add_dimension(Lines& lines, const Dimension& dimension, int number) {
    lines.heading(format_text("Dimension %d", number));
    lines.add("Points", std::to_string(dimension.points));
    lines.add("Nucleus", dimension.nucleus);
    lines.add("SF", static_cast<double>(dimension.sf), "MHz");
    lines.add("SW", static_cast<double>(dimension.sw), "Hz");
    lines.add("Offset", static_cast<double>(dimension.offset), "Hz");
    lines.add("Data", domain_name(dimension.domain_code));
    lines.add("Domain", dimension.frequency ? "Domain = Frequency" : "Domain = Time");
    const auto& total = dimension.phase_totals;
    if (total[0] != 0 || total[1] != 0 || total[2] != 0)
        lines.add("Phase", format_text("%.2f, %.2f, %.2f degrees", static_cast<double>(total[0]), static_cast<double>(total[1]),
                                       static_cast<double>(total[2])));
}

}  // namespace

const char* level_name(const DataSet& data) {
    constexpr const char* names[] = {"Non-Arrayed", "Direct Dimension", "Indirect Dimension 1", "Indirect Dimension 2",
                                     "Indirect Dimension 3"};
    return data.loaded ? names[std::clamp(data.level, 0, 4)] : "Base Level";
}

std::string information_text(const DataSet& data) {
    Lines lines;
    lines.add("File A", data.file_a);
    lines.add("File B", data.file_b);
    lines.add("Title", data.title);
    lines.add("Experiment", data.experiment);
    lines.add("Comment", data.comment);
    lines.add("User", data.user);
    lines.add("Owner", data.owner);
    lines.add("Date", data.date);
    lines.add("Solvent", data.solvent);
    lines.add("Source", data.source);
    lines.add("Process type", data.process_type);
    lines.add("Level", level_name(data));
    if (data.dims[1].points > 1) lines.add("Slice", format_text("%d of %d", data.slice + 1, data.dims[1].points));
    lines.add("Scans", data.scans, "");
    lines.add("Line broadening", data.lb() != 0 ? format_text("%.6g Hz", static_cast<double>(data.lb())) : std::string());
    lines.add("Group delay", data.group_delay, "points");
    lines.add("Integrals", data.integrals.empty() ? std::string() : std::to_string(data.integrals.size()));
    lines.add("Peaks", data.peaks.empty() ? std::string() : std::to_string(data.peaks.size()));
    lines.add("Changed", data.changed ? "yes, not saved" : "no");
    for (int d = 0; d < 4; ++d)
        if (d == 0 || data.dims[static_cast<size_t>(d)].points > 1) add_dimension(lines, data.dims[static_cast<size_t>(d)], d + 1);
    return lines.take();
}

int cmd_info(Arguments& args) {
    if (args.ask_usage()) return show_reply("IF or info");
    if (!show.loaded) return show_reply(format_text("  - %s: no data set has been loaded.", level_name(show)));
    platform().message("Information", Icon::information, information_text(show));
    return 2;
}

}  // namespace zolt
