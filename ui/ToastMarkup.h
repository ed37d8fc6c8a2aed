// Reads the pop-up's markup into what the toast shows.
#pragma once

#include <vector>

#include <QString>

namespace vl {

/// A link of the pop-up: its tag, as a number, and its text with line breaks.
struct ToastLink {
    int tag = 0;
    QString text;

    friend bool operator==(const ToastLink&, const ToastLink&) = default;
};

/// The hyperlinks of the markup (grids, borders, text blocks, hyperlinks, line breaks), in their
/// order. What is no such markup gives the links in front of the place where it breaks.
std::vector<ToastLink> readToastMarkup(const QString& markup);

}  // namespace vl
