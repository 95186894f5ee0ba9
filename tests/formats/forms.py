"""Reads the formats for programs and compares them with each other."""

import csv
import io
import itertools
import json
import re
import xml.etree.ElementTree as ElementTree

FORMS = ("table", "json", "csv", "xml")
ALL_FORMS = (*FORMS, "jsonl")
ATTRIBUTES = ("schema_version", "command", "status", "changed")  # of the root element in XML
HEAD = (*ATTRIBUTES, "warnings")
# The names of lists of texts in JSON and XML. Any other list has rows.
TEXT_LISTS = ("value", "exclusions", "names", "servers", "ipAddresses", "computerNames", "versions",
              "addresses", "certificateFaults")

# Control characters, invisible characters, and those that change the direction of writing or break lines.
HARMFUL = re.compile("[\x00-\x1f\x7f-\x9f\xad\u061c\u200b\u200e\u200f\u2028-\u202e\u2060-\u2064\u2066-\u2069\ufeff]")
# The harmful characters, and text that looks like an escape.
ESCAPED = re.compile(HARMFUL.pattern + r"|\\(?=u[0-9A-Fa-f]{4})")
NOT_IN_XML = re.compile("[^\t\n\r\x20-\ud7ff\ue000-\ufffd\U00010000-\U0010ffff]")


class Wrong(Exception):
    """The output of the tool has a fault."""


def text_of(value):
    """A value as it is in a table and in CSV."""
    if isinstance(value, bool):
        return "true" if value else "false"
    if isinstance(value, list):
        return ";".join(value)
    if isinstance(value, dict):  # the error of a list that failed
        return value["message"]
    return "" if value is None else str(value)


def shown(value):
    """A value as it is printed where it may reach a terminal."""
    return ESCAPED.sub(lambda match: f"\\u{ord(match[0]):04X}", text_of(value))


class Report:
    """The content of a JSON document."""

    def __init__(self, text):
        self.document = json.loads(text, object_pairs_hook=unique)
        body = {k: v for k, v in self.document.items() if k not in HEAD}
        self.error = body.pop("error", None)
        lists = [name for name, value in body.items() if isinstance(value, list) and name not in TEXT_LISTS]
        self.groups = [(name, body.pop(name)) for name in lists]
        self.has_rows = bool(lists)
        self.rows = [row for _, rows in self.groups for row in rows]
        self.facts = body


def unique(pairs):
    names = [name for name, _ in pairs]
    if len(names) != len(set(names)):
        raise Wrong(f"a name occurs twice: {names}")
    return dict(pairs)


def read_json(text):
    if not text.isascii():
        raise Wrong("not pure ASCII")
    try:
        return Report(text)
    except json.JSONDecodeError as error:
        raise Wrong(f"not exactly one document: {error}") from None


def differ(form, found, expected):
    """Fails with the first difference between a format and JSON."""
    for one, other in itertools.zip_longest(found, expected):
        if one == other:
            continue
        if isinstance(one, list) and isinstance(other, list):
            differ(form, one, other)
        raise Wrong(f"{form} says {one} and json {other}")


def cell_of(value, cell):
    """The expected cell for this value. A cell for a list may have superfluous separators."""
    if isinstance(value, list) and hosts_in(cell) == hosts_in(text_of(value)):
        return cell
    return text_of(value)


def hosts_in(cell):
    return [host for host in cell.split(";") if host]


def compare_csv(report, text):
    lines = list(csv.reader(io.StringIO(text, newline=""), strict=True))
    if not report.has_rows:
        cells = {line[0]: line[1] for line in lines if len(line) == 2}
        expected = [["field", "value"]] + [[k, cell_of(v, cells.get(k, ""))] for k, v in report.facts.items()]
        if not report.facts:
            expected = []
    else:
        columns = lines[0] if lines else []
        strangers = {key for row in report.rows for key in row} - set(columns)
        if strangers or len(columns) != len(set(columns)):
            raise Wrong(f"csv: wrong columns: {columns}, missing: {strangers}")
        expected = [columns]
        for row, cells in itertools.zip_longest(report.rows, lines[1:], fillvalue={}):
            found = dict(zip(columns, cells))
            expected.append([cell_of(row.get(c), found.get(c, "")) for c in columns])
    differ("csv", lines, expected)


def compare_lines(report, text, check):
    """Compares --format jsonl with JSON, and each line with the schema."""
    if not text.isascii():
        raise Wrong("jsonl: not pure ASCII")
    lines = [json.loads(line, object_pairs_hook=unique) for line in text.splitlines()]
    expected = report.rows if report.has_rows else [report.facts] if report.facts else []
    if report.error is not None:
        failed = {"file": report.error["file"], "status": report.error["status"], "error": report.error}
        expected = [*expected, failed]
    differ("jsonl", lines, expected)
    for line in lines:
        check(line)


def compare_xml(report, text):
    if not text.isascii():
        raise Wrong("xml: not pure ASCII")
    root = ElementTree.fromstring(text)
    head = {key: text_of(report.document[key]) for key in ATTRIBUTES}
    if root.tag != "sitelist" or root.attrib != head:
        raise Wrong(f"xml: {root.tag} with {root.attrib} instead of {head}")
    expected = xml_fields({"warnings": report.document["warnings"], **report.facts})
    expected += [(name, [xml_fields(row) for row in rows]) for name, rows in report.groups]
    if report.error is not None:
        expected.append(("error", xml_fields(report.error)))
    found = []
    for child in root:
        if child.tag in dict(report.groups):
            if len({row.tag for row in child}) > 1:
                raise Wrong("xml: the rows have different names")
            found.append((child.tag, [fields_of(row) for row in child]))
        else:
            found.append((child.tag, fields_of(child) if child.tag == "error" else value_of(child)))
    differ("xml", found, expected)


def xml_fields(record):
    return [(name, xml_value(value)) for name, value in record.items() if value is not None]


def xml_value(value):
    if isinstance(value, list):
        return [("item", xml_value(text)) for text in value] or ""
    if isinstance(value, dict):
        return xml_fields(value)
    return NOT_IN_XML.sub("\ufffd", text_of(value))


def fields_of(element):
    return [(child.tag, value_of(child)) for child in element]


def value_of(element):
    """The text of an element, or its items."""
    return fields_of(element) if len(element) else element.text or ""


def check_harmless(text):
    found = HARMFUL.search(text.replace("\n", ""))
    if found:
        raise Wrong(f"U+{ord(found[0]):04X} reaches a terminal")
