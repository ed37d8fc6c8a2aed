// The window over a database of its own, from the load handler on.
#pragma once

#include <string>

#include <gtest/gtest.h>

#include <QLabel>
#include <QTest>

#include "WindowTest.h"

namespace vl::test {

class LoadTest : public WindowTest {
protected:
    LoadTest() {
        clock.time = DateTime::fromCivil(2026, 11, 20, 14, 30);
        path = (folder / "Velmora.RemindDB").string();
        db.DBFullName = path;
    }
    static std::string sample() { return readFile(repoFile("data/first-light.RemindDB")); }
    std::string status() const { return plainText(child<QLabel>("lblStatus").text()); }
    /// Keys reach a window that is shown.
    void press(Qt::Key key) {
        if (!window->isVisible()) {
            window->ShowHide();
        }
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        QTest::keyClick(window.get(), key);
    }
    void refresh() { press(Qt::Key_F5); }
    bool isTroubled() const { return status().ends_with("F5 tries again"); }
    std::size_t held() const { return period.mCol ? period.mCol->Count() : 0; }

    std::string path;
};

}  // namespace vl::test
