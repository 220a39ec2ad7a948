// What stands beside File A: where overlays are drawn, sums of spectra, notes, and the commands and keys of all of them.
#include <algorithm>
#include <cmath>

#include "app/keystrokes.h"
#include "app/main_loop.h"
#include "common/text.h"
#include "display/configured_palette.h"
#include "display/lettering.h"
#include "display/plot_1d.h"
#include "display/plot_notes.h"
#include "display/plot_overlays.h"
#include "display/view.h"
#include "processing/adding.h"
#include "state/overlay.h"
#include "state/session.h"
#include "state/sub_routine.h"
#include "support.h"

namespace zolt {
namespace {

class OverlayTest : public test::CommandTest {
protected:
    // 1001 points over 10 ppm with 0 ppm at the right end: a point every 0.01 ppm.
    OverlayTest() {
        spectrum(show, 1001, 10, 1000);
        look_b = {};
        show_b = {};
        view_of(show) = {};
        session.header_type = 3;
        platform_.default_answer = Answer::yes;
    }
    ~OverlayTest() override { show_b = {}; }

    static void spectrum(DataSet& data, size_t points, double ppm, float height, const char* nucleus = "1H") {
        ASSERT_TRUE(data.store.allocate(1, points));
        data.loaded = true;
        data.dims[0] = {static_cast<int32_t>(points),
                        0,
                        static_cast<float>(400 * ppm),
                        static_cast<float>(200 * ppm),
                        domain_complex,
                        true,
                        unit_ppm,
                        {},
                        nucleus,
                        1,
                        1,
                        {}};
        data.dims[0].sf = static_cast<float>(400 + 200e-6 * ppm);
        data.store.vector(0)[points / 4] = {height, 1};
    }
    static void spectrum_b(size_t points, double ppm, float height, const char* nucleus = "1H") {
        show_b = {};
        spectrum(show_b, points, ppm, height, nucleus);
    }
    static std::string format_note(const Note& note) {
        return format_text("%.6g/%.6g/%s/", note.x, note.y, note.y_is_share ? "share" : "value") + note.text;
    }
    // The highest place of the strokes of an ink; x below 0 without any.
    static Point top_of(Ink ink) {
        Point top{-1, 1e9};
        for (const PictureRecord& record : plot_1d(show, {}).records)
            if (const Stroke* stroke = std::get_if<Stroke>(&record); stroke != nullptr && stroke->ink == ink)
                for (const Point p : stroke->points)
                    if (stroke->round_ends && p.y < top.y) top = p;
        return top;
    }
    void keys(const std::string& text) {
        post_keys(text, LineSource::user);
        run_main_loop();
    }
};

TEST_F(OverlayTest, StandsAtItsShiftsAndScales) {
    // Twice the points over half of the width: the line at 1/4 stands at 3.75 ppm, at point 625 of File A.
    spectrum_b(2001, 5, 500);
    PlotCache cache;
    const PlotLayout layout = plot_layout(show, {}, cache);
    EXPECT_GT(layout.legend, 0);
    const auto expect_at = [&](Ink ink, double point, double value, const char* what) {
        const Point top = top_of(ink);
        EXPECT_NEAR(top.x, layout.x(point), 0.5) << what;
        EXPECT_NEAR(top.y, layout.y(value), 0.5) << what;
    };
    expect_at(Ink::overlay_1, 625, 500, "by ppm");
    expect_at(Ink::real_trace, 250, 1000, "File A as before");
    const std::tuple<const char*, int, double> rows[] = {
        {"BV scale 1.5", 1, 750}, {"BV offset 10%", 1, 850}, {"BV scale auto", 1, 1100},
        {"BV offset -5", 1, 995}, {"BV scale x", 2, 995},    {"BV color 1 2", 2, 995},
        {"BV", 2, 995},           {"BV nonsense", 2, 995}};
    for (const auto& [line, result, value] : rows) {
        EXPECT_EQ(run(line), result) << line;
        expect_at(Ink::overlay_1, 625, value, line);
    }
    EXPECT_EQ(run("B2 before"), 1);
    show.dims[0].offset += 100;  // File A moves up by 0.25 ppm under what was kept
    EXPECT_NEAR(top_of(Ink::overlay_3).x, layout.x(275), 0.5);
    run("SETX 3 1");
    EXPECT_LT(top_of(Ink::overlay_3).x, 0.0 + layout.left + 1) << "only what the view shows";
    EXPECT_EQ(run("BV hide"), 1);
    EXPECT_EQ(run("B2 hide"), 1);
    EXPECT_LT(top_of(Ink::overlay_1).x, 0);
    EXPECT_EQ(plot_layout(show, {}, cache).legend, 0);
    EXPECT_EQ(run("BV clear"), 1);
    EXPECT_EQ(run("BV show"), 0);
    refused("B1 scale 2", "Buffer 1 is empty.");
}

TEST_F(OverlayTest, WhatCannotBeCompared) {
    spectrum_b(1001, 10, 1);
    const std::tuple<std::function<void(Dimension&)>, const char*> rows[] = {
        {[](Dimension& d) { d.nucleus = "H1"; }, ""},
        {[](Dimension& d) { d.nucleus = "13C"; }, "File B is of 13C, File A of 1H."},
        {[](Dimension& d) { d.frequency = false; }, "File B is an FID, File A a spectrum."},
        {[](Dimension& d) { d.sf = 0; }, ""},  // by Hz
        {[](Dimension& d) { d.sw = 0; }, "File B has no axis that could be laid on that of File A."}};
    const Dimension usual = show_b.dims[0];
    for (const auto& [edit, refusal] : rows) {
        show_b.dims[0] = usual;
        edit(show_b.dims[0]);
        const Alignment at = align(show, *companion_of(show, 0));
        EXPECT_EQ(at.refusal, refusal);
        if (*refusal != '\0') refused("AS B -1", refusal);
        EXPECT_EQ(top_of(Ink::overlay_1).x < 0, *refusal != '\0') << refusal;
    }
    refused("AS B1", "Buffer 1 is empty.");
    EXPECT_EQ(run("B1"), 1);
    show.dims[0].frequency = false;
    refused("AS B1", "B1 is a spectrum, File A an FID.");
}

TEST_F(OverlayTest, ColoursOfTheirOwnReachThePalette) {
    run("B1");
    EXPECT_EQ(configured_palette(dark_palette)[Ink::overlay_2], dark_palette[Ink::overlay_2]) << "the lightened one";
    EXPECT_EQ(run("B1 color 1 2 255"), 1);
    EXPECT_EQ(configured_palette(dark_palette)[Ink::overlay_2], 0x0102FFU);
    EXPECT_EQ(run("B1 color auto"), 1);
    EXPECT_EQ(configured_palette(light_palette)[Ink::overlay_2], light_palette[Ink::overlay_2]);
}

TEST_F(OverlayTest, FilesAndExchange) {
    const auto a = write_set("a.nat", {64, 1, 1, 1}), b = write_set("b.nat", {32, 1, 1, 1});
    show_b = {};
    ASSERT_EQ(run("GA a.nat"), 1);
    ASSERT_EQ(run("B1 of a"), 1);
    ASSERT_EQ(run("GB b.nat"), 1);
    EXPECT_EQ(run("EXC"), 1);
    EXPECT_EQ(data(), b);
    EXPECT_EQ(show.file_a, root_.path("b.nat"));
    EXPECT_EQ(show.file_b, root_.path("a.nat"));
    EXPECT_EQ(show_b.buffers.at(0).comment, "of a") << "goes with the data set";
    run("21");
    run("Exchange");
    platform_.answers = {"no"};
    refused("GB a.nat", "File B has been modified and NOT saved to disk.");
    EXPECT_EQ(run("SB c.nat"), 1);
    EXPECT_EQ(run("GB a.nat"), 1) << "without a question";
    EXPECT_EQ(run("GA b.nat"), 1);
    EXPECT_EQ(show.buffers.at(0).points, a) << "stays for the next file";
}

TEST_F(OverlayTest, SumsOfPoints) {
    const auto points = test::sample_points(1001, 3);
    std::copy(points.begin(), points.end(), show.store.vector(0).begin());
    spectrum_b(1001, 10, 0);
    const auto other = test::sample_points(1001, 4);
    std::copy(other.begin(), other.end(), show_b.store.vector(0).begin());
    const std::tuple<const char*, float, int> rows[] = {{"AS B", 1.0F, 0},
                                                        {"AS B -0.5", -0.5F, 0},
                                                        {"AS B 2 3", 2.0F, 3},
                                                        {"AS B 1 -4 points", 1.0F, -4},
                                                        {"AS B 1 0.05 ppm", 1.0F, -5},
                                                        {"AS B -1 -8hz", -1.0F, 2}};
    for (const auto& [line, factor, shift] : rows) {
        std::copy(points.begin(), points.end(), show.store.vector(0).begin());
        show.changed = false;
        ASSERT_EQ(run(line), 1) << line << platform_.said();
        EXPECT_TRUE(show.changed);
        double worst = 0;
        for (int i = 0; i < 1001; ++i) {
            const int from = i - shift;
            const Complex added = from >= 0 && from <= 1000 ? factor * other[static_cast<size_t>(from)] : Complex();
            worst = std::max(
                worst, static_cast<double>(std::abs(data()[static_cast<size_t>(i)] - points[static_cast<size_t>(i)] - added)));
        }
        EXPECT_LT(worst, 1e-4) << line;
    }
    for (const char* line : {"AS C 1", "AS B x", "AS B 1 y", "AS B nan"}) refused(line, "AS [B / B1", 2);
    refused("AS B 1 2000", "have no part of their axes in common");
    run("B1");
    run("AS B1 -1");
    EXPECT_EQ(data(), std::vector<Complex>(1001)) << "a spectrum less itself is nothing at all";
}

TEST(Adding, BetweenPointsAndBeyondEnds) {
    // A parabola is met exactly by the cubic, beside the ends.
    std::vector<Complex> x(50), other(20);
    for (size_t k = 0; k < other.size(); ++k) other[k] = Complex(static_cast<float>(k * k), -static_cast<float>(k));
    add_aligned(x, other, {10.25, 0.5, {}}, 2);
    for (size_t i = 0; i < x.size(); ++i) {
        const double p = (static_cast<double>(i) - 10.25) / 0.5;
        if (p < 0 || p > 19) {
            EXPECT_EQ(x[i], Complex()) << i;
        } else if (p >= 1 && p <= 18) {
            EXPECT_NEAR(static_cast<double>(x[i].real()), 2 * p * p, 1e-3) << i;
            EXPECT_NEAR(static_cast<double>(x[i].imag()), -2 * p, 1e-3) << i;
        }
    }
}

TEST_F(OverlayTest, AddingByKeysAndMouse) {
    spectrum_b(1001, 10, 500);
    const auto before = data();
    ASSERT_EQ(run("AS"), 2);
    keys("++f+-+");
    handle_mouse({MouseEvent::Kind::press});
    handle_mouse({MouseEvent::Kind::drag, 0, 0, -20, 5, 1000, 500});
    EXPECT_EQ(data(), before) << "drawn only";
    Picture picture;
    PlotCache cache;
    const PlotLayout layout = plot_layout(show, {}, cache);
    session.sub_routine->draw(picture, layout);
    ASSERT_FALSE(picture.records.empty());
    keys("q");
    EXPECT_EQ(data(), before);
    EXPECT_EQ(session.sub_routine, nullptr);
    ASSERT_EQ(run("AS"), 2);
    keys("s++x");
    EXPECT_TRUE(said("Sub-Command not known."));
    handle_mouse({MouseEvent::Kind::press});
    handle_mouse({MouseEvent::Kind::release, 0, 0, -20, 5, 1000, 500});
    platform_.forget();
    keys("\\r");
    EXPECT_EQ(platform_.lines.back(), "AS B -0.8 -20 points");
    EXPECT_NEAR(static_cast<double>(data()[230].real()), -400, 1e-3);
    EXPECT_EQ(session.sub_routine, nullptr);
}

TEST_F(OverlayTest, NotesByCommands) {
    const std::tuple<const char*, int, const char*> rows[] = {{"NO at 3.5 50% H-12 & more", 1, "3.5/0.5/share/H-12 & more"},
                                                              {"NO at 2 700 peak", 1, "2/700/value/peak"},
                                                              {"NO 2 two", 1, "2/700/value/two"},
                                                              {"NO move 1 4 20", 1, "2/700/value/two"},
                                                              {"NO \"1 eq. acid\"", 1, "5/0.9/share/1 eq. acid"},
                                                              {"NO another", 1, "5/0.82/share/another"},  // not upon the one before
                                                              {"NO at 3 x", 2, "5/0.82/share/another"},
                                                              {"NO at 3 4", 2, "5/0.82/share/another"},
                                                              {"NO delete 4", 1, "5/0.9/share/1 eq. acid"},
                                                              {"NO list", 2, "5/0.9/share/1 eq. acid"}};
    for (const auto& [line, result, last] : rows) {
        EXPECT_EQ(run(line), result) << line;
        const Note& note = show.notes.back();
        EXPECT_EQ(format_note(note), last) << line;
    }
    refused("NO 9 text", "There is no note 9: they are numbered from 1 to 3.");
    refused("NO delete x", "There is no note 0");
    EXPECT_EQ(run("NO delete all"), 1);
    EXPECT_TRUE(show.notes.empty());
}

TEST_F(OverlayTest, NotesStandInTheirUnitAndOnTheSheet) {
    PlotCache cache;
    run("NO at 10 200 \"at the very edge of it all\"");
    run("SETZ 50");
    const PlotLayout layout = plot_layout(show, {}, cache);
    const Point at = *place_of_note(layout, show, show.notes[0]);
    EXPECT_GT(at.x - text_width(show.notes[0].text, note_size) / 2, 0);
    EXPECT_GE(at.y, layout.top) << "stays readable where the peak leaves the plot";
    const std::tuple<Note::Unit, double, bool, double> rows[] = {
        {Note::Unit::ppm, 7.5, true, 250},    {Note::Unit::hz, 3000, true, 250},      {Note::Unit::points, 250, true, 250},
        {Note::Unit::seconds, 0.1, true, -1}, {Note::Unit::seconds, 0.1, false, 400}, {Note::Unit::ppm, 7.5, false, -1}};
    for (const auto& [unit, x, frequency, point] : rows) {
        show.dims[0].frequency = frequency;
        EXPECT_NEAR(point_of_note(show, {unit, x, 0, true, "n"}).value_or(-1), point, 1e-2) << x;
    }
}

TEST_F(OverlayTest, NotesByKeysAndMouse) {
    run("NO at 5 50% middle");
    run("NO at 2 500 other");
    PlotCache cache;
    const PlotLayout layout = plot_layout(show, configured_options(), cache);
    const Point at = *place_of_note(layout, show, show.notes[1]);
    ASSERT_EQ(run("NO"), 2);
    const auto event = [&](MouseEvent::Kind kind, double right, double up) {
        const double x = at.x + 3 + right, y = at.y - 2 - up;
        return handle_mouse(
            {kind, layout.point(x), layout.value(y), right, up, layout.right - layout.left, layout.bottom - layout.top});
    };
    EXPECT_FALSE(event(MouseEvent::Kind::press, 0, 200)) << "beside all notes the plot has the mouse";
    EXPECT_TRUE(event(MouseEvent::Kind::press, 0, 0));
    EXPECT_TRUE(event(MouseEvent::Kind::drag, 50, 10));
    EXPECT_EQ(show.notes[1].y, 500);
    EXPECT_TRUE(event(MouseEvent::Kind::release, 100, 20));
    EXPECT_NEAR(*point_of_note(show, show.notes[1]), layout.point(at.x + 100), 1);
    EXPECT_NEAR(show.notes[1].y, layout.value(at.y - 20), 1);
    EXPECT_TRUE(platform_.lines.back().starts_with("NO move 2 ")) << platform_.lines.back();
    platform_.answers = {"new text"};
    keys("e");
    EXPECT_EQ(show.notes[1].text, "new text");
    keys("nd");
    ASSERT_EQ(show.notes.size(), 1U);
    EXPECT_EQ(show.notes[0].text, "new text");
    keys("\\e");
    EXPECT_EQ(session.sub_routine, nullptr);
}

}  // namespace
}  // namespace zolt
