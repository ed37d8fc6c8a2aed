// Tool tips.
#pragma once

#include <QString>

namespace vl {

/// `text` as a tool tip that shows it to the letter: Qt takes a tip that looks like markup for
/// such, and would fetch the files that it names.
QString plainTip(const QString& text);

}  // namespace vl
