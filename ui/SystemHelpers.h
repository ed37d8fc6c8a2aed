// The system helpers that need a window, a mouse or a keyboard.
#pragma once

#include <cstdint>

#include <Qt>

class QWidget;

namespace vl {

// No function here throws.

/// Keeps the window above all others, or no longer. Place, size, focus and visibility stay.
/// True when the window has that state afterwards.
bool setOnTop(QWidget& window, bool on);

/// The width at which a window shows all of its title, in so far as the screen has it.
int titleRoom(const QWidget& window);

/// The left, right or middle button is down, as far as the program has been told: what happens
/// outside of its windows it does not hear of.
bool mouseButtonDown();
bool mouseButtonDown(Qt::MouseButtons buttons);

/// The control key is down. Goes by bit 0x1000 of the key's state word, see `controlKeyState`.
bool controlKeyDown();
bool controlKeyDown(std::uint16_t keyState);

/// The state of the control key as a word in the system's way: a key that is down fills the upper
/// byte and bit 7 with ones (0xFF80), one that is up leaves 0. The lowest bit, the toggle, is never
/// set here. So the mask 0x1000, which is no flag of its own, finds a key that is down.
std::uint16_t controlKeyState(Qt::KeyboardModifiers modifiers);

/// Shows the hand over a label that is a hyperlink.
void showHandCursor(QWidget& label);

}  // namespace vl
