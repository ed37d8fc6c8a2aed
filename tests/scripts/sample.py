"""The sample database as mdb-json reads it: a reader that is not ours."""
import json
import os
import subprocess
import sys
from datetime import datetime

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "scripts"))
from sample_plan import MOVED_COLUMNS  # noqa: E402

_DATES = "%Y-%m-%dT%H:%M:%S"


def read(path):
    """All rows, column to value; the moved columns as `datetime` or None."""
    text = subprocess.run(["mdb-json", "-D", _DATES, "-T", _DATES, path, "Reminders"], check=True,
                          stdout=subprocess.PIPE, text=True).stdout
    rows = [json.loads(line) for line in text.splitlines()]
    for row in rows:
        for column in MOVED_COLUMNS:
            row[column] = datetime.fromisoformat(row[column]) if column in row else None
    return rows
