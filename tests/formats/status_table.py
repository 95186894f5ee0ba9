"""The exit statuses of each command, as the tool's manual page lists them."""

import json
from pathlib import Path

TABLE = Path(__file__).resolve().parents[2] / "tools/sitelist/exit-statuses.json"


def read_table():
    """The phrases of every cell, by command and status."""
    rows = json.loads(TABLE.read_text())
    return {(command, int(status)): phrases for command, row in rows.items() for status, phrases in row.items()}
