// The command reference, searchable, from the command table.
#pragma once

#include <QDialog>
#include <functional>
#include <string>

class QLineEdit;
class QTreeWidget;

namespace zolt {

class HelpWindow : public QDialog {
public:
    explicit HelpWindow(QWidget* parent);
    /// A row was chosen: its word goes to the command line.
    std::function<void(const std::string& word)> on_word;
    void search(const QString& text);

private:
    void filter(const QString& text);
    QLineEdit* search_;
    QTreeWidget* rows_;
};

}  // namespace zolt
