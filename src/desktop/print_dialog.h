// Printing with a preview.
#pragma once

#include <QWidget>

#include "display/page.h"

namespace zolt {

/// Shows the page on the paper that the options ask for; paper, orientation and printer can be changed there.
void show_print_preview(QWidget* parent, const PageOptions& options);

}  // namespace zolt
