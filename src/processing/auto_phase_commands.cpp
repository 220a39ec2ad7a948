// AP: the phase of the current vector is found and applied to every vector of the level.
#include <algorithm>

#include "common/text.h"
#include "platform/platform.h"
#include "processing/auto_phase.h"
#include "processing/phase.h"
#include "processing/processing_commands.h"
#include "state/dataset.h"

namespace zolt {

int cmd_ap(Arguments& args) {
    if (args.ask_usage())
        return show_reply("  - USAGE:  AP   [0]   (0: zero order only; found on the current vector, applied to all)");
    const std::string word = args.next();
    if (!word.empty() && word != "0") return show_reply(format_text("  - AP takes 0 or nothing, not %s.", word.c_str()));
    if (!show.dims[0].frequency) return refuse("Automatic phase correction needs a spectrum: transform the data first.");
    const auto current = show.cvNMRdata();
    if (std::all_of(current.begin(), current.end(), [](const Complex& point) { return point.imag() == 0; }))
        return refuse("The spectrum has no imaginary part: it cannot be phased.");
    const WaitCursor wait;
    const auto found = find_phase(current, word.empty() ? PhaseOrder::first : PhaseOrder::zero);
    if (!found) return refuse("No signal was found that could be phased.");
    const PhaseAngles degrees = {static_cast<float>(found->zero_order), static_cast<float>(found->first_order), 0};
    if (phase_correct(degrees, 0, true) == 0) return 0;
    show_reply(format_text("  - A = % 5.1f   B = % 5.1f", found->zero_order, found->first_order));
    return 1;  // and not as a reply alone: the line belongs into the command log
}

}  // namespace zolt
