"""Drives a desktop program from outside, as a person would, and sees what it shows.

Reads widgets through the accessibility bus (AT-SPI), acts with real mouse and key events
(xdotool), looks at pictures of the screen, hears what is played. Works inside scripts/desktop.sh
and needs the system's python (/usr/bin/python3), which has the bindings.

A "node" is an accessible object. Where something is looked for, `within` is a node, a window's
title, or None for all windows. Names are compared without "&", without a final ellipsis and
without regard to case. Every wait is bounded and ends in `NotThere`.

    waiting   NotThere, wait_for, wait_gone
    tree      reading: windows, widgets, tabs, grids
    act       mouse, keys, buttons, tabs, rows, menus
    desktop   windows as the window manager sees them, pictures of the screen
    tray      the tray icon, embedded (XEmbed) or over D-Bus (StatusNotifierItem)
    hearing   what the sound server plays
    program   the program that is driven
    reminders VL Reminders as it looks on the screen
"""
