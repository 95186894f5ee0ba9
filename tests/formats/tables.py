"""Checks for each command that the table has the rows and facts of the JSON document."""

from forms import Wrong, shown, text_of

MASK = "********"


def need(table, texts, where):
    for text in texts:
        if text and text not in table:
            raise Wrong(f"the table does not show \"{text}\" of {where}")


def need_lines(table, rows_of_texts):
    """Each row must have its own line with all its texts."""
    lines = table.splitlines()
    for texts in rows_of_texts:
        match = next((line for line in lines if all(text in line for text in texts)), None)
        if match is None:
            raise Wrong(f"the table has no line with {texts}")
        lines.remove(match)


def order_of(site):
    if site["mirror"] and site["order"] == 0:
        return "-"
    return "last" if site["order"] == 65535 else text_of(site["order"])


def show(report, table):
    sites = [row for row in report.rows if row["kind"] != "proxy"]
    fields = ("kind", "type", "name", "server", "shareName", "relativePath")
    need_lines(
        table,
        [
            [order_of(site), "on" if site["enabled"] else "off"]
            + [shown(site[field]) for field in fields if site.get(field)]
            + ([f"({site['securePort']})"] if site.get("securePort") else [])
            for site in sites
        ],
    )
    for row in report.rows:
        if row["kind"] == "proxy":
            numbers = [row[f"{p}ProxyPort"] for p in ("http", "ftp") if row[f"{p}ProxyServer"]]
            texts = [v for k, v in row.items() if isinstance(v, str) and k not in ("kind", "element", "type")]
            texts += row["exclusionList"] + numbers
            need(table, [shown(text) for text in texts], row["name"])


def short_name(file):
    """The name in a table: a list in the directory "fleet" was found there."""
    return file.removesuffix("/SiteList.xml") if file.startswith("fleet/") else file


def fleet(*names):
    """Returns the check for several lists: each row has a line with its file and these columns."""

    def check(report, table):
        need_lines(
            table,
            [[shown(short_name(row["file"])), *(shown(row.get(name)) for name in names)] for row in report.rows
             if "error" not in row],
        )
        for row in report.rows:
            if "error" in row:
                reason = row["error"]["message"].split("\n")[-1].strip()
                need_lines(table, [[shown(short_name(row["file"])), shown(reason.split(": ")[-1])]])

    return check


def summary(report, table):
    """Each row has a line with its counts, unless the table has too many of its kind."""
    for _, rows in report.groups:
        need_lines(table, [[shown(value) for name, value in row.items() if name != "section"] for row in rows[:3]])
    need(table, [shown(report.facts["mostFrequent"])], "the most frequent list")


def columns(*names):
    """Returns the check for `show --columns`: each row has a line with these fields."""

    def check(report, table):
        need_lines(table, [[shown(row.get(name)) or "-" for name in names] for row in report.rows])

    return check


def facts(report, table):
    need(table, [shown(v) for k, v in report.facts.items() if k != "file"], "the facts")


def value(report, table):
    if table != text_of(report.facts["value"]) + "\n":
        raise Wrong(f"not the bare value: {table}")


def protected(report, table):
    if table != report.facts["protected"] + "\n":
        raise Wrong(f"not the bare value: {table}")


def explain(report, table):
    fields = ("place", "kind", "name", "address", "path", "reason", "proxy")
    for row in report.rows:
        need(table, [shown(row[field]) for field in fields], row["name"])
        if row["tried"]:
            need(table, [shown(row["proxyReason"])], row["name"])
    for name in ("httpProxy", "ftpProxy", "exclusions"):
        if report.facts["proxyMode"] == "manual":
            need(table, [shown(report.facts[name])], name)


def probe(report, table):
    # A long text is broken into lines.
    joined = " ".join(table.split())

    def need_words(text, where):
        need(joined, [" ".join(text.split())], where)

    for row in report.rows:
        fields = ("kind", "name", "address", "path", "proxy", "redirect", "answer", "certificateSubject",
                  "certificateIssuer", "certificateExpires", "readAs", "note", "error", "next")
        for field in fields:
            need_words(shown(row[field]), row["name"])
        for text in row["addresses"] + row["certificateFaults"]:
            need_words(shown(text), row["name"])
        if not row["tried"]:
            need_words(shown(row["reason"]), row["name"])
    name = report.facts["use"] if report.facts["decided"] else report.facts["unknownSite"]
    need_words(f'"{shown(name)}"' if name else "The agent has no site", "the facts")


def routes(report, table):
    host = shown(report.facts["host"])
    need_lines(
        table,
        [[host, row["protocol"].upper(), shown(row["proxy"] or "directly"), shown(row["reason"])]
         for row in report.rows],
    )


def certificates(report, table):
    # A fingerprint is broken into two lines.
    joined = "".join(table.split())
    for row in report.rows:
        texts = [shown(v) for k, v in row.items() if isinstance(v, (str, int)) and not isinstance(v, bool)]
        if row["readable"]:
            texts.remove(shown(row["text"]))
            texts += ["(expired)"] if row["expired"] else []
            texts += ["(within "] if row["expiring"] and not row["expired"] else []
        need(joined, ["".join(text.split()) for text in texts], f"certificate {row['number']}")


def policies(report, table):
    lines = [f"{shown(row['name'])} = {shown(row['value'])}" for row in report.rows]
    if table.splitlines() != lines:
        raise Wrong(f"not {lines}")


def texts_of(value):
    return [shown(text) for text in value] if isinstance(value, list) else [shown(value)]


def changes(report, table):
    if not report.rows and "Nothing differs." not in table:
        raise Wrong("the table does not say that nothing differs")
    for row in report.rows:
        values = [text for side in ("before", "after") for text in texts_of(row[side])]
        if row["section"] == "certificate":
            values = [text[:35] for text in values]
        if len(values) == 2 and values[0] and values[0] == values[1]:
            values = [f"{values[0]} -> another"]
        if row["change"] not in ("reordered", "incomparable"):  # a site that also changed is shown as changed
            need(table, [row["change"]], row)
        if row["change"] == "incomparable":
            values = ["cannot be compared"]
        need(table, [shown(row["name"]), shown(row["field"]), *values], row)
        if row["kind"]:
            need(table, [f"{row['kind']} {shown(row['name'])}"], row)


def faults(report, table):
    lines = []
    for row in report.rows:
        place = f":{row['line']}:{row['column']}" if row["line"] is not None else ""
        mark = " [warning]" if row["severity"] == "warning" else ""
        name = row["site"] or ""
        site = f' (site "{shown(name[:60])}{"..." if len(name) > 60 else ""}")' if name else ""
        lines.append(f"{shown(row['file'])}{place}: {row['rule']}: {shown(row['text'])}{site}{mark}")
    if [line for line in table.splitlines() if not line.endswith(": valid")] != lines:
        raise Wrong(f"not these lines: {lines}")
    if report.facts["valid"] and not table.endswith(": valid\n"):
        raise Wrong("the table does not say that the list is valid")


def health(report, table):
    """Each result has a line, and its advice has the next one."""
    lines = []
    for row in report.rows:
        lines.append(f"{row['state']} {row['check']} {row['text']}")
        if row["next"]:
            lines.append(f"next: {row['next']}")
    found = [" ".join(line.split()) for line in table.splitlines()]
    if found[:-1] != [" ".join(line.split()) for line in lines]:
        raise Wrong(f"not these lines: {lines}")
    counts = [int(word) for word in found[-1].replace(",", "").split() if word.isdigit()]
    if counts != [report.facts["failureCount"], report.facts["warningCount"]]:
        raise Wrong(f"wrong counts: {found[-1]}")


def rule(report, table):
    # Texts are broken into lines.
    joined = " ".join(table.split())
    need(joined, [" ".join(text.split()) for text in report.facts.values()], "the rule")


def rules(report, table):
    need_lines(table, [[row["name"], row["severity"], row["summary"]] for row in report.rows])


def silent(report, table):
    """The output must be empty and without rows."""
    if table or report.rows:
        raise Wrong("the output is not empty")


def nothing(report, table):
    silent(report, table)
    if report.facts or report.has_rows:
        raise Wrong("the output is not empty")


def history(report, table):
    fields = ("number", "time", "replacedBy", "globalVersion", "localVersion")
    need_lines(table, [[shown(row[field]) or "-" for field in fields] for row in report.rows])
