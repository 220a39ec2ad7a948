// What stands in the plot's place before there are data: three ways in, with the commands that do the same.
#pragma once

#include <QWidget>
#include <functional>
#include <string>

class QVBoxLayout;

namespace zolt {

class StartPage : public QWidget {
public:
    explicit StartPage(QWidget* parent);
    std::function<void(const std::string& line)> on_line;
    void set_recent(const QStringList& files);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void add_way(const QString& title, const QStringList& about, const std::string& line);
    QVBoxLayout* ways_;
    QVBoxLayout* recent_;
};

/// The folder of the bundled example, "" when it is not there.
std::string example_folder();

}  // namespace zolt
