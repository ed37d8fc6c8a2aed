// Periods, rows, captions and the status line.
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTabBar>
#include <QTabWidget>

#include "app/Settings.h"
#include "base/ErrorState.h"
#include "base/Text.h"
#include "db/DBRemindUtils.h"
#include "notify/PeriodRows.h"
#include "notify/Periods.h"
#include "ui/QtText.h"
#include "ui/StatusLine.h"
#include "ui/UpDown.h"
#include "ui/frmDDE.h"

namespace vl {

bool frmDDE::isPeriod(std::string_view code) const {
    return text::equalsNoCase(state_.sPeriod, code);
}

void frmDDE::cboPeriod_Changed(int index) {
    UpDown1->setValue(index + 1);
    if (!loading_ && index >= 0) {
        ShowPeriod();
    }
}

void frmDDE::DoUD() {
    UpDown1->setValue(wrapped(UpDown1->value(), cboPeriod->count()));
    cboPeriod->setCurrentIndex(UpDown1->value() - 1);
}

void frmDDE::ShowPeriod() { choosePeriod(plainText(cboPeriod->currentData().toString())); }

void frmDDE::choosePeriod(std::string code) {
    state_.sPeriod = std::move(code);
    showPeriodAnew();
    TimerUpdate_Tick();
}

// As the user wants it: the rows are what he goes on with. A refill by a timer leaves the focus to
// who is typing.
void frmDDE::showPeriodAnew() {
    DoPeriod();
    focusRows();
    if (isFurnished()) {
        selectedGrid().showCurrentRow();  // the buttons are about it
    }
}

int frmDDE::tab() const { return isFurnished() ? tabs->currentIndex() : kNewRemindersGrid; }

void frmDDE::selectTab(int grid) {
    if (isFurnished()) {
        tabs->setCurrentIndex(grid);
    }
}

void frmDDE::focusRows() {
    if (isFurnished()) {
        selectedGrid().setFocus();
    }
}

bool frmDDE::SelectGUID(std::string_view GUID) {
    if (!selectedList().SelectGUID(GUID) && selectedList().contains(GUID)) {
        txtSearch->clear();  // it is the search that hides the row
    }
    return selectedList().SelectGUID(GUID);
}

void frmDDE::FirstNewRowCurrent() { listOf(kNewRemindersGrid).selectFirst(); }

void frmDDE::tabs_Changed() {
    selectedGrid().showCurrentRow();
    currentRowChanged();
    GetIconText();
}

void frmDDE::txtSearch_Changed(const QString& search) {
    for (const auto& each : lists_) {
        each->setSearch(search);
    }
    UpdateUI();
}

void frmDDE::currentRowChanged() {
    if (currentGUID() != noticeRow_) {
        notice_.clear();
    }
    const GridRow* row = selectedList().currentRow();
    state_.curEvent = row ? row->event : nullptr;
    showStatus();
    updateButtons();
}

void frmDDE::ShowTime() {
    const DateTime now = parts_.clock.now();
    if (isFurnished()) {
        lblTime->setText(qtText(timeText_(now)));
    }
    for (const auto& each : lists_) {
        each->setNow(now);
    }
}

void frmDDE::UpdateUI() {
    GetIconText();
    if (isFurnished()) {
        showCaptions();
        showEmptyTexts();
    }
    showStatus();
    updateButtons();
}

void frmDDE::UpdateG1() {
    for (Grid* each : grids_) {
        if (each != nullptr) {
            each->viewport()->update();
        }
    }
}

void frmDDE::showCaptions() {
    for (int i = 0; i < captions_.size(); ++i) {
        const QString caption = qtText(tabCaption(plainText(captions_[i]), listOf(i).rowCount()));
        if (tabs->tabText(i) != caption) {
            tabs->setTabText(i, caption);
        }
    }
}

void frmDDE::showEmptyTexts() {
    const std::string period = plainText(cboPeriod->currentText());
    const std::string trouble = troubleText();
    for (int i = 0; i < kGridCount; ++i) {
        EmptyReason reason;
        reason.grid = i;
        reason.searching = listOf(i).allFilteredOut();
        reason.trouble = trouble;
        reason.periodCode = state_.sPeriod;
        reason.periodText = period;
        grid(i).setEmptyText(qtText(emptyText(reason)));
    }
}

std::string frmDDE::troubleText() const {
    const DBRemindUtils::Trouble& trouble = parts_.db.ReadTrouble();
    return vl::troubleText(parts_.db.DBFullName, trouble.number, trouble.text);
}

QString frmDDE::rowStatus() const {
    QString line;
    if (const GridRow* row = selectedList().currentRow()) {
        attempt([&] {
            const DateWords words = wordsOf(timeText_, parts_.clock.now());
            line = qtText(row->event->SBMessage(row->span.start, words));
        });
    }
    return line;
}

std::string frmDDE::currentGUID() const {
    const GridRow* row = selectedList().currentRow();
    return row ? plainText(row->GUID) : std::string();
}

void frmDDE::sayOnce(const QString& notice) {
    notice_ = notice;
    noticeRow_ = currentGUID();
    showStatus();
}

void frmDDE::showStatus() {
    if (!isFurnished()) {
        return;
    }
    const ErrScope scope;
    const QString trouble = qtText(troubleText());
    StatusLine::Saying saying;
    saying.trouble = !trouble.isEmpty();
    if (saying.trouble) {
        saying.line =
            parts_.db.DBFullName.empty() ? trouble : tr("%1; F5 tries again").arg(trouble);
        saying.tip = qtText(parts_.db.ReadTrouble().text);
    } else {
        saying.line = notice_.isEmpty() ? rowStatus() : notice_;
    }
    saying.notice = notice();
    saying.noticeTip = canSave_ ? QString() : qtText(parts_.settings.filename);
    status_->say(saying);
}

// While nothing can be read there is nothing to say of what was.
QString frmDDE::notice() const {
    const bool isRead = troubleText().empty();
    const std::string waiting = waitingText(state_.waitingWrites);
    const std::string damaged = damagedText(isRead ? state_.damagedRows : 0);
    const std::string hidden = withoutStatusText(isRead ? state_.rowsWithoutStatus : 0);
    const std::string& about = !waiting.empty() ? waiting : !damaged.empty() ? damaged : hidden;
    return qtText(noticeText(about, canSave_));
}

}  // namespace vl
