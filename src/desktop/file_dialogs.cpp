// Qt's own dialog, with a line about the file that is selected.
#include "desktop/file_dialogs.h"

#include <QFileDialog>
#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QTreeView>
#include <cstdio>

#include <unistd.h>

#include "common/file.h"
#include "common/text.h"
#include "config/paths.h"
#include "datafile/native_file.h"
#include "desktop/appearance.h"
#include "desktop/text.h"
#include "display/lettering.h"
#include "import/locate.h"
#include "import/tranauto.h"
#include "platform/silent_platform.h"
#include "state/dataset.h"
#include "state/session.h"

namespace zolt {

namespace {

// A file that is gone when it is closed.
File nameless_file() {
    std::FILE* stream = std::tmpfile();
    if (stream == nullptr) return {};
    File file(::dup(::fileno(stream)), "w+b");
    std::fclose(stream);
    return file;
}

// Parameters as the reader of the format finds them; false where it tells none without the data.
bool read_parameters(const std::string& file, const Format& format, DataSet& data) {
    const uint64_t size = file_facts(file).size;
    File input = open_for_reading(file);
    if (!input) return false;
    if (const FileClass kind = classify_file(file); kind == FileClass::native || kind == FileClass::swapped_native) {
        NativeLayout layout;
        return read_native_header(input, size, layout, data).empty();
    }
    if (format.parameters == nullptr) return false;
    for (Dimension& dimension : data.dims) dimension.points = 1;
    // Some readers come by the points on their way to the parameters.
    File real = nameless_file(), imaginary = nameless_file();
    if (!real || !imaginary) return false;
    Translation translation{format, file, input, size, data, real, imaginary};
    return format.parameters(translation);
}

std::string counts_of(const DataSet& data) {
    std::string text;
    for (const Dimension& dimension : data.dims)
        if (dimension.points > 1) text += (text.empty() ? "" : " \u00d7 ") + std::to_string(dimension.points);
    return text.empty() ? text : text + " points";
}

}  // namespace

std::string describe_data(const std::string& path) {
    const Silence silence;
    std::string reason;
    const std::string file = data_file_of(path, reason);
    if (file.empty() || !file_facts(file).regular) return {};
    const Detection found = detect_format(file, false);
    const FileClass kind = classify_file(file);
    const bool native = kind == FileClass::native || kind == FileClass::swapped_native;
    if (!native && found.format == nullptr) return {};
    std::string text = native ? "ZOLT data file" : found.format->name;
    static const Format no_format{};
    DataSet data;
    if (!read_parameters(file, found.format != nullptr ? *found.format : no_format, data)) return text + "\n ";
    const Dimension& dimension = data.dims[0];
    std::string details = isotope_name(display_line(dimension.nucleus));
    const auto add = [&](const std::string& part) { details += (details.empty() || part.empty() ? "" : " \u00b7 ") + part; };
    if (dimension.sf > 0) add(format_text("%.2f MHz", static_cast<double>(dimension.sf)));
    add(counts_of(data));
    add(display_line(data.title));
    return text + "\n" + details;
}

std::optional<std::string> choose_file(QWidget* parent, FileChoice choice, std::string_view title) {
    const bool import = title.find("Import") != std::string_view::npos;
    static QString last_folder;
    QFileDialog dialog(parent, qt(title));
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setAcceptMode(choice == FileChoice::open ? QFileDialog::AcceptOpen : QFileDialog::AcceptSave);
    dialog.setFileMode(choice == FileChoice::open ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    dialog.setOption(QFileDialog::DontConfirmOverwrite);  // the command asks
    dialog.setDirectory(!last_folder.isEmpty() ? last_folder : qt(import ? import_path() : data_path(true)));
    dialog.resize(860, 580);
    for (auto* view : dialog.findChildren<QTreeView*>()) {
        constexpr int widths[] = {330, 90, 110, 180};
        view->setColumnHidden(2, true);  // the system knows nothing of these types
        for (int section = 0; section < 4; ++section) view->header()->resizeSection(section, widths[section]);
    }
    auto* about = new QLabel(" \n ", &dialog);
    about->setTextFormat(Qt::PlainText);
    about->setContentsMargins(4, 8, 4, 0);
    QPalette colours = about->palette();
    colours.setColor(QPalette::WindowText, window_colours().accent);
    about->setPalette(colours);
    if (auto* grid = qobject_cast<QGridLayout*>(dialog.layout()); grid != nullptr && choice == FileChoice::open) {
        grid->addWidget(about, grid->rowCount(), 0, 1, -1);
        QObject::connect(&dialog, &QFileDialog::currentChanged, about, [about](const QString& path) {
            const std::string text = describe_data(utf8(path));
            about->setText(text.empty() ? QString(" \n ") : qt(text));
        });
    } else {
        about->hide();
    }
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
    last_folder = dialog.directory().absolutePath();
    return utf8(dialog.selectedFiles().first());
}

}  // namespace zolt
