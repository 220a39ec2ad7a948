// One page a group of keys, one row a key; the type of the key chooses the field.
#include "desktop/preferences.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollArea>
#include <QStackedWidget>
#include <functional>

#include "common/text.h"
#include "config/settings.h"
#include "desktop/appearance.h"
#include "desktop/text.h"

namespace zolt {

namespace {

// A key with its field: what stands in it now.
struct Field {
    const SettingKey* key;
    std::function<QString()> value;
};

QWidget* switch_field(const SettingKey& key, Field& field) {
    auto* box = new QCheckBox;
    box->setChecked(setting_text(key) == "TRUE");
    field.value = [box] { return box->isChecked() ? QString("TRUE") : QString("FALSE"); };
    return box;
}

QWidget* choice_field(const SettingKey& key, Field& field) {
    auto* box = new QComboBox;
    box->addItems(QString(key.words).split(' '));
    box->setCurrentText(qt(setting_text(key)));
    field.value = [box] { return box->currentText(); };
    return box;
}

QWidget* colour_field(const SettingKey& key, Field& field) {
    auto* button = new QPushButton;
    const auto show_colour = [button](const QString& name) {
        button->setProperty("colour", name);
        button->setText(name);
        QPixmap patch(16, 16);
        patch.fill(QColor(name));
        button->setIcon(patch);
    };
    show_colour(qt(setting_text(key)));
    button->setFont(fixed_font());
    QObject::connect(button, &QPushButton::clicked, button, [button, show_colour] {
        const QColor chosen = QColorDialog::getColor(QColor(button->property("colour").toString()), button->window());
        if (chosen.isValid()) show_colour(chosen.name());
    });
    field.value = [button] { return button->property("colour").toString(); };
    return button;
}

QWidget* path_field(const SettingKey& key, Field& field, QLineEdit* edit) {
    auto* row = new QWidget;
    auto* line = new QHBoxLayout(row);
    line->setContentsMargins(0, 0, 0, 0);
    auto* button = new QPushButton("\u2026");
    button->setFixedWidth(32);
    line->addWidget(edit);
    line->addWidget(button);
    const bool folder = std::string_view(key.name).find("DIR") != std::string_view::npos;
    QObject::connect(button, &QPushButton::clicked, row, [edit, folder, row] {
        const QString path = folder ? QFileDialog::getExistingDirectory(row->window(), "Choose Folder", edit->text())
                                    : QFileDialog::getOpenFileName(row->window(), "Choose File", edit->text());
        if (!path.isEmpty()) edit->setText(path);
    });
    field.value = [edit] { return edit->text(); };
    return row;
}

// A text or a number; a text that the key does not take is marked.
QWidget* text_field(const SettingKey& key, Field& field) {
    auto* edit = new QLineEdit(qt(setting_text(key)));
    field.value = [edit] { return edit->text(); };
    if (key.type == SettingType::path) return path_field(key, field, edit);
    if (key.type == SettingType::text) return edit;
    QObject::connect(edit, &QLineEdit::textChanged, edit, [edit, &key](const QString& text) {
        QPalette colours = edit->palette();
        const bool fits = canonical_value(key, utf8(text)).has_value();
        colours.setColor(QPalette::Text, fits ? window_colours().text : colour(plot_palette(), Ink::cursor));
        edit->setPalette(colours);
    });
    return edit;
}

QWidget* field_of(const SettingKey& key, Field& field) {
    switch (key.type) {
        case SettingType::toggle:
            return switch_field(key, field);
        case SettingType::choice:
            return choice_field(key, field);
        case SettingType::colour:
            return colour_field(key, field);
        default:
            return text_field(key, field);
    }
}

QGridLayout* add_page(QStackedWidget& pages, QListWidget& groups, std::string_view title) {
    groups.addItem(qt(title.substr(0, title.find(':'))));
    auto* content = new QWidget;
    auto* grid = new QGridLayout(content);
    grid->setContentsMargins(16, 8, 16, 8);
    grid->setHorizontalSpacing(16);
    grid->setVerticalSpacing(6);
    grid->setColumnMinimumWidth(0, 230);
    grid->setColumnStretch(1, 1);
    auto* scroll = new QScrollArea;
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setWidget(content);
    pages.addWidget(scroll);
    return grid;
}

// What a switch does when it is on needs no "TRUE:" beside a box that is ticked.
QString explanation(const SettingKey& key) {
    QString help = key.help;
    if (key.type != SettingType::toggle) return help;
    help.remove(QRegularExpression("^TRUE: "));
    return help.replace("FALSE:", "else:");
}

void add_row(QGridLayout& grid, const SettingKey& key, QWidget* editor) {
    const int row = grid.rowCount();
    auto* name = new QLabel(key.name);
    name->setFont(fixed_font());
    auto* help = new QLabel(explanation(key));
    help->setWordWrap(true);
    help->setTextFormat(Qt::PlainText);
    help->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Minimum);
    QPalette dimmed = help->palette();
    dimmed.setColor(QPalette::WindowText, window_colours().dimmed);
    help->setPalette(dimmed);
    grid.addWidget(name, row, 0, Qt::AlignVCenter);
    // Small fields stand at the left; the others fill the column.
    const bool small = key.type == SettingType::toggle || key.type == SettingType::whole || key.type == SettingType::number;
    if (small) editor->setFixedWidth(std::max(editor->sizeHint().width(), key.type == SettingType::toggle ? 0 : 160));
    grid.addWidget(editor, row, 1, small ? Qt::AlignLeft : Qt::Alignment());
    grid.addWidget(help, row + 1, 0, 1, 2);
    grid.setRowMinimumHeight(row + 2, 8);
}

}  // namespace

std::vector<std::string> edit_preferences(QWidget* parent) {
    QDialog dialog(parent);
    dialog.setWindowTitle("Preferences");
    dialog.resize(860, 620);
    auto* groups = new QListWidget;
    groups->setFrameShape(QFrame::NoFrame);
    groups->setFixedWidth(210);
    groups->setSpacing(2);
    auto* pages = new QStackedWidget;
    std::vector<Field> fields;
    QGridLayout* page = nullptr;
    for (const SettingKey& key : setting_keys()) {
        if (const std::string_view title = group_title(key); !title.empty() || page == nullptr) {
            if (page != nullptr) page->setRowStretch(page->rowCount(), 1);
            page = add_page(*pages, *groups, title);
        }
        fields.push_back({&key, {}});
        add_row(*page, key, field_of(key, fields.back()));
    }
    page->setRowStretch(page->rowCount(), 1);
    QObject::connect(groups, &QListWidget::currentRowChanged, pages, &QStackedWidget::setCurrentIndex);
    groups->setCurrentRow(0);
    auto* buttons = new QDialogButtonBox;
    buttons->addButton("&Save", QDialogButtonBox::AcceptRole);
    buttons->addButton(QDialogButtonBox::Cancel);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    auto* grid = new QGridLayout(&dialog);
    grid->setContentsMargins(12, 12, 12, 12);
    grid->addWidget(groups, 0, 0);
    grid->addWidget(pages, 0, 1);
    grid->addWidget(buttons, 1, 0, 1, 2);
    if (dialog.exec() != QDialog::Accepted) return {};
    std::vector<std::string> lines;
    for (const Field& field : fields) {
        const std::string value = utf8(field.value());
        if (value != setting_text(*field.key)) lines.push_back(format_text("ini set %s %s", field.key->name, value.c_str()));
    }
    if (!lines.empty()) lines.emplace_back("ini save");
    return lines;
}

}  // namespace zolt
