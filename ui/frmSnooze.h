// The dialog that asks for how long to snooze.
#pragma once

#include <string>

#include <QDialog>
#include <QTimer>

#include "ui/DialogParts.h"

class QComboBox;
class QLabel;

namespace vl {

class calEvent;

/// The caller fills `sTitle`, calls `ShowModal` and reads `bCancel` and `sSnooze` afterwards:
/// leaving the dialog only hides it. Its destruction, once it was shown, writes `sSnooze` to the
/// settings, so that the next one offers what was used last. Nothing is thrown out of it.
class frmSnooze final : public QDialog {
    Q_OBJECT

public:
    explicit frmSnooze(DialogParts parts, QWidget* parent = nullptr);
    ~frmSnooze() override;

    bool loading = false;
    bool bCancel = false;            ///< left by Cancel, by Escape or by its frame
    std::string sSnooze;             ///< what was chosen or typed, without the blanks around it
    std::string sTitle;              ///< the caption
    const calEvent* InEv = nullptr;  ///< not used when snoozing
    std::string sReminder;           ///< not used when snoozing

    /// Loads the dialog, shows it and waits until it is left.
    void ShowModal();

    /// Each entry begins with a blank.
    void FillCBO();
    /// Takes what the list says, and leaves.
    void doSnooze();
    /// Leaves; the fields stay to be read.
    void HideMe();
    /// F1 (112) help, F2 (113) opens or closes the list, Enter (13) snoozes.
    void DoKeyDown(int KeyCode);

    /// Escape and the frame.
    void reject() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void build();
    void wire();
    void load();
    void butCancel_Click();
    void TimerUpdate_Tick();
    void showUntil();

    DialogParts parts_;
    bool loaded_ = false;
    QComboBox* cboSnooze = nullptr;
    QLabel* lblHint = nullptr;   // what may be typed
    QLabel* lblUntil = nullptr;  // when the reminder would come again
    QLabel* lblTime = nullptr;
    QPushButton* butSnooze = nullptr;
    QPushButton* butCancel = nullptr;
    QTimer TimerUpdate{this};
};

}  // namespace vl
