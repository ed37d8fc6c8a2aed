// The window's controls: what they are, where they stand, what they do.
#include <utility>

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QTabBar>
#include <QTabWidget>
#include <QToolButton>

#include "app/Settings.h"
#include "base/ErrorState.h"
#include "notify/Periods.h"
#include "ui/FormFont.h"
#include "ui/InputWatch.h"
#include "ui/Named.h"
#include "ui/SplitButton.h"
#include "ui/StatusLine.h"
#include "ui/UpDown.h"
#include "ui/frmDDE.h"

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

}  // namespace

void frmDDE::furnish() {
    if (!isFurnished()) {
        makeControls();
    }
    fillPeriod();
}

// Nothing of it is the user's doing. At the end the controls say what the lists and the state hold,
// as if they had been there all the time.
void frmDDE::makeControls() {
    const ErrScope scope;
    const bool loading = std::exchange(loading_, true);
    build();
    furnished_ = true;
    wireControls();
    for (const auto step : {&frmDDE::fillPeriods, &frmDDE::setTabFont, &frmDDE::initGrids,
                            &frmDDE::layOut, &frmDDE::applyFont, &frmDDE::subclassGrids}) {
        attempt([&] { (this->*step)(); });
    }
    loading_ = loading;
    ShowTime();
    UpdateUI();
    focusRows();
}

void frmDDE::build() {
    lblPeriod = named(new QLabel(tr("&Period"), this), "lblPeriod");
    cboPeriod = named(new QComboBox(this), "cboPeriod", "Period");
    cboPeriod->setMaxVisibleItems(20);
    lblPeriod->setBuddy(cboPeriod);
    UpDown1 = named(new UpDown(this), "UpDown1", "Step through the periods");
    txtSearch = named(new QLineEdit(this), "txtSearch", "Search subject and location");
    txtSearch->setPlaceholderText(tr("Search..."));
    txtSearch->setMaximumWidth(260);
    txtSearch->setClearButtonEnabled(true);
    for (QToolButton* clear : txtSearch->findChildren<QToolButton*>()) {
        clear->setAccessibleName(tr("Clear the search"));
    }
    lblTime = named(new QLabel(this), "lblTime");
    buildGrids();
    status_ = new StatusLine(this);
    butSnooze = named(new QPushButton(this), "butSnooze");
    butDismiss = named(new SplitButton(this), "butDismiss");
    butOpen = named(new QPushButton(tr("&Open"), this), "butOpen");
    butOpen->setToolTip(tr("Open the event in Velmora"));
    butMenu = named(new QPushButton(tr("&Menu"), this), "butMenu");
    butMenu->setToolTip(tr("What the menu of the tray icon offers"));
    butMenu->setMenu(&tray_.menu());
    butHide = named(new QPushButton(tr("&Close"), this), "butHide");
    butHide->setToolTip(tr("Close the window; reminders still come"));
    layOutControls();
}

void frmDDE::buildGrids() {
    tabs = named(new QTabWidget(this), "tabs", "Lists");
    for (int i = 0; i < kGridCount; ++i) {
        const Tab& each = kTabs[static_cast<std::size_t>(i)];
        grids_[static_cast<std::size_t>(i)] =
            named(new Grid(listOf(i), tabs), each.gridName, each.accessibleName);
        tabs->addTab(&grid(i), tr(each.caption));
        captions_ << tabs->tabText(i);
    }
}

void frmDDE::layOutControls() {
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
    auto* all = new QVBoxLayout(this);
    all->addLayout(top);
    all->addWidget(tabs, 1);
    all->addWidget(status_);
    all->addLayout(buttons);
}

void frmDDE::wireControls() {
    connect(cboPeriod, &QComboBox::currentIndexChanged, this, &frmDDE::cboPeriod_Changed);
    connect(UpDown1, &UpDown::stepped, this, &frmDDE::DoUD);
    connect(tabs, &QTabWidget::currentChanged, this, &frmDDE::tabs_Changed);
    connect(txtSearch, &QLineEdit::textChanged, this, &frmDDE::txtSearch_Changed);
    connect(butHide, &QPushButton::clicked, this, &frmDDE::HideMe);
    connect(butSnooze, &QPushButton::clicked, this, &frmDDE::butSnooze_Click);
    connect(butDismiss, &SplitButton::clicked, this, &frmDDE::butDismiss_Click);
    connect(butDismiss, &SplitButton::menuOpening, this, &frmDDE::noteMenuChoice);
    connect(butDismiss, &SplitButton::quickChosen, this, [this] { dismissChosen(false); });
    connect(butDismiss, &SplitButton::chooseChosen, this, [this] { dismissChosen(true); });
    connect(butOpen, &QPushButton::clicked, this, &frmDDE::butOpen_Click);
    for (Grid* each : grids_) {
        wireGrid(*each);
    }
    wireKeys();
    for (QWidget* control : {static_cast<QWidget*>(cboPeriod), static_cast<QWidget*>(UpDown1)}) {
        handOnWheel(*control,
                    [this](const WheelTurn& turn) { RequestMouseWheel(selectedGrid(), turn); });
    }
}

void frmDDE::wireGrid(Grid& each) {
    connect(&each, &Grid::columnsChanged, this, &frmDDE::columnsChanged);
    connect(&each, &Grid::openAsked, this, &frmDDE::openAsked);
    connect(&each, &Grid::dismissAsked, this, &frmDDE::dismissAsked);
    connect(&each, &Grid::menuAsked, this, &frmDDE::gridMenu);
    connect(&each, &Grid::headingMenuAsked, this,
            [&each](const QPoint& at) { headingMenu(each, at); });
}

void frmDDE::wireKeys() {
    // They are about the tab that was in front when the key was pressed.
    clickAtOnce(*butSnooze);
    clickAtOnce(*butDismiss);
    // To a list by its letter is to its rows, also where its tab is in front already.
    watchShortcuts(*tabs->tabBar(), [this] { selectedGrid().setFocus(Qt::ShortcutFocusReason); });
    // From what is searched for to what was found.
    connect(txtSearch, &QLineEdit::returnPressed, this, [this] { selectedGrid().setFocus(); });
    const auto* toRows =
        new QShortcut(Qt::Key_Down, txtSearch, nullptr, nullptr, Qt::WidgetShortcut);
    connect(toRows, &QShortcut::activated, this, [this] { selectedGrid().setFocus(); });
    const auto* help = new QShortcut(Qt::Key_F1, this);
    connect(help, &QShortcut::activated, this, &frmDDE::ShowHelp);
    const auto* refresh = new QShortcut(Qt::Key_F5, this);
    connect(refresh, &QShortcut::activated, this, &frmDDE::mnuRefresh_Click);
    // The tray's menu is not there on every desktop.
    // Some desktops have no key for "quit".
    const auto* exit = new QShortcut(Qt::CTRL | Qt::Key_Q, this);
    connect(exit, &QShortcut::activated, this, &frmDDE::Exit);
    const auto* toSearch = new QShortcut(QKeySequence::Find, this);
    connect(toSearch, &QShortcut::activated, txtSearch, [this] { txtSearch->setFocus(); });
    const auto* clearSearch =
        new QShortcut(Qt::Key_Escape, txtSearch, nullptr, nullptr, Qt::WidgetShortcut);
    connect(clearSearch, &QShortcut::activated, txtSearch, &QLineEdit::clear);
}

void frmDDE::fillPeriods() {
    for (const Period& period : periods()) {
        cboPeriod->addItem(tr(period.text), QString(period.code));
    }
    const auto shown = periodIndex(state_.sPeriod);
    cboPeriod->setCurrentIndex(static_cast<int>(shown.value_or(*periodIndex("T"))));
    UpDown1->setValue(cboPeriod->currentIndex() + 1);
}

// The grids are left out by the form's font, they follow their tab.
void frmDDE::setTabFont() { tabs->setFont(formFont(*tabs)); }

void frmDDE::initGrids() {
    for (int i = 0; i < kGridCount; ++i) {
        Grid& each = grid(i);
        each.arrange(keptColumns_.layout(i, each.unit()));
        keptColumns_.taken(i, each.columnLayout());
    }
}

void frmDDE::layOut() { layout()->activate(); }

void frmDDE::applyFont() { applyFormFont(*this); }

void frmDDE::subclassGrids() {
    for (Grid* each : grids_) {
        parts_.gridUtils.subclass(*each, [this, each](QAbstractScrollArea&, const WheelTurn& turn) {
            RequestMouseWheel(*each, turn);
        });
    }
}

}  // namespace vl
