#include "notify/OpenGUID.h"

#ifndef _WIN32
#include <sys/stat.h>
#endif

#include <gtest/gtest.h>

#include <filesystem>

#include "app/Files.h"
#include "base/ErrorState.h"
#include "events/CalEvents.h"
#include "support/ManualClock.h"
#include "support/Support.h"

namespace vl {
namespace {

class OpenGUIDTest : public testing::Test, public MessageScreen {
protected:
    OpenGUIDTest() {
        test::writeFile(folder / "Velmora.RemindDB",
                        test::readFile(test::repoFile("data/first-light.RemindDB")));
        db.DBFullName = (folder / "Velmora.RemindDB").string();
        set.ReadDB(true, true);
        GUID = objectAt<calEvent>(*set.mCol, 1)->GUID;
        base = objectAt<calEvent>(*set.mCol, 1)->VLBase;
        std::filesystem::current_path(folder.path());
    }
    ~OpenGUIDTest() override { std::filesystem::current_path(before); }
    BoxAnswer ShowBox(const BoxRequest& box) override {
        boxes.push_back(box);
        return BoxAnswer::Ok;
    }
    // The sample's events live in a file of another system, so here its whole path is one name.
    void makeBase() const { test::writeFile(base, ""); }
    bool open(const std::string& which) {
        return OpenGUID(set, which, {"/opt/vl", start, DebugMode}, *this);
    }

    test::TempFolder folder;
    test::ManualClock clock{DateTime::fromCivil(2026, 11, 20, 14, 30)};
    DBRemindUtils db;
    CalEvents set{db, clock};
    std::string GUID;
    std::string base;
    std::filesystem::path before = std::filesystem::current_path();
    std::vector<BoxRequest> boxes;
    std::vector<std::vector<std::string>> started;
    std::function<bool(const std::vector<std::string>&)> start =
        [this](const std::vector<std::string>& command) {
            started.push_back(command);
            return true;
        };
    bool DebugMode = false;
};

TEST_F(OpenGUIDTest, HandsTheAddressToTheHelper) {
    makeBase();
    EXPECT_TRUE(open(GUID));
    const std::vector<std::string> command{"/opt/vl/VelmoraClipper.exe",
                                           "VL://" + base + "/EvGUID/" + GUID};
    ASSERT_EQ(started.size(), 1U);
    EXPECT_EQ(started[0], command);
    EXPECT_TRUE(boxes.empty());
}

#ifndef _WIN32
// The whole way to the other process, with blanks wherever there may be some.
TEST_F(OpenGUIDTest, TheHelperBesideTheProgramIsStartedWithTheAddressAlone) {
    base = "C:\\My Data\\a \"b\" $(date).vlb";
    db.Execute("UPDATE Reminders SET VLBase='" + base + "' WHERE GUID=\"" + GUID + "\"");
    makeBase();
    const auto program = folder / "Program Files";
    const auto pipe = folder / "note";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::filesystem::create_directory(program);
    const auto helper = program / "VelmoraClipper.exe";
    test::writeFile(helper, "#!/bin/sh\nprintf '%s|%s' \"$#\" \"$1\" > '" + pipe.string() + "'\n");
    std::filesystem::permissions(helper, std::filesystem::perms(0755));
    EXPECT_TRUE(OpenGUID(set, GUID, {program.string(), startProgram, false}, *this));
    EXPECT_EQ(test::readFile(pipe), "1|VL://" + base + "/EvGUID/" + GUID)
        << "read when the helper has written it";
    std::filesystem::remove(helper);
    EXPECT_FALSE(OpenGUID(set, GUID, {program.string(), startProgram, false}, *this));
    EXPECT_TRUE(boxes.empty());
}
#endif

TEST_F(OpenGUIDTest, SaysWhenTheHostsFileIsGone) {
    EXPECT_TRUE(open(GUID));
    EXPECT_TRUE(started.empty());
    const BoxRequest said{"Missing VLBase...", "File " + base + " cannot be found", BoxButtons::Ok,
                          BoxIcon::Critical};
    EXPECT_EQ(boxes, std::vector{said});
}

TEST_F(OpenGUIDTest, DoesNothingForAnEventThatIsGone) {
    ErrorState::set(ErrNo::Locked);
    EXPECT_TRUE(open("{no such}"));
    EXPECT_TRUE(started.empty() && boxes.empty());
    EXPECT_EQ(ErrorState::number(), ErrNo::Locked);
    ErrorState::clear();
}

TEST_F(OpenGUIDTest, ADevelopmentRunOnlySaysTheCommand) {
    DebugMode = true;
    makeBase();
    EXPECT_TRUE(open(GUID));
    EXPECT_TRUE(started.empty());
    const BoxRequest said{"", "/opt/vl/VelmoraClipper.exe VL://" + base + "/EvGUID/" + GUID,
                          BoxButtons::Ok, BoxIcon::None};
    EXPECT_EQ(boxes, std::vector{said});
}

TEST_F(OpenGUIDTest, TellsThatTheHelperDoesNotStart) {
    makeBase();
    start = [](const auto&) { return false; };
    EXPECT_FALSE(open(GUID));
}

}  // namespace
}  // namespace vl
