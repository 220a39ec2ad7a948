// Texts between the core (UTF-8) and Qt.
#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace zolt {

inline QString qt(std::string_view text) { return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())); }
inline std::string utf8(const QString& text) { return text.toStdString(); }

}  // namespace zolt
