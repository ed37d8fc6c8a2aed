// Controls and their names.
#pragma once

#include <QObject>
#include <QWidget>

namespace vl {

/// Names a control in the place where it is made: tests, screen readers and drivers go by that. One
/// that shows a text of its own is known by it to who cannot see it, and needs no `accessibleName`.
template <class Control>
Control* named(Control* control, const char* name, const char* accessibleName = nullptr) {
    control->setObjectName(name);
    if (accessibleName) {
        control->setAccessibleName(QObject::tr(accessibleName));
    }
    return control;
}

}  // namespace vl
