// Integrals: values by hand, limits in every unit, values that follow the data, and regions that the program finds.
#include <cmath>
#include <random>

#include "analysis/auto_integrals.h"
#include "common/text.h"
#include "datafile/integrals.h"
#include "support.h"

namespace zolt {
namespace {

using test::CommandTest;

class IntegralTest : public CommandTest {
protected:
    /// 101 points at 400 MHz, 4000 Hz wide: 40 Hz, 0.1 ppm a point, from 5 to -5 ppm; the value of point p is p.
    IntegralTest() {
        platform_.default_answer = Answer::yes;
        std::vector<Complex> ramp(101);
        for (size_t p = 0; p < ramp.size(); ++p) ramp[p] = {static_cast<float>(p), -1};
        load(ramp, domain_complex, true);
        show.dims[0].sw = 4000;
    }
};

TEST_F(IntegralTest, ValuesAreSumsTimesThePointSpacing) {
    ASSERT_EQ(run("ID 4 3.8"), 1) << platform_.said();
    ASSERT_EQ(show.integrals.size(), 1U);
    EXPECT_EQ(show.integrals[0].start, 10);
    EXPECT_EQ(show.integrals[0].end, 12);
    EXPECT_FLOAT_EQ(show.integrals[0].value, 33 * 0.1F) << "both ends count";
    show.dims[0].axis_unit = unit_points;
    ASSERT_EQ(run("ID 6 5"), 1);
    EXPECT_EQ(show.integrals[0].start, 5) << "kept in order of position";
    show.dims[0].axis_unit = unit_hz;
    show.dims[0].sf = 0;
    ASSERT_EQ(run("ID -2000 -1960"), 1);
    EXPECT_FLOAT_EQ(show.integrals[2].value, 199 * 40.0F) << "in Hz without a spectrometer frequency";
    refused("ID 2000 2100", "Attempted to set integral range outside of spectrum\nStart =  2000.000\nEnd   =  2100.000\n");
    ASSERT_EQ(run("ID scale 1 22"), 1);
    EXPECT_FLOAT_EQ(show.rel_value, 22 / show.integrals[0].value);
    EXPECT_EQ(run("ID at 1800"), 2);
    EXPECT_EQ(platform_.replies.back().substr(0, 45), "    22.00 Integral   PT=     5    1800.0 Hz  ");
    ASSERT_EQ(run("ID del 1"), 1);
    EXPECT_EQ(show.integrals.size(), 2U);
    EXPECT_EQ(run("ID del 3"), 0);
    ASSERT_EQ(run("ID clear"), 1);
    EXPECT_TRUE(show.integrals.empty());
}

TEST_F(IntegralTest, TypedForms) {
    const auto list = [] {
        std::string text;
        for (const Integral& i : show.integrals)
            text += format_text("%d-%d:%.1f ", i.start, i.end, double{i.value * show.rel_value});
        return text;
    };
    // One after another, on the list that the lines before have left.
    const std::tuple<const char*, int, const char*> rows[] = {
        {"ID 4 3.8", 1, "10-12:3.3 "},
        {"ID 3 2 7", 1, "10-12:3.3 20-30:27.5 "},
        {"ID split 2.5", 1, "10-12:3.3 20-24:11.0 25-30:16.5 "},
        {"ID split at 2.5", 0, "10-12:3.3 20-24:11.0 25-30:16.5 "},  // the first point of a region
        {"ID split 1", 0, "10-12:3.3 20-24:11.0 25-30:16.5 "},
        {"ID calibrate 2 2", 1, "10-12:0.6 20-24:2.0 25-30:3.0 "},
        {"ID calibrate 2 0", 2, "10-12:0.6 20-24:2.0 25-30:3.0 "},
        {"ID move 3 0.1 0", 1, "10-12:0.6 20-24:2.0 49-50:1.8 "},
        {"ID move 1 0.1 -8", 0, "10-12:0.6 20-24:2.0 49-50:1.8 "},
        {"ID move at 2.8 4.5 4.4", 1, "5-6:0.2 10-12:0.6 49-50:1.8 "},
        {"ID delete at 3.9", 1, "5-6:0.2 49-50:1.8 "},
        {"ID delete at 3.9", 0, "5-6:0.2 49-50:1.8 "},
        {"ID delete 0", 0, "5-6:0.2 49-50:1.8 "},
        {"ID delete", 2, "5-6:0.2 49-50:1.8 "},
        {"ID REL_VALUE 10", 1, "5-6:11.0 49-50:99.0 "},
        {"ID 1 nan", 2, "5-6:11.0 49-50:99.0 "},
        {"ID ?", 2, "5-6:11.0 49-50:99.0 "},
        {"ID delete all", 1, ""}};
    for (const auto& [line, result, want] : rows) {
        EXPECT_EQ(run(line), result) << line;
        EXPECT_EQ(list(), want) << line;
    }
    // Every point can be typed so that it is found again, in each unit.
    for (const int unit : {unit_points, unit_hz, unit_ppm}) {
        show.dims[0].axis_unit = unit;
        for (const int64_t point : {0, 1, 33, 100}) {
            const std::string text = integral_position(show.dims[0], point);
            ASSERT_EQ(run("ID " + text + " " + text + " 5"), 1) << text;
            EXPECT_EQ(show.integrals[0].start, point);
            EXPECT_EQ(show.integrals[0].label, 5);
            run("ID clear");
        }
    }
}

TEST_F(IntegralTest, ValuesFollowTheDataAndLimitsTheAxis) {
    ASSERT_EQ(run("ID 4 3.8"), 1);
    ASSERT_EQ(run("ID sub 4 3.8"), 1);
    ASSERT_EQ(run("ZR"), 1);
    EXPECT_EQ(show.integrals[0].value, 0);
    EXPECT_EQ(show.sub_integrals[0].value, 0);
    ASSERT_EQ(run("21"), 1);
    EXPECT_FLOAT_EQ(show.integrals[0].value, 0.3F);
    ASSERT_EQ(run("ZF"), 1);
    EXPECT_EQ(show.integrals[0].start, 13) << "128 points: the same shift";
    EXPECT_EQ(show.integrals[0].end, 15);
}

TEST_F(IntegralTest, LimitsFollowThePoints) {
    const std::tuple<const char*, int, int> rows[] = {{"SR", 88, 90},    {"LS 4", 6, 8},         {"LS 11", 0, 1}, {"RS 4", 14, 16},
                                                      {"LS 13", -1, -1}, {"FT inverse", -1, -1}, {"BC", 10, 12}};
    const auto points = data();
    for (const auto& [line, start, end] : rows) {
        load(points, domain_complex, true);
        show.dims[0].sw = 4000;
        ASSERT_EQ(run("ID 4 3.8"), 1);
        ASSERT_EQ(run(line), 1) << line;
        ASSERT_EQ(show.integrals.size(), start < 0 ? 0U : 1U) << line;
        if (start < 0) continue;
        EXPECT_EQ(std::pair(show.integrals[0].start, show.integrals[0].end), std::pair(start, end)) << line;
        const double now = integral_value(show.cvNMRdata(), show.dims[0].axis(), start, end);
        EXPECT_FLOAT_EQ(show.integrals[0].value, static_cast<float>(now)) << line;
    }
    // What is cut away takes its regions along, what is left stays at its frequencies.
    load(points, domain_complex, true);
    show.dims[0].sw = 4000;
    ASSERT_EQ(run("ID 4 3.8"), 1);
    ASSERT_EQ(run("ID -1 -3"), 1);
    show.dims[0].points = 51;  // as an extraction of the left half would leave it
    show.dims[0].sw = 2000;
    show.dims[0].offset = 1000;
    refresh_integrals(show);
    ASSERT_EQ(show.integrals.size(), 1U);
    EXPECT_EQ(std::pair(show.integrals[0].start, show.integrals[0].end), std::pair(10, 12));
}

TEST_F(IntegralTest, Listings) {
    refused("ID sub list", "No Sub-Integrals defined yet.");
    ASSERT_EQ(run("ID sub 4 3.8"), 1);
    ASSERT_EQ(run("ID sub list"), 1);
    EXPECT_EQ(platform_.clipboards.back(), "NUMBER\tFROM\tTO\tVALUE\r\n   1\t4.00 PPM\t3.80 PPM\t3.30\r\n");
    show.dims[0].axis_unit = unit_points;
    show.rel_value = 1000;
    ASSERT_EQ(run("ID sub columns"), 1);
    EXPECT_EQ(platform_.clipboards.back(),
              "NUMBER         FROM           TO        VALUE            \r\n     1       10 pts        12 pts     3300\r\n");
}

TEST_F(IntegralTest, TheProgramFindsTheSignalsAndNothingElse) {
    constexpr size_t n = 16384;
    const double centers[] = {2000, 2050, 5000, 9000.5, 12000, 12130}, heights[] = {1000, 700, 60, -300, 5000, 1500};
    std::mt19937 random(7);
    std::normal_distribution<double> noise(0, 1);
    std::vector<Complex> points(n);
    for (size_t p = 0; p < n; ++p) {
        double y = 50 + 1e-3 * static_cast<double>(p) + noise(random);  // an offset and a slope are no signal
        for (size_t k = 0; k < std::size(centers); ++k) {
            const double x = (static_cast<double>(p) - centers[k]) / 3;
            y += heights[k] / (1 + x * x);
        }
        points[p] = {static_cast<float>(y), 0};
    }
    load(points, domain_complex, true);
    ASSERT_EQ(run("AI"), 1) << platform_.said();
    // 2000 and 2050 are one region, 15 Hz apart; 12000 and 12130 two, 40 Hz apart, though their flanks meet.
    ASSERT_EQ(show.integrals.size(), 5U);
    const double found[] = {2000, 5000, 9000.5, 12000, 12130};
    for (size_t k = 0; k < 5; ++k) {
        EXPECT_LT(show.integrals[k].start + 6, found[k]);
        EXPECT_GT(show.integrals[k].end - 6, found[k]);
    }
    EXPECT_GE(show.integrals[0].end, 2056);
    EXPECT_EQ(show.integrals[3].end + 1, show.integrals[4].start);
    std::vector<Complex> only_noise(n);
    for (Complex& point : only_noise) point = {static_cast<float>(noise(random)), 0};
    load(only_noise, domain_complex, true);
    EXPECT_LE(find_regions(show.cvNMRdata(), show.dims[0].axis(), 32).size(), 1U);
}

}  // namespace
}  // namespace zolt
