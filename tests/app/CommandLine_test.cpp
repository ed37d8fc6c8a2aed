#include "app/CommandLine.h"

#include <gtest/gtest.h>

#include <vector>

namespace vl {
namespace {

TEST(HostFolder, IsBetweenTheFirstTwoSignsOfTheFirstPiece) {
    struct Case {
        const char* line;
        const char* folder;
    };
    static constexpr Case cases[] = {
        {"/DB=D:\\Data\\Velmora", "D:\\Data\\Velmora"},
        {"/x=C:\\A=B", "C:\\A"},
        {"/DB=", ""},
        {"/DB", ""},
        {"", ""},
        {"   ", ""},
        {"/", ""},
        {"///", ""},
        {"  /DB=C:\\A  ", "C:\\A"},
        {"/DB=C:\\A /Other=C:\\B", "C:\\A "},  // only the whole line is trimmed
        {"/Other /DB=C:\\B", ""},
        {"DB=C:\\A", "C:\\A"},
        {"/DB= C:\\A b", " C:\\A b"},
        {"//DB=C:\\A", "C:\\A"},
        {"/=C:\\A", "C:\\A"},
        {"/DB==C:\\A", ""},
        {"/DB=/home/me", ""},  // a folder with "/" is what --db-folder is for
        {"/DB=\\\\server\\share", "\\\\server\\share"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.line);
        EXPECT_EQ(hostFolder(c.line), c.folder);
        const std::vector<std::string> one = {c.line};
        EXPECT_EQ(readCommandLine(one).DBFolder, c.folder);
    }
}

TEST(CommandLine, JoinsTheHostsArgumentsWithBlanks) {
    const std::vector<std::string> two = {"/DB=C:\\My", "Data"};
    EXPECT_EQ(readCommandLine(two).DBFolder, "C:\\My Data");
    EXPECT_EQ(readCommandLine({}).DBFolder, "");
}

TEST(CommandLine, KeepsRunsOfBlanksInAFolder) {
    struct Case {
        const char* raw;
        std::vector<std::string> arguments;
        const char* folder;
    };
    const Case cases[] = {
        {"", {"/DB=C:\\My  Data"}, "C:\\My  Data"},  // one argument where there is no raw line
        {"vlreminders.exe /DB=C:\\My  Data ", {"/DB=C:\\My", "Data"}, "C:\\My  Data"},
        {"\"C:\\Program Files\\VL\\vlreminders.exe\"  /DB=C:\\A   b  /x",
         {"/DB=C:\\A", "b", "/x"},
         "C:\\A   b  "},
        {"vlreminders.exe /DB=\"C:\\My  Data\"", {"/DB=C:\\My  Data"}, "C:\\My  Data"},
        {"\"vl\" \"/DB=C:\\My  Data\"", {"/DB=C:\\My  Data"}, "C:\\My  Data"},
        {"vlreminders.exe", {}, ""},
        {"\"vlreminders.exe", {}, ""},
        {"vl --db-folder  C:\\A", {"--db-folder", "C:\\A"}, "C:\\A"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.raw);
        EXPECT_EQ(readCommandLine(c.arguments, c.raw).DBFolder, c.folder);
    }
#ifdef _WIN32
    EXPECT_FALSE(rawCommandLine().empty());
#else
    EXPECT_TRUE(rawCommandLine().empty());
#endif
}

TEST(CommandLine, ReadsOptionsOnlyWhenItBeginsWithOne) {
    const auto read = [](std::vector<std::string> arguments) { return readCommandLine(arguments); };
    EXPECT_EQ(read({"--db-folder", "/home/me/a=b c/"}).DBFolder, "/home/me/a=b c/");
    EXPECT_EQ(read({"--db-folder=/home/me/a=b"}).DBFolder, "/home/me/a=b");
    EXPECT_EQ(read({"--db-folder", " /x "}).DBFolder, " /x ");
    EXPECT_EQ(read({"--db-folder", "/x"}).problem, "");
    EXPECT_TRUE(read({"--help"}).help);
    EXPECT_TRUE(read({"--version"}).version);
    const CommandLine both = read({"--version", "--db-folder", "--help"});
    EXPECT_TRUE(both.version);
    EXPECT_FALSE(both.help);
    EXPECT_EQ(both.DBFolder, "--help");
    EXPECT_EQ(read({"--db-folder"}).problem, "--db-folder needs a folder");
    EXPECT_EQ(read({"--db-folder", ""}).problem, "--db-folder needs a folder");
    EXPECT_EQ(read({"--db-folder="}).problem, "--db-folder needs a folder");
    EXPECT_EQ(read({"--what"}).problem, "unknown option --what");
    EXPECT_EQ(read({"--help", "/DB=x"}).problem, "unknown option /DB=x");

    const CommandLine host = read({"/DB=C:\\A", "--help"});
    EXPECT_FALSE(host.help);
    EXPECT_EQ(host.DBFolder, "C:\\A --help");
    EXPECT_EQ(read({"-help"}).problem, "");
}

TEST(CommandLine, HelpNamesEveryOption) {
    for (const char* option : {"--db-folder", "--help", "--version", "/NAME=FOLDER"}) {
        EXPECT_NE(commandLineHelp().find(option), std::string_view::npos) << option;
    }
}

}  // namespace
}  // namespace vl
