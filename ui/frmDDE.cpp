#include "ui/frmDDE.h"

#include <chrono>

#include <QCloseEvent>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QTabBar>
#include <QTabWidget>

#include "app/TimeText.h"
#include "base/ErrorState.h"
#include "ui/ElidedLabel.h"
#include "ui/InputWatch.h"
#include "ui/SplitButton.h"
#include "ui/UpDown.h"

namespace vl {

namespace {

using namespace std::chrono_literals;

constexpr auto kColumnsRest = 500ms;

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

// Named and described in one place: tests, screen readers and drivers go by these.
// A control that shows a text of its own is known by that to who cannot see it.
template <class Control>
Control* named(Control* control, const char* name, const char* accessibleName = nullptr) {
    control->setObjectName(name);
    if (accessibleName) {
        control->setAccessibleName(QObject::tr(accessibleName));
    }
    return control;
}

}  // namespace

frmDDE::frmDDE(const WindowParts& parts)
    : parts_(parts),
      state_(parts.state),
      acts_(parts.reminders, parts.period, parts.db, parts.clock, parts.ledger, parts.state),
      check_(parts.reminders, parts.period, parts.db, parts.clock, parts.state, *this, parts.ledger,
             acts_),
      update_(check_, parts.clock, parts.state, *this, parts.DebugMode),
      tray_(pictures_, parts.state, this),
      popup_(pictures_.Pic2),
      timeText_([](DateTime d) { return shortTimeText(d); }) {
    build();
    wire();
    wireTray();
}

frmDDE::~frmDDE() {
    saveColumnsThatWait();
    removeSubclasses();
}

void frmDDE::build() {
    setObjectName("frmDDE");
    setWindowTitle(tr("VL Reminders"));
    setAccessibleName(windowTitle());  // minimized it would have none
    setWindowIcon(pictures_.program);
    auto* lblPeriod = new QLabel(tr("&Period"), this);
    lblPeriod->setObjectName("lblPeriod");
    cboPeriod = named(new QComboBox(this), "cboPeriod", "Period");
    cboPeriod->setMaxVisibleItems(20);
    lblPeriod->setBuddy(cboPeriod);
    UpDown1 = named(new UpDown(this), "UpDown1", "Step through the periods");
    txtSearch = named(new QLineEdit(this), "txtSearch", "Search subject and location");
    txtSearch->setPlaceholderText(tr("Search..."));
    txtSearch->setMaximumWidth(260);
    lblTime = named(new QLabel(this), "lblTime");
    tabs = named(new QTabWidget(this), "tabs", "Lists");
    for (int i = 0; i < kGridCount; ++i) {
        const Tab& tab = kTabs[static_cast<std::size_t>(i)];
        grids_[static_cast<std::size_t>(i)] =
            named(new Grid(i, timeText_, tabs), tab.gridName, tab.accessibleName);
        tabs->addTab(&grid(i), tr(tab.caption));
    }
    lblStatus = named(new ElidedLabel(this), "lblStatus");
    lblNotice = named(new QLabel(this), "lblNotice");
    lblNotice->setTextFormat(Qt::PlainText);
    butSnooze = named(new QPushButton(this), "butSnooze");
    butDismiss = named(new SplitButton(this), "butDismiss");
    butOpen = named(new QPushButton(tr("&Open"), this), "butOpen");
    butOpen->setToolTip(tr("Open the event in Velmora"));
    butMenu = named(new QPushButton(tr("&Menu"), this), "butMenu");
    butMenu->setToolTip(tr("What the menu of the tray icon offers"));
    butMenu->setMenu(&tray_.menu());
    butHide = named(new QPushButton(tr("&Close"), this), "butHide");
    butHide->setToolTip(tr("Close the window; reminders still come"));

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
    auto* status = new QHBoxLayout;
    status->addWidget(lblStatus, 1);
    status->addWidget(lblNotice);
    auto* all = new QVBoxLayout(this);
    all->addLayout(top);
    all->addWidget(tabs, 1);
    all->addLayout(status);
    all->addLayout(buttons);
}

void frmDDE::wire() {
    TimerCheck.setObjectName("TimerCheck");
    TimerUpdate.setObjectName("TimerUpdate");
    TimerFlash.setObjectName("TimerFlash");
    TimerActions.setObjectName("TimerActions");
    for (QTimer* timer : {&TimerCheck, &TimerUpdate}) {
        timer->setTimerType(Qt::CoarseTimer);
    }
    connect(&TimerCheck, &QTimer::timeout, this, &frmDDE::TimerCheck_Tick);
    connect(&TimerUpdate, &QTimer::timeout, this, &frmDDE::TimerUpdate_Tick);
    connect(&TimerFlash, &QTimer::timeout, this, &frmDDE::TimerFlash_Tick);
    connect(&TimerActions, &QTimer::timeout, this, &frmDDE::TimerActions_Tick);
    firstCheck_.setSingleShot(true);
    connect(&firstCheck_, &QTimer::timeout, this, &frmDDE::TimerCheck_Tick);
    trayWait_.setObjectName("TimerTray");
    trayWait_.setSingleShot(true);
    connect(&trayWait_, &QTimer::timeout, this, &frmDDE::lookForTray);
    saveColumns_.setSingleShot(true);
    saveColumns_.setInterval(kColumnsRest);
    connect(&saveColumns_, &QTimer::timeout, this, &frmDDE::saveColumns);
    TimerFields.setObjectName("TimerFields");
    TimerFields.setSingleShot(true);
    connect(&TimerFields, &QTimer::timeout, this, &frmDDE::TimerFields_Tick);

    connect(cboPeriod, &QComboBox::currentIndexChanged, this, &frmDDE::cboPeriod_Changed);
    connect(UpDown1, &UpDown::stepped, this, &frmDDE::DoUD);
    connect(tabs, &QTabWidget::currentChanged, this, &frmDDE::tabs_Changed);
    connect(txtSearch, &QLineEdit::textChanged, this, &frmDDE::txtSearch_Changed);
    connect(butHide, &QPushButton::clicked, this, &frmDDE::HideMe);
    connect(butSnooze, &QPushButton::clicked, this, &frmDDE::butSnooze_Click);
    connect(butDismiss, &SplitButton::clicked, this, &frmDDE::butDismiss_Click);
    connect(butDismiss, &SplitButton::quickChosen, this, [this] { dismissAsked(false); });
    connect(butDismiss, &SplitButton::chooseChosen, this, [this] { dismissAsked(true); });
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
    connect(&each, &Grid::currentRowChanged, this, &frmDDE::currentRowChanged);
    connect(&each, &Grid::chosenRowsChanged, this, &frmDDE::updateButtons);
    connect(&each, &Grid::countChanged, this, &frmDDE::UpdateUI);
    connect(&each, &Grid::columnsChanged, this, &frmDDE::columnsChanged);
    connect(&each, &Grid::openAsked, this, &frmDDE::butOpen_Click);
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
    const auto* exit = new QShortcut(QKeySequence::Quit, this);
    connect(exit, &QShortcut::activated, this, &frmDDE::Exit);
    const auto* toSearch = new QShortcut(QKeySequence::Find, this);
    connect(toSearch, &QShortcut::activated, txtSearch, [this] { txtSearch->setFocus(); });
    const auto* clearSearch =
        new QShortcut(Qt::Key_Escape, txtSearch, nullptr, nullptr, Qt::WidgetShortcut);
    connect(clearSearch, &QShortcut::activated, txtSearch, &QLineEdit::clear);
}

void frmDDE::wireTray() {
    connect(&tray_, &Tray::clicked, this, &frmDDE::Tray_Click);
    connect(&tray_, &Tray::balloonClicked, this, [this] {
        if (!bringDialogForward()) {
            showWindow();
        }
    });
    connect(&tray_, &Tray::menuOpening, this, &frmDDE::mnuTray_Opening);
    connect(&tray_, &Tray::showHide, this, &frmDDE::ShowHide);
    connect(&tray_, &Tray::mute, this,
            [this] { changeSetting([](ReminderState& s) { s.bMuted = !s.bMuted; }); });
    connect(&tray_, &Tray::silent, this,
            [this] { changeSetting([](ReminderState& s) { s.bSilent = !s.bSilent; }); });
    connect(&tray_, &Tray::notifType, this, [this](const QString& letter) {
        changeSetting([&letter](ReminderState& s) { s.sNotifType = letter.toStdString(); });
    });
    connect(&tray_, &Tray::onTop, this, [this] {
        state_.bOnTop = !state_.bOnTop;
        SetOnTop();
        SaveSettings();
    });
    connect(&tray_, &Tray::refresh, this, &frmDDE::mnuRefresh_Click);
    connect(&tray_, &Tray::about, this, &frmDDE::mnuAbout_Click);
    connect(&tray_, &Tray::cleanUp, this, &frmDDE::mnuCleanUp_Click);
    connect(&tray_, &Tray::deleteAll, this, &frmDDE::mnuDeleteAll_Click);
    connect(&tray_, &Tray::exit, this, &frmDDE::Exit);
    connect(&popup_, &Toast::linkClicked, this, &frmDDE::MarkupHyperlinkClick);
    connect(&popup_, &Toast::closed, this, &frmDDE::HidePopUp);
}

void frmDDE::TimerCheck_Tick() {
    check_.Tick(TimerCheck.interval());
    if (!TimerUpdate.isActive()) {
        TimerUpdate_Tick();
    }
}

bool frmDDE::isWatched() const { return isVisible() && !isMinimized(); }

// Hidden, there is no clock to show and no row to age: it then runs with each check.
void frmDDE::TimerUpdate_Tick() {
    noteFrame();
    update_.Tick();
    if (!isWatched()) {
        TimerUpdate.stop();
    }
}

void frmDDE::TimerFlash_Tick() {
    if (grid(kNewRemindersGrid).rowCount() == 0) {
        TimerFlash.stop();
        SetFlashingIcon(false);
        return;
    }
    flashOn_ = !flashOn_;
    SetFlashingIcon(flashOn_);
}

void frmDDE::closeEvent(QCloseEvent* event) {
    if (exiting_) {
        event->accept();
        return;
    }
    event->ignore();
    HideMe();
}

void frmDDE::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!event->spontaneous() && !loading_) {
        // Its picture is looked for in all the desktop's themes: not before somebody can see it.
        txtSearch->setClearButtonEnabled(true);
        TimerUpdate.start();
        TimerUpdate_Tick();
        GetIconText();
        fieldNames_.Doubt();
        wantFields();
    }
}

// Minimized and brought back, by whatever way.
void frmDDE::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange && !loading_ && isWatched()) {
        TimerUpdate.start();
        TimerUpdate_Tick();
        fieldNames_.Doubt();
        wantFields();
        sayTrayMissing();
    } else if (event->type() == QEvent::PaletteChange && lblNotice != nullptr) {
        // The desktop has turned dark, or light: the line has a colour of its own.
        lblStatus->clear();
        showStatus();
    }
}

void frmDDE::moveEvent(QMoveEvent* event) {
    QWidget::moveEvent(event);
    noteFrame();
}

void frmDDE::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    if (!event->spontaneous() && !exiting_) {
        TimerUpdate_Tick();
        GetIconText();
    }
}

}  // namespace vl
