// Qt's preview; the page is laid out anew for the paper that is chosen in it.
#include "desktop/print_dialog.h"

#include <QPageLayout>
#include <QPainter>
#include <QPrintPreviewDialog>
#include <QPrinter>

#include "desktop/paint_picture.h"
#include "desktop/text.h"
#include "display/plot_1d.h"
#include "state/dataset.h"

namespace zolt {

namespace {

constexpr double points_per_pixel = 72 / pixels_per_inch;

void set_paper(QPrinter& printer, const PageOptions& options) {
    const QSizeF portrait(std::min(options.width, options.height) * points_per_pixel,
                          std::max(options.width, options.height) * points_per_pixel);
    printer.setPageSize(QPageSize(portrait, QPageSize::Point, QString(), QPageSize::FuzzyMatch));
    printer.setPageOrientation(options.width > options.height ? QPageLayout::Landscape : QPageLayout::Portrait);
    printer.setFullPage(true);
}

void paint_page(QPrinter& printer, PageOptions options) {
    printer.setFullPage(true);
    const QSizeF paper = printer.pageLayout().fullRect(QPageLayout::Point).size();
    options.width = paper.width() / points_per_pixel;
    options.height = paper.height() / points_per_pixel;
    QPainter painter;
    if (!painter.begin(&printer)) return;
    const double dots = printer.resolution() / pixels_per_inch;
    painter.scale(dots, dots);
    paint_picture(painter, page_picture(zolt::show, options), print_palette(), Medium::paper);
}

}  // namespace

void show_print_preview(QWidget* parent, const PageOptions& options) {
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(qt(title_of(zolt::show)));
    set_paper(printer, options);
    QPrintPreviewDialog dialog(&printer, parent);
    dialog.setWindowTitle("Print");
    QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested, &dialog,
                     [&](QPrinter* device) { paint_page(*device, options); });
    dialog.resize(1000, 760);
    dialog.exec();
}

}  // namespace zolt
