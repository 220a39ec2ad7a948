// PI and TP: phase correction relative to what has been done before.
#include <string>

#include "common/text.h"
#include "platform/platform.h"
#include "processing/phase.h"
#include "processing/processing_commands.h"
#include "processing/values.h"
#include "state/dataset.h"

namespace zolt {

namespace {

// Takes the numbers of the arguments over the angles, as many as there are; the word that is none, or "".
std::string take_angles(Arguments& args, PhaseAngles& degrees) {
    std::string word = args.next();
    for (size_t order = 0; order < degrees.size() && !word.empty(); ++order, word = args.next()) {
        const auto value = number_argument(word);
        if (!value) return word;
        degrees[order] = *value;
    }
    return "";
}

}  // namespace

int cmd_pi(Arguments& args) {
    if (args.ask_usage() || args.peek().empty())
        return show_reply("  - USAGE:  PI   A   [B   [C]]   or   -cosy  (a quarter turn); the stored phases change as much");
    PhaseAngles degrees{};
    // The diagonal of a phase-sensitive COSY stands a quarter turn from its cross peaks.
    if (same_word(args.peek(), "-cosy"))
        degrees[0] = 90;
    else if (const std::string wrong = take_angles(args, degrees); !wrong.empty())
        return not_a_number(wrong);
    const WaitCursor wait;
    if (phase_correct(degrees, 0, true) == 0) return 0;
    for (size_t order = 0; order < degrees.size(); ++order) show.phase[order] += degrees[order];
    return 1;
}

int cmd_tp(Arguments& args) {
    const PhaseAngles& totals = show.dims[0].phase_totals;
    if (args.ask_usage() || args.peek().empty())
        return show_reply(format_text("A = % 5.1f   B = % 5.1f   C = % 5.1f      USAGE:  TP   [A   [B   [C]]]", double{totals[0]},
                                      double{totals[1]}, double{totals[2]}));
    PhaseAngles degrees = totals;
    if (const std::string wrong = take_angles(args, degrees); !wrong.empty()) return not_a_number(wrong);
    for (size_t order = 0; order < degrees.size(); ++order) degrees[order] -= totals[order];
    const WaitCursor wait;
    return phase_correct(degrees, 0, true);
}

}  // namespace zolt
