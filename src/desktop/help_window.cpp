// One row a command; aliases of one command share a row.
#include "desktop/help_window.h"

#include <QCheckBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <map>

#include "app/commands.h"
#include "desktop/appearance.h"
#include "desktop/text.h"

namespace zolt {

namespace {

QTreeWidgetItem* row_of(const Command& command) {
    auto* row = new QTreeWidgetItem({command.keyword, command.handler != nullptr ? command.usage : "", command.summary});
    row->setFont(0, fixed_font());
    row->setFont(1, fixed_font());
    row->setToolTip(1, command.usage);
    if (command.handler != nullptr) return row;
    if (row->text(2) == "planned") row->setText(2, "planned");
    for (int column = 0; column < 3; ++column) row->setForeground(column, window_colours().dimmed);
    return row;
}

}  // namespace

HelpWindow::HelpWindow(QWidget* parent) : QDialog(parent), search_(new QLineEdit), rows_(new QTreeWidget) {
    setWindowTitle("Commands");
    resize(900, 640);
    search_->setPlaceholderText("Search commands, for example: phase, export, zoom");
    search_->setClearButtonEnabled(true);
    rows_->setHeaderLabels({"Command", "Usage", "What it does"});
    rows_->setRootIsDecorated(false);
    rows_->setAlternatingRowColors(true);
    rows_->setUniformRowHeights(true);
    rows_->setFrameShape(QFrame::NoFrame);
    // Commands that work first, each list in alphabetical order; aliases in the row of their command.
    std::map<std::string, std::pair<const Command*, QString>> working;
    std::vector<const Command*> planned;
    for (const auto table : {command_table(), fallback_table()})
        for (const Command& command : table) {
            if (command.shadowed) continue;
            if (command.handler == nullptr) {
                if (std::string_view(command.summary) != "planned") planned.push_back(&command);
                continue;
            }
            auto& entry = working[std::string(command.usage) + command.summary];
            if (entry.first == nullptr) entry.first = &command;
            entry.second += (entry.second.isEmpty() ? "" : ", ") + QString(command.keyword);
        }
    for (const auto& [key, entry] : working) {
        QTreeWidgetItem* row = row_of(*entry.first);
        row->setText(0, entry.second);
        row->setData(0, Qt::UserRole, entry.second.section(", ", -1));
        rows_->addTopLevelItem(row);
    }
    for (const Command* command : planned) {
        QTreeWidgetItem* row = row_of(*command);
        row->setText(2, row->text(2) + " (planned)");
        rows_->addTopLevelItem(row);
    }
    rows_->header()->resizeSection(0, 200);
    rows_->header()->resizeSection(1, 340);
    auto* note =
        new QLabel("A double click puts the word into the command line. Words are typed in any case; NAME ? shows the usage.");
    QPalette dimmed = note->palette();
    dimmed.setColor(QPalette::WindowText, window_colours().dimmed);
    note->setPalette(dimmed);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(12, 12, 12, 12);
    column->setSpacing(8);
    column->addWidget(search_);
    column->addWidget(rows_);
    column->addWidget(note);
    connect(search_, &QLineEdit::textChanged, this, [this](const QString& text) { filter(text); });
    connect(rows_, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem* row) {
        const QString word = row->data(0, Qt::UserRole).toString();
        if (on_word && !word.isEmpty()) on_word(utf8(word));
    });
}

void HelpWindow::search(const QString& text) {
    search_->setText(text);
    search_->setFocus();
    search_->selectAll();
}

void HelpWindow::filter(const QString& text) {
    const QStringList words = text.split(' ', Qt::SkipEmptyParts);
    for (int i = 0; i < rows_->topLevelItemCount(); ++i) {
        QTreeWidgetItem* row = rows_->topLevelItem(i);
        const QString all = row->text(0) + ' ' + row->text(1) + ' ' + row->text(2);
        bool fits = true;
        for (const QString& word : words) fits = fits && all.contains(word, Qt::CaseInsensitive);
        row->setHidden(!fits);
    }
}

}  // namespace zolt
