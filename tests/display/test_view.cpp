// What is shown of a data set: axis commands, regions, the zoom sub-routine, and that a summary loses no peak.
#include "app/keystrokes.h"
#include "app/main_loop.h"
#include "common/keys.h"
#include "display/plot_1d.h"
#include "display/view.h"
#include "display/view_commands.h"
#include "state/session.h"
#include "support.h"

namespace zolt {
namespace {

class ViewTest : public test::CommandTest {
protected:
    // 1001 points over 10 ppm, 400 MHz, centre at 5 ppm: a point every 0.01 ppm, 10 ppm at the left.
    ViewTest() {
        load(test::sample_points(1001), domain_complex, true);
        show.dims[0].sw = 4000;
        show.dims[0].offset = 2000;
        show.dims[0].sf = 400.002F;  // 0 ppm is at 400 MHz
        view_of(show) = {};
    }
    void expect_region(double first, double last, const std::string& what) {
        const auto shown = shown_points(show);
        EXPECT_NEAR(shown.first, first, 0.02) << what;
        EXPECT_NEAR(shown.second, last, 0.02) << what;
    }
    void keys(const std::string& text) {
        post_keys(text, LineSource::user);
        run_main_loop();
    }
};

TEST_F(ViewTest, RegionsByAxisValues) {
    const std::tuple<const char*, int, double, double> rows[] = {
        {"SETX 8 6", 1, 200, 400},      {"SETX 6ppm 8ppm", 1, 200, 400},  // either order
        {"SETX 20 9", 1, 0, 100},       {"SETX 5 5", 2, 0, 100},          // no width: usage, nothing moves
        {"SETX 5", 2, 0, 100},          {"SETX 5 nan", 2, 0, 100},       {"SETX 1 2 3", 2, 0, 100},
        {"SETX 5 4.9999", 1, 499, 501},  // two steps at least
        {"SETX full", 1, 0, 1000},      {"ZO 7 6.5", 1, 300, 350},       {"XYZ 8 6 -1 5", 1, 200, 400},
        {"XYZ 8 6 5 -1", 2, 200, 400},  {"Axis points", 1, 200, 400},    {"SETX 10 20", 1, 10, 20},
        {"Axis hz", 1, 10, 20},         {"SETX 3000 1000", 1, 250, 750}, {"Axis s", 2, 250, 750},
        {"Axis ppm", 1, 250, 750},      {"XYZ full", 1, 0, 1000}};
    for (const auto& [line, result, first, last] : rows) {
        EXPECT_EQ(run(line), result) << line;
        expect_region(first, last, line);
    }
    run("SETX 7.2512 6.8004");
    EXPECT_TRUE(setx_line(show).starts_with("SETX 7.251")) << setx_line(show);
    run(setx_line(show));
    expect_region(274.88, 319.96, "the line of a region shows that region");
    EXPECT_FALSE(show.changed);
}

TEST_F(ViewTest, StoredRegionsHoldForOtherSpectra) {
    run("SETX 8 6");
    run("SETZ 3");
    EXPECT_EQ(run("X3"), 1);
    run("XYZ full");
    load(test::sample_points(2001), domain_complex, true);  // twice as fine, SW 5000, centre at 0
    EXPECT_EQ(run("z3"), 1);
    const Axis axis = show.dims[0].axis();
    expect_region(std::max(axis.point_of_ppm(8), 0.0), std::max(axis.point_of_ppm(6), 2.0), "outside: the end of the vector");
    EXPECT_EQ(view_of(show).height, 3);
    EXPECT_EQ(run("Z4"), 0);
    show.dims[0].frequency = false;
    EXPECT_EQ(run("Z3"), 0) << "an FID has no ppm";
    refused("SETZ 0", "SETZ <magnification>", 2);
    refused("SETY 5 5", "SETY <lowest> <highest> / auto", 2);
}

TEST_F(ViewTest, ZoomByKeys) {
    const std::tuple<const char*, double, double> rows[] = {
        {"ZO\\r", 0, 1000}, {"+", 250, 750},     {"+", 375, 625},      {"r", 437.5, 687.5}, {"L", 375, 625},       {"-", 250, 750},
        {"\\r", 250, 750},  {"ZO\\r", 250, 750}, {"++", 437.5, 562.5}, {"\\e", 250, 750},   {"ZO\\rf\\r", 0, 1000}};
    for (const auto& [text, first, last] : rows) {
        keys(text);
        expect_region(first, last, text);
    }
    keys("ZO\\rFT");
    EXPECT_TRUE(said("Sub-Command not known.")) << "T is no key of it";
    EXPECT_TRUE(show.dims[0].frequency && session.sub_routine != nullptr);
    keys("q");
    EXPECT_EQ(session.sub_routine, nullptr);
    // On an empty line the arrows pan; within a text they move the caret.
    run("SETX 8 6");
    for (const int key : {int{key_right}, int{'A'}, int{key_right}, int{key_left}}) post_character(key, LineSource::user);
    run_main_loop();
    expect_region(220, 420, "one tenth to the right");
}

TEST_F(ViewTest, ZoomedTraceKeepsScaleAndStaysInside) {
    show.store.vector(0)[600] = {100, 0};
    const PlotOptions options{1000, 600, 1, true};
    PlotCache cache;
    const PlotLayout whole = plot_layout(show, options, cache);
    run("SETX 9.005 8.005");
    const PlotLayout part = plot_layout(show, options, cache);
    EXPECT_EQ(whole.per_unit, part.per_unit);
    EXPECT_NEAR(part.axis.value(part.point(part.left)), 9.005, 1e-4);
    EXPECT_NEAR(part.axis.value(part.point(part.right)), 8.005, 1e-4);
    const Picture picture = plot_1d(show, options, cache);
    for (const PictureRecord& record : picture.records) {
        const Stroke* stroke = std::get_if<Stroke>(&record);
        if (stroke == nullptr || stroke->ink != Ink::real_trace) continue;
        for (const Point p : stroke->points) ASSERT_TRUE(p.x >= part.left - 1e-6 && p.x <= part.right + 1e-6);
    }
}

TEST(TraceSummary, FindsEveryExtreme) {
    auto points = test::sample_points(5000);
    for (const size_t bad : {0, 63, 64, 4999, 700}) points[bad] = {NAN, NAN};
    for (const Part part : {Part::real, Part::imaginary, Part::magnitude}) {
        TraceSummary summary;
        summary.build(points, part);
        for (const auto& [begin, end] :
             {std::pair<size_t, size_t>{0, 5000}, {1, 4999}, {63, 65}, {64, 128}, {700, 701}, {65, 4000}}) {
            Extremes want;
            for (size_t i = begin; i < end; ++i) want.take(i, value_of(points[i], part));
            const Extremes found = summary.between(begin, end);
            EXPECT_TRUE(found.any == want.any && found.low == want.low && found.high == want.high) << begin << " " << end;
        }
    }
}

}  // namespace
}  // namespace zolt
