// The window without a screen: keys, mouse and menus reach the core, pictures are painted, closing asks.
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDragEnterEvent>
#include <QImage>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QPrintPreviewDialog>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <filesystem>

#include "app/command_line.h"
#include "app/commands.h"
#include "app/menus.h"
#include "config/settings.h"
#include "desktop/file_dialogs.h"
#include "desktop/main_window.h"
#include "desktop/plot_view.h"
#include "desktop/print_dialog.h"
#include "desktop/text.h"
#include "display/palette.h"
#include "state/session.h"
#include "state/sub_routine.h"
#include "support.h"

namespace zolt {
namespace {

class WindowTest : public test::CommandTest {
protected:
    WindowTest() : window_(make()) { window_.show(); }
    ~WindowTest() override { set_platform(&platform_); }

    QtPlatform& make() {
        front_.batch = true;
        set_platform(&front_);
        return front_;
    }
    void type(const char* text) {
        QTest::keyClicks(&window_, text);
        QTest::keyClick(&window_, Qt::Key_Return);
    }
    void load_spectrum(size_t points = 1001) {
        load(test::sample_points(points), domain_complex, true);
        window_.line_done();
        window_.refresh_plot();
        QApplication::processEvents();
    }
    PlotView& plot() {
        for (QWidget* child : window_.findChildren<QWidget*>())
            if (auto* view = dynamic_cast<PlotView*>(child)) return *view;
        std::abort();
    }
    QAction* action(const QString& line) {
        for (QAction* found : window_.findChildren<QAction*>())
            if (found->text().section('\t', 1).section("    ", 0, 0) == line) return found;
        return nullptr;
    }

    QtPlatform front_;
    MainWindow window_;
};

TEST_F(WindowTest, KeysBuildAndRunLines) {
    type("SF1 312.5");
    EXPECT_EQ(show.dims[0].sf, 312.5F);
    QTest::keyClick(&window_, Qt::Key_Up);
    EXPECT_EQ(typed_text(), "SF1 312.5");
    QTest::keyClick(&window_, Qt::Key_Left);
    QTest::keyClick(&window_, Qt::Key_Backspace);
    QTest::keyClicks(&window_, "7");
    EXPECT_EQ(typed_text(), "SF1 31275") << "the caret stands before the last digit";
    QTest::keyClick(&window_, Qt::Key_Escape);
    QTest::keyClicks(&window_, "fouri");
    QTest::keyClick(&window_, Qt::Key_Tab);
    EXPECT_EQ(typed_text(), "FourierTransform ");
    QTest::keyClick(&window_, Qt::Key_Escape);
    load_spectrum();
    QTest::keyClick(&window_, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(view_of(show).traces, Traces::both);
    QTest::keyClick(&window_, Qt::Key_Right, Qt::ControlModifier);
    EXPECT_EQ(shown_points(show).first, 0) << "nothing lies beyond the end";
}

TEST_F(WindowTest, TheMouseEndsInLines) {
    load_spectrum();
    PlotView& view = plot();
    PlotCache cache;
    PlotOptions options = configured_options();
    options.width = view.width();
    options.height = view.height();
    const PlotLayout layout = plot_layout(show, options, cache);
    const int y = view.height() / 2, from = static_cast<int>(layout.x(250)), to = static_cast<int>(layout.x(500));
    // From right to left: the same region.
    QTest::mousePress(&view, Qt::LeftButton, {}, {to, y});
    QTest::mouseMove(&view, {from, y});
    QTest::mouseRelease(&view, Qt::LeftButton, {}, {from, y});
    EXPECT_NEAR(shown_points(show).first, 250, 2);
    EXPECT_NEAR(shown_points(show).second, 500, 2);
    EXPECT_FALSE(show.changed);
    QTest::mouseClick(&view, Qt::LeftButton, {}, {from, y});
    EXPECT_NEAR(shown_points(show).first, 250, 2) << "a click is no region";
    QTest::mouseDClick(&view, Qt::LeftButton, {}, {from, y});
    EXPECT_EQ(shown_points(show).second, 1000);
}

std::vector<MouseEvent> seen;
bool takes_press = true;
int overlays = 0;

const SubRoutine listener = {"LI",
                             "",
                             [](int) { return true; },
                             [](const MouseEvent& event) {
                                 seen.push_back(event);
                                 return takes_press && event.kind != MouseEvent::Kind::wheel;
                             },
                             [](Picture&, const PlotLayout&) { ++overlays; },
                             Pointer::level};

// A gesture belongs to whom its press did, to its end.
TEST_F(WindowTest, ASubRoutineHasTheMouse) {
    load_spectrum();
    PlotView& view = plot();
    const auto drag = [&](bool left_meanwhile) {
        session.sub_routine = &listener;
        seen.clear();
        QTest::mousePress(&view, Qt::LeftButton, Qt::ShiftModifier, {200, 100});
        QTest::mouseMove(&view, {230, 90});
        if (left_meanwhile) session.sub_routine = nullptr;
        QTest::mouseRelease(&view, Qt::LeftButton, {}, {300, 80});
        QApplication::processEvents();
    };
    drag(false);
    ASSERT_EQ(seen.size(), 3U);
    EXPECT_TRUE(seen[0].shift && seen[0].right == 0 && seen[2].right == 100 && seen[2].up == 20);
    EXPECT_NEAR((seen[2].point - seen[0].point) * seen[0].width, 1000 * 100, 1000);
    EXPECT_GT(seen[2].value, seen[0].value);
    EXPECT_GT(overlays, 0);
    EXPECT_EQ(view.cursor().shape(), Qt::SplitVCursor);
    drag(true);
    EXPECT_EQ(seen.size(), 2U);
    EXPECT_EQ(shown_points(show), std::pair(0.0, 1000.0)) << "the rest of its drag is nobody's";
    takes_press = false;
    drag(false);
    EXPECT_EQ(seen.size(), 1U);
    EXPECT_GT(shown_points(show).first, 0) << "what it does not want the plot may have";
    action("FT")->trigger();
    EXPECT_FALSE(show.changed) << "menus are refused";
    session.sub_routine = nullptr;
}

TEST_F(WindowTest, ADragPhases) {
    load_spectrum();
    PlotView& view = plot();
    const auto before = data();
    type("PH");
    const QImage untouched = window_.grab().toImage();
    QTest::mousePress(&view, Qt::LeftButton, {}, {300, 200});
    QTest::mouseMove(&view, {302, 150});
    QTest::mouseRelease(&view, Qt::LeftButton, {}, {302, 106});
    EXPECT_NE(window_.grab().toImage(), untouched);
    EXPECT_EQ(data(), before);
    QTest::keyClick(&window_, Qt::Key_Return);
    EXPECT_EQ(show.dims[0].phase_totals[0], 90);
    EXPECT_LT(std::abs(data()[5].real() - before[5].imag()), 1e-6);
    EXPECT_EQ(shown_points(show), std::pair(0.0, 1000.0)) << "no drag of the plot's own";
    EXPECT_EQ(view.cursor().shape(), Qt::CrossCursor);
}

TEST_F(WindowTest, ADragIntegrates) {
    load_spectrum();
    PlotView& view = plot();
    type("ID");
    QTest::mousePress(&view, Qt::LeftButton, {}, {300, 200});
    QTest::mouseMove(&view, {350, 190});
    QTest::mouseRelease(&view, Qt::LeftButton, {}, {400, 200});
    ASSERT_EQ(show.integrals.size(), 1U);
    EXPECT_LT(show.integrals[0].start, show.integrals[0].end);
    EXPECT_EQ(shown_points(show), std::pair(0.0, 1000.0)) << "no drag of the plot's own";
    QTest::keyClick(&window_, Qt::Key_D);
    EXPECT_TRUE(show.integrals.empty());
    QTest::keyClick(&window_, Qt::Key_Return);
}

TEST_F(WindowTest, MenusTeachCommandsAndGreyWhatCannotBe) {
    EXPECT_GE(window_.menuBar()->actions().size(), 7);
    for (const char* line : {"FT", "GA", "LP", "XYZ FULL"}) ASSERT_NE(action(line), nullptr) << line;
    EXPECT_TRUE(action("GA")->isEnabled());
    EXPECT_FALSE(action("FT")->isEnabled());
    load_spectrum();
    EXPECT_TRUE(action("FT")->isEnabled());
    EXPECT_FALSE(action("LP")->isEnabled()) << "planned";
    const auto before = data();
    QTest::keyClicks(&window_, "half a li");
    action("FT")->trigger();
    EXPECT_NE(data(), before);
    EXPECT_EQ(typed_text(), "half a li");
    action("Axis POINTS")->trigger();
    EXPECT_EQ(show.dims[0].axis_unit, unit_points);
}

TEST_F(WindowTest, PaintsTheSameInBothAppearancesAndAtAnySize) {
    const std::pair<const char*, QColor> rows[] = {{"ini set APPEARANCE DARK", QColor(0x14171b)},
                                                   {"ini set APPEARANCE LIGHT", QColor(Qt::white)}};
    load_spectrum();
    for (const auto& [line, ground] : rows) {
        window_.run(line);
        QApplication::processEvents();
        const QImage picture = plot().picture().toImage();
        EXPECT_EQ(picture.pixelColor(2, 2), ground) << line;
        int drawn = 0;
        for (int x = 0; x < picture.width(); ++x)
            for (int y = 0; y < picture.height(); ++y) drawn += picture.pixelColor(x, y) != ground;
        EXPECT_GT(drawn, picture.width()) << line;
    }
    for (const QSize size : {QSize(300, 300), QSize(2000, 400)}) {
        window_.resize(size);
        QApplication::processEvents();
        EXPECT_EQ(plot().picture().size(), plot().size());
    }
}

// However many points share a column, a peak of one of them stands in full height where it belongs.
TEST_F(WindowTest, APeakOfOnePointIsPainted) {
    constexpr size_t points = 300001;
    load_spectrum(points);
    auto vector = show.store.vector(0);
    std::fill(vector.begin(), vector.end(), Complex());
    vector[100000] = {1, 0};
    vector[200000] = {-0.5F, 0};
    window_.refresh_plot();
    QApplication::processEvents();
    const QImage picture = plot().picture().toImage();
    PlotCache cache;
    PlotOptions options = configured_options();
    options.width = plot().width();
    options.height = plot().height();
    const PlotLayout layout = plot_layout(show, options, cache);
    const auto inked = [&](double point, double value) {
        const QColor found = picture.pixelColor(static_cast<int>(layout.x(point)), static_cast<int>(layout.y(value)));
        return found.lightness() < 200;
    };
    EXPECT_TRUE(inked(100000, 0.99) && inked(100000, 0.5) && inked(50000, 0) && inked(250000, 0));
    EXPECT_TRUE(inked(200000, -0.1)) << "down to the axis";
    EXPECT_FALSE(inked(100000, 1.02) || inked(100000 - 1500, 0.5) || inked(100000 + 1500, 0.5));
}

TEST_F(WindowTest, WritesPdfAndPng) {
    load_spectrum();
    const auto size_of = [&](const std::string& name) { return QImage(qt(root_.path(name))).size(); };
    window_.run("metafile a.png 300 200");
    window_.run("metafile b.PNG 300 200 dpi 192");
    window_.run("metafile c.png page dpi 96");
    EXPECT_EQ(size_of("a.png"), QSize(300, 200));
    const QImage image(qt(root_.path("a.png")));
    int drawn = 0;
    for (int x = 0; x < 300; ++x)
        for (int y = 0; y < 200; ++y) drawn += image.pixelColor(x, y) == QColor(light_palette[Ink::real_trace]);
    EXPECT_GT(drawn, 300);
    EXPECT_EQ(size_of("b.PNG"), QSize(600, 400));
    EXPECT_EQ(size_of("c.png"), QSize(1123, 794)) << "A4, lying";
    // One page a picture, of the sizes asked for, in points; lines and letters, no pixels.
    window_.run("metafile a.pdf 400 200");
    window_.run("StartDoc b.pdf");
    window_.run("Print");
    window_.run("ini set PRINT_ORIENTATION PORTRAIT");
    window_.run("Print");
    window_.run("EndDoc");
    const std::string one = test::read_file(root_.path("a.pdf")), two = test::read_file(root_.path("b.pdf"));
    for (const std::string& pdf : {one, two})
        EXPECT_TRUE(pdf.starts_with("%PDF-1.") && pdf.find("/Subtype /Image") == std::string::npos);
    EXPECT_NE(one.find("/Count 1"), std::string::npos);
    EXPECT_NE(one.find("/MediaBox [0 0 300.000000 150.000000]"), std::string::npos) << one.substr(one.find("/MediaBox"), 60);
    EXPECT_NE(two.find("/Count 2"), std::string::npos);
    // Too many dots for memory: refused, and no file.
    window_.run("metafile d.png 16384 16384 dpi 1200");
    EXPECT_FALSE(std::filesystem::exists(root_.path("d.png")));
}

TEST_F(WindowTest, PreviewAndClipboard) {
    load_spectrum();
    window_.run("Print");  // nobody would close the preview
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    bool shown = false;
    QTimer::singleShot(300, &window_, [&] {
        auto* dialog = qobject_cast<QPrintPreviewDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        shown = true;
        dialog->reject();
    });
    show_print_preview(&window_, configured_page());
    EXPECT_TRUE(shown);

    QTest::keyClick(&window_, Qt::Key_C, Qt::ControlModifier);
    const QMimeData* copied = QApplication::clipboard()->mimeData();
    EXPECT_EQ(qvariant_cast<QImage>(copied->imageData()).size(), plot().size());
    EXPECT_TRUE(copied->data("image/svg+xml").startsWith("<?xml"));
}

TEST_F(WindowTest, DroppedFoldersAreImportedAndFilesOpened) {
    const auto drop = [&](const std::string& path) {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(qt(path))});
        QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&window_, &enter);
        QDropEvent event(QPointF(50, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&window_, &event);
    };
    drop(test::examples() + "/strychnine_1h/10");
    EXPECT_TRUE(show.loaded && show.dims[0].nucleus == "1H");
    write_set("a file with blanks.zolt", {16, 1, 1, 1});
    drop(root_.path("a file with blanks.zolt"));
    EXPECT_EQ(show.dims[0].points, 16);
    // Too long for a command line.
    const std::string folder(120, 'd'), deep = folder + "/" + folder + "/b.zolt";
    root_.write(deep, test::read_file(root_.path("a file with blanks.zolt")));
    show = DataSet();
    drop(root_.path(deep));
    EXPECT_EQ(show.dims[0].points, 16);
    // A sub-routine keeps its data, and the path answers no later question.
    load_spectrum();
    type("MH");
    ASSERT_NE(session.sub_routine, nullptr);
    drop(root_.path(deep));
    EXPECT_EQ(show.dims[0].points, 1001);
    EXPECT_TRUE(session.sub_routine != nullptr && front_.answers.queue.empty());
}

TEST_F(WindowTest, ClosingAsksAndLongWorkCanBeCancelled) {
    load_spectrum();
    show.changed = true;
    int closed = 0;
    window_.on_closed = [&] { ++closed; };
    front_.answers.queue = {"cancel"};
    window_.close();
    QApplication::processEvents();
    EXPECT_TRUE(closed == 0 && window_.isVisible());

    for (QPushButton* button : window_.findChildren<QPushButton*>()) QTimer::singleShot(0, button, &QPushButton::click);
    while (front_.progress(0.5)) {
    }
    EXPECT_TRUE(front_.cancelled);

    front_.answers.queue = {"no"};
    window_.close();
    while (closed == 0) QApplication::processEvents();
    EXPECT_FALSE(window_.isVisible());
}

TEST_F(WindowTest, DescribesFilesWithoutImportingThem) {
    EXPECT_EQ(describe_data(test::examples() + "/strychnine_1h/10"), describe_data(test::examples() + "/strychnine_1h/10/fid"));
    const std::string example = describe_data(test::examples() + "/strychnine_1h/10/fid");
    EXPECT_TRUE(example.find("\u00b9H \u00b7 400.13 MHz") != std::string::npos) << example;
    write_set("a.zolt", {16, 4, 1, 1}, [](DataSet& data) { data.dims[0].nucleus = "13C"; });
    EXPECT_TRUE(describe_data(root_.path("a.zolt")).ends_with("\u00b9\u00b3C \u00b7 16 \u00d7 4 points"));
    EXPECT_EQ(describe_data(root_.write("x.bin", "nothing")), "");
    EXPECT_FALSE(show.loaded);
}

}  // namespace
}  // namespace zolt

int main(int count, char** arguments) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&count, arguments);
    QApplication application(count, arguments);
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
