// What the two dialogs are that ask about a reminder.
#pragma once

#include <string>

#include <QDialog>
#include <QTimer>

#include "ui/DialogParts.h"

namespace vl {

/// The caller fills the texts, calls `ShowModal` and reads what was answered afterwards: leaving
/// the dialog only hides it. Its destruction, once it was shown, writes `sSnooze` to the settings.
/// Nothing is thrown out of it.
class AskingDialog : public QDialog {
    Q_OBJECT

public:
    ~AskingDialog() override;

    bool loading = false;
    bool bCancel = false;  ///< left by Cancel, by Escape or by its frame
    std::string sSnooze;   ///< the offset that the next snooze offers
    std::string sTitle;    ///< a caption of its own

    /// Loads the dialog, shows it and waits until it is left.
    void ShowModal();
    /// Leaves; the fields stay to be read.
    void HideMe();

    /// Escape and the frame.
    void reject() override;

protected:
    AskingDialog(DialogParts parts, QWidget* parent);

    /// Fills the controls by what the caller has set.
    virtual void load() = 0;
    /// The end of loading: the window as it is shown, and the timer.
    void settle();
    void answer();
    void butCancel_Click();

    DialogParts parts_;
    QTimer TimerUpdate{this};

private:
    bool loaded_ = false;
};

}  // namespace vl
