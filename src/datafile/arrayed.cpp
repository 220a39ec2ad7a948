// Entering and leaving the Arrayed modes, and the command AR.
#include "datafile/arrayed.h"

#include <algorithm>
#include <utility>

#include "common/text.h"
#include "datafile/native_file.h"
#include "datafile/slice.h"
#include "platform/platform.h"
#include "state/session.h"

namespace zolt {

namespace {

constexpr int mode_pane = 1;

struct Mode {
    const char* name;
    const char* unsaved;    ///< refusal when the data have changed
    const char* no_memory;  ///< with the file's name
};

constexpr const char* save_first = "Save data before entering Array Mode";
constexpr Mode modes[] = {
    {"Non-Arrayed", "", ""},
    {"Complex Arrayed", save_first, "Not enough memory to allocate file %s in Arrayed Mode !"},
    {"PairWise Complex Arrayed", "Save data before entering PairWise Complex Array Mode",
     "Not enough memory to allocate file %s in Hyper Complex Arrayed Mode !"},
    {"3D Complex Arrayed", save_first, "Not enough memory to allocate file %s in 3D Arrayed Mode !"},
    {"4D Complex Arrayed", save_first, "Not enough memory to allocate file %s in 4D Arrayed Mode !"},
};
constexpr const char* no_memory_tppi = "Not enough memory to allocate file %s for convertibg to PairWise Arrayed Mode !";

// A message that names the file in place of its %s.
std::string naming_file(std::string text) { return text.replace(text.find("%s"), 2, show.file_a); }

// First slice and number of the slices that a level holds, in the file's order.
std::pair<uint64_t, uint64_t> slices_of(ArrayedLevel level, const DataRecord& file, const DataRecord& selected) {
    const auto count = [&](size_t d) { return static_cast<uint64_t>(file.dims[d].points); };
    const auto cube = static_cast<uint64_t>(selected.slice_4), plane = static_cast<uint64_t>(selected.slice_3);
    if (level == arrayed_4d) return {0, file.all_slices()};
    if (level == arrayed_3d) return {cube * count(2) * count(1), count(1) * count(2)};
    return {(cube * count(2) + plane) * count(1), count(1)};
}

// Reads `store.count()` slices from slice `first` on; the number of those read whole.
uint64_t read_slices(File& file, const NativeLayout& layout, uint64_t first, VectorStore& store) {
    if (layout.prefix_bytes() == 0) {
        const bool whole = file.seek(layout.slice_offset(first)) && file.read(store.all().data(), store.all().size_bytes());
        to_machine_order(store.all().data(), 2 * store.all().size(), layout.order);
        return whole ? store.count() : 0;
    }
    uint64_t k = 0;
    while (k < store.count() && read_native_slice(file, layout, first + k, store.vector(k))) ++k;
    return k;
}

// The file's slices of this level in a store of their own, and what the file says of them.
bool load(ArrayedLevel level, bool from_tppi, DataRecord& record, VectorStore& store) {
    File file = open_for_reading(show.file_a);
    const uint64_t size = file_facts(show.file_a).size;
    NativeLayout layout;
    if (!file || !read_native_header(file, size, layout, record).empty()) return fail("Could not open File A.");
    read_native_tailer(file, size, layout, record);
    if (level == pairwise_arrayed && record.dims[1].points % 2 != 0)
        return fail(format_text("The pairs of PairWise Complex Arrayed Mode need an even number of slices.\n%s has %d.",
                                show.file_a.c_str(), record.dims[1].points));
    const auto [first, count] = slices_of(level, record, show);
    const uint64_t held = layout.slices_in(size);
    if (first > held || count > held - first)
        return fail(format_text("File %s holds %llu slices of %llu: it cannot be loaded as a whole.", show.file_a.c_str(),
                                static_cast<unsigned long long>(held), static_cast<unsigned long long>(first + count)));
    if (!store.allocate(static_cast<size_t>(count), static_cast<size_t>(record.pts1d())))
        return fail(naming_file(from_tppi ? no_memory_tppi : modes[level].no_memory));
    if (read_slices(file, layout, first, store) != count) return fail("Error reading point counter.\nUser should abort.");
    return true;
}

// What the data set knows and its file, read again, does not say.
void keep_beside_file(const DataRecord& known, DataRecord& fresh) {
    static constexpr std::string DataRecord::*texts[] = {&DataRecord::owner, &DataRecord::solvent, &DataRecord::title,
                                                         &DataRecord::source};
    for (const auto text : texts)
        if ((fresh.*text).empty()) fresh.*text = known.*text;
    static constexpr double DataRecord::*values[] = {&DataRecord::d1, &DataRecord::p1, &DataRecord::o1, &DataRecord::o2};
    for (const auto value : values)
        if (fresh.*value == 0) fresh.*value = known.*value;
    if (fresh.array_values.empty()) fresh.array_values = known.array_values;
    fresh.other_sw2 = known.other_sw2;
    for (size_t d = 0; d < fresh.dims.size(); ++d) {
        fresh.dims[d].advice = known.dims[d].advice;
        if (fresh.dims[d].nucleus.empty()) fresh.dims[d].nucleus = known.dims[d].nucleus;
    }
    fresh.process_type = known.process_type;
    fresh.phase = known.phase;
    fresh.pivot = known.pivot;
    fresh.file_b = known.file_b;
}

}  // namespace

const char* arrayed_name(int level) { return modes[std::clamp(level, 0, 4)].name; }

ArrayedLevel level_of_type(std::string_view process_type) {
    if (has_pairs(process_type)) return pairwise_arrayed;
    if (process_type == "3D_GENERIC") return arrayed_3d;
    return process_type == "4D_GENERIC" ? arrayed_4d : complex_arrayed;
}

bool enter_arrayed(ArrayedLevel level, bool from_tppi) {
    if (!show.loaded) return fail("Arrayed mode cannot be entered when no data set has been loaded.");
    if (show.level == level) return true;
    if (show.level == complex_arrayed && level == pairwise_arrayed)
        return fail("PairWise Complex Arrayed mode cannot be entered from Complex Arrayed Mode.");
    if (show.changed && show.level == non_arrayed && !session.macro_running) return fail(modes[level].unsaved);
    if (show.level != non_arrayed && !leave_arrayed()) return false;
    const WaitCursor wait;
    DataRecord file;
    VectorStore store;
    if (!load(level, from_tppi, file, store)) return false;
    static_cast<DataRecord&>(show) = with_state_of_slices(show, file);
    for (size_t d = 0; d < show.dims.size(); ++d) show.dims[d].phase_totals = file.dims[d].phase_totals;
    if (from_tppi) show.dims[1].domain_code = domain_sequential;
    show.store = std::move(store);
    show.level = level;
    show.changed = false;
    select_in_memory(show.slice);
    platform().status(mode_pane, arrayed_name(level));
    return true;
}

bool leave_arrayed() {
    if (show.level == non_arrayed) return true;
    if (show.changed && !playing_back() &&
        platform().question("Exit Array Mode",
                            "You are exiting array mode without saving modified data. \n"
                            "Continue to exit array mode without saving current data?",
                            Buttons::yes_no) != Answer::yes)
        return false;
    const int level = std::exchange(show.level, non_arrayed);
    DataSet fresh;
    if (!FileRead(show.file_a, fresh)) {
        show.level = level;
        return fail(naming_file("Module ARRAY in FileRead, memory allocation failure for file %s!"));
    }
    keep_beside_file(show, fresh);
    fresh.slice_3 = std::min(show.slice_3, fresh.dims[2].points - 1);
    fresh.slice_4 = std::min(show.slice_4, fresh.dims[3].points - 1);
    const int32_t slice = std::min(show.slice, fresh.dims[1].points - 1);
    show = std::move(fresh);
    show.display_valid = false;
    platform().status(mode_pane, arrayed_name(non_arrayed));
    return slice == 0 && show.slice_3 == 0 && show.slice_4 == 0 ? true : set_sliceA(slice);
}

namespace {

// The mode that the process type asks for; one without a key of its own counts as 1D first.
ArrayedLevel usual_mode() {
    std::string& key = show.process_type;
    if (key == "1D" || !is_process_type(key)) key = show.dims[1].points > 1 ? "2D_MAGNITUDE" : "1D";
    return level_of_type(key);
}

}  // namespace

int cmd_array(Arguments& args) {
    if (args.ask_usage()) return show_reply("Usage: ar < off / on /  complex /  pairwise / tppi2pairwise / 3D >");
    static constexpr struct {
        const char* word;
        ArrayedLevel level;
        bool from_tppi;
    } words[] = {{"on", complex_arrayed, false},
                 {"1", complex_arrayed, false},
                 {"complex", complex_arrayed, false},
                 {"pairwise", pairwise_arrayed, false},
                 {"tppi2pairwise", pairwise_arrayed, true},
                 {"3D", arrayed_3d, false},
                 {"4D", arrayed_4d, false}};
    const std::string word = args.next();
    if (same_word(word, "off") || same_word(word, "0")) return leave_arrayed() ? 1 : 0;
    for (const auto& row : words)
        if (same_word(word, row.word)) return enter_arrayed(row.level, row.from_tppi) ? 1 : 0;
    if (!word.empty()) return show_reply("- Not a legal arrayed mode command");
    if (show.level != non_arrayed) return leave_arrayed() ? 1 : 0;
    if (!show.loaded) return refuse("Arrayed mode cannot be entered when no data set has been loaded.");
    const std::string key = show.process_type;
    if (enter_arrayed(usual_mode())) return 1;
    show.process_type = key;
    return 0;
}

}  // namespace zolt
