// The running program beside a host that writes its rows all the time: another process, over a file
// of some megabytes.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "FileDesk.h"

namespace vl {
namespace {

using test::at;
using test::FileDesk;
using test::single;

using Events = std::vector<std::shared_ptr<calEvent>>;

/// Writes all the events anew, over and over, until it is killed in the middle of that. Its texts
/// are of other lengths each time, so rows and long values move about.
class WritingHost {
public:
    WritingHost(test::EventFile file, const Events& events) {
        EXPECT_EQ(pipe(rounds_), 0);
        process_ = fork();
        if (process_ == 0) {
            for (int round = 1;; ++round) {
                writeAll(file, events, round);
            }
        }
        close(rounds_[1]);
    }
    ~WritingHost() {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
        close(rounds_[0]);
    }
    WritingHost(const WritingHost&) = delete;
    WritingHost& operator=(const WritingHost&) = delete;

    /// Waits until it has written them all once more.
    bool hasWritten() {
        char byte = 0;
        return read(rounds_[0], &byte, 1) == 1;
    }

private:
    void writeAll(test::EventFile& file, const Events& events, int round) const {
        constexpr std::size_t kAtOnce = 100;
        for (std::size_t i = 0; i < events.size();) {
            const auto some = std::span(events).subspan(i, std::min(kAtOnce, events.size() - i));
            for (const auto& event : some) {
                event->Body = std::string(1200 + static_cast<std::size_t>(round * 137 % 900), 'x');
                event->Modified = at(8, 0).addSeconds(round);
            }
            try {
                file.put(some);
            } catch (const Error&) {
                continue;  // the program has it for the moment
            }
            i += some.size();
        }
        if (write(rounds_[1], "x", 1) != 1) {
            _exit(1);
        }
    }

    int rounds_[2] = {-1, -1};
    pid_t process_ = -1;
};

TEST(BesideHost, NothingIsLostAndNothingComesTwiceWhileItsRowsAreWrittenAllTheTime) {
    constexpr int kEvents = 1200;
    constexpr int kDue = 24;  // one every minute
    FileDesk desk;
    desk.clock.time = at(8, 0);
    Events events;
    for (int i = 0; i < kEvents; ++i) {
        events.push_back(single("E" + std::to_string(i), at(9, 15).addMinutes(i), {15}));
        events.back()->Body = std::string(1500, 'x');
        events.back()->Modified = at(8, 0);
    }
    desk.file.put(events);
    ASSERT_GT(std::filesystem::file_size(desk.file.path()), 2'000'000U);
    ASSERT_EQ(desk.check(at(8, 59)), "");

    std::map<std::string, int> came;
    const auto checkAndDismiss = [&](DateTime when) {
        std::istringstream taken(desk.check(when));
        for (std::string GUID, time; taken >> GUID >> time;) {
            ++came[GUID];
            const bool all = came.size() % 2 == 0;
            desk.program->acts.Dismiss(desk.listed.at(GUID),
                                       all ? DismissMode::All : DismissMode::This);
        }
    };
    {
        WritingHost host(desk.file, events);
        for (int i = 0; i < kDue; ++i) {
            if (i % 8 == 0) {
                ASSERT_TRUE(host.hasWritten());
            }
            if (i == kDue / 2) {
                desk.start();
            }
            checkAndDismiss(at(9, 0).addMinutes(i));
            checkAndDismiss(at(9, 0).addMinutes(i).addSeconds(30));
        }
    }
    for (int seconds = 0; seconds < 15; seconds += 5) {
        checkAndDismiss(at(9, 0).addMinutes(kDue - 1).addSeconds(30 + seconds));
    }
    EXPECT_EQ(came.size(), std::size_t{kDue});
    EXPECT_EQ(desk.program->state.waitingWrites, 0);
    for (int i = 0; i < kDue; ++i) {
        const std::string GUID = "E" + std::to_string(i);
        EXPECT_EQ(came[GUID], 1) << GUID;
        EXPECT_GE(desk.program->period.EventByGUID(GUID)->Dismissed, at(9, 0).addMinutes(i))
            << GUID;
    }
}

}  // namespace
}  // namespace vl
