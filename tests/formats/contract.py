"""What scripts may rely on: the schema of the JSON form, the commands in it, the exit statuses."""

import copy
import json
import re
import subprocess

import jsonschema

import status_table

STATUSES = {0, 1, 2, 3, 4, 5, 6, 7, 70}


def schema_file(tool):
    """The schema that is installed with the tool. The build creates both in one tree."""
    return tool.parents[1] / "generated/sitelist.schema.json"


def validator(tool):
    schema = json.loads(schema_file(tool).read_text())
    jsonschema.Draft7Validator.check_schema(schema)
    return jsonschema.Draft7Validator(schema)


def line_checker(tool):
    """Checks an object against the definition of a line of --format jsonl."""
    schema = json.loads(schema_file(tool).read_text())
    check = jsonschema.Draft7Validator({"$ref": "#/definitions/line", "definitions": schema["definitions"]})
    return check.validate


def objects(value):
    """Every object in a document, including the document itself."""
    if isinstance(value, dict):
        yield value
    for child in value.values() if isinstance(value, dict) else value if isinstance(value, list) else ():
        yield from objects(child)


HEAD = ("schema_version", "command", "status", "changed", "warnings")


def with_strangers(document):
    """The document with a new name in every object, as a later release may have it."""
    result = copy.deepcopy(document)
    for each in list(objects(result)):
        each["stranger"] = [{"new": 1}]
    return result


def damaged(document):
    """Yields the wrong documents that one change makes, each with a name of the change."""
    for index, original in enumerate(objects(document)):
        def with_change(change):
            result = copy.deepcopy(document)
            change(list(objects(result))[index])
            return result

        for name in original:
            yield f"{name} of object {index} as a list in a list", with_change(lambda o: o.update({name: [[]]}))
    yield "another version", {**document, "schema_version": 1}
    yield "another command", {**document, "command": "stranger"}
    yield "another status", {**document, "status": 8}
    yield "a `changed` that is not a flag", {**document, "changed": None}
    yield "a warning that is not a text", {**document, "warnings": [1]}


# What a document or a row may lack after a success, because it depends on the options or the list.
PREVIEW = {"before", "after", "differs", "changes"}
OPTIONAL = {
    **{command: PREVIEW for command in ("import", "install", "edit", "undo", "modify", "merge", "policies")},
    "explain": {"sites", "routes", "host"},
    "explain-rule": {"name", "severity", "summary", "why", "mend", "faulty", "mended", "rules"},
}
OPTIONAL_IN_ROWS = {
    "certs": {"subject", "issuer", "sha256", "validFrom", "validUntil", "daysLeft", "expired", "expiring"},
}


def may_lack(document, place, name):
    """After a failure, a document may lack whatever belongs to the result."""
    command = document["command"].split()[0] if document["command"] else ""
    if place is document:
        return name not in HEAD and ("error" in document or name in OPTIONAL.get(command, ()))
    if place is document.get("error"):
        return False
    return command == "show" or name in OPTIONAL_IN_ROWS.get(command, ())


def incomplete(document):
    """Yields the document without each required name in turn, and what is missing."""
    for index, place in enumerate(objects(document)):
        for name in place:
            if may_lack(document, place, name):
                continue
            result = copy.deepcopy(document)
            del list(objects(result))[index][name]
            yield f"no {name} in object {index}", result


def help_text(tool):
    return subprocess.run([tool, "--help"], capture_output=True, check=True, text=True).stdout


def commands(tool):
    text = help_text(tool)
    return re.findall(r"^  ([a-z][a-z-]+) ", text[text.index("\nCommands:"):], re.MULTILINE)


def status_problems(tool, cases):
    """Compares the statuses in the help with those of the cases. Status 70 is a bug and has no case."""
    text = help_text(tool)
    told = {int(n) for n in re.findall(r"^ +([0-9]+)  ", text[text.index("Exit status:"):], re.MULTILINE)}
    found = {case.status for case in cases}
    if told == STATUSES and found == STATUSES - {70}:
        return []
    return [f"exit statuses: the help has {told}, cases have {found}"]


def blank_cells(golden):
    """Returns the missing cells of golden documents. Usage errors of a command group need no cell."""
    table = status_table.read_table()
    found = {(document["command"], document["status"])
             for document in (json.loads(path.read_text()) for path in golden.glob("*/*/json"))}
    groups = {command.rsplit(" ", 1)[0] for command, _ in table if " " in command} | {""}
    return [f"{command} {status}: a case has this status, but {status_table.TABLE.name} does not"
            for command, status in sorted(found)
            if (command, status) not in table and not (command in groups and status == 2)]


def smallest_of_each_kind(golden):
    """A document of every command with a row, without one, and with an error."""
    chosen = {}
    for path in sorted(golden.glob("*/*/json"), key=lambda path: (path.stat().st_size, path)):
        document = json.loads(path.read_text())
        has_rows = any(isinstance(value, list) and value for value in document.values())
        one_row = {k: v[:1] if isinstance(v, list) else v for k, v in document.items()}
        chosen.setdefault((document["command"], has_rows, "error" in document), one_row)
    return chosen


def problems(golden, tool, cases):
    check = validator(tool)
    found = []
    documents = smallest_of_each_kind(golden)
    for key, document in documents.items():
        if not check.is_valid(document):
            found.append(f"the schema refuses the document of {key}")
        if not check.is_valid(with_strangers(document)):
            found.append(f"the schema refuses new names in the document of {key}")
        found += [f"the schema accepts {what} in the document of {key}"
                  for what, result in (*damaged(document), *incomplete(document)) if check.is_valid(result)]
    told = {command.split()[0] for command, _, _ in documents if command}
    found += [f"{name}: no case at all" for name in commands(tool) if name not in told]
    return found + blank_cells(golden) + status_problems(tool, cases)
