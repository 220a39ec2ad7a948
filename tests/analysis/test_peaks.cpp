// Peaks: places and heights of known lines, silence in noise, the list and its keeping up, its file, its commands.
#include <cmath>
#include <random>

#include "analysis/peak_list.h"
#include "app/keystrokes.h"
#include "app/main_loop.h"
#include "display/view.h"
#include "state/session.h"
#include "state/sub_routine.h"
#include "support.h"

namespace zolt {
namespace {

struct Line {
    double point, height, half_width;
};

std::vector<Complex> spectrum(size_t n, const std::vector<Line>& lines, double sigma, double offset = 0, unsigned seed = 1,
                              bool gaussian = false) {
    std::mt19937 random(seed);
    std::normal_distribution<double> noise(0, 1);
    std::vector<Complex> points(n);
    for (size_t p = 0; p < n; ++p) {
        double y = offset + sigma * noise(random);
        for (const Line& line : lines) {
            const double x = (static_cast<double>(p) - line.point) / line.half_width;
            y += line.height * (gaussian ? std::exp(-std::log(2) * x * x) : 1 / (1 + x * x));
        }
        points[p] = {static_cast<float>(y), 1e9F};
    }
    return points;
}

TEST(Peaks, NoiseIsThatOfQuietStretches) {
    std::vector<Line> dense;
    for (int k = 0; k < 150; ++k) dense.push_back({1000.0 + 80 * k, 100.0 + k, 3});
    for (const double offset : {0.0, 500.0}) EXPECT_NEAR(noise_level(spectrum(32768, dense, 1, offset)), 1, 0.15) << offset;
    auto curved = spectrum(32768, dense, 1);
    for (size_t p = 0; p < curved.size(); ++p) curved[p] += static_cast<float>(300 * std::sin(3e-4 * static_cast<double>(p)));
    for (size_t p = 0; p < 1000; ++p) curved[p] = 0;
    curved[20000] = {NAN, 0};
    EXPECT_NEAR(noise_level(curved), 1, 0.15);
    EXPECT_EQ(noise_level(std::vector<Complex>(4096)), 0);
}

TEST(Peaks, LinesAreFoundWithinATenthOfAPoint) {
    for (const bool gaussian : {false, true})
        for (const double width : {0.8, 1.5, 3.0, 8.0})
            for (const double signal_to_noise : {1e9, 1000.0, 60 * width})
                for (const double at : {2000.0, 2000.25, 2000.5, 2000.9}) {
                    if (gaussian && width < 1) continue;
                    // A line that points down is none, but for who asks for it.
                    const std::vector<Line> lines = {{at, 1e6, width}, {3000 - at / 10, -4e5, width}};
                    const auto points = spectrum(4096, lines, 1e6 / signal_to_noise, 0, 3, gaussian);
                    std::vector<FoundPeak> found[2];
                    for (const bool negative : {false, true}) {
                        found[negative] = find_peaks(points, noise_level(points), negative, true);
                        std::erase_if(found[negative], [](const FoundPeak& peak) { return std::abs(peak.height) < 1e5; });
                    }
                    ASSERT_TRUE(found[0].size() == 1 && found[1].size() == 2) << width << " " << signal_to_noise << " " << at;
                    EXPECT_NEAR(found[0][0].point, at, 0.1) << width << " " << signal_to_noise << " " << gaussian;
                    EXPECT_NEAR(found[1][0].height / 1e6, 1, 0.06) << width << " " << signal_to_noise << " " << gaussian;
                    EXPECT_NEAR(found[1][1].point, 3000 - at / 10, 0.3);
                }
}

TEST(Peaks, CloseLinesStayTwoAndNoiseIsNone) {
    // Wherever noise lies, on the baseline, on an offset or on the flanks of a broad line, it makes no peaks.
    for (const auto& [offset, broad] : {std::pair{0.0, 0.0}, {1000.0, 0.0}, {0.0, 3000.0}}) {
        size_t over = 0;
        for (unsigned seed = 0; seed < 4; ++seed) {
            const auto points = spectrum(65536, {{30000, broad, 4000}}, 1, offset, seed);
            for (const FoundPeak& peak : find_peaks(points, noise_level(points), true, true)) over += std::abs(peak.height) >= 5;
        }
        EXPECT_LE(over, broad > 0 ? 8U : 1U) << offset << " " << broad;
    }
    for (const double apart : {4.0, 8.0}) {
        const auto points = spectrum(8192, {{500, 1000, 1.5}, {500 + apart, 900, 1.5}, {5000, 1e5, 40}, {5160, 3000, 1.5}}, 10);
        auto found = find_peaks(points, noise_level(points), false, true);
        std::erase_if(found, [](const FoundPeak& peak) { return peak.height < 60; });
        ASSERT_EQ(found.size(), 4U) << apart << ": the doublet, the strong line, the weak one on its flank";
        EXPECT_NEAR(found[1].point - found[0].point, apart, 0.3);
        EXPECT_NEAR(found[3].point, 5160, 0.3);
    }
    // What is not finite counts for nothing; a clipped top is one peak in its middle; ends are no peaks.
    const auto real = [](std::vector<float> values) { return std::vector<Complex>(values.begin(), values.end()); };
    const auto odd = find_peaks(real({9, 1, 0, NAN, 2, 5, 5, 5, 2, INFINITY, 0, 1, 9}), 0, false, true);
    ASSERT_EQ(odd.size(), 1U);
    EXPECT_NEAR(odd[0].point, 6, 1e-6);
    for (const auto& few : {real({}), real({1}), real({1, 2}), real({NAN, NAN, NAN})})
        EXPECT_TRUE(find_peaks(few, 0, true, true).empty());
}

class PeakListTest : public test::CommandTest {
protected:
    /// 4001 points from 5 to -5 ppm at 400 MHz, 0.0025 ppm apart: lines at 4, 2, 1 (pointing down) and -1 ppm.
    PeakListTest() {
        load(spectrum(4001, {{400, 1000, 3}, {1200, 500, 3}, {1600, -300, 3}, {2400, 15, 3}}, 0.1), domain_complex, true);
        show.dims[0].sw = 4000;
        view_of(show) = {};
    }
    std::string places() const {
        std::string all;
        for (const Peak& peak : show.peaks) all += std::to_string(std::lround(peak.ppm * 100)) + " ";
        return all;
    }
    void keys(const std::string& text) {
        post_keys(text, LineSource::user);
        run_main_loop();
    }
};

TEST_F(PeakListTest, TypedForms) {
    const std::tuple<const char*, int, const char*> rows[] = {{"DP", 1, "400 200 "},
                                                              {"MH rms 20", 1, "400 200 "},
                                                              {"DP", 1, "400 200 -100 "},
                                                              {"DP both", 1, "400 200 -100 "},
                                                              {"DP", 1, "400 200 100 -100 "},
                                                              {"MH -p 40", 1, "400 200 100 -100 "},
                                                              {"DP", 1, "400 200 "},
                                                              {"MH 60%", 1, "400 200 "},
                                                              {"DP", 1, "400 "},
                                                              {"MH 400", 1, "400 "},
                                                              {"DP -5 5", 1, "400 200 "},
                                                              {"DP 3 1.5", 1, "200 "},
                                                              {"DP add 4.5 3", 1, "400 200 "},
                                                              {"DP add 0.5", 1, "400 200 50 "},
                                                              {"DP delete 2", 1, "400 50 "},
                                                              {"DP delete 3", 2, "400 50 "},
                                                              {"DP add 9", 0, "400 50 "},
                                                              {"DP delete at 0.3", 1, "400 "},
                                                              {"DP wrong", 2, "400 "},
                                                              {"DP 3", 2, "400 "},
                                                              {"MH x", 2, "400 "},
                                                              {"MH -5", 2, "400 "},
                                                              {"SETX 3 0", 1, "400 "},
                                                              {"DP", 1, "200 "},
                                                              {"DP positive", 1, "200 "},
                                                              {"MH auto", 1, "200 "},
                                                              {"DP clear", 1, ""},
                                                              {"PL", 2, ""}};
    for (const auto& [line, result, want] : rows) {
        EXPECT_EQ(run(line), result) << line << platform_.said();
        EXPECT_EQ(places(), want) << line;
    }
    EXPECT_EQ(run("NF 0 -0.5"), 2);
    EXPECT_NEAR(std::strtod(platform_.replies.back().c_str() + 20, nullptr), 2500, 250) << "500 over twice 0.1" << platform_.said();
    show.dims[0].frequency = false;
    refused("DP", "needs a spectrum");
}

TEST_F(PeakListTest, TablesAndFile) {
    run("DP");
    run("DP label 2 H-12, a");
    EXPECT_EQ(run("PL"), 1);
    const std::string row = "400.00\t1600.0", text = platform_.clipboards.back();
    EXPECT_NE(text.find("\t4.00"), std::string::npos) << text;
    EXPECT_NE(platform_.replies.back().find("100.000\r\n"), std::string::npos) << platform_.replies.back();
    run("SETX 3 0");
    EXPECT_EQ(run("ZL"), 1);
    EXPECT_TRUE(platform_.clipboards.back().ends_with("100.000\tH-12, a\r\n")) << platform_.clipboards.back();
    run("PL short");
    EXPECT_TRUE(platform_.clipboards.back().starts_with("1D\r\nPEAK   PPM   REL_INT   LABEL\r\n")) << platform_.clipboards.back();
    // Weak signals: two decimals would lose them.
    for (Complex& point : show.store.all()) point *= 1e-5F;
    mark_changed();
    run("PL");
    const auto before = show.peaks;
    platform_.default_answer = Answer::yes;
    for (const char* header : {"header 1", "header 3"}) {
        run(header);
        ASSERT_EQ(run("SA p.zolt"), 1) << platform_.said();
        run("DP clear");
        ASSERT_EQ(run("GA p.zolt"), 1) << platform_.said();
        ASSERT_EQ(show.peaks.size(), 2U);
        for (const size_t i : {0, 1}) {
            EXPECT_NEAR(show.peaks[i].point, before[i].point, 2e-3);
            EXPECT_NEAR(show.peaks[i].intensity / before[i].intensity, 1, 1e-3);
            EXPECT_EQ(show.peaks[i].label, before[i].label);
        }
    }
}

TEST_F(PeakListTest, ProcessingNeverLeavesAWrongPeak) {
    run("DP");
    run("SF1 200");
    EXPECT_EQ(places(), "800 400 ") << "shifts follow the axis";
    run("LS 1");
    EXPECT_NEAR(show.peaks[0].point, 399, 0.1) << "a peak follows its maximum";
    for (Complex& point : show.store.all()) point *= 2;
    mark_changed();
    run("PL");
    EXPECT_NEAR(show.peaks[1].intensity, 1000, 20);
    run("LS 50");
    EXPECT_EQ(places(), "") << "no maximum is near";
    for (const char* line : {"ZF", "FT inverse"}) {
        run("DP");
        EXPECT_FALSE(show.peaks.empty()) << line;
        EXPECT_EQ(run(line), 1) << line << platform_.said();
        EXPECT_EQ(places(), "") << line;
    }
}

TEST_F(PeakListTest, WithTheMouse) {
    run("DP both");
    run("DP");
    const auto mouse = [](MouseEvent::Kind kind, double point, double value, double up) {
        MouseEvent event;
        event.kind = kind;
        event.point = point;
        event.value = value;
        event.up = up;
        event.width = 1000;
        EXPECT_TRUE(handle_mouse(event));
    };
    using Kind = MouseEvent::Kind;
    const auto drag_to = [&](double value) {
        mouse(Kind::press, 100, 800, 0);
        mouse(Kind::drag, 100, value, 50);
        mouse(Kind::release, 100, value, 50);
    };
    const auto click = [&](double point) {
        mouse(Kind::press, point, 1, 0);
        mouse(Kind::release, point, 1, 0);
    };
    const auto before = show.peaks;
    EXPECT_EQ(run("MH"), 2);
    drag_to(600);
    EXPECT_NE(platform_.replies.back().find("now: 1 peak \u00b7 60 %"), std::string::npos) << platform_.replies.back();
    keys("\\e");
    EXPECT_EQ(show.peaks, before);
    EXPECT_EQ(session.peaks.height_unit, HeightUnit::automatic);
    EXPECT_EQ(run("MH"), 2);
    click(1190);  // the peak of 1200 goes
    click(2410);  // the weak one comes
    click(3000);  // nothing stands there
    keys("\\r");
    EXPECT_EQ(places(), "400 100 -100 ") << "without a drag the list is edited";
    EXPECT_EQ(run("MH"), 2);
    drag_to(-250);
    click(400);
    platform_.lines.clear();
    keys("\\r");
    EXPECT_EQ(places(), "200 100 ");
    ASSERT_EQ(platform_.lines.size(), 3U);
    EXPECT_TRUE(platform_.lines[0].starts_with("MH -p 25.") || platform_.lines[0].starts_with("MH -p 24.")) << platform_.lines[0];
    EXPECT_EQ(platform_.lines[1], "DP");
    EXPECT_TRUE(platform_.lines[2].starts_with("DP delete at 4.0") || platform_.lines[2].starts_with("DP delete at 3.99"));
    EXPECT_EQ(session.sub_routine, nullptr);
}

}  // namespace
}  // namespace zolt
