"""A day's work with reminders, told once and done by two hands: the mouse's and the keyboard's."""
import re
import time

from stage import EARLIER, LATER, OneDay, check, dialog, wait_left
from uidrive import act, desktop, reminders, tray, tree
from uidrive.reminders import ALL, EVENTS, NEW
from uidrive.waiting import NotThere, run, wait_for, wait_gone

SNOOZE, DISMISS = "Snooze reminder for", "Dismiss Reminder"  # how the dialogs' captions begin
THIS, ALL_BUT_AFTER, ALL_OF_IT, DELETE = (
    "This reminder", "All reminders except those after the event (if any)", "All reminders",
    "Dismiss all reminders and DELETE item")
HOUR = 3600
CHECK = 30  # seconds until a check has surely been made; when time has passed it is one


def type_text(text):
    run("xdotool", "type", "--delay", "20", text)


class Mouse:
    """Clicks; keys only where text is typed."""

    def wait_tray(self):
        tray.icon(reminders.PROGRAM, timeout=30)

    def tip(self):
        return tray.tooltip(reminders.PROGRAM)

    def show(self):
        tray.click(reminders.PROGRAM)

    def exit(self):
        reminders.exit_by_tray()

    def tab(self, name):
        act.select_tab(name, reminders.TITLE)

    def pick(self, grid, subject):
        act.select_row(subject, grid, reminders.TITLE)

    def button(self, caption):
        act.click_button(caption, reminders.TITLE)

    def open_snooze(self):
        self.button("Snooze")

    def snooze(self, text):
        self.open_snooze()
        box = dialog(SNOOZE)
        field = tree.find("text", None, box)
        act.click(field)
        act.key("ctrl+a")
        type_text(text)
        act.click_button("Snooze", box)
        wait_left(SNOOZE)

    def cancel(self, caption):
        act.click_button("Cancel", dialog(caption))
        wait_left(caption)

    def dismiss(self):
        self.button("Dismiss")

    def dismiss_how(self, choice, done=False):
        x, y, width, height = tree.box(tree.find("push button", "Dismiss", reminders.TITLE))
        act.click_at(x + width - 6, y + height // 2)  # its arrow
        act.choose("Dismiss")
        box = dialog(DISMISS)
        act.click(tree.find("radio button", choice, box))
        if done:
            act.click(tree.find("check box", "Mark item as Done", box))
        act.click_button("OK", box)
        wait_left(DISMISS)

    def open_in_host(self):
        self.button("Open")

    def refresh(self):
        self.menu("Refresh")

    def period(self, text):
        act.pick_from_list(text, tree.find("combo box", None, reminders.TITLE))
        wait_period(text)

    def reactivate(self):
        self.button("Reactivate")

    def hide(self):
        self.button("Hide")

    def unhide(self):
        self.button("Unhide")

    def open_menu(self):
        self.button("Menu")

    def enter(self, text):
        act.choose(text)

    def menu(self, *path):
        self.open_menu()
        act.choose(*path)
        wait_gone(tree.open_menus, what="the menu")

    def answer(self, caption, button):
        act.click_button(button, dialog(caption))
        wait_left(caption)


class Keys:
    """Only keys. The icon in the panel is the panel's: its keys reach the program over the bus."""

    LETTERS = {THIS: "t", ALL_BUT_AFTER: "e", ALL_OF_IT: "a"}

    def wait_tray(self):
        self._icon = tray.BusIcon(timeout=30)

    def tip(self):
        return self._icon.tooltip()

    def show(self):
        self.wait_tray()
        self._icon.left_click()

    def exit(self):
        act.key("ctrl+q")

    def tab(self, name):
        act.key("alt+" + name[0].lower())
        wait_for(lambda: tree.current_tab(reminders.TITLE).startswith(name), 5, f"tab {name!r}")

    def pick(self, grid, subject):
        rows = wait_for(lambda: (lambda s: s if subject in s else None)(reminders.subjects(grid)),
                        10, f"the row {subject!r}")
        act.key("Home", *["Down"] * rows.index(subject))
        wait_for(lambda: reminders.selected_subjects(grid) == [subject], 5, f"{subject!r} selected")

    def open_snooze(self):
        act.key("alt+s")
        dialog(SNOOZE)

    def snooze(self, text):
        self.open_snooze()
        type_text(text)  # over what is there, which is selected
        act.key("Return")
        wait_left(SNOOZE)

    def cancel(self, caption):
        dialog(caption)
        act.key("Escape")
        wait_left(caption)

    def dismiss(self):
        act.key("alt+d")

    def dismiss_how(self, choice, done=False):
        if choice == ALL_OF_IT:  # from the button's own menu
            self._tab_to("Dismiss")
            act.key("Down")
            wait_for(tree.open_menus, 5, "the menu of Dismiss")
            act.key("d")
        else:
            act.key("shift+Delete")
        dialog(DISMISS)
        if choice in self.LETTERS:
            act.key("alt+" + self.LETTERS[choice])
        else:
            act.key("Down", "Down", "Down")  # the last has no letter
            wait_for(lambda: "checked" in tree.states(tree.find("radio button", choice)),
                     5, f"{choice!r} chosen")
        if done:
            act.key("alt+d")
        act.key("Return")
        wait_left(DISMISS)
        if choice == ALL_OF_IT:
            act.key("alt+n")  # from the button back to the rows

    def _tab_to(self, button):
        for _ in range(12):
            if "focused" in tree.states(tree.find("push button", button, reminders.TITLE)):
                return
            act.key("Tab")
            time.sleep(0.1)
        raise NotThere(f"the focus on the button {button!r}")

    def open_in_host(self):
        act.key("alt+o")

    def refresh(self):
        act.key("F5")

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

    def open_menu(self):
        wait_keys(reminders.TITLE)
        time.sleep(0.2)  # for a tenth of a second after its menu Qt's button is deaf to its key
        for last in (False, False, True):
            act.key("alt+m")
            try:
                wait_for(tree.open_menus, 2, "the menu")
                break
            except NotThere:
                if last:
                    raise

    def enter(self, text):
        act.key(text[0].lower())

    def menu(self, *path):
        self.open_menu()
        for text in path:
            self.enter(text)
        wait_gone(tree.open_menus, what="the menu")

    def answer(self, caption, button):
        dialog(caption)
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


def show_window(hand):
    hand.show()
    reminders.wait_shown()
    desktop.wait_active(reminders.TITLE)


def end(hand, program):
    hand.exit()
    check(program.wait_end() == 0, "ended")


def work(hand):
    program = OneDay(timers_too=True)
    host = program.make_host_of(program.due.subject)
    with program:
        snoozed_and_dismissed(hand, program)
        reactivated(hand, program)
        hidden(hand, program)
        dismissed_in_all_ways(hand, program, host)
        left_as_it_is(hand, program)
    program.sql(f'UPDATE Reminders SET VLBase="{program.host_file()}" '
                f'WHERE Subject="{EARLIER}" OR Subject="{LATER}"')
    with program:  # once more, on what it left behind
        found_again(hand, program)
        clean_up(hand, program)
        delete_all(hand, program)
        end(hand, program)


def snoozed_and_dismissed(hand, program):
    due = program.due.subject
    hand.wait_tray()
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
    desktop.wait_active(reminders.TITLE)


def reactivated(hand, program):
    hand.tab(ALL)
    hand.period("Dismissed")
    hand.pick(ALL, EARLIER)
    hand.reactivate()
    wait_gone(lambda: EARLIER in reminders.subjects(ALL), 10, f"the row of {EARLIER!r}")
    hand.tab(NEW)
    program.clock.put_forward(4 * HOUR)
    reminders.wait_listed(EARLIER, CHECK)
    reminders.wait_listed(LATER, CHECK)
    wait_rows(NEW, [EARLIER, program.due.subject, LATER])
    check(True, "what was reactivated is listed as new again")


def hidden(hand, program):
    due = program.due.subject
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


def dismissed_in_all_ways(hand, program, host):
    due = program.due.subject
    hand.tab(NEW)
    hand.pick(NEW, EARLIER)
    hand.open_in_host()
    hand.answer("Missing VLBase", "OK")
    check(True, "what it would be opened in is not there, and it says so")

    hand.dismiss_how(ALL_OF_IT)
    wait_rows(NEW, [due, LATER])
    hand.pick(NEW, due)
    hand.dismiss_how(DELETE)
    wait_rows(NEW, [LATER])
    told = reminders.wait_toast("Items were deleted", 10)
    check("may need to be refreshed" in tree.name(told), "it tells that an item was deleted")
    check(rows(program, due) == [], "its row is gone from the file")
    check([e["GUID"] for e in program.sql("SELECT GUID FROM Event", host)] == ["another"] and
          [i["ItemID"] for i in program.sql("SELECT ItemID FROM [\u00AFItems]", host)] == [12],
          "and its item from the host's, no other")

    hand.tab(ALL)
    hand.period("Dismissed")
    hand.pick(ALL, EARLIER)
    hand.reactivate()
    hand.tab(NEW)
    program.clock.put_forward(4 * HOUR + CHECK)
    reminders.wait_listed(EARLIER, CHECK)
    hand.pick(NEW, LATER)
    hand.dismiss_how(THIS, done=True)
    wait_rows(NEW, [EARLIER])
    check(rows(program, LATER) == ["AllDone"], f"marked as done: {rows(program, LATER)}")
    hand.period("Today")
    hand.refresh()
    hand.tab(EVENTS)
    wait_for(lambda: LATER in reminders.subjects(EVENTS), 10, "what is done, after Refresh")
    hand.tab(NEW)
    hand.pick(NEW, EARLIER)
    hand.dismiss_how(ALL_BUT_AFTER)
    reminders.wait_hidden()
    check(True, "dismissed in each of its ways")


# What the next start is to find.
def left_as_it_is(hand, program):
    show_window(hand)
    hand.tab(ALL)
    hand.period("Dismissed")
    hand.pick(ALL, EARLIER)
    hand.reactivate()
    hand.tab(NEW)
    program.clock.put_forward(4 * HOUR + 2 * CHECK)
    reminders.wait_listed(EARLIER, CHECK)
    hand.pick(NEW, EARLIER)
    hand.snooze("5m")
    reminders.wait_hidden()
    show_window(hand)
    hand.period("Next 7 days")
    hand.menu("Silent")
    hand.menu("Notification type", "Tray icon")
    wait_for(lambda: "NotifType=T" in settings(program), 5, "the type in the settings")
    end(hand, program)
    program.clock.put_forward(4 * HOUR + 2 * CHECK + 400)


def found_again(hand, program):
    hand.wait_tray()
    wait_for(lambda: "1 new reminder" in hand.tip(), CHECK, "the snoozed reminder in the icon's tip")
    check(not reminders.showing(), "the icon alone tells, as it was set")
    show_window(hand)
    reminders.wait_listed(EARLIER, CHECK)
    check(reminders.subjects(NEW) == [EARLIER], "after a restart only what was not dealt with")
    wait_period("Next 7 days")
    hand.tab(EVENTS)
    listed = reminders.subjects(EVENTS)
    check(LATER not in listed and program.due.subject not in listed, "what is done or deleted is not")
    hand.open_menu()
    marks = tree.menu_entries()
    check(marks["Silent"] and not marks["Mute"] and not marks["On Top"], "Silent is checked")
    hand.enter("Notification type")
    marks = wait_for(lambda: (lambda m: m if "Tray icon" in m else None)(tree.menu_entries()), 5,
                     "the types")
    check([text for text, on in marks.items() if on] == ["Tray icon"], "and the type")
    act.key("Escape", "Escape")
    wait_gone(tree.open_menus, what="the menu")
    hand.tab(NEW)
    hand.pick(NEW, EARLIER)
    hand.open_snooze()
    check(tree.text(tree.find("text", None, dialog(SNOOZE))) == " 5m", "what was snoozed by last")
    hand.cancel(SNOOZE)
    check(reminders.subjects(NEW) == [EARLIER], "cancelled, it stays")


def rows(program, subject=None):
    """How many there are; or of those of a subject their status."""
    if subject:
        found = program.sql(f'SELECT Status AS s FROM Reminders WHERE Subject="{subject}"')
        return [row["s"] for row in found]
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
