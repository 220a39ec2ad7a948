// Parameter commands: no argument or "?" shows the usage line, a good value is stored and echoed, a bad one refused.
#include "state/parameters.h"

#include "common/numbers.h"
#include "common/text.h"
#include "platform/platform.h"
#include "state/dataset.h"

namespace zolt {

namespace {

struct FrequencyTexts {
    const char* usage;
    const char* name;  ///< as in the refusal
    const char* quantity;
    const char* echo;
};

constexpr FrequencyTexts sf_texts[4] = {
    {"SF1 or SF or F1 <value>", "F1", "Spectrometer Frequency", "SF1"},
    {"SF2 or F2 <value>", "F2", "Spectrometer Frequency 2", "SF2"},
    {"SF3 or F3 <value>", "F3", "Spectrometer Frequency 3", "SF3"},
    {"SF4 or F4 <value>", "F4", "Spectrometer Frequency 4", "SF4"},
};

// The echo of the fourth width reads "SWF4"; scripts know it so.
constexpr FrequencyTexts sw_texts[4] = {
    {"SW1 or SW or W1 <value>", "W1", "1st Dimension Sweep Width", "SW1"},
    {"SW2 or W2 <value>", "W2", "2nd Dimension Sweep Width", "SW2"},
    {"SW3 or W3 <value>", "W3", "3rd Dimension Sweep Width", "SW3"},
    {"SW4 or W4 <value>", "W4", "4th Dimension Sweep Width", "SWF4"},
};

bool usage_wanted(const Arguments& args) { return args.peek().empty() || args.ask_usage(); }

// One rule for both families: parse, test `legal`, store, echo.
template <class Legal>
int set_value(const FrequencyTexts& texts, const char* unit, float& target, Arguments& args, Legal legal) {
    if (usage_wanted(args)) return show_reply(texts.usage);
    const double value = number_or_zero(args.next());
    if (!legal(value))
        return show_reply(format_text("%s = %f %s is not a legal value for %s.", texts.name, value, unit, texts.quantity));
    target = static_cast<float>(value);
    platform().reply(format_text("%s set to %f %s", texts.echo, value, unit));
    return 1;
}

}  // namespace

int set_spectrometer_frequency(int dimension, Arguments& args) {
    return set_value(sf_texts[dimension - 1], "MHz", show.dims[dimension - 1].sf, args,
                     [](double value) { return value > 0 && value <= 2000; });
}

int set_sweep_width(int dimension, Arguments& args) {
    return set_value(sw_texts[dimension - 1], "Hz", show.dims[dimension - 1].sw, args,
                     [](double value) { return value > 0 && static_cast<float>(value) <= 3.4e38F; });
}

int cmd_nucleus(Arguments& args) {
    if (args.ask_usage()) return show_reply("Nucleus <WhichOne> [SetTo]");
    const auto current = [](int d) { return format_text("- Current Nucleus[%d] is: %s", d, show.dims[d - 1].nucleus.c_str()); };
    const std::string which = args.next();
    if (which.empty()) return show_reply(current(1) + "\n" + current(2) + "\n" + current(3) + "\n" + current(4));
    const int64_t index = integer_or_zero(which);
    if (index < 1 || index > 4) return show_reply("Illegal Nucleus Index Number, use index between 1 and 4 inclusive.");
    const int d = static_cast<int>(index);
    const std::string name = args.next();
    if (name.empty()) return show_reply(current(d));
    show.dims[d - 1].nucleus = cut(name, 127);
    platform().reply(format_text("- Nucleus[%d] set to: %s", d, show.dims[d - 1].nucleus.c_str()));
    return 1;
}

int cmd_solvent(Arguments& args) {
    if (args.ask_usage()) return show_reply("SV or Solvent <value>");
    const std::string name = args.next();
    if (name.empty()) return show_reply("- Current solvent is: " + show.solvent);
    show.solvent = cut(name, 127);
    platform().reply("- Solvent set to: " + show.solvent);
    return 1;
}

int cmd_processtype(Arguments& args) {
    const std::string usage =
        "PT or ProcessType <1D / 2D_MAGNITUDE / 2D_TPPI / 2D_HYPERCOMPLEX / 2D_ECHOANTIECHO / 2D_STATESTTPI / 3D_GENERIC / "
        "4D_GENERIC>";
    if (args.ask_usage()) return show_reply(usage);
    const std::string typed = upper(args.next());
    if (typed.empty()) return show_reply("- Current process type is: " + show.process_type);
    // The States-TPPI key is typed with a double T; files and the Arrayed modes spell it 2D_STATESTPPI.
    const std::string key = typed == "2D_STATESTTPI" ? "2D_STATESTPPI" : typed;
    if (typed == "2D_STATESTPPI" || !is_process_type(key)) return show_reply("- " + typed + " is not a process type. " + usage);
    show.process_type = key;
    platform().reply("- Process type set to: " + key);
    return 1;
}

}  // namespace zolt
