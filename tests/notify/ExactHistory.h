// A week or so of host and user, at random, with the rule's word on what each check takes.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Desk.h"
#include "ExactHost.h"
#include "ExactRule.h"

namespace vl::exact {

struct Tried {
    std::size_t histories = 0;
    std::size_t checks = 0;
    std::size_t decisions = 0;  ///< an event of which a check takes something, or nothing
    std::size_t taken = 0;
    std::size_t either = 0;  ///< of these: the rule leaves two answers
    std::size_t acts = 0;
};

class ExactHistory {
public:
    ExactHistory(unsigned seed, Tried& tried);

    /// Lives through it, to its end or to the first check that is not as the rule wants it. What
    /// is wrong then, and what came before it, of that event; else empty.
    std::string live();

private:
    struct Line {
        std::string GUID;  // empty: of all
        std::string text;
    };

    void step();
    void turnClock();
    void hostWrites();
    void hostChanges(const std::string& GUID, DateTime when);
    void hostExcepts(const std::string& GUID);
    void restart();
    void beOff();
    void check();
    void compare(const std::string& GUID, const calEvent& event);
    void userActs();
    void act(const std::string& GUID, const calEvent& event);
    bool chooseInView(const std::string& GUID, const calEvent& event);
    void compareStatus(const std::string& GUID, const calEvent& event);

    const Replaced& replacedOf(const calEvent& event) { return replaced_[event.id]; }
    std::optional<Reminder> shown(const std::string& GUID) const;
    void note(const std::string& GUID, const std::string& text);
    void fail(const std::string& GUID, const std::string& text);
    std::string told(const std::string& GUID) const;

    test::Desk desk_;
    Dice dice_;
    ExactHost host_{dice_};
    Tried& tried_;
    std::map<std::string, ExactRule> rules_;    // by GUID
    std::map<std::string, Replaced> replaced_;  // by the series' id
    std::vector<Line> lines_;
    std::string wrong_;
    DateTime now_;
    DateTime lastCheck_;
    DateTime firstOfDay_;  // the first check of the day of the last one
    bool isFirst_ = true;  // of a run
    bool mustRing_ = false;
    bool mayRing_ = false;
};

}  // namespace vl::exact
