#include "ui/StatusText.h"

#include <utility>

#include "app/Settings.h"
#include "base/ErrorState.h"
#include "db/DBRemindUtils.h"
#include "ui/QtText.h"
#include "ui/RowFill.h"

namespace vl {

namespace {

QString GUIDOf(const GridRow* row) { return row != nullptr ? row->GUID : QString(); }

}  // namespace

StatusText::StatusText(const WindowParts& parts, TimeText time)
    : parts_(parts), time_(std::move(time)) {}

void StatusText::sayOnce(const QString& notice, const GridRow* row) {
    once_ = notice;
    onceAt_ = GUIDOf(row);
}

void StatusText::rowChanged(const GridRow* row) {
    if (GUIDOf(row) != onceAt_) {
        once_.clear();
    }
}

void StatusText::lookWhetherSaved() { canSave_ = parts_.settings.CanSave(); }

std::string StatusText::trouble() const {
    const DBRemindUtils::Trouble& trouble = parts_.db.ReadTrouble();
    return troubleText(parts_.db.DBFullName, trouble.number, trouble.text);
}

QString StatusText::rowText(const GridRow& row) const {
    QString line;
    attempt(
        [&] { line = eventLine(*row.event, row.span.start, wordsOf(time_, parts_.clock.now())); });
    return line;
}

StatusLine::Saying StatusText::saying(const GridRow* row) const {
    StatusLine::Saying saying;
    const QString wrong = qtText(trouble());
    saying.trouble = !wrong.isEmpty();
    if (saying.trouble) {
        saying.line =
            parts_.db.DBFullName.empty() ? wrong : QObject::tr("%1; F5 tries again").arg(wrong);
        saying.tip = qtText(parts_.db.ReadTrouble().text);
    } else if (!once_.isEmpty()) {
        saying.line = once_;
    } else if (row != nullptr) {
        saying.line = rowText(*row);
    }
    saying.notice = notice();
    saying.noticeTip = canSave_ ? QString() : qtText(parts_.settings.filename);
    return saying;
}

// While nothing can be read there is nothing to say of what was.
QString StatusText::notice() const {
    const bool isRead = trouble().empty();
    const ReminderState& state = parts_.state;
    const std::string waiting = waitingText(state.waitingWrites);
    const std::string damaged = damagedText(isRead ? state.damagedRows : 0);
    const std::string hidden = withoutStatusText(isRead ? state.rowsWithoutStatus : 0);
    const std::string& about = !waiting.empty() ? waiting : !damaged.empty() ? damaged : hidden;
    return qtText(noticeText(about, canSave_));
}

}  // namespace vl
