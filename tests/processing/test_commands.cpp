// The processing commands, typed as lines: what they say, change and leave alone.
#include <algorithm>

#include "processing/phase.h"
#include "state/session.h"
#include "support.h"

namespace zolt {
namespace {

using test::sample_points;
using Points = std::vector<Complex>;

class ProcessingTest : public test::CommandTest {};

TEST_F(ProcessingTest, RefusalsChangeNothing) {
    const std::tuple<const char*, int, int, const char*> rows[] = {
        {"FT backwards", 0, 2, "  - USAGE: FT [Complex / Real / Hilbert / Inverse] [1D / 2D / 3D / 4D]"},
        {"FT complex 5D", 0, 2, "  - FT Complex command with illegal second argument of 5D"},
        {"FT 2D", 0, 2, "  - FT in Dimension 2 must be COMPLEX"},
        {"FT complex 2D", 0, 0, "Complex FT in 2nd dimension not supported in Arrayed mode level 0"},
        {"FT 3D", 0, 0, "Data must be power of 2 in the 3rd dimension"},
        {"FT", 0, 0, "a.zolt\nhas domain = 3\n\nThis is an illegal domain parameter value\nFT process aborted."},
        {"realft upwards", 0, 2, "   Usage:  REALFT [forward / inverse]"},
        {"REALFT", 0, 0, "   Data must be a power of 2 in size, do ZF first."},
        {"BR", 0, 2, "  - No group delay is pending."},
        {"GM /?", 0, 2, "  - USAGE:  GM   [2D / 3D / 4D]   [LB Value]"},
        {"EM 2D abc", 0, 2, "  - abc is not a number."},
        {"GM 3D abc", 0, 0, "GM in 3rd dimension not supported in Arrayed mode level 0"},
        {"GM nan", 0, 2, "  - nan is not a number."},
        {"LB 1e39", 0, 2, "  - 1e39 is not a number."},
        {"PC 1 b", 0, 2, "  - b is not a number."},
        {"FT real", 4, 0, "Real FT not supported in Arrayed mode level 4"},
        {"FT sequential", 4, 0, "TPPI FT not supported in Arrayed mode level 4"},
        {"FT inverse", 4, 0, "Inverse FT not supported in Arrayed mode level 4"},
        {"FT hilbert", 4, 0, "Hilbert FT not supported in Arrayed mode level 4"},
        {"ZF", 4, 0, "Zero Fill not supported in Arrayed mode level 4"},
        {"PC 10", 4, 0, "Phase Correct is not supported with Arrayed mode level 4"},
        {"FT complex", 5, 0, "Complex FT not supported in Arrayed mode level 5"},
        {"EM 1", 5, 0, "EM not supported in Arrayed mode level 5"},
        {"BC", 5, 0, "BC on A not supported for Arrayed mode level = 5"}};
    for (const auto& [line, level, result, text] : rows) {
        const Points x = sample_points(level == 0 ? 100 : 64);
        load(x, 3);
        show.dims[1].domain_code = domain_real;
        show.dims[1].points = 8;
        show.dims[2].points = 12;
        show.level = level;
        const DataRecord before = show;
        platform_.messages = platform_.replies = {};
        EXPECT_EQ(run(line), result) << line;
        const auto& said = platform_.messages.empty() ? platform_.replies : platform_.messages;
        EXPECT_TRUE(said.size() == 1 && said[0].ends_with(text)) << line << " said " << platform_.said();
        EXPECT_TRUE(data() == x && static_cast<const DataRecord&>(show) == before) << line;
    }
}

TEST_F(ProcessingTest, ADataSetWithoutPoints) {
    load({});
    show.store = VectorStore();
    show.group_delay = 3;
    settings.links[0] = "FT;ZI;";
    const DataRecord before = show;
    for (const char* line : {"ZF", "FT", "FT real", "FT inverse", "FT hilbert", "REALFT", "BR"}) EXPECT_EQ(run(line), 0) << line;
    // A link ends with the zero fill that failed: its next step would meet data it does not expect.
    EXPECT_EQ(run("A0"), 1);
    EXPECT_EQ(platform_.lines.back(), "FT");
    EXPECT_EQ(platform_.statuses[platform_.statuses.size() - 2], "0 Link Finished");
    EXPECT_TRUE(static_cast<const DataRecord&>(show) == before);
    for (const char* line : {"EM 1", "PC 1", "BC", "ZP", "FT complex 2D"}) EXPECT_GE(run(line), 0) << line;
}

TEST_F(ProcessingTest, PhasesAreStoredAppliedAndCounted) {
    const Points x = sample_points(100);
    load(x, domain_complex, true);
    EXPECT_EQ(run("PhaseA=30") + run("PB -75.5"), 2);
    show.phase[2] = 5;
    EXPECT_TRUE(data() == x && !show.changed) << "stored, not applied";
    const std::pair<const char*, PhaseAngles> steps[] = {
        {"PC", {30, -75.5, 5}}, {"PC 700 1", {730, -74.5, 5}}, {"PC 0 0 2", {730, -74.5, 7}}, {"ZP", {}}};
    for (const auto& [line, total] : steps) {
        show.changed = false;
        ASSERT_EQ(run(line), 1) << line;
        Points want = x;
        const double degree = 6.283185307179586 / 360.0;
        rotate(want, Rotation(total[0] * degree, total[1] * degree, total[2] * degree, 0, want.size()));
        EXPECT_LT(test::relative_error(data(), std::vector<std::complex<double>>(want.begin(), want.end())), 1e-6) << line;
        EXPECT_TRUE(show.dims[0].phase_totals == total && show.changed) << line;
    }
    EXPECT_EQ(show.phase, (PhaseAngles{30, -75.5, 5})) << "given values are not stored";
    // A macro that walks the slices counts its angles with the first one only.
    session.macro_running = true;
    for (const int32_t slice : {1, 0}) {
        show.slice = slice;
        run("PC 10");
        EXPECT_EQ(show.dims[0].phase_totals, (PhaseAngles{slice == 0 ? 10.0F : 0, 0, 0}));
    }
}

TEST_F(ProcessingTest, BoxesSetStoredValuesAndTheLogTellsWhatWasUsed) {
    load(sample_points(64));
    session.log_on = true;
    const std::pair<const char*, float&> boxes[] = {{"LB", show.lb()}, {"PA", show.phase[0]}, {"PhaseB", show.phase[1]}};
    for (const auto& [line, value] : boxes) {
        EXPECT_TRUE(run(line) == 2 && value == 0) << "cancelled";
        platform_.answers = {"3.5", "many"};
        EXPECT_EQ(run(line), 1);
        EXPECT_EQ(run(line), 2);
        EXPECT_EQ(value, 3.5F) << "kept when the answer is no number";
    }
    for (const char* line : {"EM", "GM", "em 2", "PB -75.5", "PC", "PC 1"}) EXPECT_EQ(run(line), 1) << line;
    EXPECT_EQ(test::read_file(root_.path("DATA/ZOLT.LOG")),
              "LB 3.500000\r\nPA 3.500000\r\nPB 3.500000\r\nEM 3.500000\r\nGM 3.500000\r\nem 2\r\nPB -75.5\r\n"
              "PC 3.500000 -75.500000 0.000000\r\nPC 1\r\n");
}

TEST_F(ProcessingTest, BaselineInBothDomains) {
    for (const auto& [n, tail] : {std::pair<size_t, size_t>{1024, 128}, {100, 16}, {10, 10}}) {
        Points x(n, Complex(50, -50));
        for (size_t k = n - tail; k < n; ++k) x[k] = k % 2 == 0 ? Complex(3, 1) : Complex(1, 3);
        load(x);
        ASSERT_EQ(run("BC"), 1);
        EXPECT_EQ(data()[0], tail < n ? Complex(48, -52) : Complex(1, -1)) << "a signal loses the level of its tail";
        EXPECT_TRUE(data()[n - 2] == Complex(1, -1) && show.changed);
    }
    Points x(64);
    for (size_t k = 0; k < 64; ++k) x[k] = {5, static_cast<float>(k)};
    load(x, domain_complex, true);
    ASSERT_EQ(run("BC"), 1);
    EXPECT_TRUE(data()[0] == Complex(0, -7.5F) && data()[63] == Complex(0, 63 - (7.5F + 63 * 48 / 64.0F)));
}

TEST_F(ProcessingTest, DestructiveCommandsAskUnlessTheyArePlayedBack) {
    const Points x = {{1, -2}, {-3, 4}};
    const std::tuple<const char*, const char*, const char*, Points> rows[] = {
        {"ZI", "Zero imaginary points in the current data set?", "Zero Imaginaries", {{1, 0}, {-3, 0}}},
        {"zr", "Zero real points in the current data set?", "Zero Reals", {{0, -2}, {0, 4}}},
        {"ZN", "Zero all negative values of current data?", "Zero Negatives ??", {{1, 0}, {0, 4}}},
        {"21", "Convert current data to DC offset line with value 1.0?", "Convert To Line", {{1, 1}, {1, 1}}}};
    for (const auto& [line, question, caption, changed] : rows)
        for (const char* answer : {"no", "yes", ""}) {  // none while a macro plays
            load(x);
            platform_.answers = {answer};
            platform_.questions.clear();
            session.macro_running = *answer == '\0';
            const bool agreed = *answer != 'n';
            EXPECT_TRUE(run(line) == agreed && show.changed == agreed) << line;
            EXPECT_EQ(data(), agreed ? changed : x) << line;
            EXPECT_EQ(platform_.questions, std::vector<std::string>(session.macro_running ? 0 : 1, question));
            EXPECT_EQ(platform_.captions.back(), caption);
        }
}

}  // namespace
}  // namespace zolt
