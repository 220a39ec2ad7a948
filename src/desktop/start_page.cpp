// A quiet page: titles in the accent colour, commands in the fixed font.
#include "desktop/start_page.h"

#include <QCoreApplication>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

#include "common/file.h"
#include "common/text.h"
#include "config/paths.h"
#include "desktop/appearance.h"
#include "desktop/text.h"

namespace zolt {

namespace {

// A title that is a link, and a dimmed line below it.
class Way : public QLabel {
public:
    Way(const QString& title, const QString& about, std::function<void()> act) {
        setTextFormat(Qt::RichText);
        setText(QString("<a href='x' style='text-decoration:none'><span style='font-size:15px'>%1</span></a><br>"
                        "<span style='color:%2'>%3</span>")
                    .arg(title, window_colours().dimmed.name(), about));
        setFocusPolicy(Qt::NoFocus);
        setTextInteractionFlags(Qt::LinksAccessibleByMouse);
        connect(this, &QLabel::linkActivated, this, [act = std::move(act)] { act(); });
    }
};

QString command_text(const QString& line) { return "<code>" + line.toHtmlEscaped() + "</code>"; }

}  // namespace

std::string example_folder() {
    const std::string program = utf8(QCoreApplication::applicationDirPath());
    for (const std::string& base : {root_path(), program, program + "/..", program + "/../..", program + "/../share/zolt"}) {
        const std::string folder = absolute_path(base + "/examples/strychnine_1h/10");
        if (file_facts(folder).folder) return folder;
    }
    return {};
}

StartPage::StartPage(QWidget* parent) : QWidget(parent), ways_(new QVBoxLayout), recent_(new QVBoxLayout) {
    auto* title = new QLabel("ZOLT");
    QFont large = title->font();
    large.setPixelSize(28);
    title->setFont(large);
    ways_->setSpacing(16);
    recent_->setSpacing(8);
    add_way("Open a data file", command_text("GA") + " or " + command_text("GA name") + ", Ctrl+O", "GA");
    add_way("Import from an instrument", command_text("IM folder") + ", or drop a file or folder here", "IM");
    if (const std::string example = example_folder(); !example.empty())
        add_way("Try the example",
                "Strychnine, \u00b9H at 400 MHz: " + command_text("EM") + " " + command_text("FT") + " " + command_text("PC") +
                    " make it a spectrum",
                format_text("IM \"%s\"", example.c_str()));
    auto* block = new QVBoxLayout;
    block->addStretch(2);
    block->addWidget(title);
    block->addSpacing(16);
    block->addLayout(ways_);
    block->addSpacing(24);
    block->addLayout(recent_);
    block->addStretch(3);
    auto* row = new QHBoxLayout(this);
    row->addStretch();
    row->addLayout(block);
    row->addStretch();
}

void StartPage::add_way(const QString& title, const QString& about, const std::string& line) {
    ways_->addWidget(new Way(title, about, [this, line] {
        if (on_line) on_line(line);
    }));
}

void StartPage::set_recent(const QStringList& files) {
    constexpr int most = 5;
    while (QLayoutItem* item = recent_->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    for (const QString& file : files.mid(0, most)) {
        const std::string path = utf8(file);
        recent_->addWidget(new Way(qt(name_of(path)).toHtmlEscaped(), qt(folder_of(path)).toHtmlEscaped(), [this, path] {
            if (on_line) on_line("GA \"" + path + "\"");
        }));
    }
}

void StartPage::paintEvent(QPaintEvent* /*event*/) { QPainter(this).fillRect(rect(), colour(plot_palette(), Ink::background)); }

}  // namespace zolt
