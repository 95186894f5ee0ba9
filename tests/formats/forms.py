"""Reads the forms for programs and compares them with each other."""

import csv
import io
import itertools
import json
import re
import xml.etree.ElementTree as ElementTree

FORMS = ("table", "json", "csv", "xml")
HEAD = ("schema_version", "command", "status")

# Control characters, and those that turn the direction of writing, break lines or are unseen.
HARMFUL = re.compile("[\x00-\x1f\x7f-\x9f\xad\u061c\u200b\u200e\u200f\u2028-\u202e\u2060-\u2064\u2066-\u2069\ufeff]")
# These, and what would be taken for an escape.
ESCAPED = re.compile(HARMFUL.pattern + r"|\\(?=u[0-9A-Fa-f]{4})")
NOT_IN_XML = re.compile("[^\t\n\r\x20-\ud7ff\ue000-\ufffd\U00010000-\U0010ffff]")


class Wrong(Exception):
    """A form that does not say what it should."""


def text_of(value):
    if isinstance(value, bool):
        return "true" if value else "false"
    return "" if value is None else str(value)


def shown(value):
    """A value as it is printed where it may reach a terminal."""
    return ESCAPED.sub(lambda match: f"\\u{ord(match[0]):04X}", text_of(value))


class Report:
    """What a JSON document says."""

    def __init__(self, text):
        self.document = json.loads(text, object_pairs_hook=unique)
        body = {k: v for k, v in self.document.items() if k not in HEAD}
        self.error = body.pop("error", None)
        lists = [name for name, value in body.items() if isinstance(value, list)]
        if len(lists) > 1:
            raise Wrong(f"several lists of rows: {lists}")
        self.rows_name = lists[0] if lists else None
        self.rows = body.pop(self.rows_name) if lists else []
        self.facts = body


def unique(pairs):
    names = [name for name, _ in pairs]
    if len(names) != len(set(names)):
        raise Wrong(f"a name comes twice: {names}")
    return dict(pairs)


def read_json(text):
    if not text.isascii():
        raise Wrong("not pure ASCII")
    try:
        return Report(text)
    except json.JSONDecodeError as error:
        raise Wrong(f"not exactly one document: {error}") from None


def differ(form, found, expected):
    """Fails with the first thing that a form says in another way than the JSON form."""
    for one, other in itertools.zip_longest(found, expected):
        if one == other:
            continue
        if isinstance(one, list) and isinstance(other, list):
            differ(form, one, other)
        raise Wrong(f"{form} says {one} and json {other}")


def compare_csv(report, text):
    lines = list(csv.reader(io.StringIO(text, newline=""), strict=True))
    if report.rows_name is None:
        expected = [["field", "value"]] + [[k, text_of(v)] for k, v in report.facts.items()]
        if not report.facts:
            expected = []
    else:
        columns = lines[0] if lines else []
        strangers = {key for row in report.rows for key in row} - set(columns)
        if strangers or len(columns) != len(set(columns)):
            raise Wrong(f"csv: not these columns: {columns}, {strangers} missing")
        expected = [columns] + [[text_of(row.get(c)) for c in columns] for row in report.rows]
    differ("csv", lines, expected)


def compare_xml(report, text):
    if not text.isascii():
        raise Wrong("xml: not pure ASCII")
    root = ElementTree.fromstring(text)
    head = {key: text_of(report.document[key]) for key in HEAD}
    if root.tag != "sitelist" or root.attrib != head:
        raise Wrong(f"xml: {root.tag} with {root.attrib} in place of {head}")
    expected = xml_fields(report.facts)
    if report.rows_name is not None:
        expected.append((report.rows_name, [xml_fields(row) for row in report.rows]))
    if report.error is not None:
        expected.append(("error", xml_fields(report.error)))
    found = []
    for child in root:
        if child.tag == report.rows_name:
            if len({row.tag for row in child}) > 1:
                raise Wrong("xml: rows of several names")
            found.append((child.tag, [fields_of(row) for row in child]))
        else:
            found.append((child.tag, fields_of(child) if child.tag == "error" else child.text or ""))
    differ("xml", found, expected)


def xml_fields(record):
    fields = ((name, text_of(value)) for name, value in record.items() if value is not None)
    return [(name, NOT_IN_XML.sub("\ufffd", text)) for name, text in fields]


def fields_of(element):
    return [(child.tag, child.text or "") for child in element]


def check_harmless(text):
    found = HARMFUL.search(text.replace("\n", ""))
    if found:
        raise Wrong(f"U+{ord(found[0]):04X} reaches a terminal")
