// Process: a line of known shifts comes out at its place, upright, in every way of recording dimension 2.
#include <cmath>
#include <numbers>

#include "macro/process.h"
#include "processing/ordering.h"
#include "support.h"

namespace zolt {
namespace {

using test::CommandTest;
using Double = std::complex<double>;

class ProcessTest : public CommandTest {
protected:
    ProcessTest() { platform_.default_answer = Answer::yes; }

    static constexpr int n1 = 128, n2 = 64;
    /// Turns a point above the carrier of a dimension makes from one increment to the next, at 0.2 and -0.15 of the widths.
    static constexpr double turn_1 = 0.2, turn_2 = -0.15;

    /// FIDs of one line, as the key says that dimension 2 was recorded, a line above the carrier turning as e^(+iwt).
    void record(const std::string& key) {
        const auto phase = [](double turns) { return std::polar(1.0, 2 * std::numbers::pi * turns); };
        const bool pairs = key != "2D_MAGNITUDE";
        write_set("a.nat", {n1, pairs ? 2 * n2 : n2, 1, 1}, [&](DataSet& data) {
            data.process_type = key;
            for (const size_t d : {0, 1}) {
                data.dims[d].sw = 1000;
                data.dims[d].sf = 100;
                data.dims[d].sense = -1;
            }
            data.dims[0].nucleus = "1H";
            for (size_t row = 0; row < data.store.count(); ++row) {
                const auto k = static_cast<double>(pairs ? row / 2 : row);
                Double evolution = phase(turn_2 * k);
                const bool second = row % 2 != 0;
                // Magnitude data are of the echo, which turns against dimension 1; so is the first of a pair.
                if (key == "2D_MAGNITUDE") evolution = std::conj(evolution);
                if (key == "2D_HYPERCOMPLEX" || key == "2D_STATESTPPI") evolution = second ? evolution.imag() : evolution.real();
                if (key == "2D_STATESTPPI" && row / 2 % 2 != 0) evolution = -evolution;
                // Sampled twice as fast, the phase stepped by a quarter turn each time.
                if (key == "2D_TPPI") evolution = phase((turn_2 / 2 + 0.25) * static_cast<double>(row)).real();
                if (key == "2D_ECHOANTIECHO" && !second) evolution = std::conj(evolution);
                for (size_t t = 0; t < n1; ++t) {
                    const double decay = std::exp(-0.03 * static_cast<double>(t) - 0.05 * k);
                    data.store.vector(row)[t] = Complex(decay * evolution * phase(turn_1 * static_cast<double>(t)));
                }
            }
        });
    }
};

TEST_F(ProcessTest, EveryWayOfRecordingDimension2GivesTheLineAtItsPlace) {
    for (const char* key : {"2D_MAGNITUDE", "2D_HYPERCOMPLEX", "2D_STATESTPPI", "2D_ECHOANTIECHO", "2D_TPPI"}) {
        record(key);
        ASSERT_EQ(run("GA a.nat"), 1);
        // The phases are known to be right as they are.
        show.dims[0].advice.phased = true;
        ASSERT_EQ(run("Process"), 1) << platform_.said();
        ASSERT_TRUE(said("Macro Completed Successfully")) << key << platform_.said();
        const size_t step = show.level == 2 ? 2 : 1;
        size_t tallest = 0, place = 0;
        float most = 0, least = 0;
        for (size_t i = 0; i < show.store.count(); i += step)
            for (size_t k = 0; k < show.store.points(); ++k) {
                const float value = show.store.vector(i)[k].real();
                if (value > most) most = value, tallest = i / step, place = k;
                least = std::min(least, value);
            }
        const Dimension &d1 = show.dims[0], &d2 = show.dims[1];
        const double rows = static_cast<double>(show.store.count() / step);
        EXPECT_NEAR(0.5 - static_cast<double>(place) / d1.points, turn_1, 0.005) << key;
        EXPECT_NEAR(0.5 - static_cast<double>(tallest) / rows, turn_2, 0.01) << key;
        EXPECT_GT(least, -0.03F * most) << key << " is not upright";
        EXPECT_TRUE(d1.frequency && d2.frequency);
        ASSERT_EQ(run("AR off"), 1);
    }
}

TEST_F(ProcessTest, TheFilesOfTheDataSetDecide) {
    DataRecord data;
    data.dims[0].points = 1000;
    data.dims[1].points = data.dims[2].points = data.dims[3].points = 1;
    data.dims[0].nucleus = "13C";
    using Lines = std::vector<std::string>;
    EXPECT_EQ(processing_lines(data), (Lines{"EM 1", "ZeroFill 2048", "FT", "AP"}));
    data.phase = {12.5F, -3, 0};
    data.dims[0].advice = {4096, Apodization::sine_squared, 0, 0.5, true, {}};
    EXPECT_EQ(processing_lines(data), (Lines{"SineBell 0.5 1 2", "ZeroFill 4096", "FT", "PC 12.5 -3"}));
    data.dims[1].points = 6;
    data.dims[0].advice.window = Apodization::none;
    EXPECT_EQ(processing_lines(data), (Lines{"AR complex", "ZeroFill 4096", "FT", "PC 12.5 -3"})) << "a series";
    data.process_type = "2D_STATESTPPI";
    data.other_sw2 = 1234.5;
    data.dims[1].advice = {0, Apodization::exponential, 2.5, 0, true, {90, -1}};
    EXPECT_EQ(processing_lines(data),
              (Lines{"AR pairwise", "SW2 1234.5", "ZeroFill 4096", "FT", "PC 12.5 -3", "SwitchAB ArBr", "AlternateSign 2D",
                     "EM 2D 2.5", "ZeroFill 2D 1024", "FT complex 2D", "PhaseDim 2D 90 -1", "SwitchAB ArBr"}));
    data.dims[0].frequency = true;
    EXPECT_TRUE(processing_lines(data).empty());
}

TEST_F(ProcessTest, AStepThatFailsEndsIt) {
    record("2D_HYPERCOMPLEX");
    ASSERT_EQ(run("GA a.nat"), 1);
    EXPECT_EQ(run("Process ?"), 2);
    EXPECT_TRUE(platform_.replies.back().starts_with("ZOLTMACRO\r\nAR pairwise\r\n"));
    ASSERT_EQ(run("AR pairwise"), 1);
    show.dims[0].domain_code = 7;
    platform_.forget();
    run("Process");
    EXPECT_TRUE(said("Macro error on line #")) << platform_.said();
    EXPECT_FALSE(said("SwitchAB"));
    EXPECT_EQ(run("EchoAntiEcho"), 0) << "in the time domain";
}

}  // namespace
}  // namespace zolt
