// The host: writes its events into the file, as far as it can, and says so to the oracle.
#pragma once

#include <deque>
#include <optional>
#include <string>

#include "Calendar.h"
#include "History.h"
#include "Oracles.h"
#include "support/EventFile.h"

namespace vl::simulation {

class Host {
public:
    struct Kept {
        std::string GUID;
        std::string id;
        Plan plan;
        bool gone = false;
    };

    /// Both must outlive it.
    Host(test::EventFile& file, Oracles& oracles) : file_(file), oracles_(oracles) {}

    Seconds clockOff = 0;  ///< its clock is ahead of the computer's by this

    static bool takes(Do what) { return what >= Do::AddSingle && what <= Do::Delete; }
    /// One of the steps it takes, at that time of the computer's clock in `here`. Throws `Error`
    /// when the file cannot be written; then nothing has happened.
    void take(const Step& step, Seconds now, Zone here);
    /// On a computer that has come to `here` some events have other local times.
    void writeAnew(Seconds now, Zone here);
    /// It leaves its rows as it has written them in `there`, and takes them for what they say.
    void keepAsWritten(Zone there, Zone here);

    /// One of those that are there; of series only, if wanted. Null when there is none.
    Kept* chosen(int which, bool series = false);
    template <class Visit>
    void forEach(Visit&& visit) const {
        for (const Kept& kept : kept_) {
            visit(kept);
        }
    }

private:
    struct At {
        Seconds now;
        Zone here;
    };
    void write(Kept& kept, const Plan& plan, const At& at);
    void add(const Plan& plan, const At& at);
    static Plan singleOf(const Step& step, const At& at);
    static Plan seriesOf(const Step& step, const At& at);
    void except(const Step& step, bool cancelled, const At& at);
    void exclude(const Step& step, const At& at);
    void move(const Step& step, const At& at);
    void retime(const Step& step, const At& at);
    void remind(const Step& step, const At& at);
    bool isChanged(const Kept& series) const;
    static std::optional<Occurrence> oneOf(const Kept& series, int which, const At& at);

    test::EventFile& file_;
    Oracles& oracles_;
    std::deque<Kept> kept_;
};

}  // namespace vl::simulation
