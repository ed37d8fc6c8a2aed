"""The desktop's colours, light or dark, by way of the platform theme qt6ct; and contrast.

A program that is to follow them needs `ENVIRONMENT`; what `choose` writes holds at once, also for
one that runs.
"""
import os

ENVIRONMENT = {"QT_QPA_PLATFORMTHEME": "qt6ct"}

_CHOICE = """[Appearance]
custom_palette={custom}
color_scheme_path={scheme}
style=Fusion
[Fonts]
general="Sans Serif,9,-1,5,50,0,0,0,0,0"
"""
# Roles in the palette's order: window text, button, light, midlight, dark, mid, text, bright text,
# button text, base, window, shadow, highlight, highlighted text, link, visited link, alternate
# base, no role, tip's base, tip's text, placeholder.
_ACTIVE = ("#e6e8ea #31363b #4a5056 #3c4248 #15181a #24282c #e6e8ea #ffffff #e6e8ea #1e2124 #2a2e32 "
           "#0c0e10 #2f78b8 #ffffff #6fb1ec #b79be0 #262a2e #ffffff #3a4046 #e6e8ea #8a9198").split()
_DISABLED = [{"#e6e8ea": "#7d848b", "#2f78b8": "#3f464d"}.get(c, c) for c in _ACTIVE]


def _scheme():
    lists = {"active_colors": _ACTIVE, "disabled_colors": _DISABLED, "inactive_colors": _ACTIVE}
    return "[ColorScheme]\n" + "".join(
        f"{name}={', '.join('#ff' + c[1:] for c in colours)}\n" for name, colours in lists.items())


def choose(config_home, dark):
    folder = os.path.join(config_home, "qt6ct")
    os.makedirs(folder, exist_ok=True)
    scheme = os.path.join(folder, "dark.conf")
    with open(scheme, "w") as file:
        file.write(_scheme())
    # A file that comes and goes is what qt6ct watches its folder for.
    fresh = os.path.join(folder, "qt6ct.conf.new")
    with open(fresh, "w") as file:
        file.write(_CHOICE.format(custom="true" if dark else "false", scheme=scheme))
    os.replace(fresh, os.path.join(folder, "qt6ct.conf"))


def luminance(colour):
    """From 0 (black) to 1 (white), as the eye sees it (WCAG 2)."""
    parts = [c / 255 for c in colour[:3]]
    r, g, b = (c / 12.92 if c <= 0.03928 else ((c + 0.055) / 1.055) ** 2.4 for c in parts)
    return 0.2126 * r + 0.7152 * g + 0.0722 * b


def contrast(image):
    """Between the lightest and the darkest of its colours: from 1 to 21."""
    shades = [luminance(colour) for _, colour in image.getcolors(image.width * image.height)]
    return (max(shades) + 0.05) / (min(shades) + 0.05)
