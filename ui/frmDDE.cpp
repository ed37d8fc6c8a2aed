#include "ui/frmDDE.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QTabWidget>

#include "app/TimeText.h"
#include "base/ErrorState.h"

namespace vl {

frmDDE::frmDDE(const WindowParts& parts)
    : state(parts.state),
      parts_(parts),
      timeText_([](DateTime d) { return shortTimeText(d); }),
      acts_(parts.reminders, parts.period, parts.db, parts.clock, parts.ledger, parts.state),
      check_(parts.reminders, parts.period, parts.db, parts.clock, parts.state, *this, parts.ledger,
             acts_),
      update_(check_, parts.clock, parts.state, *this, parts.DebugMode),
      tray_(Pic1, Pic2, parts.state, this),
      popUp_(Pic2, tray_),
      rowActs_(*this, parts_, timeText_, acts_, check_),
      place_(*this, parts.settings),
      statusText_(parts_, timeText_),
      help_(parts_, [this](const QString& why) { sayOnce(why); }),
      boxes_(*this, [this] { help_.open(help_.number, boxHelp_); }),
      fields_([this] { return lists_.events(); }, [this] { return isWatched(); }, this),
      lists_(parts_, timeText_, [this](calEvent& event) { fields_.Recall(event); }),
      keptColumns_(parts.settings),
      wheel_(parts.state) {
    setObjectName("frmDDE");
    setWindowTitle(tr("VL Reminders"));
    setAccessibleName(windowTitle());  // minimized it would have none
    setWindowIcon(programPicture());
    for (const auto& each : lists_.all()) {
        wireList(*each);
    }
    wireTimers();
    wireTray();
}

frmDDE::~frmDDE() {
    keptColumns_.writeWhatWaits();
    removeSubclasses();
    if (isFurnished()) {  // while there are still the lists that the grids show
        controls_->tabs->disconnect(this);
        delete controls_->tabs;
        controls_.reset();
    }
}

void frmDDE::wireTimers() {
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
    firstAction_.setSingleShot(true);
    connect(&firstAction_, &QTimer::timeout, this, &frmDDE::TimerActions_Tick);
    trayWait_.setObjectName("TimerTray");
    trayWait_.setSingleShot(true);
    connect(&trayWait_, &QTimer::timeout, this, &frmDDE::lookForTray);
    connect(&fields_, &FieldAsker::named, this, [this] { lists_.renewFields(); });
}

void frmDDE::wireList(GridList& each) {
    connect(&each, &GridList::currentRowChanged, this, &frmDDE::currentRowChanged);
    connect(&each, &GridList::chosenRowsChanged, this, &frmDDE::updateButtons);
    connect(&each, &GridList::countChanged, this, &frmDDE::UpdateUI);
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
        state.bOnTop = !state.bOnTop;
        SetOnTop();
        SaveSettings();
    });
    connect(&tray_, &Tray::refresh, this, &frmDDE::mnuRefresh_Click);
    connect(&tray_, &Tray::about, this, &frmDDE::mnuAbout_Click);
    connect(&tray_, &Tray::cleanUp, this, [this] { maintain(&Maintenance::CleanUp); });
    connect(&tray_, &Tray::deleteAll, this, [this] { maintain(&Maintenance::DeleteAll); });
    connect(&tray_, &Tray::exit, this, &frmDDE::Exit);
    connect(&popUp_, &PopUp::linkClicked, this, &frmDDE::MarkupHyperlinkClick);
    connect(&popUp_, &PopUp::closed, this, &frmDDE::HidePopUp);
}

void frmDDE::TimerCheck_Tick() {
    check_.Tick(TimerCheck.interval());
    if (!TimerUpdate.isActive()) {
        TimerUpdate_Tick();
    }
}

// Hidden, there is no clock to show and no row to age: it then runs with each check.
void frmDDE::TimerUpdate_Tick() {
    place_.note();
    update_.Tick();
    if (!isWatched()) {
        TimerUpdate.stop();
    }
}

void frmDDE::TimerFlash_Tick() {
    if (list(kNewRemindersGrid).rowCount() == 0) {
        TimerFlash.stop();
        SetFlashingIcon(false);
        return;
    }
    flashOn_ = !flashOn_;
    SetFlashingIcon(flashOn_);
}

void frmDDE::setVisible(bool visible) {
    if (visible) {
        furnish();
    }
    QWidget::setVisible(visible);
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
        TimerUpdate.start();
        TimerUpdate_Tick();
        GetIconText();
        fields_.Doubt();
        wantFields();
    }
}

// Minimized and brought back, by whatever way.
void frmDDE::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange && !loading_ && isWatched()) {
        fillPeriod();
        TimerUpdate.start();
        TimerUpdate_Tick();
        fields_.Doubt();
        wantFields();
        sayTrayMissing();
    }
}

// The toast has no keys of its own.
void frmDDE::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && popUp_.isShown()) {
        HidePopUp();
    } else {
        QWidget::keyPressEvent(event);
    }
}

void frmDDE::moveEvent(QMoveEvent* event) {
    QWidget::moveEvent(event);
    place_.note();
}

void frmDDE::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    if (!event->spontaneous() && !exiting_) {
        TimerUpdate_Tick();
        GetIconText();
    }
}

}  // namespace vl
