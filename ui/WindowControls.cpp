#include "ui/WindowControls.h"

#include <algorithm>

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QToolButton>
#include <QVBoxLayout>

#include "notify/Periods.h"
#include "ui/FormFont.h"
#include "ui/Named.h"
#include "ui/QtText.h"
#include "ui/SplitButton.h"
#include "ui/StatusLine.h"
#include "ui/UpDown.h"
#include "ui/WindowLists.h"
#include "ui/Wording.h"

namespace vl {

namespace {

struct Tab {
    const char* caption;
    const char* gridName;
    const char* accessibleName;
};

constexpr std::array<Tab, kGridCount> kTabs{{
    {"&New Reminders", "G0", "New Reminders"},
    {"&All Reminders", "G1", "All Reminders"},
    {"&Events", "G2", "Events"},
}};

QString tr(const char* text) { return QObject::tr(text); }

}  // namespace

// In the order in which Tab goes through them.
WindowControls::WindowControls(QWidget& window, ReminderState& state, const GridLists& lists,
                               QMenu& menu)
    : state_(state) {
    makeTop(window);
    makeGrids(window, lists);
    status = new StatusLine(&window);
    makeButtons(window, menu);
    layOut(window);
}

void WindowControls::makeTop(QWidget& window) {
    lblPeriod = named(new QLabel(tr("&Period"), &window), "lblPeriod");
    cboPeriod = named(new QComboBox(&window), "cboPeriod", "Period");
    cboPeriod->setMaxVisibleItems(20);
    lblPeriod->setBuddy(cboPeriod);
    UpDown1 = named(new UpDown(&window), "UpDown1", "Step through the periods");
    txtSearch = named(new QLineEdit(&window), "txtSearch", "Search subject and location");
    txtSearch->setPlaceholderText(tr("Search..."));
    txtSearch->setMaximumWidth(260);
    txtSearch->setClearButtonEnabled(true);
    for (QToolButton* clear : txtSearch->findChildren<QToolButton*>()) {
        clear->setAccessibleName(tr("Clear the search"));
    }
    lblTime = named(new QLabel(&window), "lblTime");
}

void WindowControls::makeGrids(QWidget& window, const GridLists& lists) {
    tabs = named(new QTabWidget(&window), "tabs", "Lists");
    const std::array<ColumnWidths*, kGridCount> widths{&state_.WidthsR[0], &state_.WidthsR[1],
                                                       &state_.WidthsE};
    for (std::size_t i = 0; i < kTabs.size(); ++i) {
        grids[i] = named(new Grid(*lists[i], *widths[i], tabs), kTabs[i].gridName,
                         kTabs[i].accessibleName);
        tabs->addTab(grids[i], tr(kTabs[i].caption));
        captions_ << tabs->tabText(static_cast<int>(i));
    }
}

void WindowControls::makeButtons(QWidget& window, QMenu& menu) {
    butSnooze = named(new QPushButton(&window), "butSnooze");
    butDismiss = named(new SplitButton(&window), "butDismiss");
    butOpen = named(new QPushButton(tr("&Open"), &window), "butOpen");
    butOpen->setToolTip(tr("Open the event in Velmora"));
    butMenu = named(new QPushButton(tr("&Menu"), &window), "butMenu");
    butMenu->setToolTip(tr("What the menu of the tray icon offers"));
    butMenu->setMenu(&menu);
    butHide = named(new QPushButton(tr("&Close"), &window), "butHide");
    butHide->setToolTip(tr("Close the window; reminders still come"));
}

void WindowControls::layOut(QWidget& window) {
    auto* top = new QHBoxLayout;
    top->addWidget(lblPeriod);
    top->addWidget(cboPeriod);
    top->addWidget(UpDown1);
    top->addStretch(1);
    top->addWidget(txtSearch, 2);
    top->addStretch(1);
    top->addWidget(lblTime);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(butSnooze);
    buttons->addWidget(butDismiss);
    buttons->addWidget(butOpen);
    buttons->addStretch(1);
    buttons->addWidget(butMenu);
    buttons->addWidget(butHide);
    auto* all = new QVBoxLayout(&window);
    all->addLayout(top);
    all->addWidget(tabs, 1);
    all->addWidget(status);
    all->addLayout(buttons);
}

Grid& WindowControls::selectedGrid() const { return grid(tabs->currentIndex()); }

bool WindowControls::showsColumn(std::string_view id) const {
    return std::any_of(grids.begin(), grids.end(), [id](const Grid* each) {
        return !each->isColumnHidden(columnIndex(each->list().rows().columns(), id));
    });
}

void WindowControls::fillPeriods() {
    for (const Period& period : periods()) {
        cboPeriod->addItem(tr(period.text), QString(period.code));
    }
    const int shown = listPosition(*state_.ListIndexCol, state_.sPeriod);
    cboPeriod->setCurrentIndex(shown - 1);
    UpDown1->setValue(shown);
}

void WindowControls::setTabFont() { tabs->setFont(formFont(*tabs)); }

void WindowControls::showCaptions() {
    for (int i = 0; i < captions_.size(); ++i) {
        const std::size_t rows = grid(i).list().rowCount();
        const QString caption = qtText(tabCaption(plainText(captions_[i]), rows));
        if (tabs->tabText(i) != caption) {
            tabs->setTabText(i, caption);
        }
    }
}

void WindowControls::showEmptyTexts(std::string_view trouble, const WindowLists& lists) {
    const std::string period = plainText(cboPeriod->currentText());
    for (Grid* each : grids) {
        EmptyReason reason;
        reason.grid = each->list().grid();
        reason.searching = each->list().allFilteredOut();
        reason.trouble = trouble;
        reason.periodCode = state_.sPeriod;
        reason.periodText = period;
        reason.leftOut = lists.leftOut(reason.grid);
        each->setEmptyText(qtText(emptyText(reason)));
    }
}

void WindowControls::show(const ActsOffered& offered) {
    showDismiss(offered);
    showSnooze(offered);
    butOpen->setEnabled(offered.anyCurrent);
}

void WindowControls::showSnooze(const ActsOffered& offered) {
    if (offered.snoozes) {
        butSnooze->setText(tr("&Snooze..."));
        butSnooze->setToolTip(tr("Be reminded of the current row again later"));
        butSnooze->setEnabled(offered.anyCurrent);
        return;
    }
    butSnooze->setText(offered.hides ? tr("&Hide") : tr("Un&hide"));
    butSnooze->setToolTip(
        offered.hides
            ? tr("List the selected events in the view \"Hidden\" only; they still remind")
            : tr("List the selected events in the other views again"));
    butSnooze->setEnabled(offered.anySelected);
}

void WindowControls::showDismiss(const ActsOffered& offered) {
    butDismiss->setText(offered.dismisses ? tr("&Dismiss...") : tr("&Reactivate"));
    butDismiss->setToolTip(
        offered.dismisses
            ? tr("Click to dismiss reminders for this event")
            : tr("Click to cancel dismiss action. Reminders will be re-enabled for this event"));
    butDismiss->setSplit(offered.dismisses);
    butDismiss->setEnabled(offered.anySelected);
}

}  // namespace vl
