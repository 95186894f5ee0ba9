"""The checks of every run of the tool."""

import re

import forms
import tables
from documents import CANARIES
from forms import Wrong

ERROR_NAMES = {
    1: "negative",
    2: "usage",
    3: "invalid-document",
    4: "file",
    5: "crypto",
    6: "conflict",
    7: "not-found",
}


def normalised(case, output, directory):
    text = output.decode().replace(str(directory), "@DIR@")
    for pattern, replacement in case.masks:
        text = re.sub(pattern, replacement, text)
    return text


def canary(name):
    """The part of a clear password that no format escapes."""
    return CANARIES[name].split()[0]


def check_output(case, form, output, out, err):
    if output.status != case.status:
        raise Wrong(f"{form}: status {output.status} instead of {case.status}\n{out[:1000]}{err}")
    for name in CANARIES:
        if name not in case.secrets and canary(name) in out + err:
            raise Wrong(f"{form}: the password {name} is printed\n{out[:1000]}{err}")
        if name in case.secrets and canary(name) in err:
            raise Wrong(f"{form}: the password {name} is in a message")
    forms.check_harmless(err)
    if out and not out.endswith("\n"):
        raise Wrong(f"{form}: the output does not end with a newline")
    if form == "table" and case.table is not tables.value:  # `get` prints for scripts, like CSV
        forms.check_harmless(out)


def check_json(case, text, err, validator):
    report = forms.read_json(text)
    error = next(validator.iter_errors(report.document), None)
    if error is not None:
        raise Wrong(f"the schema refuses the document: {error.message[:500]}\n{text}")
    if report.document["status"] != case.status or report.document["schema_version"] != 2:
        raise Wrong(f"the head of the document is wrong: {text[:200]}")
    if report.document["warnings"] != warnings_in(err):
        raise Wrong(f"standard error warns of {warnings_in(err)}\nbut json of {report.document['warnings']}")
    check_command(case, report)
    check_error(case, report, err)
    for name in case.secrets:
        if canary(name) not in text:
            raise Wrong(f"the password {name} is not printed")
    return report


def warnings_in(err):
    """Each text after "sitelist: warning: ", with the lines that belong to it."""
    found = re.findall(r"^sitelist: warning: ((?:.*\n)(?:  (?!next: ).*\n)*)", err, re.MULTILINE)
    return [text[:-1] for text in found]


def check_command(case, report):
    """The document must name the command of the command line."""
    given = iter(case.arguments)
    name = report.document["command"]
    if not all(word in given for word in name.split()):  # in this order
        raise Wrong(f"wrong command: {name}")
    if not name and case.status != 2:
        raise Wrong("no command is named")


def check_error(case, report, err):
    """A failure must be complete and equal to the message on standard error."""
    error = report.error
    if error is None:
        if case.status > 1 and not report.rows:  # faults that `validate` finds are not a failure
            raise Wrong("a failure without an error")
        return
    if error["status"] != case.status or error["name"] != ERROR_NAMES[case.status]:
        raise Wrong(f"wrong status: {error}")
    if not error["message"] or not error["next"]:
        raise Wrong(f"no message, or no advice: {error}")
    text = f"sitelist: {error['message']}\n  next: {error['next']}\n"
    if not err.endswith(text):
        raise Wrong(f"standard error does not end with\n{text}but is\n{err}")


def check_others(case, report, texts, check_line):
    if "jsonl" in texts:
        forms.compare_lines(report, texts["jsonl"], check_line)
    if "csv" in texts:
        forms.compare_csv(report, texts["csv"])
    if "xml" in texts:
        forms.compare_xml(report, texts["xml"])
    if "table" in texts:
        case.table(report, texts["table"])
