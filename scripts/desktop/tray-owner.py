#!/usr/bin/python3
"""Ends with status 0 when a tray host owns the display's tray selection (XEmbed)."""
import ctypes
import sys

x11 = ctypes.CDLL("libX11.so.6")
x11.XOpenDisplay.restype = ctypes.c_void_p
x11.XInternAtom.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_int]
x11.XInternAtom.restype = ctypes.c_ulong
x11.XGetSelectionOwner.argtypes = [ctypes.c_void_p, ctypes.c_ulong]
x11.XGetSelectionOwner.restype = ctypes.c_ulong

display = x11.XOpenDisplay(None)
if not display:
    sys.exit(1)
selection = x11.XInternAtom(display, b"_NET_SYSTEM_TRAY_S0", 0)
sys.exit(0 if x11.XGetSelectionOwner(display, selection) else 1)
