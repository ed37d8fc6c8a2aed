"""A day's work with reminders, told once and done by two hands: the mouse's and the keyboard's."""
import re
import time

from stage import EARLIER, LATER, OneDay, check
from uidrive import act, desktop, reminders, tray, tree
from uidrive.reminders import ALL, EVENTS, NEW
from uidrive.waiting import NotThere, run, wait_for, wait_gone

SNOOZE, DISMISS = "Snooze reminder for", "Dismiss Reminder"  # how the dialogs' captions begin
HOUR = 3600
CHECK = 30  # seconds until a check has surely been made; when time has passed it is one


def dialog(caption):
    return wait_for(lambda: next((w for w in tree.windows() if tree.name(w).startswith(caption)),
                                 None), 10, f"the dialog {caption!r}")


def wait_left(caption):
    wait_gone(lambda: any(tree.name(w).startswith(caption) for w in tree.windows()), 10,
              f"the dialog {caption!r}")


def type_text(text):
    run("xdotool", "type", "--delay", "20", text)


class Mouse:
    """Clicks; keys only where text is typed."""

    def tab(self, name):
        act.select_tab(name, reminders.TITLE)

    def pick(self, grid, subject):
        act.select_row(subject, grid, reminders.TITLE)

    def button(self, caption):
        act.click_button(caption, reminders.TITLE)

    def snooze(self, text):
        self.button("Snooze")
        box = dialog(SNOOZE)
        field = tree.find("text", None, box)
        act.click(field)
        act.key("ctrl+a")
        type_text(text)
        act.click_button("Snooze", box)
        wait_left(SNOOZE)

    def dismiss(self):
        self.button("Dismiss")

    def dismiss_how(self, choice, _letter):
        x, y, width, height = tree.box(tree.find("push button", "Dismiss", reminders.TITLE))
        act.click_at(x + width - 6, y + height // 2)  # its arrow
        act.choose("Dismiss")
        box = dialog(DISMISS)
        act.click(tree.find("radio button", choice, box))
        act.click_button("OK", box)
        wait_left(DISMISS)

    def period(self, text):
        act.pick_from_list(text, tree.find("combo box", None, reminders.TITLE))
        wait_period(text)

    def reactivate(self):
        self.button("Reactivate")

    def hide(self):
        self.button("Hide")

    def unhide(self):
        self.button("Unhide")

    def menu(self, *path):
        self.button("Menu")
        act.choose(*path)
        wait_gone(tree.open_menus, what="the menu")

    def answer(self, caption, button):
        act.click_button(button, dialog(caption))
        wait_left(caption)


class Keys:
    """Only keys."""

    def tab(self, name):
        act.key("alt+" + name[0].lower())
        wait_for(lambda: tree.current_tab(reminders.TITLE).startswith(name), 5, f"tab {name!r}")

    def pick(self, grid, subject):
        rows = wait_for(lambda: (lambda s: s if subject in s else None)(reminders.subjects(grid)),
                        10, f"the row {subject!r}")
        act.key("Home", *["Down"] * rows.index(subject))
        wait_for(lambda: reminders.selected_subjects(grid) == [subject], 5, f"{subject!r} selected")

    def snooze(self, text):
        act.key("alt+s")
        dialog(SNOOZE)
        wait_keys(SNOOZE)
        type_text(text)  # over what is there, which is selected
        act.key("Return")
        wait_left(SNOOZE)

    def dismiss(self):
        act.key("Delete")

    def dismiss_how(self, _choice, letter):
        act.key("shift+Delete")
        dialog(DISMISS)
        wait_keys(DISMISS)
        act.key("alt+" + letter)
        act.key("Return")
        wait_left(DISMISS)

    def period(self, text):
        act.key("alt+p", "alt+Down")
        listed = wait_for(lambda: tree.open_list(tree.find("combo box", None, reminders.TITLE)), 5,
                          "the list of the periods")

        def chosen():
            return any(tree.name(item) == text and "selected" in tree.states(item)
                       for item in tree.children(listed))
        for _ in range(3):  # the first letter may come before the list takes keys
            type_text(text)
            try:
                wait_for(chosen, 2, f"{text!r} chosen")
                break
            except NotThere:
                continue
        act.key("Return")
        wait_period(text)

    def reactivate(self):
        act.key("alt+r")

    def hide(self):
        act.key("alt+h")

    unhide = hide

    def menu(self, *path):
        wait_keys(reminders.TITLE)
        time.sleep(0.2)  # for a tenth of a second after its menu Qt's button is deaf to its key
        act.key("alt+m")
        wait_for(tree.open_menus, 5, "the menu")
        for text in path:
            act.key(text[0].lower())
        wait_gone(tree.open_menus, what="the menu")

    def answer(self, caption, button):
        dialog(caption)
        wait_keys(caption)
        act.key({"Cancel": "Escape", "OK": "Return"}.get(button, button[0].lower()))
        wait_left(caption)


def wait_keys(caption):
    """Keys go to that window: it is in front, and its program knows it."""
    def ready():
        return (desktop.active_title() or "").startswith(caption) and any(
            tree.name(w).startswith(caption) and "active" in tree.states(w)
            for w in tree.windows())
    wait_for(ready, 10, f"{caption!r} in front")


def wait_period(text):
    tree.find("combo box", text, reminders.TITLE)  # it is known by what it shows


def wait_rows(grid, wanted, timeout=10):
    """The grid lists just these."""
    wait_for(lambda: sorted(reminders.subjects(grid)) == sorted(wanted), timeout,
             lambda: f"{wanted} in {grid!r}; there are {reminders.subjects(grid)}")


def show_window():
    if not reminders.showing():
        tray.click(reminders.PROGRAM)
    reminders.wait_shown()
    desktop.wait_active(reminders.TITLE)


def work(hand):
    with OneDay(timers_too=True) as program:
        due = program.due.subject
        reminders.wait_listed(EARLIER, 30)
        program.clock.put_forward(60)
        reminders.wait_listed(due, CHECK)
        desktop.wait_active(reminders.TITLE)

        hand.pick(NEW, due)
        hand.snooze("2h")
        wait_rows(NEW, [EARLIER])
        hand.tab(ALL)
        row = next(r for r in reminders.rows(ALL) if reminders.subject(r) == due)
        check("(snoozed)" in row[reminders.SUBJECT], f"snoozed by typing 2h: {row[reminders.TIME]}")

        hand.tab(NEW)
        hand.pick(NEW, EARLIER)
        hand.dismiss()
        reminders.wait_hidden()
        check(True, "the last new reminder is dismissed, the window is gone")

        program.clock.put_forward(60 + 2 * HOUR)
        rows = reminders.wait_listed(due, CHECK)
        check([reminders.subject(r) for r in rows] == [due], f"only {due!r} is back two hours later")

        program.clock.put_forward(4 * HOUR)
        reminders.wait_listed(LATER, CHECK)
        hand.pick(NEW, due)
        hand.dismiss_how("All reminders", "a")
        wait_rows(NEW, [LATER])
        hand.pick(NEW, LATER)
        hand.dismiss_how("All reminders except those after the event (if any)", "e")
        reminders.wait_hidden()
        check(True, "dismissed in two more ways")

        show_window()
        hand.tab(ALL)
        hand.period("Dismissed")
        hand.pick(ALL, EARLIER)
        hand.reactivate()
        wait_gone(lambda: EARLIER in reminders.subjects(ALL), 10, f"the row of {EARLIER!r}")
        hand.tab(NEW)
        program.clock.put_forward(4 * HOUR + CHECK)
        reminders.wait_listed(EARLIER, CHECK)
        check(reminders.subjects(NEW) == [EARLIER], "what was reactivated is listed as new again")

        hand.period("Today")
        hand.tab(EVENTS)
        hand.pick(EVENTS, due)
        hand.hide()
        wait_gone(lambda: due in reminders.subjects(EVENTS), 10, "the hidden row")
        hand.period("Hidden")
        hand.pick(EVENTS, due)
        hand.unhide()
        wait_rows(EVENTS, [])
        hand.period("Today")
        wait_for(lambda: due in reminders.subjects(EVENTS), 10, "the row that is hidden no more")
        check(True, "hidden, and unhidden")

        hand.menu("Notification type", "Tray icon")
        wait_for(lambda: "NotifType=T" in settings(program), 5, "the type in the settings")
        reminders.exit_by_tray()
        check(program.wait_end() == 0, "ended")

        program.sql(f'UPDATE Reminders SET VLBase="{program.host_file()}" '
                    f'WHERE Subject="{EARLIER}" OR Subject="{due}"')
        with program:  # once more, on what it left behind
            tray.icon(reminders.PROGRAM, timeout=30)
            show_window()
            reminders.wait_listed(EARLIER, CHECK)
            check(reminders.subjects(NEW) == [EARLIER], "after a restart only what was not dealt with")
            check("NotifType=T" in settings(program), "and the settings are as they were")
            clean_up(hand, program)
            delete_all(hand, program)
            reminders.exit_by_tray()
            check(program.wait_end() == 0, "ended again")


def rows(program):
    return program.sql("SELECT COUNT(*) AS n FROM Reminders")[0]["n"]


def said(caption):
    return " ".join(tree.name(n) for n in tree.find_all("label", within=dialog(caption)))


def clean_up(hand, program):
    before = rows(program)
    for answer in ("Cancel", "No", "Yes"):
        check(rows(program) == before, f"{before} rows before the answer {answer!r}")
        hand.menu("Clean up database")
        asked = said("Clean up database")
        hand.answer("Clean up database", answer)
    lost, files = map(int, re.search(r"(\d+) events in (\d+) files", asked).groups())
    check(0 < lost == before - 2 and files == 2, f"all but two are lost, in two files: {asked!r}")
    check(f"{lost} events were removed" in said("Clean up completed"), "it tells how many it removed")
    hand.answer("Clean up completed", "OK")
    check(rows(program) == 2, "and they are gone")
    hand.menu("Clean up database")
    check("Nothing to clean up" in said("Clean up completed"), "then there is nothing to clean up")
    hand.answer("Clean up completed", "OK")
    check(reminders.subjects(NEW) == [EARLIER], "what can be located is still listed")


def delete_all(hand, program):
    for answer in ("Cancel", "No", "Yes"):
        check(rows(program) == 2, f"two rows before the answer {answer!r}")
        hand.menu("Delete all reminders")
        check("Delete all reminders?" in said("Reminders database management"), "it asks first")
        hand.answer("Reminders database management", answer)
    wait_rows(NEW, [])
    check(rows(program) == 0, "all are gone")


def settings(program):
    with open(program.settings) as file:
        return file.read()
