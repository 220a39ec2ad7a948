// E1 to E5: the current data as text.
#include <cmath>
#include <span>

#include "common/text.h"
#include "import/export.h"
#include "import/export_text.h"
#include "platform/platform.h"
#include "state/dataset.h"

namespace zolt {

namespace {

void write_header(ExportText& out) {
    const Dimension& d = show.dims[0];
    out.text(format_text("COMMENT: %s\r\nDATE: %s\r\nUSER: %s\r\n\r\n", one_line(show.comment).c_str(), one_line(show.date).c_str(),
                         one_line(show.user).c_str()));
    out.text(format_text("Complex_Points = %ld \r\n", static_cast<long>(d.points)));
    out.text(format_text("Spectrometer_Frequency = %-10.6f MHz\r\n", double{d.sf}));
    out.text(format_text("Sweep_Width = %-10.2f Hz \r\n", double{d.sw}));
    out.text(format_text("Offset = %-10.2f Hz \r\n", double{d.offset}));
    out.text(d.frequency ? "Domain = Frequency\r\n" : "Domain = Time\r\n");
    out.text(format_text("Scans = %d\r\n", show.scans));
}

void write_reals(ExportText& out) {
    out.text("DATA  Reals Only\r\n");
    for (const Complex point : show.cvNMRdata()) {
        out.fixed(double{point.real()}, 6);
        out.text("\r\n");
    }
}

void write_complex(ExportText& out) {
    out.text("DATA  Reals,Imaginaries\r\n");
    for (const Complex point : show.cvNMRdata()) {
        out.fixed(double{point.real()}, 6);
        out.text(",");
        out.fixed(double{point.imag()}, 6);
        out.text("\r\n");
    }
}

// Shift and real part. The shifts run from (SW / 2 + O) / R in steps of SW / R / (N - 1), with R = SF - O / 1e6.
void write_axis_pairs(ExportText& out) {
    const Dimension& d = show.dims[0];
    const double sw = d.sw, offset = d.offset, reference = double{d.sf} - offset / 1e6;
    const double first = (sw / 2 + offset) / reference;
    const double step = d.points > 1 ? sw / reference / (d.points - 1) : 0;
    double i = 0;
    for (const Complex point : show.cvNMRdata()) {
        out.fixed(first - step * i++, 6);
        out.text(",");
        out.fixed(double{point.real()}, 6);
        out.text("\r\n");
    }
}

struct AsciiForm {
    const char* usage;
    void (*header)(ExportText& out);  ///< nullptr: none
    void (*data)(ExportText& out);
};

int export_ascii(Arguments& args, const AsciiForm& form) {
    if (args.ask_usage()) return show_reply(form.usage);
    const std::string path = export_target(args);
    ExportText out;
    if (path.empty() || !out.open(path)) return 0;
    const WaitCursor waiting;
    if (form.header != nullptr) form.header(out);
    if (form.data != nullptr) form.data(out);
    if (out.commit()) return 1;
    return refuse(format_text("Could write %s information for File: %s", form.data == nullptr ? "header" : "data", path.c_str()));
}

}  // namespace

int cmd_e1(Arguments& args) { return export_ascii(args, {"E1 [name]", write_header, write_complex}); }

int cmd_e2(Arguments& args) { return export_ascii(args, {"E2 [name]", write_header, nullptr}); }

int cmd_e3(Arguments& args) { return export_ascii(args, {"E3 [name]", nullptr, write_reals}); }

int cmd_e4(Arguments& args) { return export_ascii(args, {"E4 [name]", nullptr, write_complex}); }

int cmd_e5(Arguments& args) {
    if (args.ask_usage()) return show_reply("E5 [name]");
    if (!(show.dims[0].sf > 0)) return refuse("No Spectrometer Frequency Entered\nCorrect and try again.");
    if (show.cvNMRdata().empty()) return refuse("No Valid Data Set\nUse GA to load one and try again.");
    return export_ascii(args, {"E5 [name]", nullptr, write_axis_pairs});
}

}  // namespace zolt
