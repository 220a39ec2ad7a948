// Recognising Bruker data, and the choice of their parameter stage by the name of the file.
#include "import/bruker.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "common/text.h"
#include "import/bruker_processed.h"
#include "import/bruker_raw.h"

namespace zolt {

int xwin_test(const Candidate& file) {
    static constexpr std::string_view names[] = {"fid", "ser", "1r", "2rr", "2ri", "2ir", "2ii", "3rrr"};
    if (std::none_of(std::begin(names), std::end(names), [&](std::string_view name) { return file.named(name); })) return 0;
    File acqus = open_for_reading(experiment_file(file.folder, "acqus", false));
    std::array<char, 512> start{};
    if (!acqus) return 0;
    const std::string lines = upper({start.data(), std::fread(start.data(), 1, start.size(), acqus.stream())});
    if (lines.find("TOPSPIN") != std::string::npos) return 2;
    return lines.find("XWIN-NMR") != std::string::npos ? 1 : 0;
}

bool BRUX_Test(Candidate& file) {
    std::array<char, 4> start{};
    return open_for_reading(file.path).read(start.data(), start.size()) && same_word({start.data(), start.size()}, "A000");
}

bool BRUU_3D_Test(Candidate& file) { return !experiment_file(file.folder, "acqu3s", true).empty(); }

bool BRUU_2D_Parm(Translation& t) { return is_processed_plane(t.path) ? processed_parameters(t, 1) : ser_parameters(t, 1); }

bool BRUU_3D_Parm(Translation& t) { return same_word(name_of(t.path), "3rrr") ? processed_parameters(t, 2) : ser_parameters(t, 2); }

bool XWIN_Parm(Translation& t) {
    Candidate file(t.path);
    if (file.named("1r")) return BRUU_1R_Parm(t);
    if (file.named("3rrr") || (file.named("ser") && BRUU_3D_Test(file))) return BRUU_3D_Parm(t);
    return file.named("ser") || is_processed_plane(t.path) ? BRUU_2D_Parm(t) : BRUU_Parm(t);
}

}  // namespace zolt
