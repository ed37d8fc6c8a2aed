#include "app/Files.h"

#include <gtest/gtest.h>
#ifndef _WIN32
#include <sys/stat.h>
#endif

#include <filesystem>

#include "Environment.h"
#include "base/ErrorState.h"

namespace vl {
namespace {

namespace fs = std::filesystem;
using test::readFile;
using test::TempFolder;
using test::Variable;
using test::writeFile;

TEST(Files, ExistWhenTheirAttributesCanBeRead) {
    const TempFolder folder;
    writeFile(folder / "a.txt", "");
    ErrorState::set(ErrNo::Locked);
    EXPECT_TRUE(fileExists((folder / "a.txt").string()));
    EXPECT_TRUE(fileExists(folder.path().string()));
    EXPECT_FALSE(fileExists((folder / "b.txt").string()));
    EXPECT_FALSE(fileExists(""));
    EXPECT_FALSE(fileExists(std::string(10'000, 'x')));
    EXPECT_FALSE(fileExists((folder / "a.txt" / "below").string()));
    EXPECT_EQ(ErrorState::number(), ErrNo::Locked);
    ErrorState::clear();
}

TEST(Files, HaveOneFullPathHoweverItIsGiven) {
    const TempFolder folder;
    fs::create_directory(folder / "sub");
    writeFile(folder / "sub" / "a.txt", "");
    fs::create_directory_symlink(folder / "sub", folder / "link");
    const std::string full = fullPath((folder / "sub" / "a.txt").string());
    EXPECT_TRUE(fs::path(full).is_absolute());
    EXPECT_EQ(fullPath(full), full);
    EXPECT_EQ(fullPath((folder / "link" / "a.txt").string()), full);
    EXPECT_EQ(fullPath((folder / "sub" / ".." / "link" / "." / "a.txt").string()), full);
    const fs::path before = fs::current_path();
    fs::current_path(folder.path());
    EXPECT_EQ(fullPath("sub/a.txt"), full);
    fs::current_path(before);
    const std::string none = fullPath((folder / "link" / "b.txt").string());
    EXPECT_EQ(fs::path(none).parent_path(), fs::path(full).parent_path()) << "not there";
    EXPECT_EQ(fullPath(""), "");
}

TEST(Files, TakePathsApart) {
    EXPECT_EQ(fileNameOf("C:\\Data\\a.b.txt"), "a.b.txt");
    EXPECT_EQ(fileNameOf("/data/a.txt"), "a.txt");
    EXPECT_EQ(fileNameOf("C:\\Data/a.txt"), "a.txt");
    EXPECT_EQ(fileNameOf("a.txt"), "a.txt");
    EXPECT_EQ(fileNameOf("C:\\Data\\"), "");
    EXPECT_EQ(fileNameOf(""), "");
    EXPECT_EQ(pathWithoutExtension("C:\\Data\\a.b.txt"), "C:\\Data\\a.b");
    EXPECT_EQ(pathWithoutExtension("/data/readme"), "/data/readme");
    EXPECT_EQ(pathWithoutExtension("C:\\a.b\\readme"), "C:\\a");  // the last one, wherever
    EXPECT_EQ(pathWithoutExtension(""), "");
}

TEST(Files, AreJoinedWithTheFoldersOwnSeparator) {
#ifndef _WIN32
    EXPECT_EQ(joinPath("/data", "x"), "/data/x");
    EXPECT_EQ(joinPath("data", "x"), "data/x");
    EXPECT_EQ(joinPath("/data\\odd", "x"), "/data\\odd/x");
#endif
    EXPECT_EQ(joinPath("D:\\Data", "x"), "D:\\Data\\x");
    EXPECT_EQ(joinPath("D:\\", "x"), "D:\\x");
    EXPECT_EQ(joinPath("/", "x"), "/x");
    EXPECT_EQ(joinPath("", "x"), "x");
}

TEST(Files, DevelopmentRunsAreAskedFor) {
    {
        const Variable unset("VL_DEBUG", nullptr);
        EXPECT_FALSE(isDevelopmentRun());
    }
    const Variable other("VL_DEBUG", "yes");
    EXPECT_FALSE(isDevelopmentRun());
    const Variable asked("VL_DEBUG", "1");
#ifdef NDEBUG
    EXPECT_FALSE(isDevelopmentRun());
#else
    EXPECT_TRUE(isDevelopmentRun());
#endif
}

#ifndef _WIN32
TEST(DataFolder, FollowsTheEnvironmentAndIsMade) {
    const TempFolder home;
    const Variable h("HOME", home.path().c_str());
    {
        const Variable data("XDG_DATA_HOME", nullptr);
        const Variable config("XDG_CONFIG_HOME", "relative/ignored");
        EXPECT_EQ(dataFolder(true), home.path().string() + "/.local/share/Velmora");
        EXPECT_EQ(dataFolder(false), home.path().string() + "/.config/Velmora");
        EXPECT_TRUE(fs::is_directory(home.path() / ".local/share/Velmora"));
        EXPECT_TRUE(fs::is_directory(home.path() / ".config/Velmora"));
    }
    const Variable data("XDG_DATA_HOME", (home / "d").c_str());
    const Variable config("XDG_CONFIG_HOME", (home / "c").c_str());
    EXPECT_EQ(dataFolder(true), (home / "d").string() + "/Velmora");
    EXPECT_EQ(dataFolder(false), (home / "c").string() + "/Velmora");
}

TEST(DataFolder, IsNamedEvenWhenItCannotBeMade) {
    const TempFolder home;
    writeFile(home / "file", "");
    const Variable data("XDG_DATA_HOME", (home / "file").c_str());
    ErrorState::set(ErrNo::Locked);
    EXPECT_EQ(dataFolder(true), (home / "file").string() + "/Velmora");
    EXPECT_EQ(ErrorState::number(), ErrNo::Locked);
    ErrorState::clear();
}

TEST(Files, TheProgramsFolderHoldsThisProgram) {
    EXPECT_TRUE(fileExists(programFolder() + "/services_test"));
}

// A script in a folder that comes first in PATH. It takes down what it was told.
class Opener : public testing::Test {
protected:
    void install(const std::string& name, const std::string& script) {
        writeFile(folder / name, "#!/bin/sh\n" + script);
        fs::permissions(folder / name, fs::perms(0755));
    }
    // The opener is not waited for; reading a pipe does that.
    std::string note() { return readFile(pipe); }

    void SetUp() override { ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0); }

    TempFolder folder;
    fs::path pipe = folder / "note";
    std::string path = folder.path().string() + ":/bin:/usr/bin";
    Variable path_{"PATH", path.c_str()};
};

TEST_F(Opener, GetsTheDocumentAsOneArgumentWithoutAShell) {
    install("xdg-open", "printf '%s|%s' \"$#\" \"$1\" > '" + pipe.string() + "'\n");
    EXPECT_TRUE(openDocument("https://example.com/a?b=$(date)&c='d e'#5565"));
    EXPECT_EQ(note(), "1|https://example.com/a?b=$(date)&c='d e'#5565");
    EXPECT_TRUE(openDocument("-odd name"));
    EXPECT_EQ(note(), "1|./-odd name");
}

TEST_F(Opener, AProgramGetsItsArgumentsAsTheyStand) {
    const std::string program = folder / "any program";
    install("any program", "printf '%s|%s|%s' \"$#\" \"$1\" \"$2\" > '" + pipe.string() + "'\n");
    EXPECT_TRUE(startProgram({program, "VL://C:\\My Data\\a\"b.vlb/EvGUID/{1}", "$(date) *"}));
    EXPECT_EQ(note(), "2|VL://C:\\My Data\\a\"b.vlb/EvGUID/{1}|$(date) *");
    EXPECT_FALSE(startProgram({(folder / "no program").string()}));
    EXPECT_FALSE(startProgram({}));
}

TEST_F(Opener, SaysWhenNothingWasStarted) {
    const Variable nowhere("PATH", (folder / "nothing").c_str());
    ErrorState::set(ErrNo::Locked);
    EXPECT_FALSE(openDocument("x"));
    EXPECT_FALSE(openDocument(""));
    {
        install("xdg-open", "");
        writeFile(folder / "xdg-open", "#!/no/such/interpreter\n");
        const Variable here("PATH", folder.path().c_str());
        EXPECT_FALSE(openDocument("x"));  // there, but does not start
    }
    EXPECT_EQ(ErrorState::number(), ErrNo::Locked);
    ErrorState::clear();
}
#endif

TEST(FileAddress, EscapesWhatAnAddressCannotHold) {
    struct Case {
        const char* path;
        const char* address;
    };
    static constexpr Case cases[] = {
        {"/usr/share/vlreminders/help/index.html", "file:///usr/share/vlreminders/help/index.html"},
        {"/home/a b/100%#?", "file:///home/a%20b/100%25%23%3F"},
        {"/home/J\xC3\xBCrgen", "file:///home/J%C3%BCrgen"},
        {"/a\\b", "file:///a%5Cb"},
        {"C:\\Program Files\\VL", "file:///C:/Program%20Files/VL"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(fileAddress(c.path), c.address);
    }
}

}  // namespace
}  // namespace vl
