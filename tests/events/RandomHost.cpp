#include "RandomHost.h"

#include <filesystem>

namespace vl::test {

RandomHost::RandomHost(DateTime now, unsigned seed) : now_(now), random_(seed), events_(now, seed) {
    db.DBFullName = path();
    for (int i = 0; i < 150; ++i) {
        insert();
    }
}

std::string RandomHost::anyText() {
    static constexpr int lengths[] = {0, 5, 60, 700, 3000, 9000};
    return std::string(static_cast<std::size_t>(lengths[upTo(6)]),
                       static_cast<char>('a' + upTo(26)));
}

void RandomHost::insert() {
    const auto event = events_.next();
    event->JSON = anyText();
    file_.put(*event);
    guids_.push_back(event->GUID);
}

const std::string& RandomHost::any() {
    return guids_[static_cast<std::size_t>(upTo(static_cast<int>(guids_.size())))];
}

const std::string& RandomHost::anyThere() {
    while (true) {
        if (const std::string& GUID = any(); file_.has(GUID)) {
            return GUID;
        }
    }
}

void RandomHost::change() {
    const std::string GUID = any();
    switch (upTo(9)) {
        case 0:
            insert();
            break;
        case 1:
            file_.remove(GUID);
            break;
        case 2:
            file_.change(GUID, {{"JSON", anyText()}});
            break;
        case 3:
            file_.change(GUID, {{"Body", anyText()}, {"Location", anyText().substr(0, 100)}});
            break;
        case 4:
            file_.change(GUID, {{"status", upTo(2) == 0 ? "AllDone" : ""}});
            break;
        case 5:
            file_.change(GUID, {{"deleted", upTo(2) == 0}});
            break;
        case 6:
            file_.change(GUID, {{"EventID", upTo(5)}});
            break;
        case 7:
            file_.change(GUID, {{"status", Variant(Null{})}});
            break;
        default:
            file_.remove(GUID);
            insert();
            break;
    }
}

void RandomHost::write(int step) { file_.change(anyThere(), {{"LabelID", step + 1}}); }

void RandomHost::stamp(DateTime Modified) { file_.change(anyThere(), {{"Modified", Modified}}); }

void RandomHost::replace() {
    namespace fs = std::filesystem;
    const fs::path copy = folder_ / "copy";
    fs::copy_file(path(), copy);
    fs::rename(copy, path());
}

void RandomHost::touch(CalEvents& set) {
    const std::string GUID = any();
    if (const auto event = objectAt<calEvent>(*set.mCol, GUID)) {
        event->Dismissed = now_.addDays(-upTo(100));
        set.LookAgain(GUID);
    }
}

}  // namespace vl::test
