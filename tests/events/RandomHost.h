// A host that writes whatever comes to its mind.
#pragma once

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "db/DBRemindUtils.h"
#include "events/CalEvents.h"
#include "support/EventFile.h"
#include "support/ManyEvents.h"
#include "support/Support.h"

namespace vl::test {

/// Over a file of its own with 150 events, some with long texts.
class RandomHost {
public:
    RandomHost(DateTime now, unsigned seed);

    const std::string& path() const { return file_.path(); }
    int upTo(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random_); }
    /// The GUID of one of its events, which may be gone.
    const std::string& any();

    /// Inserts, removes or changes something; it may change nothing.
    void change();
    /// Surely a change of the file.
    void write(int step);
    /// Sets when one of its rows was written last.
    void stamp(DateTime Modified);
    /// The same file, copied: every byte is the same, but it is another file.
    void replace();
    /// As an act does that cannot write the row.
    void touch(CalEvents& set);

    DBRemindUtils db;

private:
    std::string anyText();
    void insert();
    const std::string& anyThere();

    TempFolder folder_;
    EventFile file_{(folder_ / "Velmora.RemindDB").string()};
    DateTime now_;
    std::mt19937 random_;
    ManyEvents events_;
    std::vector<std::string> guids_;
};

}  // namespace vl::test
