// Menus, Open and the keys of the grids.
#include <gtest/gtest.h>

#include <filesystem>

#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include "Dialogs.h"
#include "WindowTest.h"
#include "app/Files.h"
#include "ui/MessageBoxes.h"

namespace vl {
namespace {

using test::someFriday;

class frmDDEMenus : public test::WindowTest {
protected:
    QAction& entry(const char* name) const {
        auto* found = trayMenu()->findChild<QAction*>(name);
        EXPECT_NE(found, nullptr) << name;
        return *found;
    }
};

TEST_F(frmDDEMenus, AboutSaysBothVersions) {
    settings.SaveIni("Reminders", "DBVersion", "4");
    load();
    entry("mnuAbout").trigger();
    const BoxRequest said{"Velmora Events and Reminders...",
                          " Version 1.4.27\r\n Database version: 4", BoxButtons::Ok,
                          BoxIcon::Question};
    EXPECT_EQ(boxes.shown, std::vector{said});
}

TEST_F(frmDDEMenus, CleaningUpAndDeletingAllAskFirst) {
    haveDatabase();
    load();
    const auto rows = [&] {
        const auto found = db.OpenRS("SELECT COUNT(*) AS n FROM Reminders");
        const int n = found->value("n").toInt32();
        db.CloseDB();
        return n;
    };
    const int all = rows();
    boxes.answer = BoxAnswer::No;
    for (const char* name : {"mnuCleanUp", "mnuDeleteAll"}) {
        boxes.shown.clear();
        entry(name).trigger();
        ASSERT_EQ(boxes.shown.size(), 1U) << name;
        EXPECT_EQ(boxes.shown[0].buttons, BoxButtons::YesNoCancel) << name;
        EXPECT_EQ(rows(), all);
    }
    boxes.answer = BoxAnswer::Yes;
    entry("mnuDeleteAll").trigger();
    EXPECT_EQ(rows(), 0);
    EXPECT_EQ(period.mCol->Count(), 0U);
}

TEST_F(frmDDEMenus, TheTraysTipIsTrueAfterEveryCommand) {
    haveDatabase();
    load();
    const auto tip = [this] { return entry("mnuShowHide").text(); };
    takeIn(test::event("{1}", "Meeting", someFriday(), 15));
    EXPECT_EQ(tip(), "1 New reminder: 1 new reminder: (click to show/hide)");
    child<QTabWidget>("tabs").setCurrentIndex(kEventsGrid);
    for (const char* shown : {"Previous 30 days", "Next 30 days", "Today"}) {
        list().setCurrentText(shown);
        const auto count = listed(kEventsGrid).rowCount();
        EXPECT_TRUE(tip().startsWith(QString::number(count) + " Event")) << plainText(tip());
    }
    boxes.answer = BoxAnswer::Yes;
    entry("mnuDeleteAll").trigger();
    EXPECT_EQ(listed(kNewRemindersGrid).rowCount(), 0U);
    EXPECT_EQ(tip(), "0 Event: (click to show/hide)");
}

TEST_F(frmDDEMenus, TheWindowOffersTheTraysMenu) {
    load();
    EXPECT_EQ(child<QPushButton>("butMenu").menu(), trayMenu());
}

TEST(MessageBoxes, AnswersAsTheUserDoes) {
    QWidget owner;
    MessageBoxes boxes(owner);
    struct Case {
        BoxButtons buttons;
        Qt::Key key;
        BoxAnswer answer;
    };
    static constexpr Case cases[] = {
        {BoxButtons::Ok, Qt::Key_Return, BoxAnswer::Ok},
        {BoxButtons::Ok, Qt::Key_Escape, BoxAnswer::Ok},
        {BoxButtons::YesNoCancel, Qt::Key_Y, BoxAnswer::Yes},
        {BoxButtons::YesNoCancel, Qt::Key_N, BoxAnswer::No},
        {BoxButtons::YesNoCancel, Qt::Key_Escape, BoxAnswer::Cancel},
        {BoxButtons::YesNoCancel, Qt::Key_Return, BoxAnswer::Cancel},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << static_cast<int>(c.buttons) << ' ' << c.key);
        BoxAnswer answer{};
        test::whileOpen<QMessageBox>(
            [&] {
                answer = boxes.ShowBox(
                    {"Title", " First\r\n Second\rThird", c.buttons, BoxIcon::Question});
            },
            [&](QMessageBox& box) {
                EXPECT_EQ(box.text(), " First\n Second\nThird");
                EXPECT_EQ(box.icon(), QMessageBox::Question);
                for (const QAbstractButton* button : box.buttons()) {
                    EXPECT_TRUE(button->text().startsWith(u'&')) << plainText(button->text());
                }
                QTest::keyClick(&box, c.key);
                EXPECT_TRUE(QTest::qWaitFor([&box] { return !box.isVisible(); }));
            });
        EXPECT_EQ(answer, c.answer);
    }
}

// ---- opening in the host

class frmDDEOpen : public frmDDEMenus {
protected:
    frmDDEOpen() {
        std::filesystem::current_path(folder.path());
        test::writeFile(folder / "Velmora.RemindDB",
                        test::readFile(test::repoFile("data/first-light.RemindDB")));
        db.DBFullName = (folder / "Velmora.RemindDB").string();
    }
    ~frmDDEOpen() override { std::filesystem::current_path(before); }
    /// The window with the events of the sample, one of them current.
    void loadWithRow() {
        load();
        add(objectAt<calEvent>(*period.mCol, 1));
        const auto first = objectAt<calEvent>(*period.mCol, 1);
        GUID = first->GUID;
        base = first->VLBase;
        window->AddItemR(first, kNewRemindersGrid);
        window->ShowHide();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        ASSERT_TRUE(window->SelectGUID(GUID));
    }
    void makeBase() const { test::writeFile(base, ""); }

    std::filesystem::path before = std::filesystem::current_path();
    std::string GUID;
    std::string base;
};

TEST_F(frmDDEOpen, ByButtonDoubleClickAndEnter) {
    loadWithRow();
    makeBase();
    const std::vector<std::string> command{joinPath(programFolder(), "VelmoraClipper.exe"),
                                           "VL://" + base + "/EvGUID/" + GUID};
    Grid& rows = grid(0);
    child<QPushButton>("butOpen").click();
    QTest::keyClick(&rows, Qt::Key_Return);
    QTest::mouseDClick(rows.viewport(), Qt::LeftButton, {},
                       rows.visualRect(rows.currentIndex()).center());
    EXPECT_EQ(started, (std::vector<std::vector<std::string>>{command, command, command}));
    EXPECT_FALSE(db.isOpen);
}

TEST_F(frmDDEOpen, SaysWhatIsMissing) {
    loadWithRow();
    child<QPushButton>("butOpen").click();
    ASSERT_EQ(boxes.shown.size(), 1U);
    EXPECT_EQ(boxes.shown[0].title, "Missing VLBase...");
    EXPECT_TRUE(started.empty());
    makeBase();
    starts = false;
    child<QPushButton>("butOpen").click();
    EXPECT_TRUE(child<QLabel>("lblStatus").text().startsWith("VelmoraClipper.exe could not"));
    // Until another row is looked at.
    window->RemoveGUID(GUID, kNewRemindersGrid);
    EXPECT_FALSE(child<QLabel>("lblStatus").text().startsWith("VelmoraClipper"));
}

TEST_F(frmDDEMenus, WithoutARowThereIsNothingToOpen) {
    load();
    EXPECT_FALSE(child<QPushButton>("butOpen").isEnabled());
    takeIn(test::event("{1}", "Meeting", someFriday(), 15));
    EXPECT_FALSE(child<QPushButton>("butOpen").isEnabled());
    window->FirstNewRowCurrent();
    EXPECT_TRUE(child<QPushButton>("butOpen").isEnabled());
    window->RemoveGUID("{1}", kNewRemindersGrid);
    EXPECT_FALSE(child<QPushButton>("butOpen").isEnabled());
}

TEST_F(frmDDEMenus, TheGridsTellWhatTheirKeysAskFor) {
    load();
    window->ShowHide();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    takeIn(test::event("{1}", "Meeting", someFriday(), 15));
    window->FirstNewRowCurrent();
    QSignalSpy dismissed(&grid(0), &Grid::dismissAsked);
    QTest::keyClick(&grid(0), Qt::Key_Delete);
    QTest::keyClick(&grid(0), Qt::Key_Delete, Qt::ShiftModifier);
    ASSERT_EQ(dismissed.count(), 2);
    EXPECT_FALSE(dismissed[0][0].toBool());
    EXPECT_TRUE(dismissed[1][0].toBool());
}

}  // namespace
}  // namespace vl
