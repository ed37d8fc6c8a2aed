#include "app/Settings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <random>

#include "base/ErrorState.h"
#include "base/Text.h"
#include "support/Support.h"

namespace vl {
namespace {

namespace fs = std::filesystem;
using test::readFile;
using test::TempFolder;
using test::writeFile;

class SettingsFile : public testing::Test {
protected:
    Settings with(const std::string& bytes) {
        writeFile(file, bytes);
        Settings settings;
        settings.filename = file.string();
        return settings;
    }
    // What the file holds after one value was written into `before`.
    std::string saved(const std::string& before, const char* section, const char* key,
                      const char* value) {
        with(before).SaveIni(section, key, value);
        return readFile(file);
    }

    TempFolder folder;
    fs::path file = folder / "VLReminders.ini";
};

TEST_F(SettingsFile, ReadsWhatOthersWrote) {
    const Settings s = with(
        "; a comment\r\n"
        "lost=before any section\r\n"
        "[Window]\r\n"
        "Left=120\r\n"
        "  Top  =\t 80 \t\r\n"
        ";Width=1\r\n"
        "Width=\"640\"\r\n"
        "Height='480'\r\n"
        "Title= \" kept blanks \" \r\n"
        "Odd=\"not closed\r\n"
        "Both=\"a\" and \"b\"\r\n"
        "Mixed=\"a'\r\n"
        "One=\"\r\n"
        "Path=C:\\A=B;C\r\n"
        "Empty=\r\n"
        "Quoted=\"\"\r\n"
        "NoSign\r\n"
        "\r\n"
        "[ My Section ] ; trailing\r\n"
        "key=mine\r\n"
        "[window]\r\n"
        "Left=999\r\n"
        "Later=x\r\n"
        "[Broken\r\n"
        "Last=y");
    EXPECT_EQ(s.GetIni("Window", "Left"), "120");
    EXPECT_EQ(s.GetIni("WINDOW", "left"), "120");
    EXPECT_EQ(s.GetIni(" Window ", " Left "), "120");
    EXPECT_EQ(s.GetIni("Window", "Top"), "80");
    EXPECT_EQ(s.GetIni("Window", "Width"), "640");
    EXPECT_EQ(s.GetIni("Window", "Height"), "480");
    EXPECT_EQ(s.GetIni("Window", "Title"), " kept blanks ");
    EXPECT_EQ(s.GetIni("Window", "Odd"), "\"not closed");
    EXPECT_EQ(s.GetIni("Window", "Both"), "a\" and \"b");
    EXPECT_EQ(s.GetIni("Window", "Mixed"), "\"a'");
    EXPECT_EQ(s.GetIni("Window", "One"), "\"");
    EXPECT_EQ(s.GetIni("Window", "Path"), "C:\\A=B;C");
    EXPECT_EQ(s.GetIni("My Section", "key"), "mine");
    // The first section of a name is the section; a later one is never looked at.
    EXPECT_EQ(s.GetIni("Window", "Later", "none"), "none");
    EXPECT_EQ(s.GetIni("Broken", "Last", "none"), "none");
    EXPECT_EQ(s.GetIni("", "lost", "none"), "none");
}

TEST_F(SettingsFile, GivesTheDefaultForMissingAndEmpty) {
    const Settings s = with("[R]\nEmpty=\nQuoted=\"\"\nBlank=   \nNoSign\n");
    EXPECT_EQ(s.GetIni("R", "Missing", "D"), "D");
    EXPECT_EQ(s.GetIni("R", "Empty", "D"), "D");
    EXPECT_EQ(s.GetIni("R", "Quoted", "D"), "D");
    EXPECT_EQ(s.GetIni("R", "Blank", "D"), "D");
    EXPECT_EQ(s.GetIni("R", "NoSign", "D"), "D");
    EXPECT_EQ(s.GetIni("X", "Empty", "D"), "D");
    EXPECT_EQ(s.GetIni("R", "Missing"), "");
    EXPECT_EQ(s.GetIni("R", "Missing", 0), "0");
    EXPECT_EQ(s.GetIni("R", "Missing", 640.5), "640.5");
    EXPECT_EQ(s.GetIni("R", "Missing", Null{}), "");
}

TEST_F(SettingsFile, ReadsThroughAByteOrderMarkAndAnyLineEnd) {
    EXPECT_EQ(with("\xEF\xBB\xBF[R]\na=1").GetIni("R", "a"), "1");
    EXPECT_EQ(with("[R]\na=1\r\nb=2\nc=3").GetIni("R", "b"), "2");
    EXPECT_EQ(with("[R]\r\n\r\n\r\na=1\r\n").GetIni("R", "a"), "1");
    EXPECT_EQ(with("[\xC3\x84]\n\xC3\x9C=1").GetIni("\xC3\xA4", "\xC3\xBC"), "1");
}

// As a person's editor may leave the file: "Unicode", with a byte order mark.
std::string utf16(std::string_view text, bool little) {
    std::string bytes;
    for (const char16_t unit : text::toUtf16("\xEF\xBB\xBF" + std::string(text))) {
        const char pair[] = {static_cast<char>(unit >> 8), static_cast<char>(unit & 0xFF)};
        bytes += pair[little ? 1 : 0];
        bytes += pair[little ? 0 : 1];
    }
    return bytes;
}

TEST_F(SettingsFile, StaysInUtf16WhereItIsInUtf16) {
    for (const bool little : {true, false}) {
        SCOPED_TRACE(little);
        const auto in16 = [&](const char* text) { return utf16(text, little); };
        ASSERT_EQ(in16("[R]").substr(0, 2), little ? "\xFF\xFE" : "\xFE\xFF");
        EXPECT_EQ(with(in16("[R]\r\na = 1 \r\nb=\xE2\x82\xAC")).GetIni("r", "A"), "1");
        EXPECT_EQ(with(in16("[R]\nb=\xE2\x82\xAC\xF0\x9F\x94\x94")).GetIni("R", "b"),
                  "\xE2\x82\xAC\xF0\x9F\x94\x94");
        EXPECT_EQ(with(in16("[\xC3\x84]\na=1")).GetIniSection("\xC3\xA4"), std::string("a=1\0", 4));
        EXPECT_EQ(saved(in16("; \xC3\xA4\r\n[R]\r\na=1\r\n"), "R", "a", "\xE2\x82\xAC"),
                  in16("; \xC3\xA4\r\n[R]\r\na=\xE2\x82\xAC\r\n"));
        EXPECT_EQ(saved(in16("[R]\r\na=1"), "X", "b", "2"), in16("[R]\r\na=1\r\n[X]\r\nb=2\r\n"));
        // Bytes that are no text stay: half a pair in the middle, half a unit at the end.
        std::string broken = in16("[R]\na=1\nx=?\n");
        broken.replace(broken.size() - 4, 2, little ? "\x01\xD8" : "\xD8\x01");
        std::string after = broken;
        after[little ? 14 : 15] = '2';
        EXPECT_EQ(saved(broken + 'z', "R", "a", "2"), after + 'z');
        EXPECT_EQ(saved(in16(""), "R", "a", "1").substr(0, 4), in16("[").substr(0, 4));
    }
}

TEST_F(SettingsFile, TakesASectionUpToADoubleNul) {
    using namespace std::string_literals;
    Settings s = with("[R]\na=1\n");
    s.SaveIniSection("R", "b=2\0c=3\0\0d=4\0"s);
    EXPECT_EQ(s.GetIniSection("R"), "b=2\0c=3\0"s);
    s.SaveIniSection("R", "\0e=5\0"s);
    EXPECT_EQ(s.GetIniSection("R"), "");
}

TEST_F(SettingsFile, CutsLongValuesLikeTheSystem) {
    const std::string wide = "\xE2\x82\xAC";  // one UTF-16 unit, three bytes
    std::string many;
    for (int i = 0; i < 40'000; ++i) {
        many += wide;
    }
    EXPECT_EQ(with("[R]\na=" + std::string(32'765, 'x')).GetIni("R", "a").size(), 32'765U);
    EXPECT_EQ(with("[R]\na=" + std::string(32'766, 'x')).GetIni("R", "a").size(), 32'765U);
    EXPECT_EQ(with("[R]\na=" + std::string(50'000, 'x')).GetIni("R", "a").size(), 32'765U);
    EXPECT_EQ(with("[R]\na=" + many).GetIni("R", "a").size(), 3U * 32'765U);

    const std::string section = with("[R]\na=" + std::string(50'000, 'x')).GetIniSection("R");
    EXPECT_EQ(section.size(), 32'764U);
}

TEST_F(SettingsFile, GivesASectionAsEntries) {
    using namespace std::string_literals;
    const Settings s =
        with("[A]\n a = 1 \n;x=2\n\nb=\"2\"\nflag\nb=3\n[B]\nc=1\n[a]\nd=4\n[Empty]\n");
    EXPECT_EQ(s.GetIniSection("a"), "a=1\0b=\"2\"\0flag\0b=3\0"s);
    EXPECT_EQ(s.GetIniSection("B"), "c=1\0"s);
    EXPECT_EQ(s.GetIniSection("Empty"), "");
    EXPECT_EQ(s.GetIniSection("Missing"), "");
}

TEST_F(SettingsFile, WritesOnlyTheValueOfItsLine) {
    struct Case {
        const char* before;
        const char* after;  // of [R] a=new
    };
    static constexpr Case cases[] = {
        {"[R]\na=old\nb=1\n", "[R]\na=new\nb=1\n"},
        {"; c\r\n[R]\r\n a = old \r\nb=1", "; c\r\n[R]\r\n a = new\r\nb=1"},
        {"[R]\na=old", "[R]\na=new"},  // a missing last line end stays missing
        {"[R]\nA=\"old\"\n", "[R]\nA=new\n"},
        {"[R]\na=\n", "[R]\na=new\n"},
        {"[R]\na=1\na=2\n", "[R]\na=new\na=2\n"},
        {"[R]\nx=\xFF\xFE\na=old\n", "[R]\nx=\xFF\xFE\na=new\n"},
        {"\xEF\xBB\xBF[R]\na=old\n", "\xEF\xBB\xBF[R]\na=new\n"},
        {"[R]\na=1\n[r]\na=2\n", "[R]\na=new\n[r]\na=2\n"},
        {"[R]\n;a=old\n\n[X]\n", "[R]\n;a=old\na=new\n\n[X]\n"},
        {"[R]\n\n\n[X]\na=1\n", "[R]\na=new\n\n\n[X]\na=1\n"},
        {"[R]\r\nb=1\r\n\r\n[X]", "[R]\r\nb=1\r\na=new\r\n\r\n[X]"},
        {"[R]\nb=1", "[R]\nb=1\na=new\n"},
        {"[X]\nb=1", "[X]\nb=1\n[R]\na=new\n"},
        {"[X]\r\nb=1\r\n\r\n", "[X]\r\nb=1\r\n\r\n[R]\r\na=new\r\n"},
        {"", "[R]\na=new\n"},
        {"\n\n", "\n\n[R]\na=new\n"},
        {"[R]", "[R]\na=new\n"},
        {"[R]\na=new", "[R]\na=new"},
        {"[R]\na = \"new\"\n", "[R]\na = \"new\"\n"},  // says so already
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.before);
        EXPECT_EQ(saved(c.before, "R", "a", "new"), c.after);
        EXPECT_EQ(with(c.after).GetIni("R", "a"), "new");
    }
}

TEST_F(SettingsFile, WritesNothingThatALineCannotHold) {
    EXPECT_EQ(saved("[R]\n", "R", "a", "one\r\n[X]\r\nb=2"), "[R]\na=one\n");
    EXPECT_EQ(saved("[R]\n", "R", "", "x"), "[R]\n");
    EXPECT_EQ(saved("[R]\n", "", "a", "x"), "[R]\n");
    EXPECT_EQ(saved("[R]\na=1\n", "R", "a", ""), "[R]\na=\n");
    EXPECT_EQ(saved("[R]\na=1\n", "R\n[X]", "a\r\nb", "2"), "[R]\na=2\n");
    EXPECT_EQ(saved("[R]\n", "\n[X]", "a", "2"), "[R]\n");
    EXPECT_EQ(saved("[R]\n", "R", "\rb", "2"), "[R]\n");
    Settings s = with("[R]\na=1\n");
    s.SaveIniSection("R\n[X]", "b=2");
    EXPECT_EQ(readFile(file), "[R]\nb=2\n");
}

// Cut off between the two characters of its last line end, or written so.
TEST_F(SettingsFile, TakesACarriageReturnAtTheEndForALineEnd) {
    EXPECT_EQ(with("[R]\r\na=1\r").GetIni("R", "a"), "1");
    EXPECT_EQ(with("[R]\r").GetIniSection("R"), "");
    EXPECT_EQ(saved("[R]\r\na=1\r", "R", "a", "2"), "[R]\r\na=2\r");
    EXPECT_EQ(saved("[R]\r\na=1\r", "R", "b", "2"), "[R]\r\na=1\r\nb=2\r\n");
    EXPECT_EQ(saved("[R]\n\r", "X", "b", "2"), "[R]\n\n[X]\nb=2\n");
}

TEST_F(SettingsFile, ReplacesASectionAndKeepsItsComments) {
    using namespace std::string_literals;
    Settings s = with("[R]\n; why\na=1\n\nb=2\n[X]\nc=3\n");
    s.SaveIniSection("r", "n=1\0m=2\0"s);
    EXPECT_EQ(readFile(file), "[R]\nn=1\nm=2\n; why\n\n[X]\nc=3\n");
    EXPECT_EQ(s.GetIniSection("R"), "n=1\0m=2\0"s);
    s.SaveIniSection("X", "");
    EXPECT_EQ(s.GetIniSection("X"), "");
    s.SaveIniSection("New", "k=v\0"s);
    EXPECT_EQ(s.GetIni("New", "k"), "v");
    EXPECT_EQ(s.GetIni("R", "m"), "2");
    s.SaveIniSection("New", "k=w");  // the last NUL may be missing
    EXPECT_EQ(s.GetIniSection("New"), "k=w\0"s);
}

TEST_F(SettingsFile, MakesAMissingFileAndLeavesNoOther) {
    Settings s;
    s.filename = file.string();
    EXPECT_EQ(s.GetIni("R", "a", "D"), "D");
    EXPECT_FALSE(fs::exists(file));  // reading makes none
    s.SaveIni("R", "a", "1");
    EXPECT_EQ(s.GetIni("R", "a"), "1");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()), 1);
}

TEST_F(SettingsFile, LeavesTheFileAloneWhenNothingChanges) {
    Settings s = with("[R]\na = 1\n");
    const auto id = [&] { return fs::last_write_time(file); };
    fs::last_write_time(file, id() - std::chrono::hours(1));
    const auto before = id();
    s.SaveIni("R", "a", "1");
    EXPECT_EQ(id(), before);
    s.SaveIni("R", "a", "2");
    EXPECT_NE(id(), before);
}

TEST_F(SettingsFile, LosesAWriteThatCannotBeDoneAndTracesIt) {
    const fs::path log = folder / "trace";
    openTrace(log.string());
    ErrorState::set(ErrNo::Locked);
    Settings s;
    s.SaveIni("R", "a", "1");  // no file is named
    s.filename = (folder / "missing" / "x.ini").string();
    s.SaveIni("R", "a", "1");
    s.SaveIniSection("R", "a=1");
    EXPECT_EQ(s.GetIni("R", "a", "D"), "D");
    EXPECT_EQ(s.GetIniSection("R"), "");
    fs::create_directory(folder / "folder.ini");
    s.filename = (folder / "folder.ini").string();
    s.SaveIni("R", "a", "1");
    EXPECT_EQ(s.GetIni("R", "a", "D"), "D");
    EXPECT_EQ(ErrorState::number(), ErrNo::Locked);
    ErrorState::clear();
    openTrace("");
    const std::string traced = readFile(log);
    EXPECT_EQ(std::count(traced.begin(), traced.end(), '\n'), 5) << traced;
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()), 2);
}

TEST_F(SettingsFile, KnowsWhetherItCanBeSaved) {
    Settings s;
    EXPECT_FALSE(s.CanSave()) << "no file is named";
    s.filename = (folder / "missing" / "x.ini").string();
    EXPECT_FALSE(s.CanSave());
    s.filename = file.string();
    EXPECT_TRUE(s.CanSave()) << "there is none yet";
    EXPECT_TRUE(fs::is_empty(folder.path())) << "nor is it made by that";
    s = with("[R]\na=1\n");
    EXPECT_TRUE(s.CanSave());
    EXPECT_EQ(readFile(file), "[R]\na=1\n");
    s.filename = (file / "below.ini").string();
    EXPECT_FALSE(s.CanSave()) << "a file is no folder";
    fs::create_directory(folder / "folder.ini");
    s.filename = (folder / "folder.ini").string();
    EXPECT_FALSE(s.CanSave());
}

#ifndef _WIN32
TEST_F(SettingsFile, KeepsPermissionsAndFollowsALink) {
    Settings s = with("[R]\na=1\n");
    fs::permissions(file, fs::perms(0600));
    fs::create_symlink(file, folder / "link.ini");
    s.filename = (folder / "link.ini").string();
    s.SaveIni("R", "a", "2");
    EXPECT_TRUE(fs::is_symlink(folder / "link.ini"));
    EXPECT_EQ(readFile(file), "[R]\na=2\n");
    EXPECT_EQ(fs::status(file).permissions(), fs::perms(0600));
}

TEST_F(SettingsFile, FollowsALinkToAFileThatIsNotThereYet) {
    fs::create_directory(folder / "dotfiles");
    fs::create_symlink("dotfiles/second", folder / "link.ini");
    fs::create_symlink(folder / "dotfiles" / "VLReminders.ini", folder / "dotfiles" / "second");
    fs::create_symlink("round.ini", folder / "round.ini");
    Settings s;
    s.filename = (folder / "link.ini").string();
    s.SaveIni("R", "a", "1");
    EXPECT_EQ(s.GetIni("R", "a"), "1");
    EXPECT_TRUE(fs::is_symlink(folder / "link.ini"));
    EXPECT_TRUE(fs::is_symlink(folder / "dotfiles" / "second"));
    EXPECT_EQ(readFile(folder / "dotfiles" / "VLReminders.ini"), "[R]\na=1\n");
    s.filename = (folder / "round.ini").string();
    s.SaveIni("R", "a", "1");
    EXPECT_EQ(s.GetIni("R", "a", "none"), "none");
    EXPECT_TRUE(fs::is_symlink(folder / "round.ini"));
}
#endif

// The same rules over sections and keys in order; comments and blanks do not exist here.
class Model {
public:
    void save(const std::string& section, const std::string& key, const std::string& value) {
        Section& s = at(section);
        for (auto& [k, v] : s.entries) {
            if (text::equalsNoCase(k, key)) {
                v = value;
                return;
            }
        }
        s.entries.emplace_back(key, value);
    }
    std::string get(const std::string& section, const std::string& key) {
        for (const Section& s : sections) {
            if (text::equalsNoCase(s.name, section)) {
                for (const auto& [k, v] : s.entries) {
                    if (text::equalsNoCase(k, key)) {
                        return v;
                    }
                }
                return {};
            }
        }
        return {};
    }

private:
    struct Section {
        std::string name;
        std::vector<std::pair<std::string, std::string>> entries;
    };
    Section& at(const std::string& name) {
        for (Section& s : sections) {
            if (text::equalsNoCase(s.name, name)) {
                return s;
            }
        }
        return sections.emplace_back(Section{name, {}});
    }
    std::vector<Section> sections;
};

TEST_F(SettingsFile, KeepsAllValuesOverRandomWrites) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    static constexpr const char* kSections[] = {"Window", "REMINDERS", "My Section", "\xC3\x84"};
    static constexpr const char* kKeys[] = {"a", "B", "long key", "\xC3\xB6"};
    static constexpr const char* kValues[] = {
        "", "1", "C:\\x=y", "a b", "; no comment", "[x]", "\xE2\x82\xAC\xFF"};
    static constexpr const char* kNoise[] = {"; comment", "",     "  ",  "#x",
                                             "[broken",   "word", "\xFE"};
    for (int round = 0; round < 12; ++round) {
        const std::string end = random() % 2 == 0 ? "\n" : "\r\n";
        std::string before = random() % 4 == 0 ? "\xEF\xBB\xBF" : "";
        for (auto n = random() % 6; n > 0; --n) {
            before += kNoise[random() % std::size(kNoise)] + end;
        }
        Settings s = with(before);
        Model model;
        for (int step = 0; step < 30; ++step) {
            const std::string section = kSections[random() % std::size(kSections)];
            std::string key = kKeys[random() % std::size(kKeys)];
            const std::string value = kValues[random() % std::size(kValues)];
            s.SaveIni(section, random() % 2 == 0 ? text::foldCase(key) : key, value);
            model.save(section, key, value);
            for (const char* other : kSections) {
                for (const char* k : kKeys) {
                    ASSERT_EQ(s.GetIni(other, k), model.get(other, k)) << readFile(file);
                }
            }
        }
        ASSERT_EQ(readFile(file).substr(0, before.size()), before);  // nothing else was touched
        const std::string after = readFile(file);
        ASSERT_EQ(std::count(after.begin(), after.end(), '\r'),
                  end == "\n" || before.find('\n') == std::string::npos
                      ? 0
                      : std::count(after.begin(), after.end(), '\n'));
    }
}

}  // namespace
}  // namespace vl
