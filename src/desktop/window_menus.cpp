// Menus, toolbar, recent files, panels and the remembered geometry of the window.
#include <QAction>
#include <QApplication>
#include <QDockWidget>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QScreen>
#include <QSettings>
#include <QToolBar>
#include <QToolButton>

#include "app/command_line.h"
#include "app/line_history.h"
#include "app/main_loop.h"
#include "common/file.h"
#include "config/paths.h"
#include "config/settings.h"
#include "desktop/appearance.h"
#include "desktop/dialogs.h"
#include "desktop/help_window.h"
#include "desktop/icons.h"
#include "desktop/main_window.h"
#include "desktop/preferences.h"
#include "desktop/start_page.h"
#include "desktop/text.h"
#include "state/dataset.h"
#include "state/session.h"

namespace zolt {

namespace {

constexpr int most_recent = 10, most_kept_lines = 100;

// Beside ZOLT.INI, but not in it: the user writes that one.
QString window_file() { return qt(writable_root() + "/WINDOW.INI"); }

// What is written at the right of an item: its command, and the shortcut where it has one.
QString right_side(const MenuItem& item, const std::string& line) {
    QString text = item.kind == Item::toggle ? QString() : qt(line);
    if (text.startsWith("ini set ")) text = text.mid(8);
    if (text.startsWith('^')) text.clear();
    if (*item.shortcut != '\0') text += (text.isEmpty() ? "" : "    ") + QString(item.shortcut);
    return text;
}

}  // namespace

QMenu* MainWindow::menu_at(const QString& path) {
    QMenu* menu = nullptr;
    QString walked;
    for (const QString& step : path.split('/')) {
        walked += "/" + step;
        QMenu*& found = menus_[walked];
        if (found == nullptr) {
            found = menu == nullptr ? menuBar()->addMenu(step) : menu->addMenu(step);
        }
        menu = found;
    }
    return menu;
}

void MainWindow::add_item(const MenuItem& item) {
    QMenu* menu = menu_at(QString::fromUtf8(item.menu));
    const QString text = QString::fromUtf8(item.text);
    if (item.kind == Item::separator) {
        menu->addSeparator();
        return;
    }
    if (item.kind == Item::recent) {
        recent_menu_ = menu->addMenu(text);
        return;
    }
    auto* action = new QAction(this);
    const QString right = right_side(item, line_of(item));
    action->setText(right.isEmpty() ? text : text + "\t" + right);
    // Shown by the text beside the command; the action itself answers to it.
    if (*item.shortcut != '\0') action->setShortcut(QKeySequence(QString(item.shortcut)));
    action->setShortcutVisibleInContextMenu(false);
    action->setCheckable(item.kind == Item::toggle);
    connect(action, &QAction::triggered, this, [this, &item] { choose(item); });
    menu->addAction(action);
    if (*item.icon != '\0') {
        QString word(item.icon);
        word[0] = word[0].toUpper();
        action->setIconText(word);
        if (!entries_.empty() && entries_.back().item->menu != item.menu && !tools_->actions().isEmpty()) tools_->addSeparator();
        action->setToolTip(QString(text).remove('&') + "  " + right);
        tools_->addAction(action);
    }
    entries_.push_back({&item, action});
}

void MainWindow::build_menus() {
    tools_ = addToolBar("Toolbar");
    tools_->setObjectName("toolbar");
    tools_->setMovable(false);
    tools_->setIconSize({20, 20});
    tools_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    tools_->setContextMenuPolicy(Qt::PreventContextMenu);
    for (const MenuItem& item : menu_items()) add_item(item);
    connect(output_, &QDockWidget::visibilityChanged, this, [this](bool) { update_items(); });
    icons_dark_ = !dark_appearance();
    update_icons();
    fill_recent();
}

void MainWindow::update_icons() {
    if (icons_dark_ == dark_appearance()) return;
    icons_dark_ = dark_appearance();
    for (const Entry& entry : entries_)
        if (*entry.item->icon != '\0') entry.action->setIcon(icon(entry.item->icon));
    for (const Entry& entry : entries_) entry.action->setIconVisibleInMenu(false);
    // What stands at the end of a toolbar that the window has no room for.
    if (auto* more = tools_->findChild<QToolButton*>("qt_toolbar_ext_button")) more->setIcon(icon("more"));
}

void MainWindow::update_items() {
    for (const Entry& entry : entries_) {
        entry.action->setEnabled(is_available(*entry.item));
        if (entry.item->kind == Item::toggle) entry.action->setChecked(setting_switch(entry.item->line));
    }
}

void MainWindow::choose(const MenuItem& item) {
    update_items();  // a checkable action has turned itself over already
    if (item.kind == Item::panel) return open_panel(item.line);
    std::string line = line_of(item);
    if (item.kind == Item::ask) {
        const auto value = platform_.process_box(item.prompt, item.initial());
        if (!value) return;
        line += " " + *value;
    }
    run(line, true);
}

void MainWindow::open_panel(std::string_view name) {
    if (!idle()) return;
    if (name == "about") show_about(this);
    if (name == "output") output_->setVisible(!output_->isVisible());
    if (name == "preferences")
        for (const std::string& line : edit_preferences(this)) run(line, true);
    if (name != "commands") return;
    if (help_ == nullptr) {
        help_ = new HelpWindow(this);
        help_->on_word = [this](const std::string& word) {
            ResetCommandText();
            AppendCommandText(word + " ");
            update_state();
            activateWindow();
        };
    }
    help_->show();
    help_->raise();
    help_->activateWindow();
    help_->search(qt(typed_text()).section(' ', 0, 0));
}

void MainWindow::fill_recent() {
    start_->set_recent(recent_);
    if (recent_menu_ == nullptr) return;
    recent_menu_->clear();
    recent_menu_->setEnabled(!recent_.isEmpty());
    for (const QString& file : recent_) {
        QAction* action = recent_menu_->addAction(QString(file).replace('&', "&&"));
        connect(action, &QAction::triggered, this, [this, file] { run("GA \"" + utf8(file) + "\"", true); });
    }
}

void MainWindow::note_recent() {
    shown_file_ = zolt::show.file_a;
    if (zolt::show.file_a.empty()) return;
    const QString file = qt(zolt::show.file_a);
    recent_.removeAll(file);
    recent_.prepend(file);
    while (recent_.size() > most_recent) recent_.removeLast();
    fill_recent();
}

void MainWindow::save_window() const {
    if (platform_.batch) return;
    QSettings kept(window_file(), QSettings::IniFormat);
    kept.setValue("geometry", saveGeometry());
    kept.setValue("recent", recent_);
    QStringList lines;
    for (const std::string& line : entered_lines()) lines.append(qt(line));
    kept.setValue("lines", lines.mid(std::max<qsizetype>(0, lines.size() - most_kept_lines)));
}

void MainWindow::restore_window() {
    const QRect screen = QApplication::primaryScreen()->availableGeometry();
    const auto number = [](const char* key) { return static_cast<int>(setting_number(key)); };
    const QSize size(std::min(number("XW_START"), screen.width() * 9 / 10), std::min(number("YW_START"), screen.height() * 9 / 10));
    // Nobody looks at a batch run: its pictures have the configured size, whatever the screen.
    resize(platform_.batch ? QSize(number("XW_START"), number("YW_START")) : size);
    if (settings.values.contains("X0_START") || settings.values.contains("Y0_START"))
        move(number("X0_START"), number("Y0_START"));
    else
        move(screen.center() - QPoint(size.width() / 2, size.height() / 2));
    if (platform_.batch) return;
    const QSettings kept(window_file(), QSettings::IniFormat);
    restoreGeometry(kept.value("geometry").toByteArray());
    for (const QString& file : kept.value("recent").toStringList())
        if (file_facts(utf8(file)).exists) recent_.append(file);
    std::vector<std::string> lines;
    for (const QString& line : kept.value("lines").toStringList()) lines.push_back(utf8(line));
    set_entered_lines(std::move(lines));
    fill_recent();
}

}  // namespace zolt
