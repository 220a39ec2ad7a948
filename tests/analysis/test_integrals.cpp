// Integrals: values by hand, limits in every unit, values that follow the data, and regions that the program finds.
#include <cmath>
#include <random>

#include "analysis/auto_integrals.h"
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
    EXPECT_EQ(run("ID del 3"), 2);
    ASSERT_EQ(run("ID clear"), 1);
    EXPECT_TRUE(show.integrals.empty());
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
    const double centers[] = {2000, 2060, 5000, 9000.5, 12000}, heights[] = {1000, 700, 60, -300, 5000};
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
    // 2000 and 2060 are one region: 0.046 ppm apart at most.
    ASSERT_EQ(show.integrals.size(), 4U);
    const double found[] = {2000, 5000, 9000.5, 12000};
    for (size_t k = 0; k < 4; ++k) {
        EXPECT_LT(show.integrals[k].start + 6, found[k]);
        EXPECT_GT(show.integrals[k].end - 6, found[k]);
    }
    EXPECT_GE(show.integrals[0].end, 2066);
    std::vector<Complex> only_noise(n);
    for (Complex& point : only_noise) point = {static_cast<float>(noise(random)), 0};
    load(only_noise, domain_complex, true);
    EXPECT_LE(find_regions(show.cvNMRdata(), show.dims[0].axis(), 32).size(), 1U);
}

}  // namespace
}  // namespace zolt
