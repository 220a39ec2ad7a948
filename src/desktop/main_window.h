// The one window: menus, toolbar, plot, reply line, command line, status bar; and the pump of the core's main loop.
#pragma once

#include <QHash>
#include <QMainWindow>
#include <QTimer>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "app/menus.h"
#include "desktop/platform_qt.h"

class QLabel;
class QMenu;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class QStackedWidget;
class QToolBar;

namespace zolt {

class CommandBar;
class HelpWindow;
class PlotView;
class StartPage;
struct MouseEvent;

class MainWindow : public QMainWindow {
public:
    explicit MainWindow(QtPlatform& platform);
    ~MainWindow() override;

    /// Runs the core's main loop as long as it has anything to do; the window has its turns in between.
    void pump();
    /// Nothing is left to do, and no command is at work.
    bool idle() const;
    /// Called when the pump has run dry.
    std::function<void()> on_idle;
    /// Called when the program ends by EX, the menu or the window's own button.
    std::function<void()> on_closed;

    /// Carries out a line of menu, toolbar, mouse or drop; the rest of a longer list follows when the first is done.
    void run(const std::string& line, bool menu = false);

    /// Gives the mouse to the active sub-routine; false when it has no use for it.
    bool give_mouse(const MouseEvent& event);

    void set_pane(int pane, std::string_view text);
    void set_reply(std::string_view text);
    void refresh_plot();
    void line_done();
    void show_progress(double fraction);
    bool copy_plot();
    void close_at_last();
    /// Size and place as at the end of the last run.
    void restore_window();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void build_centre();
    void build_menus();
    void build_status_bar();
    void build_output();
    QMenu* menu_at(const QString& path);
    void add_item(const MenuItem& item);
    void choose(const MenuItem& item);
    void open_panel(std::string_view name);
    void update_items();
    void update_state();
    void update_icons();
    void fill_recent();
    void note_recent();
    void save_window() const;
    void press(int key);
    void open_paths(const std::vector<std::string>& paths);

    struct Entry {
        const MenuItem* item;
        QAction* action;
    };

    QtPlatform& platform_;
    bool busy_ = false, closed_ = false;
    QTimer again_;
    std::vector<Entry> entries_;
    QHash<QString, QMenu*> menus_;  ///< by their paths
    QStringList recent_;
    std::string shown_file_;
    bool icons_dark_ = false;

    QStackedWidget* centre_ = nullptr;
    StartPage* start_ = nullptr;
    PlotView* plot_ = nullptr;
    CommandBar* bar_ = nullptr;
    QToolBar* tools_ = nullptr;
    QMenu* recent_menu_ = nullptr;
    QDockWidget* output_ = nullptr;
    QPlainTextEdit* output_text_ = nullptr;
    HelpWindow* help_ = nullptr;
    QLabel *status_ = nullptr, *readout_ = nullptr, *level_ = nullptr, *slice_ = nullptr, *process_ = nullptr;
    QProgressBar* progress_ = nullptr;
    QPushButton* cancel_ = nullptr;
};

}  // namespace zolt
