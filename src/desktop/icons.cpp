// Each icon is the inner part of an SVG of 20 by 20 units; the frame gives colour and stroke.
#include "desktop/icons.h"

#include <QIconEngine>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

#include "desktop/appearance.h"

namespace zolt {

namespace {

constexpr struct {
    std::string_view name;
    const char* shapes;
} icons[] = {
    {"open", R"(<path d="M2.5 15.5v-11h5l2 2.5h7v2.5"/><path d="M2.5 15.5l2.4-6h13.1l-2.4 6z"/>)"},
    {"import", R"(<path d="M10 2.5v9.5"/><path d="M6.3 8.6L10 12.3l3.7-3.7"/><path d="M2.5 12.5v4h15v-4"/>)"},
    {"save", R"(<path d="M3 3h11l3 3v11H3z"/><path d="M6 3v4.5h7V3"/><path d="M6 17v-6h8v6"/>)"},
    {"more", R"(<path d="M5 5l5 5-5 5"/><path d="M11 5l5 5-5 5"/>)"},
    {"undo", R"(<path d="M7 4L3 8l4 4"/><path d="M3 8h8.5a4 4 0 0 1 0 8H8"/>)"},
    {"redo", R"(<path d="M13 4l4 4-4 4"/><path d="M17 8H8.5a4 4 0 0 0 0 8H12"/>)"},
    {"full", R"(<path d="M3 7V3h4M13 3h4v4M17 13v4h-4M7 17H3v-4"/><path d="M6 13h2.5l1.5-6 1.5 6H14"/>)"},
    {"zoom", R"(<circle cx="8.5" cy="8.5" r="5.5"/><path d="M12.6 12.6L17.5 17.5M6 8.5h5M8.5 6v5"/>)"},
    {"traces", R"(<path d="M2 13h4l2-9 2 9h8"/><path d="M2 16.5h7l1.5-4 1.5 4h6" stroke-dasharray="2 1.6"/>)"},
    {"weight", R"(<path d="M2.5 3.5c3 9.5 8 12.5 15 13"/><path d="M2.5 10h1.2l1.3-4 1.6 7.5 1.6-6 1.5 4.5 1.3-2.6 1.2 1.6h5.3"/>)"},
    {"fill", R"(<path d="M2 10h1l1.2-5 1.8 10 1.8-8 1.4 5 1-2"/><path d="M10.5 10H18" stroke-dasharray="2 1.7"/>)"},
    {"transform", R"(<path d="M2 7l1-3 1.5 6L6 5l1 3"/><path d="M9 6h5M12 3.7L14.3 6 12 8.3"/><path d="M2 16.5h8l2-6 2 6h4"/>)"},
    {"phase", R"(<path d="M2 12.5h4.5c1.8 0 2-8.5 3.5-8.5s1.7 8.5 3.5 8.5H18"/><path d="M6.5 16.5h7M11.6 14.5l2 2-2 2"/>)"},
    {"baseline", R"(<path d="M2 14c3-1.5 4 0 6 0 1.5 0 1-10 2.2-10s.8 10 2.3 10c2 0 3-1.5 5.5 0"/><path d="M2 17h16"/>)"},
    {"integrals", R"(<path d="M2 16.5h4l1.5-6 1.5 6h3l1-3.5 1 3.5h4"/><path d="M3 9c5 0 3.5-5 8-5.5 3-.3 3.5-.5 6-.5"/>)"},
};

constexpr const char* sign =
    R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 32 32"><rect x="1" y="1" width="30" height="30" rx="7" fill="#0b6bcb"/>)"
    R"(<path d="M4 23h6c1.8 0 2.2-13 3.6-13s1.8 13 3.4 13h1.8c1 0 1.2-5 2.2-5s1.2 5 2.2 5H28" fill="none" stroke="white" )"
    R"(stroke-width="2.2" stroke-linejoin="round" stroke-linecap="round"/></svg>)";

// Draws itself at the size and in the state it is asked for, so that nothing is drawn before it is shown.
class LineIcon : public QIconEngine {
public:
    explicit LineIcon(QByteArray svg) : svg_(std::move(svg)) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State /*state*/) override {
        QSvgRenderer renderer(svg_);
        painter->setOpacity(mode == QIcon::Disabled ? 0.4 : 1);
        renderer.render(painter, rect);
        painter->setOpacity(1);
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return pixmap;
    }
    QIconEngine* clone() const override { return new LineIcon(svg_); }

private:
    QByteArray svg_;
};

QByteArray framed(const char* shapes, const QColor& stroke) {
    return QByteArray(R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 20 20" fill="none" stroke=")") +
           stroke.name().toLatin1() + R"(" stroke-width="1.5" stroke-linecap="round" stroke-linejoin="round">)" + shapes + "</svg>";
}

}  // namespace

QIcon icon(std::string_view name) {
    for (const auto& row : icons)
        if (row.name == name) return QIcon(new LineIcon(framed(row.shapes, window_colours().text)));
    return {};
}

QIcon program_icon() {
    QIcon result;
    for (const int side : {16, 32, 64}) result.addPixmap(LineIcon(sign).pixmap({side, side}, QIcon::Normal, QIcon::Off));
    return result;
}

}  // namespace zolt
