// The period, the tabs, what stands around the rows.
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTabWidget>

#include "base/ErrorState.h"
#include "base/Text.h"
#include "notify/PeriodRows.h"
#include "notify/Periods.h"
#include "ui/QtText.h"
#include "ui/StatusLine.h"
#include "ui/UpDown.h"
#include "ui/frmDDE.h"

namespace vl {

bool frmDDE::isPeriod(std::string_view code) const {
    return text::equalsNoCase(state.sPeriod, code);
}

void frmDDE::cboPeriod_Changed(int index) {
    controls_->UpDown1->setValue(index + 1);
    if (!loading_ && index >= 0) {
        ShowPeriod();
    }
}

void frmDDE::DoUD() {
    UpDown& arrows = *controls_->UpDown1;
    arrows.setValue(wrapped(arrows.value(), controls_->cboPeriod->count()));
    controls_->cboPeriod->setCurrentIndex(arrows.value() - 1);
}

void frmDDE::ShowPeriod() {
    choosePeriod(plainText(controls_->cboPeriod->currentData().toString()));
}

void frmDDE::choosePeriod(std::string code) {
    state.sPeriod = std::move(code);
    showPeriodAnew();
    TimerUpdate_Tick();
}

// As the user wants it: the rows are what he goes on with. A refill by a timer leaves the focus to
// who is typing.
void frmDDE::showPeriodAnew() {
    DoPeriod();
    focusRows();
    if (isFurnished()) {
        controls_->selectedGrid().showCurrentRow();  // the buttons are about it
    }
}

int frmDDE::tab() const {
    return isFurnished() ? controls_->tabs->currentIndex() : kNewRemindersGrid;
}

void frmDDE::selectTab(int grid) {
    if (isFurnished()) {
        controls_->tabs->setCurrentIndex(grid);
    }
}

void frmDDE::focusRows() {
    if (isFurnished()) {
        controls_->selectedGrid().setFocus();
    }
}

void frmDDE::keepScrollPlace(const std::function<void()>& change) {
    isFurnished() ? controls_->selectedGrid().keepScrollPlace(change) : change();
}

void frmDDE::DoPeriod() {
    lists_.letWait();
    if (isWatched()) {
        fillPeriod();
        return;
    }
    const ErrScope scope;
    attempt([&] { lists_.count(tab()); });
    GetIconText();  // which tells it of the selected tab
}

void frmDDE::fillPeriod() {
    if (lists_.fill()) {
        UpdateUI();
        wantFields();
    }
}

void frmDDE::AddItemR(const std::shared_ptr<calEvent>& event, int index) {
    const ErrScope scope;
    attempt([&] {
        if (lists_.put(event, index)) {
            wantFields();
        }
    });
    if (index == kNewRemindersGrid && !TimerFlash.isActive()) {
        flashOn_ = true;
        TimerFlash.start();
    }
}

void frmDDE::UpdateItemR(const std::shared_ptr<calEvent>& event, int index) {
    if (listOf(index).contains(event->GUID)) {
        AddItemR(event, index);
    }
}

void frmDDE::RemoveGUID(std::string_view GUID, int index) { listOf(index).RemoveGUID(GUID); }

bool frmDDE::SelectGUID(std::string_view GUID) {
    if (!selectedList().SelectGUID(GUID) && selectedList().contains(GUID)) {
        controls_->txtSearch->clear();  // it is the search that hides the row
    }
    return selectedList().SelectGUID(GUID);
}

void frmDDE::FirstNewRowCurrent() { listOf(kNewRemindersGrid).selectFirst(); }

void frmDDE::tabs_Changed() {
    controls_->selectedGrid().showCurrentRow();
    currentRowChanged();
    GetIconText();
}

void frmDDE::txtSearch_Changed(const QString& search) {
    lists_.setSearch(search);
    UpdateUI();
}

void frmDDE::currentRowChanged() {
    statusText_.rowChanged(selectedList().currentRow());
    followCurrentRow();
    showStatus();
    updateButtons();
}

void frmDDE::followCurrentRow() {
    state.releaseCurrent();
    if (const GridRow* row = selectedList().currentRow()) {
        state.curEvent = row->event;
        state.curReminder = {row->span.start, row->reminder};
    }
}

void frmDDE::ShowTime() {
    const DateTime now = parts_.clock.now();
    if (isFurnished()) {
        controls_->lblTime->setText(qtText(timeText_(now)));
    }
    if (isWatched()) {
        lists_.setNow(now);
    }
}

void frmDDE::UpdateUI() {
    GetIconText();
    if (isFurnished()) {
        controls_->showCaptions();
        controls_->showEmptyTexts(statusText_.trouble(), lists_);
    }
    followCurrentRow();
    showStatus();
    updateButtons();
}

void frmDDE::UpdateG1() {
    if (isFurnished()) {
        for (Grid* each : controls_->grids) {
            each->viewport()->update();
        }
    }
}

void frmDDE::sayOnce(const QString& notice) {
    statusText_.sayOnce(notice, selectedList().currentRow());
    showStatus();
}

void frmDDE::showStatus() {
    const ErrScope scope;
    if (isFurnished()) {
        controls_->status->say(statusText_.saying(selectedList().currentRow()));
    }
}

void frmDDE::updateButtons() {
    const ActsOffered offered = rowActs_.offered();
    state.bIsDismiss = offered.dismisses;
    if (isFurnished()) {
        controls_->show(offered);
    }
}

void frmDDE::columnsChanged() {
    if (!loading_) {
        keptColumns_.changed();
    }
    wantFields();
}

// The names of the fields that events belong to: when somebody can see them, never by a check, and
// never while the window is hidden.
void frmDDE::wantFields() {
    if (!loading_ && isWatched() && isFurnished() && controls_->showsColumn(CIDField)) {
        fields_.want();
    }
}

}  // namespace vl
