// The other dimensions: every operation along each of them at every level that holds it, against sums written out.
#include <cmath>
#include <numbers>

#include "processing/ordering.h"
#include "state/columns.h"
#include "support.h"

#ifdef _OPENMP
#include <omp.h>
#endif

namespace zolt {
namespace {

using test::sample_points;
using Points = std::vector<Complex>;
using Double = std::complex<double>;

class AlongTest : public test::CommandTest {
protected:
    /// Vectors in memory as the level holds them: 5 points, and 8, 4 and 2 along the other dimensions it has.
    void fill_level(int level) {
        load(sample_points(5));
        const int counts[] = {5, level == 2 ? 16 : 8, level >= 3 ? 4 : 1, level == 4 ? 2 : 1};
        for (size_t d = 0; d < 4; ++d) {
            show.dims[d].points = counts[d];
            show.dims[d].sw = 100.0F * static_cast<float>(d + 1);
        }
        show.level = level;
        const Points points = sample_points(5 * show.all_slices(), 3);
        ASSERT_TRUE(show.store.allocate(show.all_slices(), 5));
        std::ranges::copy(points, show.store.all().begin());
    }
    static Points all() { return {show.store.all().begin(), show.store.all().end()}; }

    /// Calls use(indices) with the places in `before` of each column along the dimension, as the levels' table has them.
    template <class Use>
    void each_column(int dimension, Use use) const {
        const size_t n = 5, n2 = show.level == 2 ? 8 : 8, pair = show.level == 2 ? 2 : 1, n3 = show.dims[2].points,
                     n4 = show.dims[3].points;
        const size_t counts[] = {pair, n2, n3, n4}, steps[] = {n, n * pair, n * n2, n * n2 * n3};
        const auto d = static_cast<size_t>(dimension - 1);
        for (size_t start = 0; start < n * pair * n2 * n3 * n4; ++start) {
            if (start / steps[d] % counts[d] != 0) continue;
            std::vector<size_t> column;
            for (size_t k = 0; k < counts[d]; ++k) column.push_back(start + k * steps[d]);
            use(column);
        }
    }
};

TEST_F(AlongTest, EveryOperationAlongEveryDimensionOfEveryLevel) {
    const auto weight = [](double lb, double sw, size_t k) {
        return std::exp(-std::numbers::pi * lb / sw * static_cast<double>(k));
    };
    for (const int level : {1, 2, 3, 4})
        for (const int d : {2, 3, 4}) {
            const std::string dim = " " + std::to_string(d) + "D";
            fill_level(level);
            if ((d == 3 && level < 3) || (d == 4 && level < 4)) {
                refused("EM" + dim,
                        "EM in " + std::string(d == 3 ? "3rd" : "4th") + " dimension not supported in Arrayed mode level");
                refused("AlternateSign" + dim, "not supported in Arrayed mode level");
                continue;
            }
            // Transform: first point the mean of first and last, sorted, and conjugated before where the sense says so.
            for (const int sense : {1, -1}) {
                fill_level(level);
                show.dims[static_cast<size_t>(d - 1)].sense = sense;
                const Points before = all();
                ASSERT_EQ(run("FT complex" + dim), 1) << platform_.said();
                const Points after = all();
                each_column(d, [&](const std::vector<size_t>& column) {
                    const size_t n = column.size();
                    for (size_t j = 0; j < n; ++j) {
                        Double sum = 0;
                        for (size_t k = 0; k < n; ++k) {
                            Double value(before[column[k]]);
                            if (k == 0) value = 0.5 * (value + Double(before[column[n - 1]]));
                            if (sense < 0) value = std::conj(value);
                            sum += value *
                                   std::polar(1.0, -2 * std::numbers::pi * static_cast<double>(j * k) / static_cast<double>(n));
                        }
                        ASSERT_NEAR(std::abs(sum - Double(after[column[(j + n / 2) % n]])), 0, 2e-5) << level << dim;
                    }
                });
                EXPECT_EQ(show.dims[static_cast<size_t>(d - 1)].sense, 1);
                EXPECT_TRUE(show.dims[static_cast<size_t>(d - 1)].frequency);
                EXPECT_FALSE(show.dims[0].frequency);
            }
            // What multiplies place by place: the factor of place k of n.
            const double sw = 100.0 * d;
            const struct {
                std::string line;
                std::function<Double(size_t k, size_t n)> factor;
            } rows[] = {
                // 3D and 4D take the value from the keyword itself.
                {"EM" + dim + " 2", [&](size_t k, size_t) { return weight(d, sw, k); }},
                {"SineBell" + dim + " 0.25 1 2",
                 [](size_t k, size_t n) {
                     return std::pow(
                         std::sin(std::numbers::pi * (0.25 + 0.75 * static_cast<double>(k) / static_cast<double>(n - 1))), 2);
                 }},
                {"COSINE" + dim,
                 [](size_t k, size_t n) {
                     return std::cos(std::numbers::pi / 2 * static_cast<double>(k) / static_cast<double>(n - 1));
                 }},
                {"AlternateSign" + dim, [](size_t k, size_t) { return k % 2 == 0 ? 1.0 : -1.0; }},
                {"PhaseDim" + dim + " 30 90",
                 [](size_t k, size_t n) {
                     return std::polar(1.0, -std::numbers::pi * (1.0 / 6 + 0.5 * static_cast<double>(k) / static_cast<double>(n)));
                 }},
            };
            for (const auto& row : rows) {
                fill_level(level);
                const Points before = all();
                ASSERT_EQ(run(row.line), 1) << platform_.said();
                const Points after = all();
                each_column(d, [&](const std::vector<size_t>& column) {
                    for (size_t k = 0; k < column.size(); ++k)
                        ASSERT_NEAR(std::abs(Double(before[column[k]]) * row.factor(k, column.size()) - Double(after[column[k]])),
                                    0, 1e-6)
                            << row.line << " level " << level;
                });
            }
            EXPECT_EQ(show.dims[static_cast<size_t>(d - 1)].phase_totals, (std::array<float, 3>{30, 90, 0}));
            // Reversal, and zeros behind the data.
            fill_level(level);
            const Points before = all();
            ASSERT_EQ(run("SR" + dim), 1);
            const Points reversed = all();
            each_column(d, [&](const std::vector<size_t>& c) {
                for (size_t k = 0; k < c.size(); ++k) ASSERT_EQ(reversed[c[k]], before[c[c.size() - 1 - k]]) << level << dim;
            });
            ASSERT_EQ(run("SR" + dim), 1);
            const int32_t points = show.dims[static_cast<size_t>(d - 1)].points;
            ASSERT_EQ(run("ZeroFill" + dim), 1) << platform_.said();
            EXPECT_EQ(show.dims[static_cast<size_t>(d - 1)].points, 2 * points);
            EXPECT_EQ(show.store.count(), show.all_slices());
            ASSERT_EQ(run("SR" + dim), 1);
            ASSERT_EQ(run("AlternateSign" + dim), 1);
            refused("ZeroFill" + dim + " 3", "not below");
        }
}

TEST_F(AlongTest, ZerosStandBehindTheDataOfEachColumn) {
    fill_level(4);
    const Points before = all();
    ASSERT_EQ(run("SL 3"), 1);
    ASSERT_EQ(run("Plane 4 2"), 1);
    const Points here = data();
    ASSERT_EQ(run("ZeroFill 3D 7"), 1);
    EXPECT_EQ(data(), here) << "the current vector is the one selected";
    EXPECT_EQ(show.dims[2].points, 7);
    for (size_t i4 = 0; i4 < 2; ++i4)
        for (size_t i3 = 0; i3 < 7; ++i3)
            for (size_t i2 = 0; i2 < 8; ++i2) {
                const auto vector = show.store.vector((i4 * 7 + i3) * 8 + i2);
                for (size_t k = 0; k < 5; ++k) ASSERT_EQ(vector[k], i3 < 4 ? before[((i4 * 4 + i3) * 8 + i2) * 5 + k] : Complex());
            }
}

TEST_F(AlongTest, TheNumberOfThreadsChangesNoBit) {
#ifdef _OPENMP
    const int usual = omp_get_max_threads();
    Points first;
    for (const int threads : {1, 2, 3}) {
        omp_set_num_threads(threads);
        fill_level(4);
        for (const char* line :
             {"EM 3", "ZF", "FT complex", "PC 10 20 5", "BC", "SineBell 2D 0.5 1", "FT complex 3D", "PhaseDim 4D 1 2"})
            ASSERT_NE(run(line), 2) << platform_.said();
        if (first.empty()) first = all();
        EXPECT_EQ(all(), first) << threads;
    }
    omp_set_num_threads(usual);
#endif
}

TEST_F(AlongTest, CancelledWorkLeavesEverythingAsItWas) {
    const size_t usual = std::exchange(cancellable_bytes, 0);
    for (const char* line : {"EM 3", "ZF", "FT complex", "FT complex 2D", "PC 10 20", "BC", "SineBell 3D 0.5 1", "PhaseDim 2D 1 2",
                             "ZeroFill 2D", "FT inverse", "MC", "LS 2", "AlternateSign 2D"}) {
        fill_level(3);
        platform_.cancel_progress = true;
        refused(line, "was cancelled.");
        platform_.cancel_progress = false;
        EXPECT_EQ(run(line), 1) << line;
    }
    cancellable_bytes = usual;
}

TEST_F(AlongTest, PairsExchangeTheirParts) {
    const Complex a(1, 2), b(3, 4);
    const std::tuple<const char*, Complex, Complex> rows[] = {
        {"zero", a, {0, 0}},      {"real", {1, 0}, {3, 0}}, {"imag", {2, 0}, {4, 0}}, {"ArBr", {1, 3}, {2, 4}},
        {"AiBi", {2, 4}, {1, 3}}, {"ArBi", {1, 4}, {2, 3}}, {"AiBr", {2, 3}, {1, 4}}};
    for (const auto& [word, new_a, new_b] : rows) {
        fill_level(2);
        for (size_t i = 0; i < 16; ++i) std::ranges::fill(show.store.vector(i), i % 2 == 0 ? a : b);
        ASSERT_EQ(run(std::string("AB ") + word), 1);
        for (size_t i = 0; i < 16; ++i)
            for (const Complex point : show.store.vector(i)) ASSERT_EQ(point, i % 2 == 0 ? new_a : new_b) << word;
    }
}

TEST_F(AlongTest, PlainOperationsOnVectors) {
    const Points x = {{1, 2}, {3, -4}, {5, 6}, {7, 8}};
    const std::tuple<const char*, Points> rows[] = {
        {"SR", {{7, 8}, {5, 6}, {3, -4}, {1, 2}}},
        {"LS 1", {{3, -4}, {5, 6}, {7, 8}, {0, 0}}},
        {"RS 3", {{0, 0}, {0, 0}, {0, 0}, {1, 2}}},
        {"LS 99", Points(4)},
        {"M2", {{5, 0}, {25, 0}, {61, 0}, {113, 0}}},
        {"MC", {{std::sqrt(5.0F), 0}, {5, 0}, {std::sqrt(61.0F), 0}, {std::sqrt(113.0F), 0}}}};
    for (const auto& [line, want] : rows) {
        load(x);
        ASSERT_EQ(run(line), 1);
        EXPECT_EQ(data(), want) << line;
    }
    load(x);
    ASSERT_EQ(run("RD 1 right"), 1);
    EXPECT_EQ(data(), x) << "the next transform does it";
    EXPECT_EQ(show.rotation, 3);
    ASSERT_EQ(run("RD 6"), 1);
    EXPECT_EQ(show.rotation, 2);
    refused("LS -1", "not negative");
    EXPECT_EQ(run("RD up"), 2);
}

TEST_F(AlongTest, ReferenceMovesTheOffset) {
    Points x = sample_points(1001);
    x[300] = {0, -500};
    load(x, domain_complex, true);
    show.dims[0].sf = 100;
    ASSERT_EQ(run("Reference 7.26"), 1) << platform_.said();
    EXPECT_NEAR(show.dims[0].axis().ppm(300), 7.26, 1e-5) << "the tallest, whatever its phase";
    ASSERT_EQ(run("Reference 0 at point 500"), 1);
    EXPECT_NEAR(show.dims[0].axis().ppm(500), 0, 1e-5);
    ASSERT_EQ(run("Reference -3 at 1.5"), 1);
    EXPECT_NEAR(show.dims[0].axis().ppm(500), -4.5, 1e-4);
    for (const char* line : {"Reference 1 at 400", "Reference 1 at point 1001"}) refused(line, "a place within the spectrum");
    EXPECT_EQ(run("Reference 2D 1"), 2);
}

}  // namespace
}  // namespace zolt
