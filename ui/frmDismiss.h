// The dialog that asks which reminders of an event to dismiss.
#pragma once

#include <cstdint>
#include <string>

#include <QDialog>
#include <QTimer>

#include "ui/DialogParts.h"

class QCheckBox;
class QLabel;
class QRadioButton;

namespace vl {

/// Works like `frmSnooze`: the caller fills the texts, calls `ShowModal` and reads the choice
/// afterwards. Its destruction, once it was shown, writes `sSnooze` to the settings, which is the
/// caller's to fill; left empty it makes the next snooze offer its first default again.
class frmDismiss final : public QDialog {
    Q_OBJECT

public:
    enum class Choice : std::uint8_t { ThisOnly, After, All, DeleteItem };

    explicit frmDismiss(DialogParts parts, QWidget* parent = nullptr);
    ~frmDismiss() override;

    bool loading = false;
    bool bCancel = false;  ///< left by Cancel, by Escape or by its frame
    std::string sSnooze;   ///< nothing here fills it
    std::string sTitle;    ///< a caption of its own; empty: the dialog's
    std::string sNext;     ///< the label's first text, in front of " Event: "
    std::string sEvent;    ///< the second, behind it

    void ShowModal();
    Choice choice() const;
    /// To be marked as done; never together with deleting.
    bool markDone() const;

    void HideMe();
    /// F1 (112) help, Enter (13) OK.
    void DoKeyDown(int KeyCode);
    void UpdateUI();

    /// Escape and the frame.
    void reject() override;

private:
    void build();
    void wire();
    void load();
    void butOK_Click();
    void butCancel_Click();

    DialogParts parts_;
    bool loaded_ = false;
    QLabel* lblEvent = nullptr;
    QRadioButton* radThisOnly = nullptr;
    QRadioButton* radAfter = nullptr;
    QRadioButton* radAll = nullptr;
    QRadioButton* radDeleteItem = nullptr;
    QCheckBox* chkDone = nullptr;
    QPushButton* butOK = nullptr;
    QPushButton* butCancel = nullptr;
    QTimer TimerUpdate{this};
};

}  // namespace vl
