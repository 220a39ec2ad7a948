// Collects the parameters that are set.
#include "state/parameter_list.h"

#include <cmath>

#include "common/text.h"

namespace zolt {

namespace {

class List {
public:
    void add(const char* name, std::string_view value) {
        if (const std::string text = one_line(std::string(trimmed(value))); !text.empty()) all_.push_back({name, text});
    }
    void add(const char* name, double value, const char* unit) {
        if (value != 0 && std::isfinite(value)) add(name, format_text("%.7g %s", value, unit));
    }
    std::vector<NamedValue> take() { return std::move(all_); }

private:
    std::vector<NamedValue> all_;
};

std::string width_text(const Dimension& dimension) {
    const Axis axis = dimension.axis();
    std::string text = format_text("%.2f Hz", axis.sw);
    if (axis.has_ppm()) text += format_text(" (%.3f ppm)", axis.sw / axis.reference());
    return text;
}

std::string phase_text(const std::array<float, 3>& phase) {
    std::string text = format_text("%.2f, %.2f", static_cast<double>(phase[0]), static_cast<double>(phase[1]));
    if (phase[2] != 0) text += format_text(", %.2f", static_cast<double>(phase[2]));
    return text + " degrees";
}

bool is_set(const std::array<float, 3>& phase) { return phase[0] != 0 || phase[1] != 0 || phase[2] != 0; }

}  // namespace

std::vector<NamedValue> experiment_values(const DataRecord& data) {
    List list;
    list.add("Experiment", data.experiment);
    list.add("Date", data.date);
    list.add("User", data.user);
    if (data.owner != data.user) list.add("Owner", data.owner);
    list.add("Solvent", data.solvent);
    list.add("Source", data.source);
    if (data.process_type != "1D") list.add("Process type", data.process_type);
    if (data.dims[1].points > 1) list.add("Slice", format_text("%d of %d", data.slice + 1, data.dims[1].points));
    list.add("Scans", data.scans > 0 ? std::to_string(data.scans) : std::string());
    list.add("D1", data.d1, "s");
    list.add("P1", data.p1, "us");
    list.add("LB", static_cast<double>(data.lb()), "Hz");
    return list.take();
}

std::vector<NamedValue> dimension_values(const Dimension& dimension) {
    constexpr const char* domains[] = {"real", "complex", "sequential"};
    List list;
    list.add("Nucleus", dimension.nucleus);
    list.add("SF", static_cast<double>(dimension.sf), "MHz");
    if (dimension.sw > 0 && std::isfinite(dimension.sw)) list.add("SW", width_text(dimension));
    list.add("Offset", static_cast<double>(dimension.offset), "Hz");
    list.add("Points", std::to_string(dimension.points));
    const bool known = dimension.domain_code >= 0 && dimension.domain_code <= 2;
    list.add("Domain", std::string(dimension.frequency ? "frequency" : "time") +
                           (known ? std::string(", ") + domains[dimension.domain_code] : std::string()));
    if (is_set(dimension.phase_totals)) list.add("Phase", phase_text(dimension.phase_totals));
    return list.take();
}

}  // namespace zolt
