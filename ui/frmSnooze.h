// The dialog that asks for how long to snooze.
#pragma once

#include <string>

#include "ui/AskingDialog.h"

class QComboBox;
class QLabel;
class QPushButton;

namespace vl {

class calEvent;

/// The caller fills `sTitle`, the caption, and reads `bCancel` and `sSnooze`: what was chosen or
/// typed, without the blanks around it. The next one offers what was used last.
class frmSnooze final : public AskingDialog {
    Q_OBJECT

public:
    explicit frmSnooze(DialogParts parts, QWidget* parent = nullptr);

    const calEvent* InEv = nullptr;  ///< not used when snoozing
    std::string sReminder;           ///< not used when snoozing

    /// Each entry begins with a blank.
    void FillCBO();
    /// Takes what the list says, and leaves.
    void doSnooze();
    /// F1 (112) help, F2 (113) opens or closes the list, Enter (13) snoozes.
    void DoKeyDown(int KeyCode);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void load() override;

private:
    void build();
    void wire();
    void TimerUpdate_Tick();
    void showUntil();

    QComboBox* cboSnooze = nullptr;
    QLabel* lblHint = nullptr;   // what may be typed
    QLabel* lblUntil = nullptr;  // when the reminder would come again
    QLabel* lblTime = nullptr;
    QPushButton* butSnooze = nullptr;
    QPushButton* butCancel = nullptr;
};

}  // namespace vl
