// What ends the program besides its menu: the end of the session, and a signal.
#pragma once

#include <QObject>

#include "app/platform/EndSignals.h"

namespace vl {

class frmDDE;

/// Sees to it that the window unloads, and so saves its settings, before the program ends,
/// whoever ends it. When the session only asks (it may be called off), the window saves.
/// Must not outlive the window.
class SessionEnd final : public QObject {
    Q_OBJECT

public:
    explicit SessionEnd(frmDDE& window);

protected:
    /// Of the application: before it asks the windows to close, which this one would refuse.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    frmDDE& window_;
    platform::EndSignals signals_;
};

}  // namespace vl
