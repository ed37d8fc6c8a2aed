#include "app/DataFolders.h"

#include <gtest/gtest.h>

#ifndef _WIN32
#include <sys/stat.h>
#endif

#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

#include "Environment.h"
#include "app/Files.h"
#ifndef _WIN32
#include "app/platform/Publish.h"
#endif
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

#ifndef _WIN32
TEST_F(Folders, NeverReplaceALinkThatPointsNowhere) {
    const std::string data = make("data");
    const std::string db = make("db");
    writeFile(folder / "data/Velmora.RemindDB", "template");
    fs::create_symlink(folder / "not mounted/Velmora.RemindDB", folder / "db/Velmora.RemindDB");
    const fs::path link = folder / "db/Velmora.RemindDB";
    EXPECT_EQ(provideDatabase(db, data), link.string());
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_FALSE(fileExists(link.string()));
    EXPECT_FALSE(copyIfMissing(data + "/Velmora.RemindDB", link.string()));
    EXPECT_EQ(std::distance(fs::directory_iterator(db), fs::directory_iterator()), 1);
    fs::create_directory(folder / "not mounted");
    EXPECT_FALSE(copyIfMissing(data + "/Velmora.RemindDB", link.string()));
    EXPECT_TRUE(fs::is_empty(folder / "not mounted"));
}

// The template is a pipe: what it holds is written only when the database was looked for and the
// template is being read, and by then somebody else has made one.
TEST_F(Folders, NeverReplaceADatabaseMadeWhileTheyCopy) {
    const std::string db = make("db");
    const fs::path pipe = folder / "template";
    const fs::path target = folder / "db/Velmora.RemindDB";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::thread host([&] {
        std::ofstream out(pipe, std::ios::binary);  // waits for the reader
        writeFile(target, "the host's");
        out << "template";
    });
    EXPECT_TRUE(copyIfMissing(pipe.string(), target.string()));
    host.join();
    EXPECT_EQ(readFile(target), "the host's");
    EXPECT_EQ(std::distance(fs::directory_iterator(db), fs::directory_iterator()), 1);
}

TEST_F(Folders, PublishAFileInNobodysPlace) {
    using platform::Publishing;
    const fs::path from = folder / "new";
    const fs::path to = folder / "to";
    for (const auto way : {Publishing::Link, Publishing::Rename, Publishing::Claim}) {
        SCOPED_TRACE(static_cast<int>(way));
        const auto refused = [&] {
            try {
                return platform::publish(way, from.string(), to.string()) ? ErrNo::None
                                                                          : ErrNo::Unsupported;
            } catch (const Error& error) {
                return error.number();
            }
        };
        writeFile(from, "new");
        writeFile(to, "old");
        EXPECT_EQ(refused(), ErrNo::Exists);
        EXPECT_EQ(readFile(to), "old");
        fs::remove(to);
        fs::create_symlink(folder / "nowhere", to);
        EXPECT_EQ(refused(), ErrNo::Exists);
        EXPECT_TRUE(fs::is_symlink(to));
        fs::remove(to);
        fs::create_directory(to);
        EXPECT_EQ(refused(), ErrNo::Exists);
        fs::remove(to);
        EXPECT_EQ(refused(), ErrNo::None);
        EXPECT_EQ(readFile(to), "new");
        fs::remove(to);
        fs::remove(from);
        EXPECT_EQ(refused(), ErrNo::Io) << "no such file";
        EXPECT_FALSE(fs::exists(to));
    }
}
#endif

TEST_F(Folders, HoldTheHelpPage) {
    const std::string first = make("first");
    const std::string second = make("a b");
    EXPECT_EQ(findHelpBase({first, second}), "");
    EXPECT_EQ(findHelpBase({}), "");
    fs::create_directory(folder / "a b/help");
    writeFile(folder / "a b/help/index.html", "<!DOCTYPE html>");
    const std::string address = findHelpBase({first, second});
    EXPECT_TRUE(address.starts_with("file:///")) << address;
    EXPECT_TRUE(address.ends_with("/a%20b/help/index.html#")) << address;
}

}  // namespace
}  // namespace vl
