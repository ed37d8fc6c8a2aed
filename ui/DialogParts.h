// What both dialogs share.
#pragma once

#include <functional>
#include <initializer_list>

#include <QFrame>

class QDialog;
class QLabel;
class QPushButton;
class QWidget;

namespace vl {

class Clock;
class Settings;

/// What a dialog works with. All of it must outlive the dialog.
struct DialogParts {
    Settings& settings;
    const Clock& clock;
    bool bOnTop = false;                ///< as the main window is
    std::function<void(int)> showHelp;  ///< opens the page of a help number
};

// Key codes as `DoKeyDown` takes them.
inline constexpr int kKeyEnter = 13;
inline constexpr int kKeyF1 = 112;
inline constexpr int kKeyF2 = 113;

/// The link "Show online help...": a click opens it, or Space, since Enter is the dialog's.
QLabel* makeHelpLink(QDialog& dialog, const std::function<void()>& show);

/// `frmButtons`: the two buttons, the first being the default one.
QFrame* makeButtonGroup(QDialog& dialog, QPushButton& first, QPushButton& second);

/// The order in which Tab goes through them.
void setTabOrders(std::initializer_list<QWidget*> controls);

/// Hands the keys that the dialog looks at before its controls do to `DoKeyDown`.
void previewKeys(QDialog& dialog, std::initializer_list<int> codes,
                 const std::function<void(int)>& DoKeyDown);

/// What is done to a dialog's window before it is shown: its font, whether it lies above all
/// others, its title bar without the help button that some systems add. It will block its owner,
/// not the rest of the program.
void adjustWindow(QDialog& dialog, bool onTop);

}  // namespace vl
