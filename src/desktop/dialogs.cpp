// The program's texts as they stand, with verbs on the buttons where the question is one of saving.
#include "desktop/dialogs.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGuiApplication>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QVBoxLayout>

#include "app/startup.h"
#include "common/numbers.h"
#include "common/text.h"
#include "desktop/appearance.h"
#include "desktop/icons.h"
#include "desktop/text.h"

namespace zolt {

namespace {

QMessageBox::Icon sign_of(Icon icon) {
    switch (icon) {
        case Icon::information:
            return QMessageBox::Information;
        case Icon::exclamation:
            return QMessageBox::Warning;
        case Icon::stop:
            return QMessageBox::Critical;
        case Icon::none:
            break;
    }
    return QMessageBox::NoIcon;
}

// What Yes and No mean; the first row that the text begins with.
struct Verbs {
    std::string_view start;
    const char *yes, *no;
};
constexpr Verbs verbs[] = {{"Save current changes", "&Save", "&Discard"},
                           {"Leave without saving", "&Leave", "&Stay"},
                           {"Recover the data set", "&Recover", "&Discard"},
                           {"Target file name already exists", "&Replace", "&Keep"},
                           {"", "&Yes", "&No"}};

void add_table_line(QGridLayout& table, const QString& line) {
    const int row = table.rowCount(), tab = static_cast<int>(line.indexOf('\t'));
    auto* name = new QLabel(tab < 0 ? line : line.left(tab));
    table.addWidget(name, row, 0, 1, tab < 0 ? 2 : 1, Qt::AlignTop);
    if (tab < 0) {
        QFont font = name->font();
        font.setBold(true);
        name->setFont(font);
        name->setContentsMargins(0, row > 1 ? 10 : 0, 0, 2);
        return;
    }
    QPalette dimmed = name->palette();
    dimmed.setColor(QPalette::WindowText, window_colours().dimmed);
    name->setPalette(dimmed);
    auto* value = new QLabel(line.mid(tab + 1));
    value->setTextFormat(Qt::PlainText);
    value->setTextInteractionFlags(Qt::TextSelectableByMouse);
    value->setWordWrap(true);
    table.addWidget(value, row, 1, Qt::AlignTop);
}

// Lines with tabs are a table of names and values.
void show_table(QWidget* parent, const QString& caption, const QString& text) {
    QDialog dialog(parent);
    dialog.setWindowTitle(caption);
    auto* content = new QWidget;
    auto* table = new QGridLayout(content);
    table->setHorizontalSpacing(24);
    table->setVerticalSpacing(4);
    table->setContentsMargins(16, 16, 16, 16);
    table->setColumnStretch(1, 1);
    for (const QString& line : text.split('\n')) add_table_line(*table, line);
    table->setRowStretch(table->rowCount(), 1);
    auto* scroll = new QScrollArea;
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setWidget(content);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    auto* column = new QVBoxLayout(&dialog);
    column->setContentsMargins(0, 0, 12, 12);
    column->addWidget(scroll);
    column->addWidget(buttons);
    const int tallest = QGuiApplication::primaryScreen()->availableSize().height() * 8 / 10;
    dialog.resize(560, std::min(content->sizeHint().height() + 64, tallest));
    dialog.exec();
}

}  // namespace

void show_message(QWidget* parent, std::string_view caption, Icon icon, std::string_view text) {
    if (text.find('\t') != std::string_view::npos) return show_table(parent, qt(caption), qt(text));
    QMessageBox box(sign_of(icon), qt(caption), qt(trimmed(text)), QMessageBox::Ok, parent);
    box.setTextFormat(Qt::PlainText);
    box.setTextInteractionFlags(Qt::TextSelectableByMouse);
    box.exec();
}

Answer ask_question(QWidget* parent, std::string_view caption, std::string_view text, Buttons buttons) {
    const Verbs* row = verbs;
    while (!trimmed(text).starts_with(row->start)) ++row;
    QMessageBox box(QMessageBox::Question, qt(caption), qt(trimmed(text)), QMessageBox::NoButton, parent);
    box.setTextFormat(Qt::PlainText);
    QPushButton* yes = box.addButton(row->yes, QMessageBox::YesRole);
    QPushButton* no = box.addButton(row->no, QMessageBox::NoRole);
    QPushButton* cancel = buttons == Buttons::yes_no_cancel ? box.addButton(QMessageBox::Cancel) : nullptr;
    box.setDefaultButton(yes);
    box.setEscapeButton(cancel != nullptr ? cancel : no);
    box.exec();
    return box.clickedButton() == yes ? Answer::yes : box.clickedButton() == no ? Answer::no : Answer::cancel;
}

std::optional<std::string> ask_text(QWidget* parent, std::string_view title, std::string_view prompt, std::string_view initial) {
    QInputDialog dialog(parent);
    dialog.setWindowTitle(qt(title));
    dialog.setLabelText(qt(prompt));
    dialog.setTextValue(qt(initial));
    dialog.resize(420, dialog.sizeHint().height());
    if (dialog.exec() != QDialog::Accepted) return std::nullopt;
    return utf8(dialog.textValue());
}

std::optional<std::string> ask_value(QWidget* parent, std::string_view prompt, std::string_view initial) {
    QInputDialog dialog(parent);
    dialog.setWindowTitle("ProcessBox");
    dialog.setLabelText(qt(prompt));
    dialog.setTextValue(qt(initial));
    auto* edit = dialog.findChild<QLineEdit*>();
    auto* buttons = dialog.findChild<QDialogButtonBox*>();
    if (edit != nullptr && buttons != nullptr) {
        edit->setFont(fixed_font());
        edit->selectAll();
        QObject::connect(edit, &QLineEdit::textChanged, &dialog, [buttons](const QString& text) {
            buttons->button(QDialogButtonBox::Ok)->setEnabled(leading_number(utf8(text)).has_value());
        });
    }
    if (dialog.exec() != QDialog::Accepted) return std::nullopt;
    return utf8(dialog.textValue().trimmed());
}

void show_about(QWidget* parent) {
    QMessageBox box(QMessageBox::NoIcon, "About ZOLT", QString(), QMessageBox::Close, parent);
    box.setIconPixmap(program_icon().pixmap(64, 64));
    box.setText(qt(format_text("ZOLT %s", version_text())));
    box.setInformativeText(
        "Processing and analysis of nuclear magnetic resonance data.\n\n"
        "Free software under the GNU General Public License, version 3 or later. It comes without any warranty.\n\n"
        "Built with Qt " QT_VERSION_STR " and FFTW.");
    box.exec();
}

}  // namespace zolt
