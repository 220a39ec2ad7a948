// The two sets of window colours, put into Qt's palette and one small style sheet.
#include "desktop/appearance.h"

#include <QApplication>
#include <QFontDatabase>
#include <QPalette>
#include <QStyleFactory>

#include "config/settings.h"
#include "desktop/text.h"
#include "display/configured_palette.h"
#include "state/session.h"

namespace zolt {

namespace {

const WindowColours light{QColor(0xf5f6f7), QColor(0xffffff), QColor(0xdde1e6),
                          QColor(0x1c232c), QColor(0x5d6774), QColor(0x0b6bcb)};
const WindowColours dark{QColor(0x1c2025), QColor(0x23282f), QColor(0x323a43),
                         QColor(0xe6ebf0), QColor(0x97a2af), QColor(0x58a6ff)};

// As the system had it before the program set colours of its own.
bool system_is_dark() {
    static const bool is_dark = QApplication::palette().color(QPalette::Window).lightness() < 128;
    return is_dark;
}

QString style_sheet(const WindowColours& c) {
    return QString(
               "QToolBar{background:%1;border:0;border-bottom:1px solid %2;spacing:2px;padding:2px 6px}"
               "QToolButton{border:0;border-radius:4px;padding:4px 6px;color:%3}"
               "QToolButton#qt_toolbar_ext_button{padding:0}"
               "QToolButton:hover{background:%2}"
               "QToolButton:pressed{background:%4;color:white}"
               "QMenuBar{background:%1;color:%3}"
               "QStatusBar{background:%1;color:%3}QStatusBar::item{border:0}"
               "QDockWidget{color:%3}"
               "QDialogButtonBox,QMessageBox{dialogbuttonbox-buttons-have-icons:0}"
               "QToolTip{background:%5;color:%3;border:1px solid %2;padding:4px}")
        .arg(c.window.name(), c.line.name(), c.text.name(), c.accent.name(), c.raised.name());
}

}  // namespace

bool dark_appearance() {
    const bool system = system_is_dark();
    const std::string wanted = setting_text("APPEARANCE");
    return wanted == "DARK" || (wanted == "SYSTEM" && system);
}

const WindowColours& window_colours() { return dark_appearance() ? dark : light; }

Palette plot_palette() { return configured_palette(dark_appearance() ? dark_palette : light_palette); }

QColor colour(const Palette& palette, Ink ink) { return QColor(palette[ink]); }

void apply_appearance() {
    static bool shown_dark = false, styled = false;
    if (styled && shown_dark == dark_appearance()) return;
    if (!styled) QApplication::setStyle(QStyleFactory::create("Fusion"));
    styled = true;
    shown_dark = dark_appearance();
    const WindowColours& c = window_colours();
    QPalette palette(c.window);
    palette.setColor(QPalette::Window, c.window);
    palette.setColor(QPalette::WindowText, c.text);
    palette.setColor(QPalette::Base, c.raised);
    palette.setColor(QPalette::AlternateBase, c.window);
    palette.setColor(QPalette::Text, c.text);
    palette.setColor(QPalette::PlaceholderText, c.dimmed);
    palette.setColor(QPalette::Button, c.window);
    palette.setColor(QPalette::ButtonText, c.text);
    palette.setColor(QPalette::ToolTipBase, c.raised);
    palette.setColor(QPalette::ToolTipText, c.text);
    palette.setColor(QPalette::Highlight, c.accent);
    palette.setColor(QPalette::HighlightedText, shown_dark ? QColor(0x0d1117) : Qt::white);
    palette.setColor(QPalette::Link, c.accent);
    palette.setColor(QPalette::Light, shown_dark ? c.line : Qt::white);
    palette.setColor(QPalette::Mid, c.line);
    palette.setColor(QPalette::Dark, shown_dark ? QColor(0x0f1215) : QColor(0xb4bcc6));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, shown_dark ? QColor(0x66717d) : QColor(0x98a1ac));
    QApplication::setPalette(palette);
    qApp->setStyleSheet(style_sheet(c));
}

QFont fixed_font(double points) {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    // The configured face, where one is configured.
    if (settings.values.contains("CMDLINEFONT")) font.setFamily(qt(setting_text("CmdLineFont")));
    if (points > 0) font.setPointSizeF(points);
    return font;
}

}  // namespace zolt
