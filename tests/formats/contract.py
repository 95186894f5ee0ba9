"""What scripts may rely on: the schema of the JSON form, the commands in it, the exit statuses."""

import copy
import json
import re
import subprocess

import jsonschema

STATUSES = {0, 1, 2, 3, 4, 5, 6, 7, 70}


def schema_file(tool):
    """The schema that is installed with the tool, beside which it was built."""
    return tool.parents[1] / "generated/sitelist.schema.json"


def validator(tool):
    schema = json.loads(schema_file(tool).read_text())
    jsonschema.Draft7Validator.check_schema(schema)
    return jsonschema.Draft7Validator(schema)


def objects(value):
    """Every object in a document, the document included."""
    if isinstance(value, dict):
        yield value
    for child in value.values() if isinstance(value, dict) else value if isinstance(value, list) else ():
        yield from objects(child)


def damaged(document):
    """The document with one thing wrong: what it is, and the result."""
    for index, original in enumerate(objects(document)):
        def with_change(change):
            result = copy.deepcopy(document)
            change(list(objects(result))[index])
            return result

        yield f"a stranger in object {index}", with_change(lambda o: o.update(stranger=1))
        for name in original:
            yield f"{name} of object {index} as a list in a list", with_change(lambda o: o.update({name: [[]]}))
    for name in ("schema_version", "command", "status"):
        result = copy.deepcopy(document)
        del result[name]
        yield f"no {name}", result
    yield "another version", {**document, "schema_version": 2}
    yield "another command", {**document, "command": "stranger"}
    yield "another status", {**document, "status": 8}
    if "error" in document:
        for name in document["error"]:
            result = copy.deepcopy(document)
            del result["error"][name]
            yield f"no {name} of the error", result


def open_objects(schema, path="schema"):
    """The places where the schema says what an object has, and lets it have more."""
    if isinstance(schema, dict):
        if schema.get("type") == "object" and schema.get("additionalProperties") is not False:
            yield path
        for name, child in schema.items():
            yield from open_objects(child, f"{path}.{name}")


def help_text(tool):
    return subprocess.run([tool, "--help"], capture_output=True, check=True, text=True).stdout


def commands(tool):
    text = help_text(tool)
    return re.findall(r"^  ([a-z][a-z-]+) ", text[text.index("\nCommands:"):], re.MULTILINE)


def status_problems(tool, cases):
    """Status 70, a bug, has no case here."""
    text = help_text(tool)
    told = {int(n) for n in re.findall(r"^ +([0-9]+)  ", text[text.index("Exit status:"):], re.MULTILINE)}
    found = {case.status for case in cases}
    if told == STATUSES and found == STATUSES - {70}:
        return []
    return [f"exit statuses: the help has {told}, cases have {found}"]


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
    found = [f"{place} forbids nothing" for place in open_objects(check.schema)]
    documents = smallest_of_each_kind(golden)
    for key, document in documents.items():
        if not check.is_valid(document):
            found.append(f"the schema refuses the document of {key}")
        found += [f"the schema accepts {what} in the document of {key}"
                  for what, result in damaged(document) if check.is_valid(result)]
    told = {command.split()[0] for command, _, _ in documents if command}
    found += [f"{name}: no case at all" for name in commands(tool) if name not in told]
    return found + status_problems(tool, cases)
