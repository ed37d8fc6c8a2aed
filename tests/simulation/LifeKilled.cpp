// What kills the program.
#include <algorithm>
#include <filesystem>
#include <string>

#include "Life.h"

namespace fs = std::filesystem;

namespace vl::simulation {

// A line of an event was added since, as a whole.
bool Life::isNoted(const std::string& before) const {
    std::string after = ledger();
    after.resize(after.rfind('\n') + 1);
    const bool isLonger = after.compare(0, before.size(), before) == 0;
    return after.find("\"guid\"", isLonger ? before.size() : 0) != std::string::npos;
}

// Nothing that the program still does reaches the disk.
void Life::freeze(bool on) {
    const auto write = fs::perms::owner_write;
    for (const fs::path& path : {folder_ / kLedger, folder_.path()}) {
        fs::permissions(path, write, on ? fs::perm_options::remove : fs::perm_options::add);
    }
    protect(on);
}

void Life::freezeAtLook(int looks) {
    clock_.atLook = [&] { freeze(true); };
    clock_.looks = looks;
}

void Life::die() {
    program_.reset();
    clock_.looks = 0;
    freeze(false);
    isDying_ = false;
    start();
}

// Between ledger and row.
void Life::kill(const Step& step) {
    if (mayDie()) {
        isDying_ = true;
        protect(true);
        dismiss(listedRow(step.a), step);
        die();
    }
}

void Life::killInCheck(const Step& step) {
    if (mayDie()) {
        isDying_ = true;
        pass(kInterval);
        freezeAtLook(1 + step.a);
        program_->tick(kInterval * 1000);
        oracles_.used.mayHaveListed({now(), now() + kInterval, !hidden_, false, 0, {}});
        die();
    }
}

// Before the ledger has it, between ledger and row, or between the columns of the row.
void Life::killInAct(const Step& step) {
    if (!mayDie()) {
        return;
    }
    isDying_ = true;
    const int part = step.c / 3;
    const Columns columns = step.c % 3 == 2 ? columnsNow() : Columns();
    if (step.c % 3 == 0) {
        freezeAtLook(1 + part % 6);
    } else if (step.c % 3 == 1) {
        protect(true);
    }
    actBefore(step);
    program_.reset();
    if (step.c % 3 == 2) {
        takeBack(columns, part % 4);
    }
    die();
}

void Life::actBefore(const Step& step) {
    const int one = step.b / 6;
    switch (step.b % 6) {
        case 0:
            return snooze(listedRow(step.a), 1 + one * 7);
        case 1:
        case 2:
            return dismiss(listedRow(step.a), {Do::Dismiss, step.a, one, step.b % 6 - 1});
        case 3:
            return other({Do::Reactivate, step.a, 0, 0});
        case 4:
            return other({Do::HideEvent, step.a, 0, 0});
        default:
            return other({Do::DeleteItem, step.a, 0, 0});
    }
}

Life::Columns Life::columnsNow() {
    Columns all;
    host_.forEach([&](const Host::Kept& kept) {
        for (const char* column : kColumns) {
            if (const auto value = file_.value(kept.GUID, column)) {
                all[kept.GUID].emplace_back(column, *value);
            }
        }
    });
    return all;
}

// Of what was written since only the first `count` columns have reached the file.
void Life::takeBack(const Columns& before, int count) {
    for (const auto& [GUID, values] : before) {
        test::EventFile::Values lost;
        int changed = 0;
        for (const auto& [column, value] : values) {
            const auto now = file_.value(GUID, column);
            if (now && *now != value && ++changed > count) {
                lost.emplace_back(column, value);
            }
        }
        if (!lost.empty()) {
            file_.change(GUID, lost);
        }
    }
}

// Of the last line that was added since then a part is left, without its end: false where there is
// none.
bool Life::tearLine(const std::string& before, int part) {
    const std::string after = ledger();
    if (after.size() <= before.size() + 2 || after.compare(0, before.size(), before) != 0) {
        return false;
    }
    const std::size_t line = after.rfind('\n', after.size() - 2) + 1;
    const std::size_t longest = after.size() - 2 - line;
    fs::resize_file(folder_ / kLedger, line + static_cast<std::size_t>(part) % longest);
    ++outcome_.torn;
    return true;
}

// The program adds a line before it writes a row, so of that row nothing was written.
void Life::killInLine(const Step& step) {
    if (mayDie()) {
        isDying_ = true;
        tear_ = step.c * 7;
        protect(true);
        actBefore(step);
        tear_.reset();
        die();
    }
}

// What it had listed the next run lists by itself.
void Life::tearCheck(const Step& step) {
    if (!mayDie()) {
        return;
    }
    isDying_ = true;
    pass(kInterval);
    const std::string before = ledger();
    program_->tick(kInterval * 1000);
    const std::string after = ledger();
    const std::size_t line =
        after.rfind('\n', after.size() - std::min<std::size_t>(2, after.size()));
    // Other lines are followed by what they are written for.
    if (after.find("\"act\":\"listed\"", line + 1) != std::string::npos) {
        tearLine(before, step.b);
    }
    oracles_.used.mayHaveListed({now(), now() + kInterval, !hidden_, false, 0, {}});
    die();
}

// Who runs knows what stood in it, and writes it anew; a program that starts goes by the rows.
void Life::loseLedger(const Step& step) {
    if (step.a % 2 == 0) {
        outcome_.lost += fs::remove(folder_ / kLedger) ? 1U : 0U;
        return wait(kInterval);
    }
    if (!mayDie()) {
        return;
    }
    wait(kInterval);  // what has waited is in the rows
    other_.reset();
    oracles_.other.reset();
    program_.reset();
    outcome_.lost += fs::remove(folder_ / kLedger) ? 1U : 0U;
    oracles_.used.ledgerLost([&](const std::string& GUID) {
        const auto status = file_.value(GUID, "status");
        return Oracle::RowSays{inRow(GUID, "NextReminder"), inRow(GUID, "Dismissed"),
                               status.has_value(), status == Variant("AllDone")};
    });
    for (auto& [GUID, said] : said_) {
        said.next = inRow(GUID, "NextReminder");
        said.dismissed = inRow(GUID, "Dismissed");
    }
    start();
}

}  // namespace vl::simulation
