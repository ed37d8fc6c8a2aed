// What the buttons, keys and menus do to rows.
#pragma once

#include <optional>
#include <vector>

#include <QObject>

#include "notify/Acts.h"
#include "notify/CheckCycle.h"
#include "ui/DialogParts.h"
#include "ui/RowChoice.h"
#include "ui/WindowParts.h"
#include "ui/Wording.h"

namespace vl {

class frmDDE;
class frmDismiss;

/// Asks where something is to be asked, has it done and takes the rows off the lists. Rows are
/// copied before anything is asked: while a box is open checks go on and refill the grids.
/// Slots are procedures: nothing is thrown out of them.
class RowActs final : public QObject {
    Q_OBJECT

public:
    /// All of it must outlive this. The dialogs are the window's.
    RowActs(frmDDE& window, const WindowParts& parts, TimeText time, Acts& acts, CheckCycle& check);

    /// The rows that are chosen now.
    RowChoice choice() const;
    /// A menu is about to open: what is chosen from it is about the rows of now.
    void noteMenuChoice();
    /// Those rows, once; where no menu was noted, the rows of now.
    RowChoice menuChoice();

    /// What can be done to them. Only rows that are shown as dismissed can be reactivated; a mixed
    /// choice is dismissed.
    ActsOffered offered() const;

    void butSnooze_Click();
    /// The quick form; with Shift, or from the arrow's menu, the one that asks.
    void butDismiss_Click();
    void butOpen_Click();
    /// By a key or a double click. Not while the window has just come by itself: it was meant for
    /// what the user was at.
    void openAsked();
    void dismissAsked(bool choose);
    /// From a menu.
    void dismissChosen(bool choose);

    // What a menu chooses; each may throw.
    void open(const RowChoice& of);
    /// On the first tab the current row is snoozed, on the others the selected ones are hidden.
    void snoozeOrHide(const RowChoice& of);
    void reactivate(const RowChoice& of);

private:
    void doSnooze(const RowChoice& of);
    void doHide(const RowChoice& of);
    void dismiss(const RowChoice& of);
    void chooseDismiss(const RowChoice& of);
    void fillDismiss(frmDismiss& dialog, const ActRow& row);
    void removeFrom(int grid, const std::vector<ActRow>& rows);
    void removeFromAll(const std::vector<ActRow>& rows);
    void leaveGrids(const std::vector<ActRow>& rows, int tab);
    void leaveEmptyList(int tab);
    DialogParts dialogParts();

    frmDDE& window_;
    WindowParts parts_;
    ReminderState& state_;
    Acts& acts_;
    CheckCycle& check_;
    TimeText time_;
    std::optional<RowChoice> menuChoice_;  // what the menu is about that was opened last
};

}  // namespace vl
