// ID by mouse and keys: the lines it types, the readouts, and a log that ends with the same list.
#include "app/keystrokes.h"
#include "app/main_loop.h"
#include "common/text.h"
#include "display/view.h"
#include "state/session.h"
#include "state/sub_routine.h"
#include "support.h"

namespace zolt {
namespace {

class IntegratingTest : public test::CommandTest {
protected:
    /// 101 points at 400 MHz, 4000 Hz wide: 0.1 ppm a point, from 5 to -5 ppm; ten pixels a point.
    IntegratingTest() {
        platform_.default_answer = Answer::yes;
        std::vector<Complex> ramp(101);
        for (size_t p = 0; p < ramp.size(); ++p) ramp[p] = {static_cast<float>(p), 0};
        load(ramp, domain_complex, true);
        show.dims[0].sw = 4000;
        show_all(show);
    }
    void keys(const std::string& text) {
        post_keys(text, LineSource::user);
        run_main_loop();
    }
    static void drag(double from, double to) {
        MouseEvent event;
        event.width = 1000;
        event.point = from;
        EXPECT_TRUE(handle_mouse(event));
        event.point = to;
        event.right = (to - from) * 10;
        event.kind = MouseEvent::Kind::drag;
        EXPECT_TRUE(handle_mouse(event));
        event.kind = MouseEvent::Kind::release;
        EXPECT_TRUE(handle_mouse(event));
    }
    static std::string list() {
        std::string text;
        for (const Integral& i : show.integrals) text += format_text("%d-%d ", i.start, i.end);
        return text + format_text("x%.6g", double{show.rel_value});
    }
};

TEST_F(IntegratingTest, EveryGestureIsALine) {
    EXPECT_EQ(run("ID"), 2);
    // From and to point of the mouse, or keys; the line it types, and the list then.
    const struct {
        double from, to;
        const char *keys, *line, *list;
    } rows[] = {{20.2, 9.8, "", "ID 4.00 3.00", "10-20 x1"},
                {30, 40, "", "ID 2.00 1.00", "10-20 30-40 x1"},
                {10.1, 12, "", "ID 4.00 3.80", "10-20 10-12 30-40 x1"},  // at a limit, but not of the selected region
                {0, 0, "d", "ID delete 2", "10-20 30-40 x1"},
                {35, 35.2, "", "", "10-20 30-40 x1"},
                {40.2, 45, "", "ID move 2 2.00 0.50", "10-20 30-45 x1"},  // its limit is at hand
                {60, 60, "S", "ID split 1.50", "10-20 30-34 35-45 x1"},   // the nearest, at its lowest inner point
                {0, 0, "C", "ID calibrate 3 3", "10-20 30-34 35-45 x0.0681818"},
                {0, 0, "C", "", "10-20 30-34 35-45 x0.0681818"},  // cancelled
                {12, 12, "s", "ID split 3.80", "10-11 12-20 30-34 35-45 x0.0681818"},
                {0, 0, "-D", "ID delete 1", "12-20 30-34 35-45 x0.0681818"},
                {99, 250, "", "ID -4.90 -5.00", "12-20 30-34 35-45 99-100 x0.0681818"}};  // no further than the last point
    platform_.answers = {"3"};
    for (const auto& row : rows) {
        const size_t before = platform_.lines.size();
        if (row.from != 0) drag(row.from, row.to);
        keys(row.keys);
        EXPECT_EQ(platform_.lines.size() == before ? "" : platform_.lines.back(), row.line);
        EXPECT_EQ(list(), row.list) << row.line;
    }
    MouseEvent wheel;
    wheel.kind = MouseEvent::Kind::wheel;
    EXPECT_FALSE(handle_mouse(wheel)) << "the plot zooms";
    keys("x");
    EXPECT_TRUE(said("Sub-Command not known."));
    keys("\\r");
    EXPECT_EQ(session.sub_routine, nullptr);
}

TEST_F(IntegratingTest, ReadoutsOfSelectionAndCursor) {
    ASSERT_EQ(run("ID 2 1"), 1);
    run("ID");
    drag(35, 35);
    EXPECT_EQ(platform_.replies.back(), "    38.50 Integral   PT=    35    600.0 Hz     1.50 PPM");
    show.integrals.clear();
    drag(35, 35);
    EXPECT_EQ(platform_.replies.back(), "PT=    35    600.0 Hz     1.50 PPM");
    keys("D");
    EXPECT_TRUE(said("There are no integrals yet"));
}

TEST_F(IntegratingTest, EscapeTakesBackAndTheLogPlaysToTheSameList) {
    const auto begin = [this] {
        show.integrals.clear();
        for (const char* line : {"ID 4 3 7", "ID 0 -1", "ID REL_VALUE 2"}) ASSERT_EQ(run(line), 1);
    };
    begin();
    const auto before = show.integrals;
    run("ID");
    platform_.lines.clear();
    platform_.answers = {"5"};
    drag(15, 15);
    keys("D+C");
    drag(70, 80);
    keys("A");
    drag(50.1, 40);
    keys("\\e");
    EXPECT_EQ(session.sub_routine, nullptr);
    EXPECT_EQ(show.integrals, before);
    EXPECT_EQ(show.rel_value, 2);
    const auto lines = platform_.lines;
    EXPECT_GE(lines.size(), 6U);
    begin();
    for (const std::string& line : lines) run(line);
    EXPECT_EQ(show.integrals, before);
    EXPECT_EQ(show.rel_value, 2);
    run("ID");
    platform_.lines.clear();
    keys("\\e");
    EXPECT_TRUE(platform_.lines.empty()) << "nothing to take back";
}

}  // namespace
}  // namespace zolt
