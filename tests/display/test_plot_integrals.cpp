// Integrals on the plot: steps to one scale wherever the view cuts them, values that neither touch nor leave the sheet.
#include <algorithm>
#include <cmath>

#include "datafile/integrals.h"
#include "display/lettering.h"
#include "display/plot_integrals.h"
#include "state/session.h"
#include "support.h"

namespace zolt {
namespace {

class PlotIntegralsTest : public test::CommandTest {
protected:
    /// 1001 points of 1, 10 ppm; two regions, the second three times as wide.
    PlotIntegralsTest() {
        load(std::vector<Complex>(1001, {1, 0}), domain_complex, true);
        add_integral(show.integrals, show, 100, 199);
        add_integral(show.integrals, show, 500, 799);
    }
    struct Seen {
        std::vector<Stroke> curves;
        std::vector<Text> values;
        PlotLayout layout;
    };
    static Seen draw(double width = 1100, double height = 620) {
        PlotOptions options;
        options.width = width;
        options.height = height;
        PlotCache cache;
        Seen seen{{}, {}, plot_layout(show, options, cache)};
        for (const PictureRecord& record : plot_1d(show, options, cache).records) {
            const Stroke* stroke = std::get_if<Stroke>(&record);
            const Text* text = std::get_if<Text>(&record);
            if (stroke != nullptr && stroke->ink == Ink::integral && stroke->width == options.pen) seen.curves.push_back(*stroke);
            if (text != nullptr && text->ink == Ink::integral) seen.values.push_back(*text);
        }
        return seen;
    }
};

TEST_F(PlotIntegralsTest, StepsHaveOneScaleAndTheViewCutsThem) {
    const auto rise = [](const Stroke& curve) { return curve.points.front().y - curve.points.back().y; };
    const Seen all = draw();
    ASSERT_EQ(all.curves.size(), 2U);
    EXPECT_NEAR(rise(all.curves[1]) / rise(all.curves[0]), 3, 1e-6);
    EXPECT_EQ(all.curves[0].points.front().y, all.curves[1].points.front().y);
    EXPECT_NEAR(all.curves[0].points.front().x, all.layout.x(99.5), 1e-6);
    EXPECT_NEAR(all.curves[0].points.back().x, all.layout.x(199.5), 1e-6);
    // A third of the way up where the view begins, two thirds where it ends.
    show_points(show, 599.5, 699.5);
    const Seen part = draw();
    ASSERT_EQ(part.curves.size(), 1U);
    EXPECT_NEAR(rise(part.curves[0]) / rise(all.curves[1]), 1.0 / 3, 1e-6);
    EXPECT_NEAR(all.curves[1].points.front().y - part.curves[0].points.front().y, rise(all.curves[1]) / 3, 1e-6);
    EXPECT_NEAR(part.curves[0].points.front().x, part.layout.left, 1e-6);
    EXPECT_NEAR(part.curves[0].points.back().x, part.layout.right, 1e-6);
    EXPECT_EQ(part.layout.bottom, all.layout.bottom) << "the plot stays where it is";
}

TEST_F(PlotIntegralsTest, RoomOnlyForWhatIsShown) {
    show.rel_value = static_cast<float>(2 / double{show.integrals[0].value});
    const Seen seen = draw();
    ASSERT_EQ(seen.values.size(), 2U);
    EXPECT_EQ(seen.values[0].text, "2.00");
    EXPECT_EQ(seen.values[1].text, "6.00");
    EXPECT_NEAR(seen.values[0].at.x, seen.layout.x(149.5), 0.01);
    ASSERT_EQ(run("ID hide"), 1);
    const Seen hidden = draw();
    EXPECT_TRUE(hidden.curves.empty() && hidden.values.empty());
    EXPECT_GT(hidden.layout.bottom, seen.layout.bottom);
    ASSERT_EQ(run("ID show"), 1);
    EXPECT_EQ(draw().values.size(), 2U);
    settings.values["ID_DISPLAY"] = "TOP";
    const Seen top = draw();
    EXPECT_EQ(top.layout.bottom, hidden.layout.bottom);
    EXPECT_LT(top.values[0].at.y, top.layout.top);
    EXPECT_TRUE(draw(200, 150).values.empty()) << "no room";
}

TEST_F(PlotIntegralsTest, ValuesNeverTouchNorLeaveTheSheet) {
    for (const int distance : {150, 40, 12, 5, 1}) {
        show.integrals.clear();
        for (int p = 0; p + distance <= 1001; p += distance) add_integral(show.integrals, show, p, p + distance - 1);
        for (const float scale : {1.0F, 1234.5F, -1e9F})
            for (const double width : {1100.0, 300.0}) {
                show.rel_value = scale;
                const auto values = draw(width, 400).values;
                ASSERT_FALSE(values.empty());
                double end = 0;
                for (const Text& value : values) {
                    const bool upright = value.angle != 0;
                    const double length = text_width(value.text, value.size), room = upright ? value.size : length;
                    const double middle = upright ? value.at.x - value.size * 0.36 : value.at.x;
                    EXPECT_GE(middle - room / 2, end) << distance << " " << width;
                    end = middle + room / 2;
                    EXPECT_LE(value.at.y + (upright ? length : 0), 400) << value.text;
                }
                EXPECT_LE(end, width);
            }
    }
}

}  // namespace
}  // namespace zolt
