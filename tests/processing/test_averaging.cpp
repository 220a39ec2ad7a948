// Y0 to Y9: means of blocks, and an axis on which every line keeps its place.
#include "support.h"

namespace zolt {
namespace {

using test::CommandTest;
using test::sample_points;

class AveragingTest : public CommandTest {};

TEST_F(AveragingTest, BlocksAreMeansAndLinesKeepTheirFrequency) {
    std::vector<Complex> points(103);
    for (size_t k = 0; k < points.size(); ++k) points[k] = {static_cast<float>(k), -2.0F * static_cast<float>(k)};
    load(points, domain_complex, true);
    const Axis before = show.dims[0].axis();
    ASSERT_EQ(run("Y0"), 1);
    ASSERT_EQ(show.pts1d(), 10) << "the rest of three points fills no block";
    for (size_t k = 0; k < 10; ++k) {
        const auto middle = static_cast<float>(10 * k) + 4.5F;
        EXPECT_EQ(data()[k], Complex(middle, -2 * middle));
        EXPECT_NEAR(show.dims[0].axis().hz(static_cast<double>(k)), before.hz(middle), 1e-2);
    }
    EXPECT_TRUE(show.changed);
}

TEST_F(AveragingTest, FidsGetALongerDwellAndOddCasesAreSafe) {
    load(sample_points(64));
    show.group_delay = 12;
    ASSERT_EQ(run("Y4"), 1);
    EXPECT_EQ(show.dims[0].sw, 1250);
    EXPECT_EQ(show.group_delay, 3);
    const auto once = data();
    ASSERT_EQ(run("Y1"), 1);
    EXPECT_EQ(data(), once);
    load(sample_points(5));
    EXPECT_EQ(run("Y9"), 0) << "no whole block";
    EXPECT_EQ(show.pts1d(), 5);
}

}  // namespace
}  // namespace zolt
