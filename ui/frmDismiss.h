// The dialog that asks which reminders of an event to dismiss.
#pragma once

#include <cstdint>
#include <string>

#include "ui/AskingDialog.h"

class QCheckBox;
class QLabel;
class QPushButton;
class QRadioButton;

namespace vl {

/// The caller fills the label's texts, and `sTitle` for a caption that is not the dialog's own, and
/// reads the choice. `sSnooze` is the caller's to fill, too, and nothing here does: left empty it
/// makes the next snooze offer its first default again.
class frmDismiss final : public AskingDialog {
    Q_OBJECT

public:
    enum class Choice : std::uint8_t { ThisOnly, After, All, DeleteItem };

    explicit frmDismiss(DialogParts parts, QWidget* parent = nullptr);

    std::string sNext;   ///< the label's first text, in front of " Event: "
    std::string sEvent;  ///< the second, behind it

    Choice choice() const;
    /// To be marked as done; never together with deleting.
    bool markDone() const;

    /// F1 (112) help, Enter (13) OK.
    void DoKeyDown(int KeyCode);
    void UpdateUI();

protected:
    void load() override;

private:
    void build();
    void wire();
    void butOK_Click();

    QLabel* lblEvent = nullptr;
    QRadioButton* radThisOnly = nullptr;
    QRadioButton* radAfter = nullptr;
    QRadioButton* radAll = nullptr;
    QRadioButton* radDeleteItem = nullptr;
    QCheckBox* chkDone = nullptr;
    QPushButton* butOK = nullptr;
    QPushButton* butCancel = nullptr;
};

}  // namespace vl
