// Qt writes both; the fonts of a PDF are part of it.
#include "desktop/paint_document.h"

#include <QApplication>
#include <QBuffer>
#include <QImage>
#include <QPageSize>
#include <QPdfWriter>
#include <cmath>

#include "desktop/appearance.h"
#include "desktop/paint_picture.h"
#include "desktop/text.h"
#include "display/page.h"

namespace zolt {

namespace {

constexpr int dots_per_inch = 1200;

void set_page(QPdfWriter& writer, const Picture& page) {
    constexpr double points_per_pixel = 72 / pixels_per_inch;
    const QSizeF size(page.width * points_per_pixel, page.height * points_per_pixel);
    writer.setPageSize(QPageSize(size, QPageSize::Point, QString(), QPageSize::ExactMatch));
    writer.setPageMargins(QMarginsF());
}

}  // namespace

std::string pdf_document(const std::vector<Picture>& pages, const Palette& palette) {
    if (pages.empty()) return {};
    QByteArray content;
    QBuffer buffer(&content);
    buffer.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&buffer);
        writer.setResolution(dots_per_inch);
        writer.setCreator("ZOLT " + QApplication::applicationVersion());
        writer.setTitle(qt(pages.front().title));
        set_page(writer, pages.front());
        QPainter painter;
        if (!painter.begin(&writer)) return {};
        for (const Picture& page : pages) {
            if (&page != &pages.front()) {
                set_page(writer, page);
                if (!writer.newPage()) return {};
            }
            painter.resetTransform();
            painter.scale(dots_per_inch / pixels_per_inch, dots_per_inch / pixels_per_inch);
            paint_picture(painter, page, palette, Medium::paper);
        }
        if (!painter.end()) return {};
    }
    return content.toStdString();
}

std::string png_file(const Picture& picture, const Palette& palette, double dots_per_pixel) {
    constexpr double inches_per_metre = 1 / 0.0254, most_dots = 4e8;
    const double width = std::round(picture.width * dots_per_pixel), height = std::round(picture.height * dots_per_pixel);
    if (!(width >= 1 && height >= 1 && width * height <= most_dots && width <= 32767 && height <= 32767)) return {};
    QImage image(static_cast<int>(width), static_cast<int>(height), QImage::Format_RGB32);
    if (image.isNull()) return {};
    image.fill(colour(palette, Ink::background));
    image.setDevicePixelRatio(dots_per_pixel);
    {
        QPainter painter(&image);
        paint_picture(painter, picture, palette, Medium::image);
    }
    const int dots = static_cast<int>(std::lround(pixels_per_inch * dots_per_pixel * inches_per_metre));
    image.setDotsPerMeterX(dots);
    image.setDotsPerMeterY(dots);
    image.setText("Title", qt(picture.title));
    QByteArray content;
    QBuffer buffer(&content);
    buffer.open(QIODevice::WriteOnly);
    return image.save(&buffer, "PNG") ? content.toStdString() : std::string();
}

}  // namespace zolt
