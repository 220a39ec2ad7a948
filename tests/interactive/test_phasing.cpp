// PH, PE, PI, TP: what is seen while phasing is what PC then does, and nothing is lost on the way.
#include <cmath>

#include "app/keystrokes.h"
#include "app/main_loop.h"
#include "common/keys.h"
#include "display/plot_1d.h"
#include "state/session.h"
#include "state/sub_routine.h"
#include "support.h"

namespace zolt {
namespace {

using Kind = MouseEvent::Kind;

class PhasingTest : public test::CommandTest {
protected:
    static constexpr size_t n = 1024, tallest = 700;

    PhasingTest() {
        auto points = test::sample_points(n);
        points[tallest] = {0, -90};
        points[300] = {40, 0};
        load(points, domain_complex, true);
    }
    void press(int key) {
        post_character(key, LineSource::user);
        run_main_loop();
    }
    void keys(const char* text) {
        for (; *text != '\0'; ++text) press(*text);
    }
    static bool mouse(Kind kind, double point, double right = 0, double up = 0) {
        return handle_mouse({.kind = kind, .point = point, .right = right, .up = up, .width = 512});
    }
    // The first four pixels only tell that it is a drag.
    static void drag(double right, double up) {
        mouse(Kind::press, 500);
        mouse(Kind::release, 500, right, up);
    }
    static bool click(double point) { return mouse(Kind::press, point) && mouse(Kind::release, point, 1, -1); }
    static PlotLayout layout() {
        PlotCache cache;
        PlotOptions options;
        options.preview = session.sub_routine->preview();
        return plot_layout(show, options, cache);
    }
    std::string readout() const { return platform_.statuses.back(); }
    static std::vector<Complex> preview() {
        const auto points = session.sub_routine->preview();
        return {points.begin(), points.end()};
    }
    static double degrees_between(Complex turned, Complex original) { return std::arg(original / turned) * 180 / M_PI; }
};

TEST_F(PhasingTest, KeepsWhatWasSeenAsOneLineOfPc) {
    const auto before = data();
    EXPECT_EQ(run("PH"), 2);
    keys("+++b+++-c+");
    press(key_up);
    press(key_left);
    keys("91");
    EXPECT_TRUE(readout().starts_with("0 A = -59.0   B =  19.0   C =  10.0   Pivot pt = ")) << readout();
    EXPECT_EQ(data(), before) << "the data wait for Enter";
    const auto seen = preview();
    // At the pivot A alone and the share of C turn; a first order of 19 spreads from there.
    const double c = 10 * std::pow(double{tallest} / n, 2);
    EXPECT_NEAR(degrees_between(seen[tallest], before[tallest]), -59 + c, 1e-3);
    EXPECT_NEAR(degrees_between(seen[300], before[300]), -59 + 19 * (300.0 - tallest) / n + 10 * std::pow(300.0 / n, 2), 1e-3);
    press(key_enter);
    EXPECT_EQ(data(), seen);
    EXPECT_EQ(platform_.lines.back(), "PC -71.9883 19 10");
    EXPECT_NEAR(show.dims[0].phase_totals[0], -59 - 19.0 * tallest / n, 1e-3);
    EXPECT_EQ(run("ZP"), 1);
    EXPECT_LT(std::abs(data()[tallest] - before[tallest]), 1e-3);
}

TEST_F(PhasingTest, DragsTurnOneOrderAndClicksMoveThePivotAlone) {
    const auto before = data();
    run("PhaseMouse");
    drag(3, 94);
    EXPECT_TRUE(readout().starts_with("0 A =  90.0   B =   0.0")) << "a little sideways is no first order: " << readout();
    drag(-64, 20);
    EXPECT_TRUE(readout().starts_with("0 A =  90.0   B = -60.0")) << readout();
    const auto seen = preview();
    click(303);  // near the peak at 300
    EXPECT_TRUE(readout().ends_with("Pivot pt =  2.6 ppm")) << readout();
    EXPECT_NEAR(degrees_between(preview()[tallest], seen[tallest]), 0, 1e-3);
    drag(104, 0);
    EXPECT_NEAR(degrees_between(preview()[300], seen[300]), 0, 1e-3) << "the pivot stays";
    click(tallest);
    click(20);
    EXPECT_FALSE(mouse(Kind::double_click, 20)) << "the plot shows the whole";
    EXPECT_TRUE(readout().ends_with("Pivot pt = -2.3 ppm")) << "and the pivot is where it was: " << readout();
    EXPECT_FALSE(mouse(Kind::wheel, 20));
    press(key_escape);
    EXPECT_EQ(data(), before);
    EXPECT_FALSE(show.changed);
}

TEST_F(PhasingTest, SettingsGiveSenseAndSize) {
    run("ini set MOUSE_SCALING_PH 0.5");
    run("ini set MOUSE_DIRECTION DOWN");
    run("PH");
    drag(0, 44);
    EXPECT_TRUE(readout().starts_with("0 A = -20.0")) << readout();
    press(key_escape);
    // PE: a pixel is a degree over what is shown, an eighth of the spectrum; its tallest point is the pivot.
    run("Axis POINTS");
    run("SETX 257 385");
    run("PE");
    drag(14, 0);
    EXPECT_NEAR(degrees_between(preview()[300 + 64], show.cvNMRdata()[300 + 64]), 10 * 0.5, 0.1);
    EXPECT_NEAR(degrees_between(preview()[300], show.cvNMRdata()[300]), 0, 1e-3);
    press(key_escape);
}

TEST_F(PhasingTest, OtherDataStartAnew) {
    run("PH");
    keys("++");
    const auto other = test::sample_points(64, 5);
    load(other, domain_complex, true);
    EXPECT_EQ(preview(), other) << "angles of the former data are not theirs";
    show.loaded = false;
    show.store = {};
    EXPECT_TRUE(session.sub_routine->preview().empty());
    press(key_enter);
    EXPECT_EQ(platform_.lines.back(), "PH") << "no angles, no line";
    load(other, domain_complex, true);
    show.level = 4;
    refused("PH", "Phase Correct is not supported with Arrayed mode level 4");
}

TEST_F(PhasingTest, ThePictureKeepsItsScale) {
    run("PH");
    const PlotLayout first = layout();
    keys("9");
    EXPECT_NEAR(layout().per_unit, first.per_unit, 1e-4 * first.per_unit);
    EXPECT_LT(first.y(-40), first.bottom) << "what points downward is seen";
    Picture over;
    session.sub_routine->draw(over, first);
    EXPECT_NEAR(std::get<Stroke>(over.records[0]).points[0].x, first.x(tallest), 1);
}

TEST_F(PhasingTest, TypedForms) {
    const auto before = data();
    EXPECT_EQ(run("PH 30 60"), 1);
    EXPECT_NEAR(degrees_between(data()[tallest], before[tallest]), 30, 1e-3) << "about the tallest point";
    EXPECT_EQ(run("TP 0 0"), 1);
    EXPECT_LT(std::abs(data()[tallest] - before[tallest]), 1e-3);
    EXPECT_EQ(run("PI 10 -4"), 1);
    EXPECT_EQ(run("PhaseIncrement -cosy"), 1);
    EXPECT_EQ(show.phase, (std::array<float, 3>{100, -4, 0}));
    EXPECT_EQ(run("TP"), 2);
    EXPECT_TRUE(said("A =  100.0   B =  -4.0   C =   0.0")) << platform_.said();
    EXPECT_EQ(run("TotalPhase 20"), 1);
    EXPECT_EQ(show.dims[0].phase_totals, (std::array<float, 3>{20, -4, 0})) << "orders left out stay";
    for (const char* line : {"PH 1 x", "PI x", "TP 1 x"}) refused(line, " is not a number.", 2);
    for (const char* line : {"PI", "PI ?", "TP ?", "PE ?"}) refused(line, "USAGE", 2);
}

}  // namespace
}  // namespace zolt
