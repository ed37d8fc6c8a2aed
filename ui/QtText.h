// Where texts turn into Qt's and back: UTF-8 below, QString above.
#pragma once

#include <string>
#include <string_view>

#include <QString>

namespace vl {

/// Bytes that are no UTF-8 become U+FFFD.
inline QString qtText(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

inline std::string plainText(const QString& text) { return text.toStdString(); }

}  // namespace vl
