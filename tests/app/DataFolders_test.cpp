#include "app/DataFolders.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <iterator>
#include <limits>

#include "Environment.h"
#include "app/Files.h"
#include "base/ErrorState.h"

namespace vl {
namespace {

namespace fs = std::filesystem;
using test::readFile;
using test::TempFolder;
using test::Variable;
using test::writeFile;

class Folders : public testing::Test {
protected:
    std::string make(const std::string& name) {
        fs::create_directory(folder / name);
        return (folder / name).string();
    }
    TempFolder folder;
};

TEST_F(Folders, AreBesideTheProgramInThePortableLayout) {
    const std::string program = make("program");
    EXPECT_FALSE(isPortable(program));
    writeFile(folder / "program/vlreminders.exe", "");
    writeFile(folder / "program/x.exe.Manifest.bak", "");
    fs::create_directory(folder / "program/folder.exe.Manifest");
    EXPECT_FALSE(isPortable(program));
    writeFile(folder / "program/any.EXE.manifest", "");
    EXPECT_TRUE(isPortable(program));
    EXPECT_EQ(findAppDataFolder(program, false), joinPath(program, "AppData"));
    EXPECT_FALSE(fileExists(joinPath(program, "AppData")));  // nobody makes it
    EXPECT_FALSE(isPortable(program + "/missing"));
    EXPECT_FALSE(isPortable(""));
}

#ifndef _WIN32
TEST_F(Folders, AreTheSystemsOtherwise) {
    const Variable data("XDG_DATA_HOME", (folder / "share").c_str());
    EXPECT_EQ(findAppDataFolder(make("program"), false), (folder / "share/Velmora").string());
    EXPECT_TRUE(fs::is_directory(folder / "share/Velmora"));
    EXPECT_EQ(findAppDataFolder(make("program"), true), "../VLPv128/AppData");
}
#endif

TEST_F(Folders, GetTheTemplateOnce) {
    const std::string data = make("data");
    const std::string first = make("first");
    const std::string second = make("second");
    EXPECT_FALSE(provideTemplate(data, {first, second}));
    writeFile(folder / "second/Velmora.RemindDB", "template");
    EXPECT_TRUE(provideTemplate(data, {first, second}));
    EXPECT_EQ(readFile(folder / "data/Velmora.RemindDB"), "template");
    writeFile(folder / "first/Velmora.RemindDB", "newer");
    EXPECT_TRUE(provideTemplate(data, {first, second}));
    EXPECT_EQ(readFile(folder / "data/Velmora.RemindDB"), "template");  // never again
}

TEST_F(Folders, GetTheDatabaseFromTheTemplate) {
    const std::string data = make("data");
    const std::string db = make("db");
    EXPECT_EQ(provideDatabase("", data), "");
    EXPECT_EQ(provideDatabase(db, data), joinPath(db, "Velmora.RemindDB"));  // no template either
    EXPECT_TRUE(fs::is_empty(db));
    writeFile(folder / "data/Velmora.RemindDB", "template");
    EXPECT_EQ(provideDatabase(db, data), joinPath(db, "Velmora.RemindDB"));
    EXPECT_EQ(readFile(folder / "db/Velmora.RemindDB"), "template");
    writeFile(folder / "db/Velmora.RemindDB", "in use");
    EXPECT_EQ(provideDatabase(db, data), joinPath(db, "Velmora.RemindDB"));
    EXPECT_EQ(readFile(folder / "db/Velmora.RemindDB"), "in use");
    EXPECT_EQ(std::distance(fs::directory_iterator(db), fs::directory_iterator()), 1);
}

TEST_F(Folders, LoseACopyThatCannotBeDone) {
    ErrorState::set(ErrNo::Locked);
    const std::string data = make("data");
    EXPECT_FALSE(copyIfMissing(data + "/missing", data + "/copy"));
    writeFile(folder / "data/x", "x");
    EXPECT_FALSE(copyIfMissing(data + "/x", data + "/no folder/copy"));
    EXPECT_FALSE(copyIfMissing(data, data + "/copy"));  // a folder is no file
    EXPECT_EQ(provideDatabase("D:\\Nowhere\\Sub", data).substr(0, 15), "D:\\Nowhere\\Sub\\");
    EXPECT_EQ(ErrorState::number(), ErrNo::Locked);
    ErrorState::clear();
}

TEST(Placement, StaysOnTheScreen) {
    struct Case {
        double value, screen, window;
        int edge;
    };
    static constexpr Case cases[] = {
        {100, 1280, 560, 100},   {720, 1280, 560, 720}, {721, 1280, 560, 720}, {-5, 1280, 560, 0},
        {900, 1280, 2000, 0},    {640, 1280, 560, 640}, {0.5, 100, 10, 0},     {1.5, 100, 10, 2},
        {1e300, 1280, 560, 720}, {9, 1000, 0, 9},  // as texts 9 would be larger than 1000
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.value << " on " << c.screen);
        EXPECT_EQ(clampedEdge(c.value, c.screen, c.window), c.edge);
    }
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(clampedEdge(infinity, infinity, 0), 2147483647);
    EXPECT_EQ(clampedEdge(std::nan(""), 100, 10), 0);
}

TEST(Placement, ComesFromTheSettings) {
    const TempFolder folder;
    Settings s;
    s.filename = (folder / "x.ini").string();
    WindowPlacement p = readPlacement(s, {1280, 800}, {560, 380});
    EXPECT_EQ(p.left, 640);
    EXPECT_EQ(p.top, 400);
    EXPECT_FALSE(p.width || p.height);
    s.SaveIni("Window", "Left", "5000");
    s.SaveIni("Window", "Top", "12.5 px");
    s.SaveIni("Window", "Width", "700");
    s.SaveIni("Window", "Height", "-1");
    p = readPlacement(s, {1280, 800}, {560, 380});
    EXPECT_EQ(p.left, 720);
    EXPECT_EQ(p.top, 12);
    EXPECT_EQ(p.width, 700);
    EXPECT_FALSE(p.height);
}

}  // namespace
}  // namespace vl
