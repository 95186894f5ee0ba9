"""The cases. Each is a command line, which runs in every format in a world of world.py."""

import os
import pwd
import re
from dataclasses import dataclass

import tables
from documents import CANARIES
from forms import ALL_FORMS, FORMS


@dataclass
class Case:
    name: str
    arguments: list
    status: int = 0
    table: object = tables.nothing  # checks the table format
    stdin: str = ""
    secrets: tuple = ()  # clear passwords that must be printed; no other may be
    masks: tuple = ()  # (pattern, replacement) for text that differs in every run
    writes: bool = False  # changes files or directories, so every run gets its own copy of the world
    forms: tuple = FORMS

    @property
    def agent(self):
        return self.arguments[1] if self.arguments[:1] == ["--agent-dir"] else "agent"


# The number of days left, in each format.
DAYS = ((r'("daysLeft": |<daysLeft>|days left {4}| UTC,)(-?)[0-9]+\b(?!-)', r"\g<1>\g<2>1"),)
DAYS_OF_FLEET = (*DAYS, (r"( UTC  )(-?)[0-9]+\b(?!-)", r"\g<1>\g<2>1"))
# What differs in every run of `probe`: ports, times, the days left and the user.
PORT = r"[0-9]{4,5}"
PROBE = (
    (rf"127\.0\.0\.1:{PORT}( \({PORT}\))?", lambda match: "127.0.0.1:8080" + (" (8443)" if match[1] else "")),
    (rf'("securePort": |<securePort>|port |,)({PORT})(?=[, <]|$)', r"\g<1>8443"),
    (r'("(?:secureMilliseconds|milliseconds)": |<(?:secureMilliseconds|milliseconds)>)[0-9]+', r"\g<1>1"),
    (r"in [0-9]+ ms", "in 1 ms"),
    (r",[0-9]+(?=,[0-9]{3} )", ",1"),
    (r"(,8443,true),[0-9]+,", r"\1,1,"),
    (r'("certificateDaysLeft": |<certificateDaysLeft>|days left: | UTC,)[0-9]+', r"\g<1>1"),
    (rf"\b{re.escape(pwd.getpwuid(os.geteuid()).pw_name)}\b", "@USER@"),
)
PROTECTED = ((r"\b[A-Za-z0-9+/]{36,}={0,2}", "@PROTECTED@"),)
STAMP = ((r'LocalVersion="[0-9]{14}"', 'LocalVersion="@NOW@"'),)

NASTY = "x\x1b[31m\t\n\x9b\u202e\"'<&>, 東京 e\u0301\U0001f600"
NOT_UTF8 = b"lists/\xff\xc3(.xml"
DEPOT = "Dépôt Nord"
OWN = "agent/etc/SiteList.xml"
HOSTILE = "lists/hostile.xml"


def agent(name, *arguments):
    return ["--agent-dir", name, *arguments]


def own(*arguments):
    return agent("agent", *arguments)


def unreadable(command, *before):
    """The cases of a command that cannot read the list that is named last."""
    return [
        Case(f"{command}-missing", own(command, *before, "lists/none.xml"), 4, tables.silent),
        Case(f"{command}-broken", own(command, *before, "lists/broken.xml"), 3, tables.silent),
    ]


SHOWN = ("name", "kind", "server", "serverPort", "enabled", "password", "useIEConfig")
DERIVED = ("state", "address", "name", "path", "shareName")
SECRET = ("name", "password", "httpProxyPassword", "alternateHttpProxyPassword")
SHOW = [
    Case("show-own", own("show"), table=tables.show),
    Case("show-file", ["show", "in/SiteList.xml"], table=tables.show),
    Case("show-secrets", own("show", "--show-secrets"), table=tables.show,
         secrets=("depot", "share", "proxy", "proxy-b")),
    Case("show-columns", own("show", "--columns", ",".join(SHOWN)), table=tables.columns(*SHOWN)),
    Case("show-columns-secrets", own("show", "--columns", ",".join(SECRET), "--show-secrets"),
         table=tables.columns(*SECRET), secrets=("depot", "share", "proxy", "proxy-b")),
    Case("show-columns-derived", own("show", "--columns", ",".join(DERIVED), "--sort", "address"),
         table=tables.columns(*DERIVED)),
    Case("show-sort", own("show", "--sort", "-name", "--wide"), table=tables.show),
    Case("show-filter", own("show", "--filter", "kind=HTTP", "--filter", "name=*i*", "--sort", "name"),
         table=tables.show),
    Case("show-hostile", own("show", HOSTILE), table=tables.show),
    Case("show-hostile-secrets", own("show", HOSTILE, "--show-secrets"), table=tables.show,
         secrets=("hostile",)),
    Case("show-empty", ["show", "lists/empty.xml"], 1, tables.silent),
    Case("show-no-match", own("show", "--filter", NASTY), 1, tables.silent),
    Case("show-unknown-last", ["show", "lists/unknown-last.xml"], 3, tables.show),
    Case("show-unknown-column", own("show", "--columns", "name," + NASTY), 2),
    Case("show-unknown-sort", own("show", "--sort=" + NASTY), 2),
    *unreadable("show"),
    Case("show-directory", ["show", "lists"], 1, tables.silent),
    Case("show-no-markup", ["show", "lists/no-markup.xml"], 3, tables.silent),
    Case("show-encoding", ["show", "lists/encoding.xml"], 3, tables.silent),
    Case("show-deep", ["show", "lists/deep.xml"], 3, tables.silent),
    Case("show-unknown-filter", own("show", "--filter", NASTY + "=x"), 2),
    Case("show-empty-columns", own("show", "--columns", ""), 2),
    Case("show-foreign-password", own("show", "lists/foreign.xml"), table=tables.show),
    Case("show-nasty-path", ["show", NASTY], 4, tables.silent),
    Case("show-path-not-utf8", ["show", NOT_UTF8], 4, tables.silent),
    Case("show-no-agent", agent("nowhere", "show"), 4),
    Case("show-broken-settings", agent("unset", "show"), 3),
    Case("show-no-list", agent("fresh", "show"), 4, tables.silent),
]

GET = [
    Case("get-version", own("get", "globalVersion"), table=tables.value),
    Case("get-policy", own("get", "policy.Old", OWN), table=tables.value),
    Case("get-text", own("get", "server", "--site", DEPOT), table=tables.value),
    Case("get-number", own("get", "serverPort", "--site", "Twin", "--kind", "ftp"), table=tables.value),
    Case("get-flag", own("get", "local", "--site", "Twin", "--kind", "http"), table=tables.value),
    Case("get-empty", own("get", "version", "--site", DEPOT), table=tables.value),
    Case("get-password", own("get", "password", "--site", DEPOT), table=tables.value),
    Case("get-secret", own("get", "password", "--site", DEPOT, "--show-secrets"),
         table=tables.value, secrets=("depot",)),
    Case("get-many-unknown", own("get", "type", "lists/many-unknown.xml"), 3),
    Case("get-foreign-password", own("get", "password", "lists/foreign.xml", "--site", "depot"),
         table=tables.value),
    Case("get-hostile", own("get", "globalVersion", HOSTILE), table=tables.value),
    Case("get-hostile-secret",
         own("get", "httpProxyPassword", "--kind", "proxy", "--show-secrets", HOSTILE,
             "--site", "a\tb\nc\rd\r\ne\x7f\x85\x9b31m\u2028\u202ef\u2066g\u200f\u061c\ufeff\xad\u200b\"h\",'i';<j>&amp;"
             "\u2026 \\u001B[0m $(k) =1 東京 e\u0301 \U0001f600\U0001d518 "),
         table=tables.value, secrets=("hostile",)),
    Case("get-nothing-said", own("get", "fipsMode"), 7),
    Case("get-no-site", own("get", "server", "--site", NASTY), 7),
    Case("get-no-policy", own("get", "policy." + NASTY), 7),
    Case("get-no-such-field-of-kind", own("get", "shareName", "--site", DEPOT), 7),
    Case("get-several", own("get", "server", "--site", "Twin"), 6),
    Case("get-several-of-a-kind", own("get", "server", "--site", "twin", "--kind", "http", "lists/twins.xml"), 6),
    Case("get-unknown-field", own("get", NASTY), 2),
    Case("get-unknown-kind", own("get", "server", "--site", "Twin", "--kind", NASTY), 2),
    *unreadable("get", "type"),
]

PROBED = own("probe", "--file", "lists/network.xml")
PROBES = [
    Case("probe-own-order", PROBED, table=tables.probe, masks=PROBE),
    Case("probe-all", [*PROBED, "--all", "--jobs", "1"], table=tables.probe, masks=PROBE),
    Case("probe-sites", [*PROBED, "HQ", "kind=local"], 1, tables.probe, masks=PROBE),
    Case("probe-one", [*PROBED, "name=Login"], table=tables.probe, masks=PROBE),
    Case("probe-none-ok", own("probe", "--file", "lists/no-disks.xml"), 1, tables.probe, masks=PROBE),
    Case("probe-hostile", own("probe", "--file", HOSTILE, "kind=http", "kind=ftp", "kind=unc", "kind=local"), 1, tables.probe, masks=PROBE),
    Case("probe-system", own("probe", "--file", "lists/system.xml"), 1, tables.probe),
    Case("probe-idle", own("probe", "--file", "lists/idle.xml"), 1, tables.probe),
    Case("probe-no-site", [*PROBED, NASTY], 7),
    Case("probe-timeout", [*PROBED, "--timeout", NASTY], 2),
    Case("probe-jobs", [*PROBED, "--jobs", "0"], 2),
    *unreadable("probe", "--file"),
]

EXPLAIN = [
    Case("explain-own", own("explain"), table=tables.explain),
    Case("explain-file", ["explain", "in/SiteList.xml"], table=tables.explain),
    Case("explain-system", ["explain", "lists/system.xml"], table=tables.explain),
    Case("explain-direct", ["explain", "lists/direct.xml"], table=tables.explain),
    Case("explain-hostile", own("explain", HOSTILE), table=tables.explain),
    Case("explain-empty", ["explain", "lists/empty.xml"], 1, tables.explain),
    Case("explain-idle", ["explain", "lists/idle.xml"], 1, tables.explain),
    Case("explain-host-bypasses", own("explain", "--host", "x.TUI.example"), table=tables.routes),
    Case("explain-host-proxied", own("explain", "--host", "else.example"), 1, tables.routes),
    Case("explain-host-system", ["explain", "lists/system.xml", "--host", "a.example"], 1, tables.routes),
    Case("explain-host-url", own("explain", "--host", "https://x.TUI.example:8443/pub"), table=tables.routes),
    Case("explain-host-hostile", own("explain", HOSTILE, "--host", "x'<&>,東京e\u0301\U0001f600\""), 1, tables.routes),
    Case("explain-host-nasty", own("explain", HOSTILE, "--host", NASTY), 2),
    Case("explain-host-not-utf8", own("explain", "--host", NOT_UTF8), 2),
    *unreadable("explain"),
    Case("explain-unknown-last", ["explain", "lists/unknown-last.xml"], 3),
]

DIFF = [
    Case("diff-lists", own("diff", OWN, "in/SiteList.xml"), table=tables.changes),
    Case("diff-secrets", own("diff", OWN, "in/SiteList.xml", "--show-secrets"), table=tables.changes,
         secrets=("depot", "fresh")),
    Case("diff-exit-code", own("diff", "--exit-code", OWN, "lists/direct.xml"), 1, tables.changes),
    Case("diff-same", own("diff", "--exit-code", OWN, OWN), table=tables.changes),
    Case("diff-hostile", own("diff", "lists/harmless.xml", HOSTILE), table=tables.changes),
    Case("diff-from-hostile", own("diff", HOSTILE, "lists/silent.xml"), table=tables.changes),
    Case("diff-foreign-password", own("diff", "lists/direct.xml", "lists/foreign.xml"), table=tables.changes),
    Case("diff-foreign-same", own("diff", "--exit-code", "lists/foreign.xml", "lists/foreign.xml"),
         table=tables.changes),
    Case("diff-incomparable", own("diff", "--exit-code", "lists/foreign.xml", "lists/foreign-too.xml"), 5,
         tables.changes),
    *unreadable("diff", OWN),
]

QUERIES = [
    Case("versions-own", own("versions"), table=tables.facts),
    Case("versions-file", ["versions", "in/SiteList.xml"], table=tables.facts),
    Case("versions-silent", ["versions", "lists/silent.xml"], table=tables.facts),
    Case("versions-hostile", ["versions", HOSTILE], table=tables.facts),
    *unreadable("versions"),
    Case("servers-own", own("servers"), table=tables.facts),
    Case("servers-none", agent("serverless", "servers"), 1),
    Case("servers-hostile", agent("hostile", "servers", "--all", "--non-secure-port"),
         table=tables.facts),
    Case("servers-no-list", agent("fresh", "servers"), 4),
    Case("certs-own", own("certs"), table=tables.certificates, masks=DAYS),
    Case("certs-expired", ["certs", "lists/certificates.xml", "--expiring", "0"], 1, tables.certificates,
         masks=DAYS),
    Case("certs-expiring", ["certs", "lists/lasting.xml", "--expiring", "9000000"], 1, tables.certificates,
         masks=DAYS),
    Case("certs-lasting", ["certs", "lists/lasting.xml", "--expiring", "30"], table=tables.certificates,
         masks=DAYS),
    Case("certs-hostile", ["certs", HOSTILE], table=tables.certificates, masks=DAYS),
    Case("certs-none", ["certs", "lists/empty.xml"], 1, tables.silent),
    Case("certs-bad-days", own("certs", "--expiring", NASTY), 2),
    *unreadable("certs"),
    Case("policies-own", own("policies"), table=tables.policies),
    Case("policies-hostile", ["policies", HOSTILE], table=tables.policies),
    Case("policies-none", ["policies", "lists/empty.xml"], 1, tables.silent),
    *unreadable("policies"),
    Case("policies-set", own("policies", "set", "New", NASTY), writes=True),
    Case("policies-set-dry", own("policies", "set", "--dry-run", "Old", NASTY), table=tables.changes),
    Case("policies-set-file", ["policies", "lists/direct.xml", "set", "Old", "2"], 2),
    Case("policies-unset", own("policies", "unset", "Old", "AskIntervalMinutes"), writes=True),
    Case("policies-unset-dry", own("policies", "unset", "--dry-run", "Old"), table=tables.changes),
    Case("policies-unset-none", own("policies", "unset", "Old", NASTY), 7),
    Case("policies-set-no-list", agent("fresh", "policies", "set", "a", "1"), 4),
    Case("policies-set-foreign", agent("keyless", "policies", "set", "a", "1"), 5, writes=True),
    Case("protect", own("protect"), table=tables.protected, stdin=CANARIES["depot"] + "\n", masks=PROTECTED),
    Case("protect-hostile", own("protect"), table=tables.protected, stdin=CANARIES["hostile"],
         masks=PROTECTED),
    Case("protect-nothing", own("protect"), 2),
    Case("protect-too-long", own("protect"), 2, stdin=CANARIES["depot"] * 22),
    Case("protect-bad-key", agent("bad-key", "protect"), 5, stdin=CANARIES["depot"]),
    Case("protect-no-agent", agent("nowhere", "protect"), 4, stdin=CANARIES["depot"]),
]

CHANGES = [
    Case("init", agent("new", "init"), writes=True),
    Case("init-again", own("init"), 6),
    Case("init-relative-mesh", agent("new", "init", "--mesh-command", NASTY), 2),
    Case("import", own("import", "in/SiteList.xml"), writes=True),
    Case("import-dry", own("import", "--dry-run", "in/SiteList.xml"), table=tables.changes),
    Case("import-dry-first", agent("fresh", "import", "--dry-run", "--allow-lost-passwords", "in/SiteList.xml"),
         table=tables.changes),
    Case("import-dry-foreign", agent("fresh", "import", "--dry-run", "in/SiteList.xml"), 5),
    Case("import-hostile", own("import", "in/hostile.xml"), writes=True),
    Case("import-refused-hostile", own("import", "lists/refused-hostile.xml"), 1),
    Case("import-refused", own("import", "lists/incomplete.xml"), 1),
    Case("import-dry-refused", own("import", "--dry-run", "lists/incomplete.xml"), 1),
    Case("import-dry-keyless", own("import", "--dry-run", "lists/keyless.xml"), 1),
    *unreadable("import", "--dry-run"),
    Case("install-foreign", agent("fresh", "install", "--allow-lost-passwords", "lists/foreign.xml"),
         writes=True),
    Case("install-foreign-refused", agent("fresh", "install", "lists/foreign.xml"), 5),
    Case("install", own("install", "in/SiteList.xml"), writes=True),
    Case("install-dry-keys", own("install", "--dry-run", "--keys", "in", "lists/idle.xml"),
         table=tables.changes),
    Case("install-dry-hostile", own("install", "--dry-run", "in/hostile.xml"), table=tables.changes),
    Case("install-dry-foreign",
         agent("fresh", "install", "--dry-run", "--allow-lost-passwords", "lists/foreign.xml"),
         table=tables.changes),
    Case("install-dry-same", agent("serverless", "install", "--dry-run", "lists/direct.xml"),
         table=tables.changes),
    Case("install-keyless", own("install", "lists/keyless.xml"), 5),
    *unreadable("install"),
    Case("modify", own("modify", "--servers", "--repositories", "in/SiteList.xml"), writes=True),
    Case("modify-dry", own("modify", "--servers", "--repositories", "--dry-run", "in/SiteList.xml"),
         table=tables.changes),
    Case("modify-dry-nothing", own("modify", "--dry-run", "lists/direct.xml"), table=tables.changes),
    Case("modify-dry-hostile", own("modify", "--servers", "--dry-run", "in/hostile.xml"),
         table=tables.changes),
    Case("modify-other-root", own("modify", "lists/other-root.xml"), 3),
    *unreadable("modify"),
    Case("merge", own("merge", "--first", "in/SiteList.xml"), forms=("table",), masks=PROTECTED + STAMP),
    Case("merge-output", own("merge", "--first", "in/SiteList.xml", "--output", "merged.xml"), writes=True),
    Case("merge-dry", own("merge", "--first", "in/SiteList.xml", "--dry-run"), table=tables.changes),
    Case("merge-dry-two", own("merge", "--first", "lists/direct.xml", "--second", HOSTILE, "--dry-run"),
         table=tables.changes),
    Case("merge-dry-nothing", own("merge", "--dry-run"), table=tables.changes),
    Case("merge-foreign", own("merge", "--first", "lists/foreign.xml", "--output", "merged.xml"), 5),
    *unreadable("merge", "--dry-run", "--first"),
    Case("merge-no-directory", own("merge", "--output", "none/merged.xml"), 4),
    Case("rewrite", own("rewrite", "in/SiteList.xml", "new.xml"), writes=True),
    Case("rewrite-foreign", own("rewrite", "lists/foreign.xml", "new.xml"), 5),
    Case("rewrite-keyless", agent("keyless", "rewrite", "lists/direct.xml", "new.xml"), 5),
    Case("derive-server-list", ["derive-server-list", "in"], writes=True),
    Case("derive-server-list-missing", ["derive-server-list", "lists"], 4),
    Case("server-list", own("server-list", "in/SiteList.xml"), writes=True),
    Case("server-list-missing", own("server-list", "lists/none.xml"), 4),
    Case("server-list-foreign", own("server-list", "--adjust-passwords", "in/SiteList.xml"), 5),
    Case("from-buffer-foreign", own("from-buffer", "lists/foreign.xml"), 5),
    Case("from-buffer-broken", own("from-buffer"), 3, stdin="<a>\n<b>"),
    Case("from-buffer-missing", own("from-buffer", "lists/none.xml"), 4),
]

VALIDATE = [
    Case("validate-valid", ["validate", "in/SiteList.xml"], table=tables.faults),
    Case("validate-warnings", ["validate", "broken/warnings.xml"], table=tables.faults),
    Case("validate-strict", ["validate", "--strict", "broken/warnings.xml"], 1, tables.faults),
    Case("validate-incomplete", ["validate", "lists/incomplete.xml"], 1, tables.faults),
    Case("validate-hostile", ["validate", "lists/refused-hostile.xml"], 1, tables.faults),
    Case("validate-hostile-valid", ["validate", "in/hostile.xml"], table=tables.faults),
    Case("validate-several",
         ["validate", "lists/direct.xml", "lists/broken.xml", "in/SiteList.xml", "lists/none.xml"], 4,
         tables.faults),
    Case("validate-after-unreadable",
         ["validate", "lists/incomplete.xml", "lists/many-unknown.xml", "lists/none.xml",
          "lists/incomplete.xml"], 4,
         tables.faults),
    Case("validate-input", ["validate", "-"], 3, tables.faults, stdin="<a>\n</b>"),
    Case("validate-deep", ["validate", "lists/deep.xml"], 3, tables.faults),
    Case("validate-encoding", ["validate", "lists/encoding.xml"], 3, tables.faults),
    Case("validate-directory", ["validate", "lists"], 1, tables.silent),
    Case("validate-unknown-last", ["validate", "--unmanaged", "lists/unknown-last.xml"], 3, tables.faults),
    Case("validate-nasty-path", ["validate", NASTY, NOT_UTF8], 4, tables.faults),
    Case("validate-both-ways", ["validate", "--managed", "--unmanaged", "in/SiteList.xml"], 2),
    Case("explain-rule", ["explain-rule", "server-type-master"], table=tables.rule),
    Case("explain-rule-all", ["explain-rule"], table=tables.rules),
    Case("explain-rule-unknown", ["explain-rule", NASTY], 7),
]


def fleet(name, *arguments, status=4, columns=(), table=None, masks=(), secrets=()):
    return Case(name, own(*arguments), status, table or tables.fleet(*columns), masks=masks, secrets=secrets,
                forms=ALL_FORMS)


FLEET = [
    fleet("show-fleet", "show", "fleet", "lists/none.xml", columns=("kind", "name")),
    fleet("show-fleet-columns", "show", "--columns", "name,server,order", "--filter", "kind=http", "--sort", "-order",
          "fleet/a", "fleet/c", status=0, columns=("name", "server", "order")),
    fleet("show-fleet-secrets", "show", "--show-secrets", "--columns", "name,password", "fleet/d", status=0,
          columns=("name", "password"), secrets=("depot", "share")),
    fleet("show-fleet-foreign", "show", "lists/foreign.xml", "lists/foreign-too.xml", status=0,
          columns=("kind", "name")),
    fleet("show-fleet-hostile", "show", HOSTILE, NASTY, NOT_UTF8, columns=("kind", "name")),
    fleet("show-fleet-twice", "show", "--columns", "name", "fleet/a", "fleet/a", status=0, columns=("name",)),
    fleet("versions-fleet", "versions", "fleet", columns=("globalVersion", "localVersion", "type", "fipsMode"),
          status=3),
    fleet("versions-fleet-empty", "versions", "lists", status=1, table=tables.silent),
    fleet("servers-fleet", "servers", "--all", "fleet", columns=("name", "server", "port"), status=3),
    fleet("certs-fleet", "certs", "--expiring", "0", "lists/certificates.xml", "fleet",
          columns=("subject", "validUntil"), status=3, masks=DAYS_OF_FLEET),
    fleet("explain-fleet", "explain", "fleet", columns=("kind", "name", "reason"), status=3),
    fleet("explain-fleet-host", "explain", "--host", "else.example", "fleet", columns=("protocol", "reason"),
          status=3),
    fleet("diff-fleet", "diff", "--to", "fleet/a/SiteList.xml", "--exit-code", "fleet",
          columns=("change", "name", "before", "after"), status=3),
    fleet("diff-fleet-one", "diff", "--to", "fleet/a/SiteList.xml", "fleet/b/SiteList.xml", status=0,
          table=tables.changes),
    fleet("diff-fleet-none", "diff", "--to", "fleet/a/SiteList.xml", status=2, table=tables.silent),
    fleet("validate-fleet", "validate", "fleet", table=tables.faults, status=3),
    fleet("summary-fleet", "summary", "fleet", table=tables.summary, status=3),
    fleet("summary-one", "summary", "in/SiteList.xml", table=tables.summary, status=0),
    fleet("summary-empty", "summary", "lists", table=tables.summary, status=1),
    fleet("summary-bad-jobs", "summary", "--jobs", NASTY, "fleet", table=tables.silent, status=2),
    Case("servers-file", ["servers", "--all", "in/SiteList.xml"], table=tables.facts),
    Case("servers-file-none", ["servers", "lists/direct.xml"], 1),
    *unreadable("servers"),
]


def edit(*arguments):
    return own("edit", *arguments)


EDIT = [
    Case("edit-disable", edit("disable", "Main server"), writes=True),
    Case("edit-enable-enabled", edit("enable", "Main server")),
    Case("edit-disable-dry", edit("--dry-run", "disable", "Main server"), table=tables.changes),
    Case("edit-enable-dry-enabled", edit("--dry-run", "enable", "Main server"), table=tables.changes),
    Case("edit-set", edit("set", "Offices", "server=FILES02", "order=12"), writes=True),
    Case("edit-set-dry", edit("--dry-run", "set", "Offices", "server=FILES02", "order=12"),
         table=tables.changes),
    Case("edit-set-dry-hostile",
         edit("--dry-run", "--file", HOSTILE, "set", "HQ", "relativePath=\t\n\r\x9b\u202e\"'<&>, 東京"),
         table=tables.changes),
    Case("edit-set-dry-password",
         edit("--dry-run", "set", DEPOT, "--password-stdin"), stdin=CANARIES["fresh"], table=tables.changes),
    Case("edit-set-password", edit("set", DEPOT, "--password-stdin"), stdin=CANARIES["fresh"], writes=True),
    Case("edit-set-visible-password", edit("set", DEPOT, "password=" + CANARIES["fresh"]), 2),
    Case("edit-set-mistyped-password", edit("set", DEPOT, CANARIES["fresh"]), 2),
    Case("edit-set-option-password", edit("set", DEPOT, "-" + CANARIES["fresh"]), 2),
    Case("edit-set-nasty-field", edit("set", DEPOT, NASTY + "=1"), 2),
    Case("edit-set-nasty-value", edit("set", DEPOT, "server=" + NASTY), 2),
    Case("edit-set-not-utf8", edit("set", DEPOT, b"server=\xff"), 2),
    Case("edit-add-dry", edit("--dry-run", "add", "http", "New\x9b\u202e\t", "server=new.example"),
         table=tables.changes),
    Case("edit-remove-dry", edit("--dry-run", "remove", "Disk"), table=tables.changes),
    Case("edit-remove-gone", edit("remove", NASTY), 7),
    Case("edit-set-fault", edit("set", "Offices", "server=", "useLoggedonUserAccount=2"), 1),
    Case("edit-set-fault-dry", edit("--dry-run", "set", "Offices", "server="), 1, tables.changes),
    Case("edit-set-fault-forced", edit("--force", "set", "Offices", "server="), writes=True),
    Case("edit-set-unknown-type", edit("set", "Offices", "type=mirrors"), 2),
    Case("edit-rename-dry", edit("--dry-run", "rename", "Disk", "Disc"), table=tables.changes),
    Case("edit-rename-taken", edit("rename", "Disk", "Offices"), 6),
    Case("edit-move-dry", edit("--dry-run", "move", "Offices", "first"), table=tables.changes),
    Case("edit-no-site", edit("disable", NASTY), 7),
    Case("edit-several", edit("disable", "Twin"), 6),
    Case("history", own("history"), table=tables.history),
    Case("history-empty", agent("serverless", "history"), 1, tables.history),
    Case("undo", own("undo", "1"), writes=True),
    Case("undo-dry", own("undo", "--dry-run", "1"), table=tables.changes),
    Case("undo-hostile", own("undo"), writes=True),
    Case("undo-no-number", own("undo", NASTY), 7),
    Case("undo-empty", agent("serverless", "undo"), 7, writes=True),  # makes the directory etc/history
    Case("diff-history", own("diff", "--history", "1"), table=tables.changes),
    Case("import-older", own("import", "lists/older.xml"), 6),
    Case("edit-no-subcommand", edit(), 2),
    Case("edit-missing", edit("--file", "lists/none.xml", "disable", "x"), 4),
    Case("edit-broken", edit("--file", "lists/broken.xml", "disable", "x"), 3),
    Case("edit-locked", agent("locked", "edit", "--wait", "0", "disable", "depot"), 4),
]

USAGE = [
    Case("usage-no-command", [], 2, forms=("json", "csv", "xml")),
    Case("usage-unknown-command", [NASTY], 2),
    Case("usage-unknown-option", ["show", "--bogus" + NASTY], 2),
    Case("usage-argument-too-many", ["explain-rule", "a", NASTY], 2),
    Case("usage-help-unknown", ["help", "edit", NASTY], 2),
    Case("usage-several-arguments", ["explain-rule", "a", "c", NASTY, "b"], 2),
    Case("usage-misspelt", ["edit", "dsable", "x"], 2),
    Case("usage-missing-argument", ["diff", "a"], 2),
    Case("usage-missing-value", ["show", "--agent-dir"], 2),
    Case("usage-color", ["show", "--color", "sometimes"], 2),
    Case("usage-not-utf8", ["explain-rule", "a", NOT_UTF8], 2),
]

HOLDER = ((r"process [0-9]+ \([^)]*\)", "process @HOLDER@"),)
DOCTOR = [
    Case("doctor-well", agent("well", "doctor"), table=tables.health),
    Case("doctor-ailing", agent("ailing", "doctor"), 1, tables.health),
    Case("doctor-fix", agent("ailing", "doctor", "--fix"), 1, tables.health, writes=True),
    Case("doctor-fix-well", agent("well", "doctor", "--fix"), table=tables.health),
    Case("doctor-fix-unset", agent("unset", "doctor", "--fix"), 1, tables.health),
    Case("doctor-fix-busy", agent("busy", "doctor", "--fix", "--wait", "0"), 4, tables.health, masks=HOLDER),
    Case("doctor-fresh", agent("fresh", "doctor"), 1, tables.health),
    Case("doctor-hostile", agent("hostile", "doctor"), 1, tables.health),
    Case("doctor-strange", agent("strange", "doctor"), 1, tables.health),
    Case("doctor-bad-key", agent("bad-key", "doctor"), 1, tables.health),
    Case("doctor-keyless", agent("keyless", "doctor"), 1, tables.health),
    Case("doctor-no-agent", agent("nowhere", "doctor"), 4),
]

# Each is a test of its own.
GROUPS = {
    "show": SHOW,
    "get": GET,
    "explain": EXPLAIN,
    "probe": PROBES,
    "diff": DIFF,
    "queries": QUERIES,
    "changes": CHANGES,
    "validate": VALIDATE,
    "edit": EDIT,
    "doctor": DOCTOR,
    "fleet": FLEET,
    "usage": USAGE,
}
ALL = [case for cases in GROUPS.values() for case in cases]
# The name of a case begins with one of these names.
COMMANDS = ("show", "get", "explain", "explain-rule", "probe", "diff", "versions", "servers", "certs", "policies",
            "protect", "init", "import", "install", "modify", "merge", "rewrite", "derive-server-list",
            "server-list", "from-buffer", "validate", "doctor", "summary", "edit", "history", "undo", "usage")
