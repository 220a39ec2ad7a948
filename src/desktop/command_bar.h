// The reply line and the command line at the foot of the window. Both show what the core holds; neither edits anything.
#pragma once

#include <QTimer>
#include <QWidget>

class QLabel;

namespace zolt {

/// The typed line behind its prompt, with the caret, and a hint at the right.
class CommandLine : public QWidget {
public:
    explicit CommandLine(QWidget* parent);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    void use_fonts();
    bool caret_shown_ = true;
    QTimer blink_;

public:
    /// The line has changed.
    void refresh();
};

class CommandBar : public QWidget {
public:
    explicit CommandBar(QWidget* parent);

    void set_reply(const QString& text);
    void refresh();

private:
    QLabel* reply_;
    CommandLine* line_;
};

}  // namespace zolt
