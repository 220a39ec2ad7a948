// Keys, pump and panes of the window.
#include "desktop/main_window.h"

#include <QApplication>
#include <QClipboard>
#include <QDockWidget>
#include <QDragEnterEvent>
#include <QFontDatabase>
#include <QKeyEvent>
#include <QLabel>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QStackedWidget>
#include <QStatusBar>
#include <QToolBar>
#include <QVBoxLayout>

#include "app/command_line.h"
#include "app/info_command.h"
#include "app/keystrokes.h"
#include "app/link_player.h"
#include "app/main_loop.h"
#include "common/file.h"
#include "common/keys.h"
#include "common/text.h"
#include "config/settings.h"
#include "datafile/sections.h"
#include "desktop/appearance.h"
#include "desktop/command_bar.h"
#include "desktop/icons.h"
#include "desktop/plot_view.h"
#include "desktop/start_page.h"
#include "desktop/text.h"
#include "display/configured_palette.h"
#include "display/plot_1d.h"
#include "display/svg.h"
#include "state/dataset.h"
#include "state/session.h"

namespace zolt {

namespace {

// Keys of the keyboard that are no characters.
constexpr struct {
    int key;
    Qt::KeyboardModifiers::Int modifier;
    int code;
} key_codes[] = {
    {Qt::Key_Left, Qt::ControlModifier, key_pan_left},
    {Qt::Key_Right, Qt::ControlModifier, key_pan_right},
    {Qt::Key_Left, 0, key_left},
    {Qt::Key_Right, 0, key_right},
    {Qt::Key_Up, 0, key_up},
    {Qt::Key_Down, 0, key_down},
    {Qt::Key_Home, 0, key_home},
    {Qt::Key_End, 0, key_end},
    {Qt::Key_PageUp, 0, key_page_up},
    {Qt::Key_PageDown, 0, key_page_down},
    {Qt::Key_Delete, 0, key_forward_delete},
    {Qt::Key_Backspace, 0, key_backspace},
    {Qt::Key_Tab, 0, key_complete},
    {Qt::Key_Return, 0, key_enter},
    {Qt::Key_Enter, 0, key_enter},
    {Qt::Key_Escape, 0, key_escape},
};

QLabel* pane(QStatusBar& bar, const QString& widest, const QString& name) {
    auto* label = new QLabel;
    label->setMinimumWidth(label->fontMetrics().horizontalAdvance(widest) + 16);
    label->setAccessibleName(name);
    label->setToolTip(name);
    bar.addPermanentWidget(label);
    return label;
}

}  // namespace

MainWindow::MainWindow(QtPlatform& platform) : platform_(platform) {
    platform.window = this;
    setWindowTitle("ZOLT");
    setAcceptDrops(true);
    again_.setSingleShot(true);
    connect(&again_, &QTimer::timeout, this, [this] { pump(); });
    build_centre();
    build_status_bar();
    build_output();
    build_menus();
    update_state();
}

MainWindow::~MainWindow() {
    output_->disconnect(this);  // it is hidden when there is no window any more to note that
    platform_.window = nullptr;
}

void MainWindow::build_centre() {
    centre_ = new QStackedWidget;
    start_ = new StartPage(centre_);
    plot_ = new PlotView(centre_);
    centre_->addWidget(start_);
    centre_->addWidget(plot_);
    bar_ = new CommandBar(this);
    auto* whole = new QWidget;
    auto* column = new QVBoxLayout(whole);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(centre_, 1);
    column->addWidget(bar_);
    setCentralWidget(whole);
    start_->on_line = [this](const std::string& line) { run(line, true); };
    plot_->on_line = [this](const std::string& line) { run(line); };
    plot_->on_mouse = [this](const MouseEvent& event) { return give_mouse(event); };
    plot_->on_readout = [this](const std::string& text) { readout_->setText(qt(text)); };
    plot_->is_busy = [this] { return busy_; };
}

void MainWindow::build_status_bar() {
    statusBar()->setSizeGripEnabled(false);
    status_ = new QLabel("Ready");
    status_->setContentsMargins(8, 0, 0, 0);
    status_->setTextFormat(Qt::PlainText);
    statusBar()->addWidget(status_, 1);
    progress_ = new QProgressBar;
    progress_->setRange(0, 1000);
    progress_->setFixedWidth(180);
    progress_->setTextVisible(false);
    progress_->hide();
    cancel_ = new QPushButton("Cancel");
    cancel_->setFocusPolicy(Qt::NoFocus);
    cancel_->hide();
    connect(cancel_, &QPushButton::clicked, this, [this] { platform_.cancelled = true; });
    statusBar()->addPermanentWidget(progress_);
    statusBar()->addPermanentWidget(cancel_);
    readout_ = pane(*statusBar(), QString(), "Cursor: point, frequency, shift, intensity");
    readout_->setFont(fixed_font());
    readout_->setMinimumWidth(readout_->fontMetrics().horizontalAdvance("000000.0 pt  -00000.00 Hz  -000.0000 ppm  -0.000e+00"));
    level_ = pane(*statusBar(), "PairWise Complex Arrayed", "Arrayed level");
    slice_ = pane(*statusBar(), "Slice 0000/0000", "Slice of File A");
    process_ = pane(*statusBar(), "2D_HYPERCOMPLEX", "Process type");
}

void MainWindow::build_output() {
    output_ = new QDockWidget("Output", this);
    output_->setObjectName("output");
    output_text_ = new QPlainTextEdit;
    output_text_->setReadOnly(true);
    output_text_->setFont(fixed_font());
    output_text_->setFrameShape(QFrame::NoFrame);
    output_text_->setLineWrapMode(QPlainTextEdit::NoWrap);
    output_text_->setFocusPolicy(Qt::ClickFocus);
    output_text_->setMinimumWidth(320);
    output_->setWidget(output_text_);
    addDockWidget(Qt::RightDockWidgetArea, output_);
    output_->hide();
}

bool MainWindow::idle() const { return !busy_ && !session.link_running && !session.macro_running; }

void MainWindow::pump() {
    if (busy_ || closed_) return;
    busy_ = true;
    platform_.cancelled = platform_.interrupted = false;
    platform_.turn.start();
    const bool open = run_main_loop();
    busy_ = false;
    progress_->hide();
    cancel_->hide();
    update_state();
    if (!open) return;
    if (!idle())
        again_.start(0);
    else if (on_idle)
        on_idle();
}

void MainWindow::run(const std::string& line, bool menu) {
    if (busy_ || closed_ || line.empty()) return;
    if (menu && playing_back()) return platform_.beep();
    busy_ = true;
    platform_.cancelled = false;
    platform_.turn.start();
    if (menu)
        run_menu_line(line);
    else
        run_line(line, LineSource::menu);
    busy_ = false;
    pump();  // what the line has posted
}

bool MainWindow::give_mouse(const MouseEvent& event) {
    if (busy_ || closed_ || session.sub_routine == nullptr) return false;
    busy_ = true;
    platform_.cancelled = false;
    platform_.turn.start();
    const bool taken = handle_mouse(event);
    busy_ = false;
    // Each step of a drag only moves the picture: the rest of the window follows at its end.
    if (event.kind != MouseEvent::Kind::drag) pump();
    return taken;
}

void MainWindow::press(int key) {
    post_character(key, LineSource::user);
    if (busy_ && key == key_escape) platform_.cancelled = true;
    pump();
}

bool MainWindow::focusNextPrevChild(bool /*next*/) { return false; }  // the Tab key completes commands

void MainWindow::keyPressEvent(QKeyEvent* event) {
    const Qt::KeyboardModifiers modifiers = event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    const int key = event->key();
    const bool control = modifiers == Qt::ControlModifier;
    if (key == Qt::Key_Escape && idle() && typed_text().empty() && session.sub_routine == nullptr && plot_->unpin()) return;
    if (control && key >= Qt::Key_F1 && key < Qt::Key_F1 + 12) return press(key_control_f1 + key - Qt::Key_F1);
    if (control && key == Qt::Key_V) {
        const std::string text = utf8(QApplication::clipboard()->text().section('\n', 0, 0).trimmed());
        for (const char c : text) post_character(static_cast<unsigned char>(c), LineSource::user);
        return pump();
    }
    for (const auto& row : key_codes)
        if (row.key == key && modifiers.toInt() == row.modifier) return press(row.code);
    if (control && key >= Qt::Key_A && key <= Qt::Key_Z) return press(key - Qt::Key_A + 1);
    const std::string text = utf8(event->text());
    if ((modifiers != 0 && !modifiers.testFlag(Qt::AltModifier)) || text.empty() || static_cast<unsigned char>(text[0]) < 32)
        return QMainWindow::keyPressEvent(event);
    for (const char c : text) post_character(static_cast<unsigned char>(c), LineSource::user);
    pump();
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (closed_) return event->accept();
    event->ignore();
    if (busy_) return platform_.beep();
    post_close();
    pump();
}

void MainWindow::close_at_last() {
    closed_ = true;
    save_window();
    // The loop that has called this still stands on the stack.
    QTimer::singleShot(0, this, [this] {
        close();
        if (on_closed) on_closed();
    });
}

void MainWindow::set_pane(int pane, std::string_view text) {
    if (pane == 0) status_->setText(qt(one_line(std::string(text))));
    if (pane == 1) level_->setText(qt(text));
}

void MainWindow::set_reply(std::string_view text) {
    bar_->set_reply(qt(text));
    if (text.find('\n') == std::string_view::npos) return;
    output_text_->setPlainText(qt(text));
    output_->show();
    resizeDocks({output_}, {width() * 2 / 5}, Qt::Horizontal);
}

void MainWindow::refresh_plot() { plot_->refresh(); }

void MainWindow::line_done() {
    if (zolt::show.file_a != shown_file_) note_recent();
    progress_->hide();
    cancel_->hide();
    apply_appearance();
    update_icons();
    update_state();
}

void MainWindow::show_progress(double fraction) {
    progress_->setValue(static_cast<int>(fraction * 1000));
    progress_->show();
    cancel_->show();
}

bool MainWindow::copy_plot() {
    if (!zolt::show.loaded) return false;
    // As it is shown, and for those who take drawings, as one.
    auto* copied = new QMimeData;
    copied->setImageData(plot_->picture().toImage());
    PlotOptions options = configured_options();
    options.width = plot_->width();
    options.height = plot_->height();
    options.columns_per_pixel = 2;
    copied->setData("image/svg+xml",
                    QByteArray::fromStdString(svg_text(plot_1d(zolt::show, options), configured_palette(light_palette))));
    QApplication::clipboard()->setMimeData(copied);
    set_reply("  - The plot is on the clipboard.");
    return true;
}

void MainWindow::update_state() {
    centre_->setCurrentWidget(zolt::show.loaded ? static_cast<QWidget*>(plot_) : start_);
    bar_->refresh();
    plot_->follow_routine();
    level_->setText(zolt::show.loaded ? level_name(zolt::show) : QString());
    const int slices = zolt::show.dims[1].points;
    slice_->setText(slices > 1 ? QString("Slice %1/%2").arg(zolt::show.slice + 1).arg(slices) : QString());
    process_->setText(zolt::show.loaded ? qt(zolt::show.process_type) : QString());
    const std::string name = zolt::show.loaded ? (zolt::show.file_a.empty() ? "(untitled)" : name_of(zolt::show.file_a)) : "";
    setWindowTitle(name.empty() ? QString("ZOLT") : qt(name) + (is_unsaved(zolt::show) ? "* \u2013 ZOLT" : " \u2013 ZOLT"));
    const bool tools = setting_switch("TOOLBAR");
    if (tools_ != nullptr && tools_->isVisibleTo(this) != tools) tools_->setVisible(tools);
    update_items();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls() && idle()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
    std::vector<std::string> paths;
    for (const QUrl& url : event->mimeData()->urls())
        if (url.isLocalFile()) paths.push_back(utf8(url.toLocalFile()));
    event->acceptProposedAction();
    open_paths(paths);
}

// The first is File A, a second one File B. A path too long for a line is the answer to the command's own question.
void MainWindow::open_paths(const std::vector<std::string>& paths) {
    constexpr size_t longest = 240;
    if (paths.empty()) return;
    const std::string word = file_facts(paths[0]).folder ? "IM" : "GA";
    if (paths[0].size() > longest || paths[0].find('"') != std::string::npos) {
        auto& answers = platform_.answers.queue;
        const size_t before = answers.size();
        answers.push_front(paths[0]);
        run(word, true);
        if (answers.size() > before) answers.pop_front();  // refused before it asked
    } else {
        run(word + " \"" + paths[0] + "\"", true);
    }
    if (paths.size() > 1 && paths[1].size() <= longest && zolt::show.loaded) run("GB \"" + paths[1] + "\"", true);
}

}  // namespace zolt
