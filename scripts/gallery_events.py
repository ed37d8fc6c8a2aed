"""The events of the gallery's pictures: an ordinary Friday, texts from all over the world, and the
month of a call centre.

Everything lies around NOW, to which the pictures' clock is set.
"""
import json
from datetime import datetime, timedelta
from typing import NamedTuple

NOW = datetime(2026, 11, 20, 14, 32, 0)  # a Friday
_NO_DATE = None


class Event(NamedTuple):
    subject: str
    start: datetime
    minutes: int = 60  # its length; 0: all day
    reminders: tuple = (15,)  # minutes before the start
    location: str = ""
    rule: str = ""
    dismissed: datetime | None = _NO_DATE
    field: int = 4  # one of FIELDS


def at(hour, minute=0, days=0):
    return NOW.replace(hour=hour, minute=minute, second=0) + timedelta(days=days)


ORDINARY = (
    Event("Project meeting", at(14, 45), 45, (15,), "Room 2"),
    Event("Call the bank", at(12, 30), 10, (5,)),
    Event("Stand-up", at(9, 15, -4), 15, (5,), "Room 2.14", "FREQ=WEEKLY;BYDAY=MO,TU,WE,TH,FR"),
    Event("Collect the parcel before the shop closes", at(17, 30), 30, (178, 30), "12 Harbour Street"),
    Event("Choir", at(19, 30, -7), 120, (60,), "School hall", "FREQ=WEEKLY"),
    Event("Dentist: check-up", at(15, 30), 45, (60, 1440), "Dr Hoffmann, 2nd floor"),
    Event("Lunch with Vera", at(12, 0), 60, (30,), "Canteen", "", at(11, 40)),
    Event("Waste paper collection", at(0, 0, 1), 0, (360,), field=6),
    Event("Pay the rent", at(0, 0, 10), 0, (1440,), "", "FREQ=MONTHLY;BYMONTHDAY=-1", field=6),
    Event("Zoë's birthday", at(0, 0, 2), 0, (1440, 10080), "", "FREQ=YEARLY", field=5),
    Event("Train to Leipzig", at(7, 48, 2), 190, (90,), "Platform 7"),
    Event("Water the plants", at(18, 0, -1), 15, (0,), "", "FREQ=DAILY;INTERVAL=2", field=6),
)

WORLD = (
    Event("פגישת צוות (שבועית)", at(14, 40), 30, (15,), "חדר 4, קומה 2"),
    Event("اجتماع المشروع مع Anna Keller", at(15, 0), 60, (30,), "القاعة الكبرى"),
    Event("Συνάντηση με την ομάδα", at(14, 45), 60, (15,), "Αίθουσα 3"),
    Event("Совещание по бюджету на следующий год", at(14, 50), 90, (20,), "Кабинет 12"),
    Event("Übergrößenträger & Söhne <Vertrag> \"prüfen\"", at(15, 30), 30, (60,), "Straße 5"),
    Event("Một cuộc họp rất dài với tên được cắt sau năm mươi ký tự", at(14, 35), 30, (10,), "Hà Nội"),
    Event("Żółw: przegląd łodzi", at(16, 30), 60, (120,), "Gdańsk"),
)

MANY = tuple(Event(f"Reading group, chapter {n}", at(14, 40), 30, (15,), "Library")
             for n in range(1, 61))

_CALLS = ("Call", "Call back", "Offer for", "Visit of", "Contract with", "Question from",
          "Invoice to", "Thanks to", "Delivery to", "Meeting with", "Training of", "Reply to",
          "Reminder to", "Repair at", "Order of", "Return from", "Test with", "Papers for",
          "Talk with", "Feedback of", "Complaint of", "Address of", "Survey with", "Welcome to",
          "Refund to")
_CUSTOMERS = ("Adams", "Becker", "Costa", "Dubois", "Evans", "Fischer", "Garcia", "Huber",
              "Ivanova", "Jensen", "Keller", "Lopez", "Moreau", "Novak", "Olsen", "Petrov",
              "Quinn", "Rossi", "Santos", "Taylor", "Urban", "Vogel", "Weber", "Young", "Zimmer")
TURN = 1.875  # days that the call centre's list lasts; then it begins again
TURNS_DOUBLED = 4  # so often: 16 turns are the 30 days
CALL_CENTRE = tuple(
    Event(f"{_CALLS[n % 25]} {_CUSTOMERS[(n // 25 + 7 * n) % 25]}",
          at(0, 15) + timedelta(minutes=n * 1440 * TURN // 625 // 5 * 5), 15, (15,),
          f"Desk {n % 40 + 1}")
    for n in range(625))


def doubling(turns):
    """The statement that lists the events of so many turns once more, after them."""
    new = {"GUID": f'GUID & "+{turns}"', "StartDateTime": f"StartDateTime + {turns * TURN}",
           "EndDateTime": f"EndDateTime + {turns * TURN}"}
    same = ("EventID", "ItemID", "FieldID", "VLBase", "Subject", "Location", "Body", "status",
            "IsAllDayEvent", "Created", "Modified", "CalendarID", "reminders", "recurrence",
            "RecurrenceState")
    return (f"INSERT INTO Reminders ([{'], ['.join((*new, *same))}]) "
            f"SELECT {', '.join((*new.values(), *(f'[{name}]' for name in same)))} FROM Reminders")


HOST = "Home.vlb"  # the file that the events come from
FIELDS = {4: "Appointments", 5: "Birthdays", 6: "Household"}


def host_statements():
    """What the host's file needs to tell the names of its fields."""
    yield "CREATE TABLE [\u00afFields] (FieldID LONG, Name TEXT(50))"
    for number, name in FIELDS.items():
        yield f'INSERT INTO [\u00afFields] (FieldID, Name) VALUES ({number}, "{name}")'


def columns(number, event, host):
    """The row of the table Reminders; `host` is the path of the file it comes from."""
    end = event.start + timedelta(minutes=event.minutes)
    row = {
        "EventID": number, "ItemID": 500 + number, "FieldID": event.field,
        "GUID": "{5B0F3C1E-77A2-4D19-9E64-%012d}" % number,
        "id": f"gallery{number:04d}", "iCalUID": f"gallery{number:04d}@calendar.example",
        "VLBase": host,
        "Subject": event.subject, "Location": event.location, "Body": "", "status": "",
        "StartDateTime": event.start, "EndDateTime": end, "IsAllDayEvent": event.minutes == 0,
        "Created": at(8, 0, -30), "Modified": at(8, 0, -20), "CalendarID": "anna.keller@example.com",
        "reminders": json.dumps({"useDefault": False, "overrides": [
            {"method": "popup", "minutes": m} for m in event.reminders]}, separators=(",", ":")),
        "recurrence": json.dumps([f"RRULE:{event.rule}"]) if event.rule else "",
        "RecurrenceState": 1 if event.rule else 0,
    }
    if event.dismissed:
        row["Dismissed"] = event.dismissed
    return row
