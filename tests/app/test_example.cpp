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
    ASSERT_EQ(run("IM " + test::examples() + "/strychnine_1h/10"), 1) << platform_.said();
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

TEST_F(ExampleTest, StrychninesMultipletsArePicked) {
    ASSERT_EQ(run("IM " + test::examples() + "/strychnine_1h/10"), 1) << platform_.said();
    process();
    ASSERT_EQ(run("DP"), 1) << platform_.said();
    // H-22 is three lines, H-13 a doublet of triplets, H-15b a doublet; at both ends there is nothing.
    const std::tuple<double, double, size_t> rows[] = {{5.97, 5.85, 3}, {1.30, 1.24, 6}, {1.50, 1.42, 2},
                                                       {18, 12, 0},     {11, 8.2, 0},    {-0.1, -6, 0}};
    for (const auto& [from, to, count] : rows)
        EXPECT_EQ(std::count_if(show.peaks.begin(), show.peaks.end(),
                                [a = from, b = to](const Peak& peak) { return peak.ppm < a && peak.ppm > b; }),
                  static_cast<std::ptrdiff_t>(count))
            << from;
}

TEST_F(ExampleTest, ASavedFidWaitsForItsTransformAsBefore) {
    ASSERT_EQ(run("IM " + test::examples() + "/strychnine_1h/10/fid"), 1) << platform_.said();
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

// The tallest real points of the spectrum in memory as (ppm of dimension 1, ppm of dimension 2), each with its
// surroundings taken out for the next.
std::vector<std::pair<double, double>> tallest_points(size_t count) {
    const size_t step = show.level == 2 ? 2 : 1, rows = show.store.count() / step, points = show.store.points();
    std::vector<float> plane(rows * points);
    for (size_t r = 0; r < rows; ++r)
        for (size_t k = 0; k < points; ++k) plane[r * points + k] = show.store.vector(r * step)[k].real();
    Axis axis_2 = show.dims[1].axis();
    axis_2.points = static_cast<double>(rows);
    std::vector<std::pair<double, double>> found;
    while (found.size() < count) {
        const auto at = static_cast<size_t>(std::max_element(plane.begin(), plane.end()) - plane.begin());
        const size_t row = at / points, column = at % points;
        found.emplace_back(show.dims[0].axis().ppm(static_cast<double>(column)), axis_2.ppm(static_cast<double>(row)));
        for (size_t r = row - std::min<size_t>(row, 8); r < std::min(row + 9, rows); ++r)
            for (size_t k = column - std::min<size_t>(column, 15); k < std::min(column + 16, points); ++k)
                plane[r * points + k] = 0;
    }
    return found;
}

TEST_F(ExampleTest, CaryophylleneComesOutByOneCommand) {
    const auto has = [](const std::vector<std::pair<double, double>>& found, double x, double y, double within_x, double within_y) {
        return std::any_of(found.begin(), found.end(),
                           [&](const auto& p) { return std::abs(p.first - x) < within_x && std::abs(p.second - y) < within_y; });
    };
    ASSERT_EQ(run("IM " + test::examples() + "/caryophyllene_oxide/14"), 1) << platform_.said();
    ASSERT_EQ(run("Process"), 1) << platform_.said();
    const auto hsqc = tallest_points(12);
    for (const auto& [h, c] : {std::pair{1.00, 29.7}, {1.02, 21.5}, {1.21, 16.9}, {4.87, 112.8}, {2.88, 63.7}, {2.62, 48.7}})
        EXPECT_TRUE(has(hsqc, h, c, 0.02, 0.3)) << h << " " << c;
    float most = 0, least = 0;
    for (size_t r = 0; r < show.store.count(); r += 2)
        for (const Complex point : show.store.vector(r)) most = std::max(most, point.real()), least = std::min(least, point.real());
    EXPECT_GT(least, -0.05F * most) << "all of one sign";
    platform_.default_answer = Answer::yes;
    ASSERT_EQ(run("AR off"), 1);
    ASSERT_EQ(run("IM " + test::examples() + "/caryophyllene_oxide/13"), 1) << platform_.said();
    ASSERT_EQ(run("Process"), 1) << platform_.said();
    const auto cosy = tallest_points(12);
    for (const double shift : {1.02, 1.22, 1.63, 1.78, 4.87, 4.99}) EXPECT_TRUE(has(cosy, shift, shift, 0.02, 0.02)) << shift;
}

}  // namespace
}  // namespace zolt
