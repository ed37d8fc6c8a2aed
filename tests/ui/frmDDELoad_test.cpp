// Start with a database that cannot be read, help, and what the settings keep.
#include <gtest/gtest.h>
#ifndef _WIN32
#include <fcntl.h>
#include <unistd.h>
#endif

#include <filesystem>
#include <fstream>

#include <QLabel>
#include <QTest>

#include "WindowTest.h"

namespace vl {
namespace {

namespace fs = std::filesystem;
using test::readFile;
using test::repoFile;
using test::writeFile;

class frmDDELoad : public test::WindowTest {
protected:
    frmDDELoad() {
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

// What was marked as done is read by nothing else: it can be looked at, and reactivated.
TEST_F(frmDDELoad, RefreshReadsAllThereIs) {
    settings.SaveIni("Reminders", "DBVersion", "4");  // an older one forgets what was done
    writeFile(path, sample());
    load();
    ASSERT_GT(held(), 1U);
    const std::string GUID = objectAt<calEvent>(*period.mCol, 1)->GUID;
    window.reset();
    EXPECT_EQ(db.Execute("UPDATE Reminders SET Status=\"AllDone\" WHERE GUID=\"" + GUID + "\""), 1);
    db.CloseDB();
    load();
    EXPECT_FALSE(period.mCol->Exists(GUID));
    refresh();
    ASSERT_TRUE(period.mCol->Exists(GUID));
    EXPECT_EQ(objectAt<calEvent>(*period.mCol, GUID)->status, "AllDone");
    EXPECT_TRUE(reminders.mCol->Exists(GUID));
}

// ---- what is wrong with the database

TEST_F(frmDDELoad, SaysWhatIsWrongWithTheDatabase) {
    struct Case {
        const char* what;
        std::string bytes;
        const char* said;
    };
    std::string encrypted = sample();
    encrypted[0x3E] = 'x';
    std::string later = sample();
    later[0x14] = 2;
    std::string damaged = sample();
    for (std::size_t i = 2 * std::size_t{4096}; i < damaged.size(); ++i) {
        damaged[i] = '\x7F';
    }
    const Case cases[] = {
        {"empty", "", "Velmora.RemindDB is empty, it is no Jet 4 database"},
        {"foreign", std::string(9000, 'x'), "Velmora.RemindDB is no Jet 4 database"},
        {"encrypted", encrypted, "Velmora.RemindDB is an encrypted database"},
        {"later", later,
         "Velmora.RemindDB is a database of a later generation (version 2), not Jet 4"},
        {"damaged", damaged, "Velmora.RemindDB is damaged (page "},
        {"half", sample().substr(0, 4096), "Velmora.RemindDB is damaged (page "},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        writeFile(path, c.bytes);
        load();
        EXPECT_TRUE(status().starts_with(c.said)) << status();
        EXPECT_TRUE(status().ends_with("; F5 tries again")) << status();
        EXPECT_TRUE(grid(2).emptyText().startsWith(c.said)) << plainText(grid(2).emptyText());
        EXPECT_EQ(readFile(path), c.bytes) << "nothing is written to it";
        writeFile(path, sample());
        refresh();
        EXPECT_FALSE(isTroubled()) << status();
        EXPECT_GT(held(), 0U);
        period.mCol = reminders.mCol = nullptr;
    }
}

TEST_F(frmDDELoad, SaysThatTheDatabaseIsNotThere) {
    load();
    EXPECT_EQ(status(), "Velmora.RemindDB is not there; F5 tries again");
    EXPECT_NE(child<QLabel>("lblStatus").toolTip().toStdString().find(path), std::string::npos);
    fs::create_directory(path);
    refresh();
    EXPECT_EQ(status(), "Velmora.RemindDB cannot be read (is no regular file); F5 tries again");
    fs::remove(path);
    writeFile(path, sample());
    refresh();
    EXPECT_FALSE(isTroubled()) << status();
    EXPECT_GT(held(), 0U);
    EXPECT_EQ(reminders.mCol->Count(), held());
}

#ifndef _WIN32
// Permissions mean nothing to root.
class Unprivileged {
public:
    Unprivileged() : changed_(geteuid() == 0 && seteuid(kNobody) == 0) {}
    ~Unprivileged() {
        if (changed_) {
            EXPECT_EQ(seteuid(0), 0);
        }
    }
    Unprivileged(const Unprivileged&) = delete;
    Unprivileged& operator=(const Unprivileged&) = delete;

private:
    static constexpr uid_t kNobody = 65534;
    bool changed_;
};

TEST_F(frmDDELoad, StartsWithADatabaseThatItMayNotRead) {
    writeFile(path, sample());
    fs::permissions(path, fs::perms::none);
    fs::permissions(folder.path(), fs::perms(0755));
    {
        const Unprivileged user;
        ASSERT_FALSE(std::ifstream(path).is_open()) << "whoever runs this may read everything";
        load();
    }
    EXPECT_EQ(status(), "Velmora.RemindDB cannot be read (Permission denied); F5 tries again");
    EXPECT_TRUE(child<QTimer>("TimerCheck").isActive());
    fs::permissions(path, fs::perms(0600));
    refresh();
    EXPECT_FALSE(isTroubled()) << status();
    EXPECT_GT(held(), 0U);
}

TEST_F(frmDDELoad, StartsInAFolderInWhichItMayNotWrite) {
    writeFile(path, sample());
    fs::permissions(path, fs::perms(0444));
    fs::permissions(folder.path(), fs::perms(0555));
    {
        const Unprivileged user;
        ASSERT_FALSE(std::ofstream(folder / "x").is_open()) << "whoever runs this may write";
        load();
        EXPECT_EQ(state.sNotifType, "D");
        window->SaveSettings();
    }
    EXPECT_FALSE(isTroubled()) << status();
    EXPECT_GT(held(), 0U);
    EXPECT_FALSE(fs::exists(settings.filename));
    EXPECT_EQ(readFile(path), sample());
    const auto& notice = child<QLabel>("lblNotice");
    EXPECT_FALSE(notice.isHidden());
    EXPECT_EQ(notice.text(), "Settings cannot be saved");
    EXPECT_EQ(plainText(notice.toolTip()), settings.filename);
    fs::permissions(folder.path(), fs::perms(0755));
    refresh();
    EXPECT_TRUE(notice.isHidden()) << plainText(notice.text());
}

TEST_F(frmDDELoad, StartsWithADatabaseThatAnotherProgramHasLocked) {
    writeFile(path, sample());
    const int file = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_GE(file, 0);
    struct flock whole {};
    whole.l_type = F_WRLCK;
    whole.l_whence = SEEK_SET;
    ASSERT_EQ(::fcntl(file, F_OFD_SETLK, &whole), 0);  // as a lock of another process
    load();
    EXPECT_TRUE(child<QTimer>("TimerCheck").isActive());
    EXPECT_TRUE(isTroubled());
    EXPECT_NE(status().find("is being written by"), std::string::npos) << status();
    EXPECT_EQ(held(), 0U);
    EXPECT_EQ(readFile(path), sample());
    ::close(file);
    refresh();
    EXPECT_FALSE(isTroubled()) << status();
    EXPECT_GT(held(), 0U);
}
#endif

TEST_F(frmDDELoad, SaysThatNoFolderWasNamed) {
    db.DBFullName.clear();
    load();
    EXPECT_EQ(status(), "No folder of a reminders database was named at the start");
}

TEST_F(frmDDELoad, KeepsItsRowsWhileTheFileCannotBeRead) {
    writeFile(path, sample());
    load();
    state.sPeriod = "D+30";
    window->DoPeriod();
    const std::size_t events = held();
    const std::size_t rows = listed(2).rowCount();
    ASSERT_GT(rows, 0U);
    const std::shared_ptr<GenCollection> before = reminders.mCol;
    fs::remove(path);
    refresh();
    EXPECT_EQ(status(), "Velmora.RemindDB is not there; F5 tries again");
    EXPECT_EQ(listed(2).rowCount(), rows);
    EXPECT_EQ(held(), events);
    EXPECT_EQ(reminders.mCol, before);
    writeFile(path, sample());
    refresh();
    EXPECT_EQ(listed(2).rowCount(), rows);
    EXPECT_FALSE(isTroubled()) << status();
}

// ---- rows that are never read

TEST_F(frmDDELoad, SaysThatEventsWithoutAStatusAreNotShown) {
    load();
    auto& notice = child<QLabel>("lblNotice");
    EXPECT_TRUE(notice.isHidden());
    db.DBFullName.clear();
    writeFile(path, sample());
    db.DBFullName = path;
    refresh();
    state.rowsWithoutStatus = 2;
    window->UpdateUI();
    EXPECT_FALSE(notice.isHidden());
    EXPECT_EQ(notice.text(), "2 events are not shown: they have no status");
    state.rowsWithoutStatus = 0;
    window->UpdateUI();
    EXPECT_TRUE(notice.isHidden());
}

TEST_F(frmDDELoad, SaysThatTheDatabaseIsDamaged) {
    load();
    auto& notice = child<QLabel>("lblNotice");
    std::string bytes = sample();
    bytes[36 * std::size_t{4096}] = 9;  // the page holds the JSON of one event
    writeFile(path, bytes);
    refresh();
    EXPECT_EQ(notice.text(), "The database is damaged: one event is missing, or a part of it");
    writeFile(path, sample());
    refresh();
    EXPECT_TRUE(notice.isHidden());
}

// ---- help

TEST_F(frmDDELoad, F1OpensTheWindowsHelp) {
    load();
    press(Qt::Key_F1);
    EXPECT_EQ(opened, std::vector<std::string>{"file:///help/index.html#5565"});
}

TEST_F(frmDDELoad, WithoutAHelpPageF1DoesNothing) {
    HelpBase.clear();
    load();
    press(Qt::Key_F1);
    EXPECT_TRUE(opened.empty());
}

// ---- timers and state

TEST_F(frmDDELoad, TheFirstCheckWaitsForNoTick) {
    load();
    EXPECT_TRUE(state.dLastUpdated.isZero()) << "not in the load handler either";
    EXPECT_TRUE(QTest::qWaitFor([this] { return !state.dLastUpdated.isZero(); }, 5000));
    EXPECT_EQ(child<QTimer>("TimerCheck").interval(), 20000);
}

TEST_F(frmDDELoad, SetsTimersAndState) {
    load();
    EXPECT_DOUBLE_EQ(state.OneMin * 1440, 1);
    EXPECT_EQ(state.pendingActions->Count(), 0U);
    const std::pair<const char*, int> intervals[] = {
        {"TimerCheck", 20000}, {"TimerUpdate", 1000}, {"TimerFlash", 500}, {"TimerActions", 50}};
    for (const auto& [name, interval] : intervals) {
        EXPECT_EQ(child<QTimer>(name).interval(), interval) << name;
    }
    EXPECT_TRUE(child<QTimer>("TimerCheck").isActive());
    for (const char* name : {"TimerActions", "TimerFlash", "TimerUpdate"}) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return !child<QTimer>(name).isActive(); })) << name;
    }
}

TEST_F(frmDDELoad, ChecksEveryTenSecondsWhileShownAndEveryTwoInADevelopmentRun) {
    for (const bool development : {false, true}) {
        SCOPED_TRACE(development);
        DebugMode = development;
        load();
        const auto interval = [this] { return child<QTimer>("TimerCheck").interval(); };
        EXPECT_EQ(interval(), 20000) << "hidden";
        window->ShowHide();
        EXPECT_EQ(interval(), development ? 2000 : 10000);
        window->ShowHide();
        EXPECT_EQ(interval(), 20000) << "hidden";
    }
}

// ---- settings

TEST_F(frmDDELoad, TheWindowDoesNotWanderOverRestarts) {
    using Size = void (QWidget::*)();
    static constexpr std::pair<const char*, Size> kSizes[] = {
        {"normal", &QWidget::showNormal},
        {"minimized", &QWidget::showMinimized},
        {"maximized", &QWidget::showMaximized},
        {"full", &QWidget::showFullScreen}};
    const auto saved = [this] {
        window->SaveSettings();
        return settings.GetIniSection("Window");
    };
    for (const auto& [name, size] : kSizes) {
        SCOPED_TRACE(name);
        load();
        window->ShowHide();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
        window->move(60, 70);
        window->resize(520, 330);
        QTest::qWait(1);
        ASSERT_NE(window->geometry().topLeft(), window->pos()) << "there is a frame to tell from";
        const std::string before = saved();
        ASSERT_EQ(before.substr(0, 15), std::string("Left=60\0Top=70\0", 15));
        for (int restart = 0; restart < 3; ++restart) {
            (window.get()->*size)();
            QTest::qWait(1);
            EXPECT_EQ(saved(), before);
            load();
            window->ShowHide();
            ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
        }
    }
}

TEST_F(frmDDELoad, OlderFlagsAreTakenOverOnceAndThenGone) {
    settings.SaveIni("Reminders", "NotifType", "D");
    settings.SaveIni("Reminders", "Popup", "1");
    load();
    EXPECT_EQ(state.sNotifType, "P");
    settings.SaveIni("Reminders", "System", "1");
    load();
    EXPECT_EQ(state.sNotifType, "S");
    window->SaveSettings();
    EXPECT_EQ(ini("Reminders", "Popup"), "0");
    EXPECT_EQ(ini("Reminders", "System"), "0");
    EXPECT_EQ(ini("Reminders", "NotifType"), "S");
    state.sNotifType = "T";
    window->SaveSettings();
    load();
    EXPECT_EQ(state.sNotifType, "T");
}

TEST_F(frmDDELoad, FlagsAndVersionAreWholeNumbers) {
    struct Case {
        const char* text;
        int number;
    };
    static constexpr Case cases[] = {{"", 0},    {"0", 0},      {"-1", -1},
                                     {" 7 ", 7}, {"yes", 0},    {"0.4", 0},
                                     {"0.6", 1}, {"2 of 3", 2}, {"1e99", 2147483647}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        settings.SaveIni("Reminders", "Muted", c.text);
        settings.SaveIni("Reminders", "DBVersion", c.text);
        load();
        EXPECT_EQ(state.bMuted, c.number != 0);
        EXPECT_EQ(state.DBVersion, c.number);
    }
}

TEST_F(frmDDELoad, AddsItsColumnsToTheFileOfAnOlderHost) {
    const auto make = [&] {
        fs::remove(path);
        jet::Database::create(path, [](jet::Database& file) {
            file.createTable("Reminders",
                             std::vector<jet::NewColumn>{{"GUID", jet::ColumnType::Text},
                                                         {"Status", jet::ColumnType::Text}});
        });
    };
    make();
    load();
    EXPECT_EQ(state.DBVersion, 4);
    for (const char* column : {"id", "NextReminder", "Dismissed", "Hidden"}) {
        EXPECT_TRUE(db.FieldExistsDB("Reminders", column)) << column;
    }
    window->SaveSettings();
    EXPECT_EQ(ini("Reminders", "DBVersion"), "4");
    make();
    settings.SaveIni("Reminders", "DBVersion", "2");
    load();
    EXPECT_FALSE(db.FieldExistsDB("Reminders", "NextReminder")) << "that step is behind it";
    EXPECT_TRUE(db.FieldExistsDB("Reminders", "Hidden"));
}

TEST_F(frmDDELoad, AnUnwritableSettingsFileStillLetsTheWindowStart) {
    settings.filename = (folder / "missing" / "VLReminders.ini").string();
    load();
    EXPECT_EQ(state.sNotifType, "D");
    window->SaveSettings();
    EXPECT_FALSE(fs::exists(settings.filename));
    EXPECT_EQ(child<QLabel>("lblNotice").text(), "Settings cannot be saved");
    EXPECT_TRUE(boxes.shown.empty());
    fs::create_directory(folder / "missing");
    refresh();
    EXPECT_TRUE(child<QLabel>("lblNotice").isHidden());
}

}  // namespace
}  // namespace vl
