#include "app/Module1.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>

#include "Environment.h"
#include "app/Files.h"
#include "app/TimeText.h"
#include "base/ErrorState.h"

namespace vl {
namespace {

namespace fs = std::filesystem;
using test::readFile;
using test::TempFolder;
using test::Variable;
using test::writeFile;

// The data folder is one of the test's own.
class EntryProcedure : public testing::Test {
protected:
    EntryProcedure() { fs::create_directory(folder / "db"); }
    std::string in(const std::string& name) const { return (folder / name).string(); }
    static CommandLine line(const std::string& text) {
        const std::string arguments[] = {text};
        return readCommandLine(arguments);
    }

    TempFolder folder;
    const Variable data{"XDG_DATA_HOME", in("share").c_str()};
    const Variable debug{"VL_DEBUG", nullptr};
};

TEST_F(EntryProcedure, NamesDatabaseAndFolderAsTheCommandLineDoes) {
    struct Case {
        const char* line;
        const char* DBFolder;
        const char* DBFullName;
    };
    static constexpr Case cases[] = {
        {"", "", ""},
        {"   ", "", ""},
        {"/DB=", "", ""},
        {"/DB", "", ""},
        {"/x=C:\\A=B", "C:\\A", "C:\\A\\Velmora.RemindDB"},
        {"/DB=D:\\Data\\Velmora", "D:\\Data\\Velmora", "D:\\Data\\Velmora\\Velmora.RemindDB"},
        {"/DB=C:\\A /Other=C:\\B", "C:\\A ", "C:\\A \\Velmora.RemindDB"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.line);
        const Module1 shared(line(c.line));
        EXPECT_EQ(shared.values.DBFolder, c.DBFolder);
        EXPECT_EQ(shared.db.DBFullName, c.DBFullName);
    }
}

#ifndef _WIN32
TEST_F(EntryProcedure, PointsTheSettingsAtTheDataFolder) {
    const Module1 shared(line(""));
    EXPECT_EQ(shared.values.AppDataFolder, in("share/Velmora"));
    EXPECT_TRUE(fs::is_directory(shared.values.AppDataFolder));
    EXPECT_EQ(shared.settings.filename, in("share/Velmora/VLReminders.ini"));
    EXPECT_FALSE(fileExists(shared.settings.filename)) << "reading it makes none";
    EXPECT_FALSE(shared.values.DebugMode);
    EXPECT_FALSE(shared.values.IsPortable);
    EXPECT_EQ(shared.values.ShortTimeFormat, shortTimeFormat());
}

TEST_F(EntryProcedure, CopiesTheTemplateWhereThereIsNoDatabase) {
    fs::create_directories(folder / "share/Velmora");
    writeFile(folder / "share/Velmora/Velmora.RemindDB", "template");
    CommandLine named;
    named.DBFolder = in("db");
    {
        const Module1 shared(named);
        EXPECT_EQ(shared.db.DBFullName, in("db/Velmora.RemindDB"));
    }
    EXPECT_EQ(readFile(folder / "db/Velmora.RemindDB"), "template");
    writeFile(folder / "db/Velmora.RemindDB", "in use");
    { const Module1 again(named); }
    EXPECT_EQ(readFile(folder / "db/Velmora.RemindDB"), "in use");
}

// Nothing is there, nothing can be made: no step keeps the next one from being taken.
TEST_F(EntryProcedure, ComesToItsEndWhateverFails) {
    writeFile(folder / "share", "in the way");
    CommandLine named;
    named.DBFolder = in("nowhere");
    ErrorState::set(ErrNo::Locked);
    const Module1 shared(named);
    EXPECT_EQ(ErrorState::number(), ErrNo::Locked);
    ErrorState::clear();
    EXPECT_EQ(shared.values.AppDataFolder, in("share/Velmora"));
    EXPECT_EQ(shared.db.DBFullName, in("nowhere/Velmora.RemindDB"));
    EXPECT_EQ(shared.settings.GetIni("Reminders", "NotifType", "D"), "D");
    EXPECT_FALSE(shared.settings.CanSave());
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()), 2);
}

TEST_F(EntryProcedure, ADevelopmentRunHasItsDataBesideTheCurrentFolder) {
    const Variable asked("VL_DEBUG", "1");
    const Module1 shared(line(""));
#ifdef NDEBUG
    EXPECT_FALSE(shared.values.DebugMode);
    EXPECT_EQ(shared.values.AppDataFolder, in("share/Velmora"));
#else
    EXPECT_TRUE(shared.values.DebugMode);
    EXPECT_EQ(shared.values.AppDataFolder, "../VLPv128/AppData");
    EXPECT_EQ(shared.settings.filename, "../VLPv128/AppData/VLReminders.ini");
    EXPECT_FALSE(fs::exists(folder / "share"));
#endif
}
#endif

}  // namespace
}  // namespace vl
