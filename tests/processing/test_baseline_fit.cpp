// The fitted baseline correction: what it takes away, and what it leaves.
#include <cmath>
#include <numbers>

#include "support.h"

namespace zolt {
namespace {

using Points = std::vector<Complex>;

class BaselineFitTest : public test::CommandTest {
protected:
    static constexpr size_t n = 8192;

    // Three lines, the tallest of height 1, at the places of part().
    static double lines(double at) {
        double sum = 0;
        for (const auto& [place, height] : {std::pair(2000.0, 1.0), std::pair(2040.0, 0.5), std::pair(6000.0, 0.8)})
            sum += height / (1 + std::pow((at - place) / 4, 2));
        return sum;
    }
    template <class F>
    static Points spectrum(F baseline, double height = 1) {
        const Points noise = test::sample_points(n, 3);
        Points x(n);
        for (size_t k = 0; k < n; ++k) {
            const double part = 2.0 * static_cast<double>(k) / n - 1;
            x[k] = {static_cast<float>(height * lines(static_cast<double>(k)) + baseline(part) + 1e-3 * noise[k].real()), 0};
        }
        return x;
    }
    static double largest_error(std::span<const Complex> x, double height = 1) {
        double largest = 0;
        for (size_t k = 0; k < n; ++k) largest = std::max(largest, std::abs(x[k].real() - height * lines(static_cast<double>(k))));
        return largest;
    }
};

TEST_F(BaselineFitTest, LeavesTheLines) {
    const auto roll = [](double t) { return 0.1 * std::sin(2.5 * std::numbers::pi * t + 1) + 0.2 * t; };
    const auto cubic = [](double t) { return 0.3 - 0.2 * t + 0.4 * t * t + 0.5 * t * t * t; };
    const struct {
        const char* line;
        double (*baseline)(double);
        bool left;
    } rows[] = {{"FB", roll, false},    {"FB W 1e8", roll, false}, {"FB", cubic, false},     {"FITBASELINE 3", cubic, false},
                {"FB 8", cubic, false}, {"FB 2", cubic, true},     {"FB W 1e20", roll, true}};
    for (const auto& row : rows) {
        load(spectrum(row.baseline), domain_complex, true);
        EXPECT_EQ(run(row.line), 1) << row.line;
        EXPECT_EQ(largest_error(data()) > 0.03, row.left) << row.line << " " << largest_error(data());
        EXPECT_EQ(data()[77].imag(), 0) << row.line;
        EXPECT_TRUE(show.changed);
    }
}

TEST_F(BaselineFitTest, EveryVectorOfALevelAndBothParts) {
    const Points x = spectrum([](double t) { return 5 + t; });
    load(x, domain_complex, true);
    ASSERT_TRUE(show.store.allocate(2, n));
    show.level = 2;
    for (size_t k = 0; k < n; ++k) {
        show.store.vector(0)[k] = x[k];
        show.store.vector(1)[k] = {2 * x[k].real(), -3.0F};
    }
    EXPECT_EQ(run("FB 1"), 1);
    EXPECT_LT(largest_error(show.store.vector(0)), 0.02);
    EXPECT_LT(largest_error(show.store.vector(1), 2), 0.04);
    EXPECT_NEAR(show.store.vector(1)[4000].imag(), 0, 1e-4);
}

TEST_F(BaselineFitTest, RefusalsChangeNothing) {
    const struct {
        const char* line;
        size_t points;
        bool frequency;
        int level, result;
        const char* text;
    } rows[] = {{"FB", 256, false, 0, 0, "needs a spectrum"},
                {"FB", 63, true, 0, 0, "64 points or more"},
                {"FB 9", 256, true, 0, 2, "USAGE"},
                {"FB ?", 256, true, 0, 2, "USAGE"},
                {"FB W abc", 256, true, 0, 2, "not a number"},
                {"FB W -1", 256, true, 0, 2, "above 0"},
                {"FB", 256, true, 5, 0, "level 5"}};
    for (const auto& row : rows) {
        const Points x = test::sample_points(row.points);
        load(x, domain_complex, row.frequency);
        show.level = row.level;
        platform_.forget();
        EXPECT_EQ(run(row.line), row.result) << row.text;
        EXPECT_TRUE(said(row.text)) << platform_.said();
        EXPECT_TRUE(data() == x && !show.changed) << row.text;
    }
}

}  // namespace
}  // namespace zolt
