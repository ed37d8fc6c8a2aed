// Texts that may be written from right to left, beside others.
#pragma once

#include <QString>

namespace vl {

/// For a text that stands among others: it is laid out by its own direction, and turns nothing
/// around it. One that begins from the left is as it was.
inline QString apart(const QString& text) {
    constexpr QChar kFirstStrongIsolate(0x2068);
    constexpr QChar kPopDirectionalIsolate(0x2069);
    return text.isRightToLeft() ? kFirstStrongIsolate + text + kPopDirectionalIsolate : text;
}

}  // namespace vl
