// The bundled example, from the spectrometer's files to the phased spectrum: what a chemist would check on paper.
#include <algorithm>
#include <cmath>
#include <numeric>

#include "common/file.h"
#include "support.h"

namespace zolt {
namespace {

using test::CommandTest;

class ExampleTest : public CommandTest {
protected:
    void process() {
        for (const char* line : {"EM", "FT", "PC", "BC"}) ASSERT_EQ(run(line), 1) << line << platform_.said();
    }
    double tallest_between(double from_ppm, double to_ppm) const {
        const Axis axis = show.dims[0].axis();
        const auto points = show.cvNMRdata();
        const auto first = static_cast<size_t>(axis.point_of_ppm(from_ppm)), last = static_cast<size_t>(axis.point_of_ppm(to_ppm));
        const auto tallest = std::max_element(points.begin() + static_cast<std::ptrdiff_t>(first),
                                              points.begin() + static_cast<std::ptrdiff_t>(last),
                                              [](Complex a, Complex b) { return a.real() < b.real(); });
        return axis.ppm(static_cast<double>(tallest - points.begin()));
    }
    double area_between(double from_ppm, double to_ppm) const {
        const Axis axis = show.dims[0].axis();
        const auto points = show.cvNMRdata();
        double sum = 0;
        for (auto k = static_cast<size_t>(axis.point_of_ppm(from_ppm)); k < static_cast<size_t>(axis.point_of_ppm(to_ppm)); ++k)
            sum += points[k].real();
        return sum;
    }
};

TEST_F(ExampleTest, StrychnineComesOutPhasedAndReferenced) {
    ASSERT_EQ(run("IM " ZOLT_EXAMPLES "/strychnine_1h/10"), 1) << platform_.said();
    EXPECT_EQ(name_of(show.file_a), "strychnine_1h_10.zolt");
    EXPECT_EQ(show.dims[0].nucleus, "1H");
    EXPECT_EQ(show.solvent, "CDCl3");
    EXPECT_EQ(show.dims[0].sense, -1);
    EXPECT_NEAR(show.group_delay, 67.9842, 1e-4);
    EXPECT_EQ(show.lb(), 0.3F);
    process();
    EXPECT_EQ(show.dims[0].sense, 1);
    EXPECT_EQ(show.group_delay, 0);

    EXPECT_NEAR(tallest_between(0.3, -0.3), 0.0, 0.002) << "TMS";
    EXPECT_NEAR(tallest_between(7.30, 7.20), 7.26, 0.02) << "CHCl3";
    // Four aromatic protons stand at 7.1 to 8.1, left of everything else, among 22 in all.
    EXPECT_NEAR(area_between(8.2, 7.05) / area_between(8.2, 0.9), 4.0 / 22, 0.05);
    EXPECT_NEAR(tallest_between(12.0, 7.5), 8.09, 0.02);
    EXPECT_NEAR(tallest_between(7.5, 4.5), 7.15, 0.1);

    double positive = 0, negative = 0;
    for (const Complex point : show.cvNMRdata()) (point.real() < 0 ? negative : positive) += double{point.real()} * point.real();
    EXPECT_LT(negative, 0.002 * (positive + negative)) << "lines are upright";
}

TEST_F(ExampleTest, ASavedFidWaitsForItsTransformAsBefore) {
    ASSERT_EQ(run("IM " ZOLT_EXAMPLES "/strychnine_1h/10/fid"), 1) << platform_.said();
    const std::string saved = root_.path("fid.zolt");
    const auto phases = show.phase;
    ASSERT_EQ(run("SA " + saved), 1) << platform_.said();
    process();
    const auto direct = data();
    ASSERT_EQ(run("SF1 1"), 1);
    platform_.answers = {"yes"};
    ASSERT_EQ(run("GA " + saved), 1) << platform_.said();
    EXPECT_EQ(show.dims[0].sense, -1);
    EXPECT_EQ(show.phase, (std::array<float, 3>{})) << "a native file brings no stored phases";
    show.phase = phases;
    process();
    EXPECT_EQ(data(), direct) << "the transform of the saved FID is the same, to the bit";
}

}  // namespace
}  // namespace zolt
