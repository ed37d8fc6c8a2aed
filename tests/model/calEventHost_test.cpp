// Items in the host's own database.
#include <gmock/gmock.h>

#include <filesystem>

#include "db/DBRemindUtils.h"
#include "model/calEvent.h"
#include "support/Support.h"

namespace vl {
namespace {

class HostTest : public testing::Test {
protected:
    HostTest() {
        event.VLBase = (folder / "base.vldb").string();
        event.GUID = "{a}";
        event.FieldID = 7;
        test::writeFile(event.VLBase.str(),
                        test::readFile(test::repoFile("data/first-light.RemindDB")));
        host.DBFullName = event.VLBase;
        for (const char* statement :
             {"CREATE TABLE Event (EventID LONG CONSTRAINT pk PRIMARY KEY, GUID TEXT(255), "
              "ItemID LONG)",
              "CREATE TABLE [\u00AFItems] (ItemID LONG CONSTRAINT pk PRIMARY KEY, Title TEXT(50))",
              "CREATE TABLE [\u00AFFields] (FieldID LONG, Name TEXT(50))",
              "INSERT INTO Event (EventID, GUID, ItemID) VALUES (1, \"{a}\", 11)",
              "INSERT INTO Event (EventID, GUID, ItemID) VALUES (2, \"{b}\", 12)",
              "INSERT INTO [\u00AFItems] (ItemID, Title) VALUES (11, \"Mine\")",
              "INSERT INTO [\u00AFItems] (ItemID, Title) VALUES (12, \"Another's\")",
              "INSERT INTO [\u00AFFields] (FieldID, Name) VALUES (7, \"Birthdays\")"}) {
            host.Execute(statement);
            EXPECT_EQ(host.LastError(), ErrNo::None) << statement << ": " << host.LastErrorText();
        }
    }

    std::size_t count(const std::string& table) {
        const auto rows = host.OpenRS("SELECT * FROM [" + table + "]");
        EXPECT_TRUE(rows->isOpen()) << host.LastErrorText();
        host.CloseDB();
        return rows->RecordCount();
    }

    test::TempFolder folder;
    DBRemindUtils host;
    calEvent event;
};

TEST_F(HostTest, RemovesTheEventAndItsItem) {
    EXPECT_EQ(event.DeleteItem(), calEvent::Deletion::Gone);
    EXPECT_EQ(count("Event"), 1U);
    EXPECT_EQ(count("\u00AFItems"), 1U);
    EXPECT_EQ(host.OpenRS("SELECT GUID FROM Event")->value(0), Variant("{b}"));
    EXPECT_EQ(event.DeleteItem(), calEvent::Deletion::Gone) << "it is gone already";
    EXPECT_EQ(count("\u00AFItems"), 1U);
}

TEST_F(HostTest, AGuidWithAQuoteRemovesNothingElse) {
    event.GUID = "x\" OR \"a\"=\"a";
    EXPECT_EQ(event.DeleteItem(), calEvent::Deletion::Gone);
    EXPECT_EQ(count("Event"), 2U);
    EXPECT_EQ(count("\u00AFItems"), 2U);
}

TEST_F(HostTest, WithoutAHostNothingIsLeftToDelete) {
    struct Case {
        const char* name;
        std::function<void()> make;
        calEvent::Deletion outcome;
    };
    const std::string path = event.VLBase;
    const Case cases[] = {
        {"no file", [&] { std::filesystem::remove(path); }, calEvent::Deletion::Gone},
        {"no path", [&] { event.VLBase.clear(); }, calEvent::Deletion::Gone},
        {"no database", [&] { test::writeFile(path, "no database at all"); },
         calEvent::Deletion::Gone},
        {"not the host's",
         [&] {
             test::writeFile(path, test::readFile(test::repoFile("data/first-light.RemindDB")));
         },
         calEvent::Deletion::Gone},
        {"a folder",
         [&] {
             std::filesystem::remove(path);
             std::filesystem::create_directory(path);
         },
         calEvent::Deletion::Waits},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        event.VLBase = path;
        c.make();
        EXPECT_EQ(event.DeleteItem(), c.outcome);
        EXPECT_EQ(event.GetFieldName(), "");
    }
}

// The host would make the row anew: a database of another kind still has the item.
TEST_F(HostTest, ADatabaseThatCannotBeOpenedStillHoldsTheItem) {
    const struct {
        const char* name;
        std::size_t at;
        char byte;
        calEvent::Deletion outcome;
    } cases[] = {
        {"a later generation", 0x14, 2, calEvent::Deletion::Failed},
        {"an earlier generation", 0x14, 0, calEvent::Deletion::Failed},
        {"encrypted", 0x3E, 0, calEvent::Deletion::Failed},
        {"another program's file", 4, 'X', calEvent::Deletion::Gone},
    };
    const std::string sound = test::readFile(event.VLBase.str());
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::string changed = sound;
        ASSERT_NE(changed.at(c.at), c.byte);
        changed.at(c.at) = c.byte;
        test::writeFile(event.VLBase.str(), changed);
        EXPECT_EQ(event.DeleteItem(), c.outcome);
        EXPECT_EQ(test::readFile(event.VLBase.str()), changed);
    }
}

TEST_F(HostTest, KeepsPendingError) {
    ErrorState::set(ErrNo::Overflow);
    event.GetFieldName();
    event.VLBase.clear();
    event.GetFieldName();
    event.DeleteItem();
    event.VLBase = folder.path().string();
    event.GetFieldName();
    event.DeleteItem();
    EXPECT_EQ(ErrorState::number(), ErrNo::Overflow);
    ErrorState::clear();
}

TEST_F(HostTest, KnowsTheNameOfAField) {
    EXPECT_EQ(event.FieldName, "");
    EXPECT_EQ(event.GetFieldName(), "Birthdays");
    EXPECT_EQ(event.FieldName, "Birthdays");
    event.FieldID = 8;
    EXPECT_EQ(event.GetFieldName(), "");
}

}  // namespace
}  // namespace vl
