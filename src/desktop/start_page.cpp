// A quiet page: titles in the accent colour, commands in the fixed font.
#include "desktop/start_page.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QEnterEvent>
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

constexpr int line_gap = 4;  // pixels

// A title that is a link, and a dimmed line below it in which every other piece is a command. Painted here: labels of rich
// text cost half of what the whole window needs to start.
class Way : public QAbstractButton {
public:
    Way(const QString& title, QStringList about, std::function<void()> act) : about_(std::move(about)) {
        setText(title);
        setAccessibleName(title);
        setAccessibleDescription(about_.join(QString()));
        setCursor(Qt::PointingHandCursor);
        setFocusPolicy(Qt::NoFocus);
        connect(this, &QAbstractButton::clicked, this, [act = std::move(act)] { act(); });
    }
    QSize sizeHint() const override {
        int width = 0;
        for (int i = 0; i < about_.size(); ++i) width += QFontMetrics(font_of(i)).horizontalAdvance(about_[i]);
        return {std::max(width, fontMetrics().horizontalAdvance(text())) + 1, 2 * fontMetrics().height() + line_gap};
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        QFont title = font();
        title.setUnderline(underMouse());
        painter.setFont(title);
        painter.setPen(window_colours().accent);
        painter.drawText(0, fontMetrics().ascent(), text());
        painter.setPen(window_colours().dimmed);
        int x = 0;
        const int y = fontMetrics().height() + line_gap + fontMetrics().ascent();
        for (int i = 0; i < about_.size(); ++i) {
            painter.setFont(font_of(i));
            painter.drawText(x, y, about_[i]);
            x += painter.fontMetrics().horizontalAdvance(about_[i]);
        }
    }
    void enterEvent(QEnterEvent* /*event*/) override { update(); }
    void leaveEvent(QEvent* /*event*/) override { update(); }

private:
    QFont font_of(int piece) const { return piece % 2 == 1 ? fixed_font() : font(); }

    QStringList about_;
};

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
    add_way("Open a data file", {"", "GA", " or ", "GA name", ", Ctrl+O"}, "GA");
    add_way("Import from an instrument", {"", "IM folder", ", or drop a file or folder here"}, "IM");
    if (const std::string example = example_folder(); !example.empty())
        add_way("Try the example", {"Strychnine, \u00b9H at 400 MHz: ", "EM FT PC", " make it a spectrum"},
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

void StartPage::add_way(const QString& title, const QStringList& about, const std::string& line) {
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
        recent_->addWidget(new Way(qt(name_of(path)), {qt(folder_of(path))}, [this, path] {
            if (on_line) on_line("GA \"" + path + "\"");
        }));
    }
}

void StartPage::paintEvent(QPaintEvent* /*event*/) { QPainter(this).fillRect(rect(), colour(plot_palette(), Ink::background)); }

}  // namespace zolt
