// What kills the program.
#include <filesystem>
#include <string>

#include "Life.h"

namespace fs = std::filesystem;

namespace vl::simulation {

// A line of an event was added since.
bool Life::isNoted(const std::string& before) const {
    const std::string after = ledger();
    const bool isLonger = after.compare(0, before.size(), before) == 0;
    return after.find("\"guid\"", isLonger ? before.size() : 0) != std::string::npos;
}

// Nothing that the program still does reaches the disk.
void Life::freeze(bool on) {
    const auto write = fs::perms::owner_write;
    for (const fs::path& path : {folder_ / "VLReminders.ledger", folder_.path()}) {
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

}  // namespace vl::simulation
