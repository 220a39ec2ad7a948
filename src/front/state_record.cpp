// The data set and the run as one JSON object.
#include "front/state_record.h"

#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>

#include "datafile/file_c.h"
#include "state/dataset.h"
#include "state/session.h"

namespace zolt {

namespace {

using Json = nlohmann::ordered_json;

// The shortest decimal that reads back as the same 32-bit float: 400.13 and not 400.13000488.
Json number(float value) {
    if (!std::isfinite(value)) return nullptr;
    char text[32];
    const auto [end, error] = std::to_chars(text, text + sizeof text, value);
    double decimal = value;
    if (error == std::errc{}) std::from_chars(text, end, decimal);
    return decimal;
}

Json numbers(const std::array<float, 3>& values) { return Json::array({number(values[0]), number(values[1]), number(values[2])}); }

Json dimension(const Dimension& d) {
    return {{"points", d.points},
            {"sf", number(d.sf)},
            {"sw", number(d.sw)},
            {"offset", number(d.offset)},
            {"domain_code", d.domain_code},
            {"frequency", d.frequency ? 1 : 0},
            {"axis_unit", d.axis_unit},
            {"phase_totals", numbers(d.phase_totals)},
            {"nucleus", d.nucleus},
            {"order", d.order},
            {"sense", d.sense}};
}

Json integral(const Integral& i) { return {{"start", i.start}, {"end", i.end}, {"value", number(i.value)}, {"label", i.label}}; }

Json peak(const Peak& p) {
    return {{"point", p.point}, {"hz", p.hz}, {"ppm", p.ppm}, {"intensity", p.intensity}, {"label", p.label}};
}

template <class Records, class One>
Json list(const Records& records, One one) {
    Json out = Json::array();
    for (const auto& record : records) out.push_back(one(record));
    return out;
}

Json file_c_record() {
    const auto& dims = file_c.header.dims;
    return {{"open", file_c.open},
            {"name", file_c.name},
            {"slice", file_c.slice},
            {"slices", dims[1].points},
            {"points", dims[0].points}};
}

}  // namespace

nlohmann::ordered_json state_record() {
    return {{"event", "state"},
            {"loaded", show.loaded},
            {"changed", show.changed},
            {"level", show.level},
            {"file_a", show.file_a},
            {"file_b", show.file_b},
            {"slice", show.slice},
            {"slice_3", show.slice_3},
            {"slice_4", show.slice_4},
            {"dimensions", list(show.dims, dimension)},
            {"process_type", show.process_type},
            {"user", show.user},
            {"date", show.date},
            {"comment", show.comment},
            {"experiment", show.experiment},
            {"owner", show.owner},
            {"solvent", show.solvent},
            {"names", show.names},
            {"formula", show.formula},
            {"path", show.path},
            {"scans", show.scans},
            {"d1", show.d1},
            {"p1", show.p1},
            {"o1", show.o1},
            {"o2", show.o2},
            {"lb", number(show.lb())},
            {"phase", numbers(show.phase)},
            {"pivot", number(show.pivot)},
            {"delay", show.group_delay},
            {"title", show.title},
            {"source", show.source},
            {"header_type", session.header_type},
            {"undo_enabled", session.undo_enabled ? 1 : 0},
            {"undo_slot", session.undo_slot},
            {"macro_running", session.macro_running ? 1 : 0},
            {"link_running", session.link_running ? 1 : 0},
            {"log_on", session.log_on ? 1 : 0},
            {"expert", session.expert ? 1 : 0},
            {"rel_value", number(show.rel_value)},
            {"integrals", list(show.integrals, integral)},
            {"peaks", list(show.peaks, peak)},
            {"file_c", file_c_record()}};
}

}  // namespace zolt
