// What exceptions have taken over, for who asks for a few events only.
#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "DueBook.h"
#include "FullRead.h"
#include "RowReader.h"
#include "base/ErrorState.h"
#include "base/Text.h"
#include "events/CalEvents.h"

namespace vl {

namespace {

bool isOneOf(const std::vector<std::string>& ids, std::string_view id) {
    return std::any_of(ids.begin(), ids.end(),
                       [&](const std::string& one) { return text::equalsNoCase(one, id); });
}

}  // namespace

// Of every exception, also one that is finished or deleted; and of each series with that id, since
// it depends on which there are whose exception it is.
void CalEvents::FindReplaced() {
    const ErrScope scope;
    std::vector<std::string> ids;
    for (const Variant& item : mCol ? *mCol : GenCollection()) {
        const auto event = objectIn<calEvent>(item);
        if (event && event->IsRepeating() && !event->id.empty() && !isOneOf(ids, event->id)) {
            ids.push_back(event->id);
        }
    }
    if (ids.empty()) {
        return;
    }
    GenCollection all(*mCol);
    const auto take = [&](const std::string& statement, auto&& isWanted) {
        attempt([&] {
            const auto rows = db_.OpenRS(statement);
            const TimeZone local = TimeZone::local();
            const RowReader reader(rows->fields(), local, fullRead_->pool());
            for (; !rows->EOF_(); rows->MoveNext()) {
                const auto event = readEvent([&](calEvent& one) { reader.fill(one, *rows); });
                if (isWanted(*event) && !all.Exists(event->GUID)) {
                    all.Add(Variant(event), event->GUID);
                }
            }
        });
    };
    take("SELECT * FROM Reminders WHERE RecurrenceState=3 AND RExceptionStartTimeOrig is not Null;",
         [&](const calEvent& event) { return isOneOf(ids, event.recurringEventId); });
    for (const std::string& id : ids) {
        take("SELECT * FROM Reminders WHERE id=\"" + id + "\"",
             [](const calEvent& event) { return event.IsRepeating(); });
    }
    db_.CloseDB();
    book_->learnReplaced(all, *ledger_, db_.DBFullName);
}

}  // namespace vl
