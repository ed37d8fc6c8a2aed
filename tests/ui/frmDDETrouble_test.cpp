// A database that cannot be read, or not all of it.
#include <gtest/gtest.h>
#ifndef _WIN32
#include <fcntl.h>
#include <unistd.h>
#endif

#include <filesystem>
#include <fstream>

#include <QLabel>
#include <QTest>

#include "LoadTest.h"

namespace vl {
namespace {

namespace fs = std::filesystem;
using test::readFile;
using test::repoFile;
using test::writeFile;

using frmDDETrouble = test::LoadTest;

TEST_F(frmDDETrouble, SaysWhatIsWrongWithTheDatabase) {
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

TEST_F(frmDDETrouble, SaysThatTheDatabaseIsNotThere) {
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

TEST_F(frmDDETrouble, StartsWithADatabaseThatItMayNotRead) {
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

TEST_F(frmDDETrouble, StartsInAFolderInWhichItMayNotWrite) {
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

TEST_F(frmDDETrouble, StartsWithADatabaseThatAnotherProgramHasLocked) {
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

TEST_F(frmDDETrouble, SaysThatNoFolderWasNamed) {
    db.DBFullName.clear();
    load();
    EXPECT_EQ(status(), "No folder of a reminders database was named at the start");
}

TEST_F(frmDDETrouble, KeepsItsRowsWhileTheFileCannotBeRead) {
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

TEST_F(frmDDETrouble, SaysThatEventsWithoutAStatusAreNotShown) {
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

TEST_F(frmDDETrouble, SaysThatTheDatabaseIsDamaged) {
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

}  // namespace
}  // namespace vl
