// The names of the hosts' fields: asked for once, and again when the file has changed.
#include "model/FieldNames.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/Support.h"

namespace vl {
namespace {

using Events = std::vector<std::shared_ptr<calEvent>>;

class FieldNamesTest : public testing::Test {
protected:
    std::string hostFile(const std::string& name) {
        const std::string path = (folder / name).string();
        test::writeFile(path, test::readFile(test::repoFile("data/first-light.RemindDB")));
        execute(path, "CREATE TABLE [\u00AFFields] (FieldID LONG, Name TEXT(50))");
        execute(path, "INSERT INTO [\u00AFFields] (FieldID, Name) VALUES (4, \"Appointments\")");
        execute(path, "INSERT INTO [\u00AFFields] (FieldID, Name) VALUES (7, \"Birthdays\")");
        return path;
    }
    static void execute(const std::string& path, const std::string& statement) {
        DBRemindUtils host;
        host.DBFullName = path;
        host.Execute(statement);
        EXPECT_EQ(host.LastError(), ErrNo::None) << statement << ": " << host.LastErrorText();
    }
    static std::shared_ptr<calEvent> of(const std::string& path, std::int32_t field) {
        auto event = std::make_shared<calEvent>();
        event->VLBase = path;
        event->FieldID = field;
        return event;
    }
    /// Asks for all that is unsure; the number of names asked for.
    std::size_t askAll(const Events& events) {
        const Events unsure = names.Unsure(events);
        for (const auto& event : unsure) {
            names.Ask(*event);
        }
        for (const auto& event : events) {
            names.Recall(*event);
        }
        return unsure.size();
    }

    test::TempFolder folder;
    FieldNames names;
};

TEST_F(FieldNamesTest, EachNameIsAskedForOnce) {
    const std::string home = hostFile("Home.vldb");
    const std::string work = hostFile("Work.vldb");
    execute(work, "UPDATE [\u00AFFields] SET Name = \"Meetings\" WHERE FieldID = 4");
    const Events events{of(home, 4), of(home, 7), of(work, 4), of(home, 4), of(home, 7)};
    EXPECT_EQ(askAll(events), 3U);
    EXPECT_EQ(events[0]->FieldName, "Appointments");
    EXPECT_EQ(events[1]->FieldName, "Birthdays");
    EXPECT_EQ(events[2]->FieldName, "Meetings");
    EXPECT_EQ(events[3]->FieldName, "Appointments");
    EXPECT_EQ(askAll(events), 0U);
    EXPECT_EQ(askAll({of(home, 4), of(work, 7)}), 1U) << "only the one that is new";
}

TEST_F(FieldNamesTest, AChangedFileIsAskedAgainWhenInDoubt) {
    const std::string path = hostFile("Home.vldb");
    const Events events{of(path, 7)};
    EXPECT_EQ(askAll(events), 1U);
    names.Doubt();
    EXPECT_EQ(askAll(events), 0U) << "the file is as it was";
    execute(path, "UPDATE [\u00AFFields] SET Name = \"Anniversaries\" WHERE FieldID = 7");
    EXPECT_EQ(askAll(events), 0U) << "nobody has doubted it";
    names.Doubt();
    EXPECT_EQ(askAll(events), 1U);
    EXPECT_EQ(events[0]->FieldName, "Anniversaries");
}

TEST_F(FieldNamesTest, WhereThereIsNoFileNobodyIsAsked) {
    EXPECT_EQ(askAll({of("", 4), of((folder / "gone.vldb").string(), 4)}), 0U);
}

TEST_F(FieldNamesTest, WhatIsNotFoundOutIsAskedForAgain) {
    const std::string path = hostFile("Home.vldb");
    const Events events{of(path, 8)};
    EXPECT_EQ(askAll(events), 1U);
    EXPECT_EQ(events[0]->FieldName, "");
    execute(path, "INSERT INTO [\u00AFFields] (FieldID, Name) VALUES (8, \"Tasks\")");
    EXPECT_EQ(askAll(events), 1U);
    EXPECT_EQ(events[0]->FieldName, "Tasks");
}

TEST_F(FieldNamesTest, ANameServesUntilThereIsABetterOne) {
    const std::string path = hostFile("Home.vldb");
    const Events events{of(path, 7)};
    EXPECT_EQ(askAll(events), 1U);
    test::writeFile(path, "being written anew");
    names.Doubt();
    EXPECT_EQ(askAll(events), 1U);
    EXPECT_EQ(events[0]->FieldName, "Birthdays");
    std::filesystem::remove(path);
    names.Doubt();
    EXPECT_EQ(askAll(events), 0U);
    EXPECT_EQ(events[0]->FieldName, "Birthdays");
}

TEST_F(FieldNamesTest, KeepsPendingError) {
    const Events events{nullptr, of(hostFile("Home.vldb"), 9), of(folder.path().string(), 1)};
    ErrorState::set(ErrNo::Overflow);
    const Events unsure = names.Unsure(events);
    EXPECT_EQ(unsure.size(), 2U);
    for (const auto& event : unsure) {
        names.Ask(*event);
    }
    EXPECT_EQ(ErrorState::number(), ErrNo::Overflow);
    ErrorState::clear();
}

}  // namespace
}  // namespace vl
