// The column "Field": the names stand in the host's own file, which is asked when somebody looks.
#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>

#include "WindowTest.h"

namespace vl {
namespace {

class frmDDEFields : public test::WindowTest {
protected:
    frmDDEFields() {
        path = (folder / "Home.vldb").string();
        test::writeFile(path, test::readFile(test::repoFile("data/first-light.RemindDB")));
        execute("CREATE TABLE [\u00AFFields] (FieldID LONG, Name TEXT(50))");
        execute("INSERT INTO [\u00AFFields] (FieldID, Name) VALUES (4, \"Appointments\")");
        execute("INSERT INTO [\u00AFFields] (FieldID, Name) VALUES (7, \"Birthdays\")");
    }
    void execute(const std::string& statement) {
        DBRemindUtils host;
        host.DBFullName = path;
        host.Execute(statement);
        EXPECT_EQ(host.LastError(), ErrNo::None) << statement << ": " << host.LastErrorText();
    }
    std::shared_ptr<calEvent> eventOf(const std::string& GUID, std::int32_t field) {
        auto e = test::event(GUID, "Subject of " + GUID, test::someFriday().addMinutes(30), 15);
        e->VLBase = path;
        e->FieldID = field;
        return e;
    }
    void loadTwo() {
        load();
        add(eventOf("{a}", 4));
        add(eventOf("{b}", 7));
        takeIn(eventOf("{a}", 4));
        window->DoPeriod();
    }
    /// As the grid shows it.
    std::string field(int tab, const std::string& GUID) const {
        const GridModel& model = listed(tab).rows();
        const auto row = model.find(GUID);
        return row ? plainText(model.index(*row, columnIndex(model.columns(), CIDField))
                                   .data()
                                   .toString())
                   : "(no row)";
    }
    bool becomes(int tab, const std::string& GUID, const std::string& name) const {
        return QTest::qWaitFor([&] { return field(tab, GUID) == name; }, 5000);
    }
    bool isAsking() const { return child<QTimer>("TimerFields").isActive(); }

    std::string path;
};

TEST_F(frmDDEFields, AreNamedInEveryGridOnceTheWindowIsSeen) {
    loadTwo();
    window->ShowHide();
    EXPECT_TRUE(becomes(kNewRemindersGrid, "{a}", "Appointments"));
    EXPECT_TRUE(becomes(kAllRemindersGrid, "{a}", "Appointments"));
    EXPECT_TRUE(becomes(kEventsGrid, "{b}", "Birthdays"));
    takeIn(eventOf("{c}", 7));
    EXPECT_EQ(field(kNewRemindersGrid, "{c}"), "Birthdays") << "known already";
}

TEST_F(frmDDEFields, NobodyIsAskedWhileTheWindowIsHiddenOrTheColumnIs) {
    loadTwo();
    EXPECT_FALSE(isAsking());
    for (int i = 0; i < kGridCount; ++i) {
        grid(i).showColumn(columnIndex(gridColumns(i), CIDField), false);
    }
    window->ShowHide();
    window->DoPeriod();
    EXPECT_FALSE(isAsking());
    EXPECT_EQ(field(kEventsGrid, "{b}"), "");
    grid(kEventsGrid).showColumn(columnIndex(gridColumns(kEventsGrid), CIDField), true);
    EXPECT_TRUE(becomes(kEventsGrid, "{b}", "Birthdays"));
    EXPECT_FALSE(isAsking());
    window->HideMe();
    window->DoPeriod();
    EXPECT_FALSE(isAsking());
}

TEST_F(frmDDEFields, ARefillKeepsThemAndRepaintsNothing) {
    loadTwo();
    window->ShowHide();
    ASSERT_TRUE(becomes(kEventsGrid, "{b}", "Birthdays"));
    period.mCol->Remove("{b}");
    add(eventOf("{b}", 7));  // read anew, so that it does not know its field's name
    QSignalSpy changed(&listed(kEventsGrid).rows(), &QAbstractItemModel::dataChanged);
    window->DoPeriod();
    EXPECT_EQ(field(kEventsGrid, "{b}"), "Birthdays");
    EXPECT_TRUE(QTest::qWaitFor([&] { return !isAsking(); }));
    EXPECT_EQ(changed.count(), 0);
}

TEST_F(frmDDEFields, AFieldThatWasRenamedIsSeenAtTheNextLook) {
    loadTwo();
    window->ShowHide();
    ASSERT_TRUE(becomes(kEventsGrid, "{b}", "Birthdays"));
    execute("UPDATE [\u00AFFields] SET Name = \"Anniversaries\" WHERE FieldID = 7");
    window->HideMe();
    window->ShowHide();
    EXPECT_TRUE(becomes(kEventsGrid, "{b}", "Anniversaries"));
}

TEST_F(frmDDEFields, AWindowThatIsBroughtBackFromTheTaskBarAsksForThem) {
    hasTray = false;  // it starts minimized
    loadTwo();
    window->showMinimized();
    window->DoPeriod();
    EXPECT_FALSE(isAsking());
    window->showNormal();
    EXPECT_TRUE(becomes(kEventsGrid, "{b}", "Birthdays"));
}

TEST_F(frmDDEFields, RowsAreSortedByTheNamesThatCameLate) {
    load();
    add(eventOf("{a}", 7));
    add(eventOf("{b}", 4));
    window->DoPeriod();
    Grid& events = grid(kEventsGrid);
    events.sortByColumn(columnIndex(gridColumns(kEventsGrid), CIDField), Qt::AscendingOrder);
    window->ShowHide();
    ASSERT_TRUE(becomes(kEventsGrid, "{a}", "Birthdays"));
    EXPECT_EQ(plainText(events.model()->index(0, 0).data(GridModel::SummaryRole).toString()),
              "Subject of {b}");
}

TEST_F(frmDDEFields, AHostThatIsGoneLeavesThemEmpty) {
    std::filesystem::remove(path);
    loadTwo();
    window->ShowHide();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !isAsking(); }));
    EXPECT_EQ(field(kEventsGrid, "{b}"), "");
}

}  // namespace
}  // namespace vl
