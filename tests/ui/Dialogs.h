// Acting in a dialog while it waits for its answer.
#pragma once

#include <functional>

#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QTest>
#include <QTimer>

namespace vl::test {

/// Runs `show`, which opens the modal dialog and returns once it is left, and meanwhile `act`. The
/// dialog is closed after `act`, if that has not been done.
template <class Dialog, class Show>
void whileOpen(Show&& show, const std::function<void(Dialog&)>& act) {
    // A test that ended the program's loop has left it closed for loops inside it.
    QTimer::singleShot(0, QApplication::instance(), [] { QApplication::exit(); });
    QApplication::exec();
    bool acted = false;
    QTimer::singleShot(0, QApplication::instance(), [&] {
        auto* dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr) << "no such dialog is open";
        EXPECT_TRUE(QTest::qWaitForWindowActive(dialog));
        acted = true;
        act(*dialog);
        if (dialog->isVisible()) {
            dialog->close();
        }
    });
    show();
    EXPECT_TRUE(acted);
}

template <class T>
T& childOf(const QWidget& parent, const char* name) {
    T* found = parent.findChild<T*>(name);
    EXPECT_NE(found, nullptr) << name;
    return *found;
}

}  // namespace vl::test
