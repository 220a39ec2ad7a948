// Automatic phase correction of spectra whose phases are known.
#include <cmath>
#include <cstring>
#include <limits>
#include <numbers>
#include <random>

#include "processing/auto_phase_sparse.h"
#include "support.h"

namespace zolt {
namespace {

using Points = std::vector<Complex>;
constexpr double degree = std::numbers::pi / 180;

struct Signal {
    double place, half_width, height;  // part of the spectrum, points, multiples of the noise
};

// Lines as a transform makes them, turned by A + B k/n degrees, over noise and a baseline that rolls.
Points turned_spectrum(const std::vector<Signal>& signals, size_t n, double a, double b, double roll) {
    std::mt19937 generator(7);  // the standard fixes its numbers, not those of its distributions
    const auto uniform = [&] { return static_cast<double>(generator()) / 4294967296.0; };
    Points x(n);
    for (size_t k = 0; k < n; ++k) {
        const double at = static_cast<double>(k), part = at / static_cast<double>(n);
        std::complex<double> value = 0;
        for (int i = 0; i < 12; ++i) value += std::complex<double>(uniform() - 0.5, uniform() - 0.5);
        for (const Signal& line : signals)
            value += line.height / std::complex<double>(1, (at - line.place * static_cast<double>(n)) / line.half_width);
        value += std::polar(roll, 1 - 4 * std::numbers::pi * part);
        x[k] = Complex(value * std::polar(1.0, (a + b * part) * degree));
    }
    return x;
}

const std::vector<Signal> molecule = {{0.2, 2, 900},   {0.31, 3, 500},    {0.3115, 3, 450}, {0.45, 2, 1000},
                                      {0.5, 4, 300},   {0.504, 4, 280},   {0.66, 2.5, 700}, {0.667, 2.5, 720},
                                      {0.79, 3, 2000}, {0.7913, 3, 1900}, {0.8, 300, 100}};

class AutoPhaseTest : public test::CommandTest {
protected:
    // How far the totals are off at a place, in degrees.
    static double off(double a, double b, double place) {
        const auto& totals = show.dims[0].phase_totals;
        return std::abs(std::remainder(totals[0] - a + (totals[1] - b) * place, 360));
    }
};

TEST_F(AutoPhaseTest, FindsThePhases) {
    std::vector<Signal> mixed = molecule, weak = molecule, one = {{0.6, 3, 200}}, upside = molecule;
    for (size_t i = 0; i < mixed.size(); i += 4) mixed[i].height *= -1;
    for (Signal& line : weak) line.height /= 40;
    std::vector<Signal> crowded = {{0.3, 4, 12}, {0.7, 4, 10}, {0.85, 4, 9}}, sunk = weak;
    for (int i = 0; i < 8; ++i) crowded.push_back({0.5 + i * 3e-4, 4, 6});  // lines that hide in one another
    sunk.push_back({0.5, 1500, -15});
    std::vector<Signal> lopsided;  // tails to one side, as in a bad field, contradict one another where they are fitted
    for (const Signal& line : molecule)
        for (int i = 0; i < 3 && line.half_width < 100; ++i)
            lopsided.push_back({line.place + 8 * i / 32768.0, line.half_width * (i ? 1.5 : 1), line.height * (i ? 0.6 / i : 1)});
    const struct {
        const char* name;
        std::vector<Signal> signals;
        size_t n;
        double a, b, roll, limit;
    } rows[] = {{"positive first order", molecule, 32768, 40, 250, 0, 1},
                {"negative first order", molecule, 32768, -170, -300, 0, 1},
                {"rolling baseline", molecule, 32768, 95, 60, 60, 2},
                {"lines of both signs", mixed, 32768, 130, -90, 0, 2},
                {"tails to one side", lopsided, 32768, 40, 60, 0, 1.5},
                {"weak", weak, 32768, -60, 100, 0, 3},
                {"weak, overlapping", crowded, 32768, 60, -100, 0, 9},
                {"more area below than above, but no lines", sunk, 32768, 20, 70, 0, 6},
                {"no power of two", molecule, 20000, 75, -45, 0, 2}};
    for (const auto& row : rows) {
        load(turned_spectrum(row.signals, row.n, row.a, row.b, row.roll), domain_complex, true);
        EXPECT_EQ(run("AP"), 1) << row.name;
        EXPECT_LT(off(row.a, row.b, 0.2), row.limit) << row.name;
        EXPECT_LT(off(row.a, row.b, 0.8), row.limit) << row.name;
    }
    load(turned_spectrum(one, 4096, 77, 0, 0), domain_complex, true);
    EXPECT_EQ(run("QP 0"), 1);
    EXPECT_LT(off(77, 0, 0.6), 3) << "one line";
    EXPECT_EQ(show.dims[0].phase_totals[1], 0) << "zero order only";
    // The other sense of the imaginary part: all angles change their signs.
    Points conjugate = turned_spectrum(molecule, 32768, 40, 250, 0);
    for (Complex& point : conjugate) point = std::conj(point) * 1e-20F;
    load(conjugate, domain_complex, true);
    EXPECT_EQ(run("AutoPhase"), 1);
    EXPECT_LT(off(-40, -250, 0.2) + off(-40, -250, 0.8), 2) << "conjugate, and of another scale";
}

// Weak lines, seen from a phase that is some degrees off: both ends come back, whatever the signs, the sense and the length.
TEST(SparseLines, LeadBackToThePhase) {
    std::vector<Signal> weak, mixed;
    for (int i = 0; i < 12; ++i) weak.push_back({0.15 + 0.06 * i + 0.004 * (i % 3), 3.0 + i % 2, 9.0 + i});
    mixed = weak;
    for (size_t i = 0; i < mixed.size(); i += 3) mixed[i].height *= -1;
    const struct {
        const char* name;
        std::vector<Signal> signals;
        size_t n;
        double a, b, roll, off, off_first;
        bool conjugate;
    } rows[] = {{"positive", weak, 16384, 40, 120, 0, 4, -6, false},
                {"rolling baseline", weak, 16384, -100, 60, 4, -4, 7, false},
                {"both signs", mixed, 16384, 160, -200, 0, -3, -5, false},
                {"the other sense", mixed, 16384, 40, 120, 0, 4, 6, true},
                {"odd length", weak, 15001, 70, -30, 0, -4, 6, false}};
    for (const auto& row : rows) {
        Points x = turned_spectrum(row.signals, row.n, row.a, row.b, row.roll);
        const double sense = row.conjugate ? -1 : 1;
        if (row.conjugate)
            for (Complex& point : x) point = std::conj(point);
        const auto pyramid = bin_spectrum(x);
        const auto lines = find_lines(pyramid);
        const auto regions = phase_regions(lines, pyramid, x.size());
        EXPECT_TRUE(is_noisy(regions, pyramid)) << row.name;
        const PhaseLine truth{sense * row.a * degree, sense * row.b * degree};
        const PhaseLine near{truth.zero_order + row.off * degree, truth.first_order + row.off_first * degree};
        const auto found = phase_by_sparse_lines(regions, pyramid, near, PhaseOrder::first);
        ASSERT_TRUE(found) << row.name;
        for (const double place : {0.15, 0.82}) EXPECT_NEAR(found->at(place), truth.at(place), 3 * degree) << row.name;
    }
}

TEST_F(AutoPhaseTest, TurnsEveryVectorAsPcDoes) {
    const Points x = turned_spectrum(molecule, 8192, 40, 80, 0), other = test::sample_points(8192);
    load(x, domain_complex, true);
    ASSERT_TRUE(show.store.allocate(2, x.size()));
    std::copy(x.begin(), x.end(), show.store.vector(1).begin());
    std::copy(other.begin(), other.end(), show.store.vector(0).begin());
    show.level = 1;
    show.selected = 1;
    show.dims[1].points = 2;
    EXPECT_EQ(run("AP"), 1);
    EXPECT_TRUE(show.changed && platform_.replies.back().starts_with("  - A = ")) << platform_.said();
    EXPECT_LT(off(40, 80, 0.45), 2);
    EXPECT_NE(show.store.vector(0)[5000], other[5000]);
    EXPECT_EQ(run("ZP"), 1);
    for (size_t k = 0; k < x.size(); k += 1000) {
        EXPECT_LT(std::abs(show.store.vector(0)[k] - other[k]), 1e-4) << k;
        EXPECT_LT(std::abs(show.store.vector(1)[k] - x[k]), 1e-2) << k;
    }
}

TEST_F(AutoPhaseTest, RefusalsChangeNothing) {
    Points real = turned_spectrum(molecule, 8192, 0, 0, 0), broken = real;
    for (Complex& point : real) point = point.real();
    broken[100] = {std::numeric_limits<float>::quiet_NaN(), 1};
    const struct {
        const char* line;
        Points x;
        bool frequency;
        int level, result;
        const char* text;
    } rows[] = {{"AP", test::sample_points(256), false, 0, 0, "needs a spectrum"},
                {"AP", real, true, 0, 0, "no imaginary part"},
                {"AP", broken, true, 0, 0, "No signal"},
                {"AP", Points(10, Complex(1, 1)), true, 0, 0, "No signal"},
                {"AP", turned_spectrum({}, 8192, 0, 0, 0), true, 0, 0, "No signal"},
                {"AP 1", test::sample_points(256), true, 0, 2, "AP takes 0 or nothing"},
                {"AP ?", test::sample_points(256), true, 0, 2, "USAGE"},
                {"AP", turned_spectrum(molecule, 8192, 0, 0, 0), true, 4, 0, "not supported with Arrayed mode level 4"}};
    for (const auto& row : rows) {
        load(row.x, domain_complex, row.frequency);
        show.level = row.level;
        const Points before = data();
        platform_.forget();
        EXPECT_EQ(run(row.line), row.result) << row.text;
        EXPECT_TRUE(said(row.text)) << platform_.said();
        EXPECT_EQ(show.dims[0].phase_totals[0], 0) << row.text;
        EXPECT_FALSE(show.changed) << row.text;
        EXPECT_EQ(std::memcmp(before.data(), data().data(), before.size() * sizeof(Complex)), 0) << row.text;
    }
}

}  // namespace
}  // namespace zolt
