// The window's controls: when they are made, and what they do.
#include <utility>

#include <QComboBox>
#include <QLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QTabBar>
#include <QTabWidget>

#include "base/ErrorState.h"
#include "ui/ColumnMenu.h"
#include "ui/FormFont.h"
#include "ui/InputWatch.h"
#include "ui/SplitButton.h"
#include "ui/UpDown.h"
#include "ui/frmDDE.h"

namespace vl {

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
    controls_ = std::make_unique<WindowControls>(*this, state, lists_.all(), tray_.menu());
    wireControls();
    attempt([&] { controls_->fillPeriods(); });
    attempt([&] { controls_->setTabFont(); });
    for (Grid* each : controls_->grids) {
        attempt([&] { keptColumns_.arrange(*each); });
    }
    attempt([&] { layout()->activate(); });
    attempt([&] { applyFormFont(*this); });
    attempt([&] { subclassGrids(); });
    loading_ = loading;
    ShowTime();
    UpdateUI();
    focusRows();
}

void frmDDE::wireControls() {
    connect(controls_->cboPeriod, &QComboBox::currentIndexChanged, this,
            &frmDDE::cboPeriod_Changed);
    connect(controls_->UpDown1, &UpDown::stepped, this, &frmDDE::DoUD);
    connect(controls_->tabs, &QTabWidget::currentChanged, this, &frmDDE::tabs_Changed);
    connect(controls_->txtSearch, &QLineEdit::textChanged, this, &frmDDE::txtSearch_Changed);
    connect(controls_->butHide, &QPushButton::clicked, this, &frmDDE::HideMe);
    connect(controls_->butSnooze, &QPushButton::clicked, &rowActs_, &RowActs::butSnooze_Click);
    connect(controls_->butDismiss, &SplitButton::clicked, &rowActs_, &RowActs::butDismiss_Click);
    connect(controls_->butDismiss, &SplitButton::menuOpening, &rowActs_, &RowActs::noteMenuChoice);
    connect(controls_->butDismiss, &SplitButton::quickChosen, &rowActs_,
            [this] { rowActs_.dismissChosen(false); });
    connect(controls_->butDismiss, &SplitButton::chooseChosen, &rowActs_,
            [this] { rowActs_.dismissChosen(true); });
    connect(controls_->butOpen, &QPushButton::clicked, &rowActs_, &RowActs::butOpen_Click);
    for (Grid* each : controls_->grids) {
        wireGrid(*each);
    }
    wireKeys();
    for (QWidget* control :
         {static_cast<QWidget*>(controls_->cboPeriod), static_cast<QWidget*>(controls_->UpDown1)}) {
        handOnWheel(*control, [this](const WheelTurn& turn) {
            RequestMouseWheel(controls_->selectedGrid(), turn);
        });
    }
}

void frmDDE::wireGrid(Grid& each) {
    connect(&each, &Grid::columnsChanged, this, &frmDDE::columnsChanged);
    connect(&each, &Grid::openAsked, &rowActs_, &RowActs::openAsked);
    connect(&each, &Grid::dismissAsked, &rowActs_, &RowActs::dismissAsked);
    connect(&each, &Grid::menuAsked, this, &frmDDE::gridMenu);
    connect(&each, &Grid::headingMenuAsked, this,
            [&each](const QPoint& at) { showColumnMenu(each, at); });
}

void frmDDE::wireKeys() {
    // They are about the tab that was in front when the key was pressed.
    clickAtOnce(*controls_->butSnooze);
    clickAtOnce(*controls_->butDismiss);
    // To a list by its letter is to its rows, also where its tab is in front already.
    watchShortcuts(*controls_->tabs->tabBar(),
                   [this] { controls_->selectedGrid().setFocus(Qt::ShortcutFocusReason); });
    // From what is searched for to what was found.
    connect(controls_->txtSearch, &QLineEdit::returnPressed, this,
            [this] { controls_->selectedGrid().setFocus(); });
    const auto* toRows =
        new QShortcut(Qt::Key_Down, controls_->txtSearch, nullptr, nullptr, Qt::WidgetShortcut);
    connect(toRows, &QShortcut::activated, this, [this] { controls_->selectedGrid().setFocus(); });
    const auto* help = new QShortcut(Qt::Key_F1, this);
    connect(help, &QShortcut::activated, this, &frmDDE::ShowHelp);
    const auto* refresh = new QShortcut(Qt::Key_F5, this);
    connect(refresh, &QShortcut::activated, this, &frmDDE::mnuRefresh_Click);
    // The tray's menu is not there on every desktop, and some have no key for "quit".
    const auto* exit = new QShortcut(Qt::CTRL | Qt::Key_Q, this);
    connect(exit, &QShortcut::activated, this, &frmDDE::Exit);
    const auto* toSearch = new QShortcut(QKeySequence::Find, this);
    connect(toSearch, &QShortcut::activated, controls_->txtSearch,
            [this] { controls_->txtSearch->setFocus(); });
    const auto* clearSearch =
        new QShortcut(Qt::Key_Escape, controls_->txtSearch, nullptr, nullptr, Qt::WidgetShortcut);
    connect(clearSearch, &QShortcut::activated, controls_->txtSearch, &QLineEdit::clear);
}

void frmDDE::subclassGrids() {
    for (Grid* each : controls_->grids) {
        parts_.gridUtils.subclass(*each, [this, each](QAbstractScrollArea&, const WheelTurn& turn) {
            RequestMouseWheel(*each, turn);
        });
    }
}

void frmDDE::removeSubclasses() {
    if (isFurnished()) {
        for (Grid* each : controls_->grids) {
            parts_.gridUtils.removeSubclass(*each);
        }
    }
}

}  // namespace vl
