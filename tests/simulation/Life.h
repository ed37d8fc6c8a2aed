// A history, lived through by the program and followed by the oracle.
#pragma once

#include <array>
#include <functional>
#include <iosfwd>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "Calendar.h"
#include "History.h"
#include "Host.h"
#include "Oracles.h"
#include "Program.h"
#include "db/jet/Database.h"
#include "db/jet/Transaction.h"
#include "support/EventFile.h"
#include "support/Support.h"

namespace vl::simulation {

inline constexpr const char* kLedger = "VLReminders.ledger";
inline constexpr int kInterval = 10;  ///< seconds from one check to the next

/// Time stands still unless it is turned, but things can happen at a look at it.
class WatchedClock final : public Clock {
public:
    DateTime now() const override {
        if (looks > 0 && --looks == 0) {
            atLook();
        }
        return time;
    }
    DateTime time;
    mutable int looks = 0;  // until `atLook`; 0: it does not come
    std::function<void()> atLook;
};

/// Somebody who is in the middle of a change.
class Holder {
public:
    explicit Holder(const std::string& path)
        : db_(jet::Database::open(path, jet::Access::ReadWrite)), change_(db_) {}

private:
    jet::Database db_;
    jet::Transaction change_;
};

class Life {
public:
    Life(const History& history, std::ostream* trace);
    Outcome run(const History& history);

private:
    void take(const Step& step);
    void tellRows();

    // ---- time and checks

    // The computer's clock is off by `skew_`.
    Seconds now() const { return toWall(here_, utc_ + skew_); }
    void pass(Seconds seconds);
    void setClock(Seconds skew);
    void start();
    void check(bool disturbed = false);
    void checkOf(Program& program, Oracle& oracle, Oracle* other, bool disturbed);
    void turnToCopy(const Step& step);
    void wait(Seconds seconds);

    // ---- the host

    void hostWrites(const Step& step);
    void host(const Step& step);

    // ---- the file

    void hide(bool hidden);
    void protect(bool on);
    void setProtected(bool on);
    void hold(bool on);
    void travel(const Step& step);

    // ---- the user

    std::optional<Listing> listedRow(int which) const;
    std::optional<Listing> viewRow(int which, int occurrence);
    // What was killed before it stood in the ledger was never done.
    template <class Doing, class Telling>
    void act(Doing&& doing, Telling&& telling) {
        ++outcome_.acts;
        const std::string before = isDying_ ? ledger() : "";
        doing();
        if (tear_) {
            tearLine(before, *tear_);
        }
        if (!isDying_ || isNoted(before)) {
            telling();
        }
        if (!hidden_) {
            oracles_.used.mayHaveRead();
        }
    }
    void snooze(const std::optional<Listing>& row, int minutes);
    void dismiss(const std::optional<Listing>& row, const Step& step);
    void other(const Step& step);
    void foreign(const Step& step);

    // ---- what kills the program

    std::string ledger() const { return test::readFile(folder_ / kLedger); }
    bool isNoted(const std::string& before) const;
    bool tearLine(const std::string& before, int part);
    void freeze(bool on);
    void freezeAtLook(int looks);
    bool mayDie() const { return !hidden_ && !holder_ && !isProtected_; }
    void die();
    void kill(const Step& step);
    void killInCheck(const Step& step);
    void killInAct(const Step& step);
    void killInLine(const Step& step);
    void tearCheck(const Step& step);
    void loseLedger(const Step& step);
    void actBefore(const Step& step);
    // The program's columns, in the order in which it writes them.
    static constexpr std::array kColumns = {"NextReminder", "Dismissed", "Hidden", "status"};
    using Columns = std::map<std::string, test::EventFile::Values>;
    Columns columnsNow();
    void takeBack(const Columns& before, int count);

    // ---- the end

    /// What the acts on an event have put into its row.
    struct Said {
        std::optional<Seconds> next;  // none: by the schedule
        std::optional<Seconds> dismissed;
        bool hidden = false;
    };
    Seconds inRow(const std::string& GUID, const char* column);
    void finish();
    void compareRow(const Host::Kept& kept, const Said& said);

    std::ostream* trace_;
    test::TempFolder folder_;
    Zone here_;
    Seconds utc_;
    Seconds skew_ = 0;
    WatchedClock clock_;
    test::EventFile file_;
    bool hidden_ = false;
    bool isProtected_ = false;
    std::unique_ptr<Holder> holder_;
    std::optional<int> during_;  // looks at the clock before the host's next step
    Oracles oracles_;
    Host host_;
    std::unique_ptr<Program> program_;  // that the user uses
    std::unique_ptr<Program> other_;    // a second copy; null: there is none
    bool isDying_ = false;              // the program, at the end of what it does
    std::optional<int> tear_;           // how much of the line that is being written stays
    std::map<std::string, Said> said_;  // by GUID
    Outcome outcome_;
};

}  // namespace vl::simulation
