// The processing commands, typed as lines: what they say, change and leave alone.
#include <algorithm>

#include "processing/fourier.h"
#include "processing/phase.h"
#include "processing/window.h"
#include "state/session.h"
#include "support.h"

namespace zolt {
namespace {

using test::CommandTest;
using test::relative_error;
using test::sample_points;
using Points = std::vector<Complex>;

class ProcessingTest : public CommandTest {
protected:
    Dimension& first() { return show.dims[0]; }

    /// A refusal changed neither the points nor anything else of the data set.
    void expect_untouched(const Points& points, const DataRecord& record, const std::string& line) {
        EXPECT_EQ(data(), points) << line;
        EXPECT_TRUE(static_cast<const DataRecord&>(show) == record) << line;
    }
    double distance(const Points& want) const {
        const Points got = data();
        return relative_error(got, std::vector<std::complex<double>>(want.begin(), want.end()));
    }
    std::string log() const { return test::read_file(root_.path("ZOLT.LOG")); }
};

Points padded(Points x, size_t n) {
    x.resize(n);
    return x;
}

Points transformed(Points x, bool sort = true) {
    forward_complex_ft(x, sort);
    return x;
}

Points sequentially(Points x) {
    forward_sequential_ft(x);
    return x;
}

Points really(const Points& x) {
    Points out(x.size() / 2);
    forward_real_ft(x, out);
    return out;
}

Points conjugated(Points x) {
    conjugate(x);
    return x;
}

TEST_F(ProcessingTest, TheDomainCodeOrTheWordChoosesTheTransform) {
    const Points x = sample_points(100), filled = padded(x, 128);
    const struct {
        const char* line;
        int code;
        Points want;
    } rows[] = {{"FT", 0, really(filled)},
                {"ft", 1, transformed(filled)},
                {"FourierTransform", 2, sequentially(filled)},
                {"FT real", 1, really(filled)},
                {"FT=complex", 0, transformed(filled)},
                {"FT complex, 1d", 2, transformed(filled)},
                {"FT 1D", 1, transformed(filled)},
                {"FT complex_nosort", 2, transformed(filled, false)},
                {"FT Sequential", 1, sequentially(filled)}};
    for (const auto& row : rows) {
        load(x, row.code);
        first().phase_totals = {10, 20, 30};
        ASSERT_EQ(run(row.line), 1) << row.line;
        EXPECT_EQ(data(), row.want) << row.line;
        EXPECT_EQ(show.pts1d(), static_cast<int32_t>(row.want.size())) << row.line;
        EXPECT_EQ(first().domain_code, domain_complex) << row.line;
        EXPECT_TRUE(first().frequency && show.changed && !show.display_valid) << row.line;
        EXPECT_EQ(first().phase_totals, (PhaseAngles{0, 0, 30})) << row.line << ": the second order outlives a transform";
        EXPECT_EQ(first().sw, 5000) << row.line;
    }
}

TEST_F(ProcessingTest, InverseAndHilbertKeepTheCode) {
    const Points x = sample_points(128);
    for (const int code : {0, 1, 2}) {
        load(x, code, true);
        ASSERT_EQ(run("FT inverse"), 1);
        EXPECT_EQ(first().domain_code, code);
        EXPECT_FALSE(first().frequency);
        load(x, code, true);
        ASSERT_EQ(run("FT hilbert"), 1);
        EXPECT_EQ(first().domain_code, code);
        EXPECT_TRUE(first().frequency && show.changed);
    }
    load(x);
    run("FT");
    ASSERT_EQ(run("FT inverse"), 1);
    Points want = x;
    want[0] = 0.5F * (x.front() + x.back());
    EXPECT_LT(distance(want), 1e-6);
}

TEST_F(ProcessingTest, RefusalsChangeNothing) {
    const struct {
        const char* line;
        int code, second_code;
        int32_t points, second_points;
        int level, result;
        const char* text;
    } rows[] = {
        {"FT ?", 1, 1, 64, 1, 0, 2, "  - USAGE: FT [Complex / Real / Hilbert / Inverse] [1D / 2D / 3D / 4D]"},
        {"FT backwards", 1, 1, 64, 1, 0, 2, "  - USAGE: FT [Complex / Real / Hilbert / Inverse] [1D / 2D / 3D / 4D]"},
        {"FT complex 5D", 1, 1, 64, 1, 0, 2, "  - FT Complex command with illegal second argument of 5D"},
        {"FT 2D", 1, 0, 64, 8, 0, 2, "  - FT in Dimension 2 must be COMPLEX"},
        {"FT 1D", 2, 0, 64, 8, 0, 2, "  - FT in Dimension 1 must be COMPLEX"},
        {"FT 2D", 1, 1, 64, 12, 0, 0, "Data must be power of 2 in the 2nd dimension"},
        {"FT complex 2D", 1, 0, 64, 8, 0, 0, "Complex FT in 2nd dimension not supported in Arrayed mode level 0"},
        {"FT complex 4D", 1, 1, 64, 8, 0, 0, "Data must be power of 2 in the 4th dimension"},
        {"FT", 3, 1, 64, 1, 0, 0, "a.zolt\nhas domain = 3\n\nThis is an illegal domain parameter value\nFT process aborted."},
        {"realft upwards", 1, 1, 64, 1, 0, 2, "   Usage:  REALFT [forward / inverse]"},
        {"REALFT", 1, 1, 100, 1, 0, 0, "   Data must be a power of 2 in size, do ZF first."},
        {"BR", 1, 1, 64, 1, 0, 2, "  - No group delay is pending."},
        {"FT real", 1, 1, 64, 1, 4, 0, "Real FT not supported in Arrayed mode level 4"},
        {"FT sequential", 1, 1, 64, 1, 4, 0, "TPPI FT not supported in Arrayed mode level 4"},
        {"FT inverse", 1, 1, 64, 1, 4, 0, "Inverse FT not supported in Arrayed mode level 4"},
        {"FT hilbert", 1, 1, 64, 1, 4, 0, "Hilbert FT not supported in Arrayed mode level 4"},
        {"ZF", 1, 1, 64, 1, 4, 0, "Zero Fill not supported in Arrayed mode level 4"},
        {"PC 10", 1, 1, 64, 1, 4, 0, "Phase Correct is not supported with Arrayed mode level 4"},
    };
    for (const auto& row : rows) {
        const Points x = sample_points(static_cast<size_t>(row.points));
        load(x, row.code);
        show.dims[1].domain_code = row.second_code;
        show.dims[1].points = row.second_points;
        show.level = row.level;
        const DataRecord before = show;
        platform_.messages.clear();
        platform_.replies.clear();
        EXPECT_EQ(run(row.line), row.result) << row.line;
        const auto& said = platform_.messages.empty() ? platform_.replies : platform_.messages;
        EXPECT_TRUE(said.size() == 1 && said[0].ends_with(row.text)) << row.line << " said " << platform_.said();
        expect_untouched(x, before, row.line);
    }
}

TEST_F(ProcessingTest, APendingRotationGoesWithTheFirstTransform) {
    const Points x = sample_points(64);
    Points rotated(x.begin() + 5, x.end());
    rotated.insert(rotated.end(), x.begin(), x.begin() + 5);
    for (const char* line : {"FT", "FT complex", "FT complex 1D"}) {
        load(x);
        show.rotation = 69;
        ASSERT_EQ(run(line), 1);
        const bool explicitly = std::string_view(line) == "FT complex 1D";
        EXPECT_EQ(show.rotation, explicitly ? 69 : 0) << line;
        EXPECT_EQ(data(), transformed(explicitly ? x : rotated)) << line;
    }
}

TEST_F(ProcessingTest, TheFirstTransformTurnsTheSenseAndTakesTheDelayOut) {
    const Points x = sample_points(64);
    const double delay = 9.75;
    const Rotation rotation = delay_rotation(delay, 64, domain_complex);
    const struct {
        const char* line;
        int code;
        Points spectrum;
        int sense;
    } rows[] = {{"FT", 1, transformed(conjugated(x)), 1},
                {"FT complex_nosort", 1, transformed(conjugated(x), false), 1},
                {"FT", 2, sequentially(x), -1},
                {"FT real", 0, really(x), -1},
                {"FT inverse", 1, {}, -1}};
    for (const auto& row : rows)
        for (const bool filter : {true, false}) {
            load(x, row.code);
            first().sense = -1;
            show.group_delay = delay;
            settings.bruker_filter = filter;
            ASSERT_EQ(run(row.line), 1) << row.line;
            const bool takes = filter && row.spectrum.size() == x.size();
            Points want = row.spectrum;
            if (takes) rotate_spectrum(want, rotation, std::string_view(row.line) != "FT complex_nosort");
            EXPECT_TRUE(want.empty() || data() == want) << row.line << filter;
            EXPECT_EQ(show.group_delay, takes ? 0 : delay) << row.line << filter;
            EXPECT_EQ(first().sense, row.sense) << row.line;
            EXPECT_EQ(first().phase_totals, PhaseAngles{}) << "the delay is no phase of the user's";
        }
    // A second one does nothing of the kind.
    load(x);
    ASSERT_EQ(run("FT"), 1);
    EXPECT_EQ(data(), transformed(x));
}

TEST_F(ProcessingTest, BrTakesTheDelayOutAtOnceBeforeOrAfterTheTransform) {
    // First and last point 0 before and after the shift, so that the first-point correction is none.
    Points x = sample_points(64);
    for (const size_t k : {0, 11, 12, 63, 10}) x[k] = 0;
    for (const int sense : {1, -1})
        for (const int code : {1, 2}) {
            const auto prepare = [&] {
                load(x, code);
                first().sense = sense;
                show.group_delay = 11;
            };
            prepare();
            ASSERT_EQ(run("FT"), 1);
            const Points want = data();
            prepare();
            ASSERT_EQ(run("BR"), 1);
            EXPECT_EQ(show.group_delay, 0);
            EXPECT_EQ(first().sense, sense) << "the data still turn as they did";
            EXPECT_TRUE(show.changed && !first().frequency);
            ASSERT_EQ(run("FT"), 1);
            EXPECT_LT(distance(want), 2e-6) << sense << " " << code;
            prepare();
            settings.bruker_filter = false;
            ASSERT_EQ(run("FT"), 1);
            ASSERT_EQ(run("BR"), 1);
            settings.bruker_filter = true;
            EXPECT_LT(distance(want), 1e-6) << sense << " " << code;
            EXPECT_EQ(show.group_delay, 0);
        }
    load(sample_points(100), domain_real);
    show.group_delay = 2.5;
    EXPECT_EQ(run("BR"), 1) << "any count will do";
    EXPECT_EQ(show.pts1d(), 100);
}

TEST_F(ProcessingTest, RealftThereAndBack) {
    const Points x = sample_points(64);
    load(x, domain_real);
    first().phase_totals = {1, 2, 3};
    ASSERT_EQ(run("REALFT"), 1);
    EXPECT_EQ(show.pts1d(), 32);
    EXPECT_TRUE(first().frequency);
    EXPECT_EQ(first().domain_code, domain_complex);
    EXPECT_EQ(first().phase_totals, (PhaseAngles{0, 0, 3}));
    std::vector<std::complex<double>> packed;
    for (size_t k = 0; k < 64; k += 2) packed.emplace_back(x[k].real(), x[k + 1].real());
    packed_real_ft(packed, +1);
    std::reverse(packed.begin(), packed.end());
    EXPECT_LT(relative_error(data(), packed), 1e-7);

    ASSERT_EQ(run("realft i"), 1);
    Points want(32);
    for (size_t k = 0; k < 32; ++k) want[k] = {x[2 * k].real(), x[2 * k + 1].real()};
    EXPECT_LT(distance(want), 1e-6) << "consecutive values, two to a point";
    EXPECT_FALSE(first().frequency);
}

TEST_F(ProcessingTest, ZeroFillCounts) {
    for (const auto& [before, after] : {std::pair<size_t, size_t>{1, 2}, {2, 4}, {3, 4}, {1000, 1024}, {1024, 2048}}) {
        const Points x = sample_points(before);
        load(x, domain_sequential, true);
        ASSERT_EQ(run("ZF"), 1) << before;
        EXPECT_EQ(data(), padded(x, after)) << before;
        EXPECT_EQ(show.pts1d(), static_cast<int32_t>(after));
        EXPECT_TRUE(show.changed && first().frequency && first().domain_code == domain_sequential);
    }
}

TEST_F(ProcessingTest, ADataSetWithoutPointsIsRefused) {
    const auto empty = [&] {
        load(sample_points(3));
        show.store = VectorStore();
        first().points = 0;
    };
    for (const char* line : {"ZF", "FT", "FT real", "FT inverse", "FT hilbert", "REALFT"}) {
        empty();
        const DataRecord before = show;
        EXPECT_EQ(run(line), 0) << line;
        expect_untouched({}, before, line);
    }
    for (const char* line : {"EM 1", "PC 1", "BC", "ZP", "FT complex 2D"}) EXPECT_GE(run(line), 0) << line;
    show.group_delay = 3;
    EXPECT_EQ(run("BR"), 0);
    EXPECT_EQ(show.group_delay, 3);
    // A link ends with the zero fill that failed: its next step would meet data it does not expect.
    settings.links[0] = "FT;ZI;";
    empty();
    EXPECT_EQ(run("A0"), 1);
    EXPECT_EQ(platform_.lines.back(), "FT");
    EXPECT_EQ(platform_.statuses[platform_.statuses.size() - 2], "0 Link Finished");
}

TEST_F(ProcessingTest, WindowsTakeTheirValueFromTheLineOrTheStore) {
    const Points x = sample_points(100);
    const struct {
        const char* line;
        WindowShape shape;
        float lb;
        int code;
        double dwell;
    } rows[] = {
        {"EM 2.5", WindowShape::exponential, 2.5F, 1, 1 / 5000.0}, {"ExpMult=2.5Hz", WindowShape::exponential, 2.5F, 2, 1 / 5000.0},
        {"EM", WindowShape::exponential, 7, 0, 1 / 10000.0},       {"gm -3", WindowShape::gaussian, -3, 1, 1 / 5000.0},
        {"GaussMult", WindowShape::gaussian, 7, 0, 1 / 10000.0},   {"EM 0", WindowShape::exponential, 0, 1, 1 / 5000.0}};
    for (const auto& row : rows) {
        load(x, row.code);
        EXPECT_EQ(run("LB 7"), 1);
        ASSERT_EQ(run(row.line), 1) << row.line;
        Points want = x;
        weigh(want, Window(row.shape, double{row.lb}, row.dwell, want.size()));
        EXPECT_EQ(data(), want) << row.line;
        EXPECT_EQ(show.lb(), 7) << row.line;
        EXPECT_TRUE(show.changed);
    }
    const std::tuple<const char*, int, const char*> refused[] = {
        {"EM ?", 2, "  - USAGE:  EM   [2D / 3D / 4D]   [LB Value]"},
        {"GM /?", 2, "  - USAGE:  GM   [2D / 3D / 4D]   [LB Value]"},
        {"EM 2D 5", 0, "EM in 2nd dimension not supported in Arrayed mode level 0"},
        {"GM 3D", 0, "GM in 3rd dimension not supported in Arrayed mode level 0"},
        {"GM 3D abc", 0, "GM in 3rd dimension not supported in Arrayed mode level 0"},
        {"EM 4d 2", 0, "EM in 4th dimension not supported in Arrayed mode level 0"},
        {"EM abc", 2, "  - abc is not a number."},
        {"EM 2D abc", 2, "  - abc is not a number."},
        {"GM nan", 2, "  - nan is not a number."},
        {"LB inf", 2, "  - inf is not a number."},
        {"LB 1e39", 2, "  - 1e39 is not a number."}};
    load(x);
    const DataRecord before = show;
    for (const auto& [line, result, text] : refused) {
        EXPECT_EQ(run(line), result) << line;
        EXPECT_EQ(result == 2 ? platform_.replies.back() : platform_.messages.back(), text) << line;
        expect_untouched(x, before, line);
    }
}

TEST_F(ProcessingTest, PhaseCommandsStoreRotateAndCount) {
    const Points x = sample_points(100);
    const auto rotated = [&](double a, double b, double c) {
        Points y = x;
        const double degree = 6.283185307179586 / 360.0;
        rotate(y, Rotation(a * degree, b * degree, c * degree, 0, y.size()));
        return y;
    };
    load(Points(8, Complex(2, 0)), domain_complex, true);
    ASSERT_EQ(run("PC 90"), 1);
    EXPECT_LT(distance(Points(8, Complex(0, -2))), 1e-7) << "the sense is e^(-i phase)";

    load(x, domain_complex, true);
    EXPECT_EQ(run("PhaseA=30"), 1);
    EXPECT_EQ(run("PB -75.5"), 1);
    show.phase[2] = 5;
    EXPECT_EQ(data(), x);
    EXPECT_FALSE(show.changed) << "stored, not applied";
    ASSERT_EQ(run("PC"), 1);
    EXPECT_LT(distance(rotated(30, -75.5, 5)), 2e-7);
    EXPECT_EQ(first().phase_totals, (PhaseAngles{30, -75.5, 5}));
    EXPECT_TRUE(show.changed);
    ASSERT_EQ(run("PC 700 1"), 1);
    EXPECT_EQ(first().phase_totals, (PhaseAngles{730, -74.5, 5}));
    EXPECT_EQ(show.phase, (PhaseAngles{30, -75.5, 5})) << "given values are not stored";
    EXPECT_LT(distance(rotated(730, -74.5, 5)), 4e-7);
    ASSERT_EQ(run("ZP"), 1);
    EXPECT_LT(distance(x), 1e-6);
    EXPECT_EQ(first().phase_totals, PhaseAngles{});

    const Points now = data();
    EXPECT_EQ(run("PC 1 b"), 2);
    EXPECT_EQ(platform_.replies.back(), "  - b is not a number.");
    EXPECT_EQ(data(), now);
    // A macro that walks the slices counts its angles with the first one only.
    session.macro_running = true;
    show.slice = 1;
    run("PC 10");
    EXPECT_EQ(first().phase_totals, PhaseAngles{});
    show.slice = 0;
    run("PC 10");
    session.macro_running = false;
    EXPECT_EQ(first().phase_totals, (PhaseAngles{10, 0, 0}));
}

TEST_F(ProcessingTest, TheBoxSetsAStoredValueOrKeepsIt) {
    load(sample_points(8));
    const struct {
        const char* line;
        float& value;
    } rows[] = {{"LB", show.lb()}, {"PA", show.phase[0]}, {"PhaseB", show.phase[1]}};
    for (const auto& row : rows) {
        row.value = 2;
        EXPECT_EQ(run(row.line), 2);
        EXPECT_EQ(row.value, 2) << "cancelled";
        platform_.answers = {"3.5"};
        EXPECT_EQ(run(row.line), 1);
        EXPECT_EQ(row.value, 3.5F);
        platform_.answers = {"many"};
        EXPECT_EQ(run(row.line), 2);
        EXPECT_EQ(platform_.replies.back(), "  - many is not a number.");
        EXPECT_EQ(row.value, 3.5F);
    }
    EXPECT_EQ(platform_.dialogs.size(), 9u);
}

TEST_F(ProcessingTest, TheLogTellsTheValuesThatWereUsed) {
    load(sample_points(64));
    session.log_on = true;
    platform_.answers = {"1.5", "30"};
    for (const char* line : {"LB", "EM", "GM", "em 2", "PA", "PB -75.5", "PC", "PC 1"}) EXPECT_EQ(run(line), 1) << line;
    EXPECT_EQ(run("LB"), 2);
    EXPECT_EQ(log(),
              "LB 1.500000\r\nEM 1.500000\r\nGM 1.500000\r\nem 2\r\nPA 30.000000\r\nPB -75.5\r\n"
              "PC 30.000000 -75.500000 0.000000\r\nPC 1\r\n");
}

TEST_F(ProcessingTest, BaselineInBothDomains) {
    Points x(64);
    for (size_t k = 0; k < 64; ++k) x[k] = {5, k < 48 ? 9.0F : 1.0F};
    load(x, domain_complex, true);
    ASSERT_EQ(run("BC"), 1);
    EXPECT_EQ(data()[0], Complex(0, 0));
    EXPECT_EQ(data()[63], Complex(0, 1 - (9 - 63 * 8 / 64.0F)));
    EXPECT_TRUE(show.changed);
    load(x);
    ASSERT_EQ(run("BC"), 1);
    EXPECT_EQ(data()[0], Complex(0, 8)) << "a signal loses the level of its tail";
    load(sample_points(31), domain_complex, true);
    EXPECT_EQ(run("BC"), 1);
    EXPECT_EQ(data(), sample_points(31)) << "too short";
}

TEST_F(ProcessingTest, DestructiveCommandsAskUnlessTheyArePlayedBack) {
    const Points x = {{1, -2}, {-3, 4}};
    const struct {
        const char *line, *question, *caption;
        Points want;
    } rows[] = {{"ZI", "Zero imaginary points in the current data set?", "Zero Imaginaries", {{1, 0}, {-3, 0}}},
                {"zr", "Zero real points in the current data set?", "Zero Reals", {{0, -2}, {0, 4}}},
                {"ZN", "Zero all negative values of current data?", "Zero Negatives ??", {{1, 0}, {0, 4}}},
                {"21", "Convert current data to DC offset line with value 1.0?", "Convert To Line", {{1, 1}, {1, 1}}}};
    for (const auto& row : rows) {
        load(x);
        EXPECT_EQ(run(row.line), 0);
        EXPECT_EQ(data(), x);
        EXPECT_FALSE(show.changed);
        EXPECT_EQ(platform_.questions.back(), row.question);
        EXPECT_EQ(platform_.captions.back(), row.caption);
        platform_.answers = {"yes"};
        EXPECT_EQ(run(row.line), 1);
        EXPECT_EQ(data(), row.want) << row.line;
        EXPECT_TRUE(show.changed);
        load(x);
        const size_t asked = platform_.questions.size();
        session.macro_running = true;
        EXPECT_EQ(run(row.line), 1);
        session.macro_running = false;
        EXPECT_EQ(platform_.questions.size(), asked);
        EXPECT_EQ(data(), row.want) << row.line;
    }
}

}  // namespace
}  // namespace zolt
