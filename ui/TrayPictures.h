// The program's own pictures: a bell, and the bell with a dot.
#pragma once

#include <QIcon>

namespace vl {

/// Painted once, at 16, 22, 24, 32, 48 and 64 pixels, when the object is made (some milliseconds);
/// setting one on the tray afterwards costs no painting. The two differ in outline, not only in
/// colour: the dot stands clear of the bell. Needs a running QGuiApplication.
struct TrayPictures {
    TrayPictures();

    QIcon Pic1;  ///< nothing new; also the window's icon
    QIcon Pic2;  ///< new reminders wait
};

}  // namespace vl
