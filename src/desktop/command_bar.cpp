// Draws the command line from the core's buffer.
#include "desktop/command_bar.h"

#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>

#include "app/command_line.h"
#include "app/completion.h"
#include "config/settings.h"
#include "desktop/appearance.h"
#include "desktop/text.h"
#include "state/session.h"
#include "state/sub_routine.h"

namespace zolt {

namespace {
constexpr int side = 12, gap = 8;
}

CommandLine::CommandLine(QWidget* parent) : QWidget(parent) {
    use_fonts();
    setCursor(Qt::IBeamCursor);
    setAccessibleName("Command line");
    connect(&blink_, &QTimer::timeout, this, [this] {
        caret_shown_ = !caret_shown_;
        update();
    });
    blink_.start(530);
}

void CommandLine::use_fonts() { setFont(fixed_font(setting_number("CmdLine"))); }

QSize CommandLine::sizeHint() const { return {200, fontMetrics().height() + 14}; }

void CommandLine::refresh() {
    caret_shown_ = true;
    blink_.start(530);
    update();
}

void CommandLine::paintEvent(QPaintEvent* /*event*/) {
    const WindowColours& c = window_colours();
    QPainter painter(this);
    painter.fillRect(rect(), c.raised);
    painter.setPen(c.line);
    painter.drawLine(0, 0, width(), 0);
    const QFontMetrics metrics = fontMetrics();
    const int base = (height() + metrics.ascent() - metrics.descent()) / 2;
    painter.setPen(c.accent);
    const QString prompt = session.sub_routine != nullptr ? qt(session.sub_routine->keyword) + "> " : QString("> ");
    painter.drawText(side, base, prompt);
    const int start = side + metrics.horizontalAdvance(prompt);

    const std::string_view typed = typed_text();
    const QString text = qt(typed), before = qt(typed.substr(0, caret()));
    // A long line moves so that the caret stays in sight.
    const int caret_x = metrics.horizontalAdvance(before), room = width() - start - side;
    const int shift = std::max(0, caret_x - room + 4);
    painter.setClipRect(start, 0, room + side, height());
    const bool coloured = settings.values.contains("CMDLINE_FONT_COLOR");
    painter.setPen(coloured ? QColor(setting_colour("CMDLINE_FONT_COLOR")) : c.text);
    painter.drawText(start - shift, base, text);
    if (caret_shown_ && session.sub_routine == nullptr)
        painter.fillRect(start - shift + caret_x, base - metrics.ascent(), 2, metrics.height(), c.accent);

    const QString hint = typed.empty() ? QString() : qt(hint_for(typed));
    const int taken = start + metrics.horizontalAdvance(text) + 3 * gap, left = width() - side - taken;
    if (hint.isEmpty() || left < 60) return;
    QFont small = QWidget::parentWidget()->font();
    painter.setFont(small);
    painter.setPen(c.dimmed);
    painter.drawText(QRect(taken, 0, left, height()), Qt::AlignRight | Qt::AlignVCenter,
                     QFontMetrics(small).elidedText(hint, Qt::ElideRight, left));
}

void CommandLine::mousePressEvent(QMouseEvent* event) {
    const QFontMetrics metrics = fontMetrics();
    const int start = side + metrics.horizontalAdvance("> ");
    const QString text = qt(typed_text());
    move_caret_to(false);
    for (int i = 1; i <= text.size() && start + metrics.horizontalAdvance(text.left(i)) < event->pos().x() + 4; ++i) move_caret(1);
    refresh();
}

CommandBar::CommandBar(QWidget* parent) : QWidget(parent), reply_(new QLabel(this)), line_(new CommandLine(this)) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    reply_->setFont(fixed_font());
    reply_->setContentsMargins(side, 4, side, 4);
    reply_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    reply_->setTextFormat(Qt::PlainText);
    reply_->setFocusPolicy(Qt::NoFocus);
    reply_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    reply_->setAccessibleName("Reply line");
    column->addWidget(reply_);
    column->addWidget(line_);
    refresh();
}

void CommandBar::set_reply(const QString& text) {
    QString line = text.section('\n', 0, 0).trimmed();
    if (line.startsWith("- ")) line.remove(0, 2);
    reply_->setText(line.isEmpty() ? QString(" ") : line);
    reply_->setToolTip(line);
}

void CommandBar::refresh() {
    QPalette colours = palette();
    colours.setColor(QPalette::WindowText, window_colours().dimmed);
    reply_->setPalette(colours);
    line_->refresh();
}

}  // namespace zolt
