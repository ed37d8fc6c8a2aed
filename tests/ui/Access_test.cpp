// Who sees little, hears the window, or has no mouse.
#include <gtest/gtest.h>

#include <set>

#include <QAccessible>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTabBar>
#include <QTest>
#include <QToolButton>

#include "Dialogs.h"
#include "WindowTest.h"
#include "ui/SplitButton.h"
#include "ui/Toast.h"
#include "ui/frmDismiss.h"
#include "ui/frmSnooze.h"

namespace vl {
namespace {

QString said(QObject* control) {
    QAccessibleInterface* known = QAccessible::queryAccessibleInterface(control);
    return known ? known->text(QAccessible::Name) : QString();
}

// What takes the keyboard's focus, or is pressed by the mouse alone.
std::vector<QWidget*> controlsOf(const QWidget& form) {
    std::vector<QWidget*> found;
    for (QWidget* control : form.findChildren<QWidget*>()) {
        const bool ofAnother =
            control->focusProxy() != nullptr || qobject_cast<QLineEdit*>(control) != nullptr;
        const bool named = qobject_cast<QAbstractButton*>(control) != nullptr ||
                           (control->focusPolicy() != Qt::NoFocus && !ofAnother);
        if (named && control->isVisibleTo(&form)) {
            found.push_back(control);
        }
    }
    return found;
}

void expectNamed(const QWidget& form, std::size_t atLeast) {
    const auto controls = controlsOf(form);
    EXPECT_GE(controls.size(), atLeast);
    for (QWidget* control : controls) {
        if (control->objectName().startsWith("qt_") ||
            control->objectName().startsWith("ScrollLeft") ||
            control->objectName().startsWith("ScrollRight")) {
            continue;  // Qt's own, inside a control that has a name
        }
        EXPECT_FALSE(said(control).isEmpty())
            << control->metaObject()->className() << ' ' << control->objectName().toStdString();
    }
}

class Access : public test::WindowTest {
protected:
    void show() {
        window->show();
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }
};

TEST_F(Access, EveryControlOfTheWindowHasAName) {
    load();
    takeIn(test::event("{1}", "Call the bank", clock.now(), 5));
    show();
    for (int i = 0; i < kGridCount; ++i) {
        child<QTabWidget>("tabs").setCurrentIndex(i);
        expectNamed(*window, 9);
        EXPECT_FALSE(said(&grid(i)).isEmpty());
    }
    EXPECT_EQ(said(&child<QLineEdit>("txtSearch")), "Search subject and location");
}

TEST_F(Access, EveryControlOfTheDialogsHasAName) {
    const DialogParts parts{settings, clock, false, {}};
    frmSnooze snooze(parts);
    test::whileOpen<frmSnooze>([&] { snooze.ShowModal(); },
                               [](frmSnooze& d) { expectNamed(d, 4); });
    frmDismiss dismiss(parts);
    test::whileOpen<frmDismiss>([&] { dismiss.ShowModal(); },
                                [](frmDismiss& d) { expectNamed(d, 8); });
}

TEST_F(Access, AToastIsReadTitleFirst) {
    Toast toast{QIcon()};
    ToastContent content;
    content.title = "2 reminders";
    content.links = {{1, "Call the bank"}, {2, "Choir"}};
    toast.present(content, {});
    expectNamed(toast, 1);
    std::vector<std::string> read;
    for (QLabel* label : toast.findChildren<QLabel*>()) {
        if (!said(label).isEmpty()) {
            read.push_back(plainText(said(label)));
        }
    }
    EXPECT_EQ(read, (std::vector<std::string>{"2 reminders", "Call the bank", "Choir"}));
}

TEST_F(Access, AGridIsReadCellByCell) {
    load();
    takeIn(test::event("{1}", "Call the bank", clock.now().addMinutes(5), 5));
    show();
    QAccessibleInterface* known = QAccessible::queryAccessibleInterface(&grid(0));
    ASSERT_NE(known, nullptr);
    ASSERT_NE(known->tableInterface(), nullptr);
    QAccessibleTableInterface& table = *known->tableInterface();
    ASSERT_EQ(table.rowCount(), 1);
    std::vector<std::string> cells;
    cells.reserve(4);
    for (int column = 0; column < 4; ++column) {
        cells.push_back(plainText(table.columnDescription(column)) + ": " +
                        plainText(table.cellAt(0, column)->text(QAccessible::Name)));
    }
    EXPECT_TRUE(cells[0].starts_with("Subject: Call the bank\n(")) << cells[0];
    EXPECT_EQ(cells[1], "Due: in 5 min");
    EXPECT_TRUE(cells[2].starts_with("Reminder: Today ")) << cells[2];
    EXPECT_TRUE(cells[3].starts_with("Event Date: Today ")) << cells[3];
}

TEST_F(Access, TabGoesThroughTheWholeWindow) {
    load();
    takeIn(test::event("{1}", "Call the bank", clock.now(), 5));
    show();
    grid(0).setFocus();
    std::set<std::string> reached;
    for (int i = 0; i < 20; ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        ASSERT_NE(QApplication::focusWidget(), nullptr);
        reached.insert(plainText(QApplication::focusWidget()->objectName()));
    }
    for (const char* name : {"cboPeriod", "UpDown1", "txtSearch", "qt_tabwidget_tabbar", "G0",
                             "butSnooze", "butDismiss", "butOpen", "butMenu", "butHide"}) {
        EXPECT_TRUE(reached.contains(name)) << name;
    }
}

TEST_F(Access, UnderlinedLettersOfAWindowDiffer) {
    load();
    takeIn(test::event("{1}", "Call the bank", clock.now(), 5));
    show();
    std::map<QChar, std::string> taken;
    const auto claim = [&](const QString& text) {
        const qsizetype at = text.indexOf(u'&');
        if (at >= 0 && at + 1 < text.size()) {
            const auto [other, fresh] = taken.emplace(text[at + 1].toLower(), plainText(text));
            EXPECT_TRUE(fresh) << plainText(text) << " and " << other->second;
        }
    };
    for (const QAbstractButton* button : window->findChildren<QAbstractButton*>()) {
        claim(button->text());
    }
    const QTabWidget& tabs = child<QTabWidget>("tabs");
    for (int i = 0; i < tabs.count(); ++i) {
        claim(tabs.tabText(i));
    }
    claim(child<QLabel>("lblPeriod").text());
    EXPECT_GE(taken.size(), 9U);
}

}  // namespace
}  // namespace vl
