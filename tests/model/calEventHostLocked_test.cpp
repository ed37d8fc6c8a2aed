// Deleting an item while another process has the host's file.
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>

#include <gtest/gtest.h>

#include "db/DBRemindUtils.h"
#include "db/jet/Database.h"
#include "db/jet/Transaction.h"
#include "model/calEvent.h"
#include "support/Support.h"

namespace vl {
namespace {

using std::chrono::milliseconds;

/// Another process that keeps a file until it is told to end.
class Keeper {
public:
    enum class Way {
        Writes,         ///< a change of the engine's that is not at its end
        KeepsAllBytes,  ///< a lock on every byte: nobody may even read
    };

    Keeper(const std::string& file, Way way) {
        int ready[2] = {-1, -1};
        EXPECT_EQ(::pipe(ready), 0);
        pid_ = ::fork();
        if (pid_ == 0) {
            keep(file, way, ready[1]);
        }
        ::close(ready[1]);
        char byte = 0;
        EXPECT_EQ(::read(ready[0], &byte, 1), 1) << "it has not got the file";
        ::close(ready[0]);
    }
    Keeper(const Keeper&) = delete;
    Keeper& operator=(const Keeper&) = delete;
    ~Keeper() {
        ::kill(pid_, SIGKILL);
        ::waitpid(pid_, nullptr, 0);
    }

private:
    [[noreturn]] static void keep(const std::string& file, Way way, int ready) {
        const auto stay = [ready] {
            const char byte = 1;
            if (::write(ready, &byte, 1) != 1) {
                ::_exit(3);
            }
            for (;;) {
                ::pause();
            }
        };
        try {
            if (way == Way::Writes) {
                jet::Database db = jet::Database::open(file, jet::Access::ReadWrite);
                const jet::Transaction change(db);
                stay();
            } else {
                struct ::flock all {};
                all.l_type = F_WRLCK;
                if (::fcntl(::open(file.c_str(), O_RDWR), F_SETLK, &all) == 0) {
                    stay();
                }
            }
        } catch (const Error&) {
            ::_exit(1);
        }
        ::_exit(2);
    }

    ::pid_t pid_ = -1;
};

class LockedHostTest : public testing::TestWithParam<Keeper::Way> {
protected:
    LockedHostTest() {
        event.VLBase = (folder / "base.vldb").string();
        event.GUID = "{a}";
        event.FieldID = 7;
        test::writeFile(event.VLBase.str(),
                        test::readFile(test::repoFile("data/first-light.RemindDB")));
        host.DBFullName = event.VLBase;
        for (const char* statement :
             {"CREATE TABLE Event (GUID TEXT(255), ItemID LONG)",
              "CREATE TABLE [\u00AFItems] (ItemID LONG)",
              "CREATE TABLE [\u00AFFields] (FieldID LONG, Name TEXT(50))",
              "INSERT INTO Event (GUID, ItemID) VALUES (\"{a}\", 11)",
              "INSERT INTO [\u00AFItems] (ItemID) VALUES (11)",
              "INSERT INTO [\u00AFFields] (FieldID, Name) VALUES (7, \"Birthdays\")"}) {
            host.Execute(statement);
            EXPECT_EQ(host.LastError(), ErrNo::None) << statement << ": " << host.LastErrorText();
        }
    }

    std::size_t count(const char* table) {
        const auto rows = host.OpenRS(std::string("SELECT * FROM [") + table + "]");
        EXPECT_TRUE(rows->isOpen()) << host.LastErrorText();
        host.CloseDB();
        return rows->RecordCount();
    }

    test::TempFolder folder;
    DBRemindUtils host;
    calEvent event;
};

TEST_P(LockedHostTest, DeletingWaitsBrieflyAndLeavesAllAsItIs) {
    const std::string before = test::readFile(event.VLBase.str());
    {
        const Keeper keeper(event.VLBase, GetParam());
        ErrorState::set(ErrNo::TypeMismatch);
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_EQ(event.DeleteItem(), calEvent::Deletion::Waits);
        const auto waited = std::chrono::steady_clock::now() - begin;
        EXPECT_EQ(ErrorState::number(), ErrNo::TypeMismatch) << "what was pending stays so";
        ErrorState::set(ErrNo::None);
        EXPECT_GE(waited, milliseconds(100)) << "somebody may be done soon";
        EXPECT_LT(waited, milliseconds(3000));
        if (GetParam() == Keeper::Way::KeepsAllBytes) {
            EXPECT_EQ(event.GetFieldName(), "") << "cannot be read now";
        }
    }
    EXPECT_EQ(test::readFile(event.VLBase.str()), before);
    EXPECT_EQ(count("Event"), 1U);
    EXPECT_EQ(count("\u00AFItems"), 1U);
    EXPECT_EQ(event.GetFieldName(), "Birthdays");
    EXPECT_EQ(event.DeleteItem(), calEvent::Deletion::Gone);
    EXPECT_EQ(count("Event"), 0U);
    EXPECT_EQ(count("\u00AFItems"), 0U);
}

INSTANTIATE_TEST_SUITE_P(Ways, LockedHostTest,
                         testing::Values(Keeper::Way::Writes, Keeper::Way::KeepsAllBytes),
                         [](const auto& way) {
                             return way.param == Keeper::Way::Writes ? "AnUnfinishedChange"
                                                                     : "ALockOnAllBytes";
                         });

}  // namespace
}  // namespace vl
