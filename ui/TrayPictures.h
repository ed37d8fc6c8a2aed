// The program's own pictures: a bell, the bell with a dot, and the program's icon.
#pragma once

#include <QIcon>

namespace vl {

// From the pictures in data/icons, at 16, 20, 22, 24, 32, 48 and 64 pixels; each is read when it is
// first shown. Bell and bell with dot differ in outline, not only in colour: the dot stands clear
// of the bell. These need a running QGuiApplication.

/// The bell: nothing new.
QIcon quietPicture();
/// The bell with a dot: new reminders wait.
QIcon newPicture();
/// Of windows.
QIcon programPicture();

}  // namespace vl
