"""A run of the tool for every exit status of every command, and for every reason of a status."""

import os
import pwd
import shutil
from dataclasses import dataclass

from status_table import read_table


@dataclass
class Way:
    """A command line and its status. `says` is in a message, or in the output if there is no message."""

    status: int
    line: str
    says: str
    agent: str = "agent"
    stdin: str = ""
    writes: bool = False  # changes files or directories, so it gets its own copy of the world
    prepare: object = None  # changes the copy of the world before the run
    interposer: object = None  # gives the variables for tests/cli/interposer.cpp, which is then loaded
    closes: bool = False  # nothing can be written to standard output

    @property
    def name(self):
        return f"`{self.line}` ({self.agent})"


def same(status, says, lines, **more):
    """The ways of several command lines in the same situation."""
    return [Way(status, line.strip(), says, **more) for line in lines.split("\n") if line.strip()]


def on_file(status, file, says, lines, **more):
    return same(status, says, lines.replace("FILE", file), **more)


READS_FILE = """
    show FILE
    get type FILE
    explain FILE
    probe --file FILE
    diff FILE lists/direct.xml
    diff lists/direct.xml FILE
    versions FILE
    certs FILE
    policies FILE
    servers FILE
    diff --to FILE lists/direct.xml
"""
TAKES_FILE = """
    import FILE
    import --dry-run FILE
    install FILE
    install --dry-run FILE
    merge --first FILE
    merge --first FILE --dry-run
    merge --second FILE --output new.xml
    rewrite FILE new.xml
    edit enable --file FILE depot
    edit disable --file FILE depot
    edit set --file FILE depot order=2
    edit add --file FILE http new server=new.example
    edit remove --file FILE depot
    edit rename --file FILE depot new
    edit move --file FILE depot first
    modify --servers FILE
    modify --servers --dry-run FILE
    from-buffer FILE
    server-list FILE
    server-list --adjust-passwords FILE
"""
READS_OWN = """
    show
    get type
    explain
    versions
    servers
    certs
    policies
"""
HISTORY = """
    history
"""
CHANGES_OWN = """
    policies set A 1
    policies unset A
    edit enable depot
    edit disable depot
    edit set depot order=2
    edit add http new server=new.example
    edit remove depot
    edit rename depot new
    edit move depot first
    modify --servers lists/direct.xml
"""
REPLACES_OWN = """
    undo
    import in/SiteList.xml
    install in/SiteList.xml
    from-buffer lists/direct.xml
    server-list lists/direct.xml
"""
FLEET = """
    show in OTHER
    explain in OTHER
    diff --to in/SiteList.xml in OTHER
    versions in OTHER
    servers in OTHER
    certs in OTHER
    validate in OTHER
"""
NO_LISTS = """
    show lists
    explain lists
    diff --to in/SiteList.xml lists
    versions lists
    servers lists
    certs lists
    validate lists
    summary lists
"""
READS_ONE = """
    get type FILE
    diff FILE lists/direct.xml
    diff lists/direct.xml FILE
    policies FILE
"""
USES_OWN = """
    merge --first lists/direct.xml --output new.xml
"""
USES_KEY = """
    rewrite lists/direct.xml new.xml
    protect
"""
WITHOUT_LOCK = """
    diff --history 1
    undo --dry-run
"""
PREVIEWS = """
    import --dry-run in/SiteList.xml
    install --dry-run in/SiteList.xml
"""
ON_SITE = """
    edit enable SITE
    edit disable SITE
    edit set SITE order=9
    edit remove SITE
    edit rename SITE other
    edit move SITE first
"""


def derived_from(name):
    def prepare(directory):
        (directory / "in/SiteList.xml").unlink()
        shutil.copy(directory / "lists" / name, directory / "in/SiteList.xml")
    return prepare


def own_file(directory):
    shutil.copy(directory / "lists/three.xml", directory / "mine.xml")


def foreign_list(directory):
    shutil.copy(directory / "lists/foreign.xml", directory / "agent/etc/SiteList.xml")


def strange_list(directory):
    shutil.copy(directory / "lists/other-root.xml", directory / "agent/etc/SiteList.xml")


def vendor_list(directory):
    shutil.copy(directory / "lists/vendor.xml", directory / "agent/etc/SiteList.xml")


def unmanaged(directory):
    (directory / "agent/agent.toml").write_text("managed = false\n")


def without_key(directory):
    (directory / "serverless/keystore/password.key").unlink()


def foreign_history(directory):
    shutil.copy(directory / "lists/foreign.xml", directory / "agent/etc/history/3-20260103T000000Z-import.xml")


def damaged_key(directory):
    (directory / "new/keystore").mkdir(parents=True)
    (directory / "new/keystore/password.key").write_text("too short")


def others_directory(directory):
    (directory / "new/etc").mkdir(parents=True)


def another_user():
    return next(user.pw_uid for user in pwd.getpwall() if user.pw_uid != os.geteuid())


def scratch_directory(directory):
    (directory / "Korvel/orb/scratch/etc").mkdir(parents=True)


SUCCESS = [
    Way(0, "init", "created an unmanaged agent", agent="new", writes=True),
    Way(0, "show", "Main server"),
    Way(0, "get globalVersion", "20260101000000"),
    Way(0, "explain", "The agent tries"),
    Way(0, "probe --file lists/no-disk.xml", "The agent will use"),
    Way(0, "diff lists/direct.xml in/SiteList.xml", "From lists/direct.xml"),
    Way(0, "versions", "global version"),
    Way(0, "servers", "names"),
    Way(0, "certs", "Certificate 1"),
    Way(0, "policies", "Old = 1"),
    Way(0, "policies set Old 2", "set policy setting", writes=True),
    Way(0, "policies unset Old", "removed policy setting", writes=True),
    Way(0, "doctor", "0 failures", agent="well"),
    Way(0, "validate in/SiteList.xml", "valid"),
    Way(0, "summary in", "1 list"),
    Way(0, "explain-rule", "no-server"),
    Way(0, "import in/SiteList.xml", "now has", writes=True),
    Way(0, "install in/SiteList.xml", "now has", writes=True),
    Way(0, "merge --first in/SiteList.xml --output new.xml", "wrote", writes=True),
    Way(0, "rewrite in/SiteList.xml new.xml", "wrote", writes=True),
    Way(0, "edit enable Disk", "enabled", writes=True),
    Way(0, "edit disable Offices", "disabled", writes=True),
    Way(0, "edit set Offices order=12", "set order", writes=True),
    Way(0, "edit add http New server=new.example", "added", writes=True),
    Way(0, "edit remove Disk", "removed", writes=True),
    Way(0, "edit rename Disk Disc", "renamed", writes=True),
    Way(0, "edit move Offices first", "moved", writes=True),
    Way(0, "history", "edit set"),
    Way(0, "undo 1", "restored list 1", writes=True),
    Way(0, "modify --servers in/SiteList.xml", "modified", writes=True),
    Way(0, "derive-server-list in", "wrote", writes=True),
    Way(0, "from-buffer in/SiteList.xml", "wrote the list", prepare=scratch_directory,
        interposer=lambda directory: {"LIBRARY": str(directory)}),
    Way(0, "server-list in/SiteList.xml", "stored", writes=True),
    Way(0, "protect", "", stdin="canary\n"),
    Way(0, "help", "Usage"),
]
NEGATIVE = [
    Way(1, "show lists/empty.xml", "has no sites"),
    Way(1, "show --filter name=none", "no site matches"),
    Way(1, "explain lists/idle.xml", "no site to try"),
    Way(1, "explain --host else.example", "through proxy.example"),
    Way(1, "probe --file lists/no-disks.xml", "no site that it can use"),
    Way(1, "probe --file lists/no-disk.xml Disk No*", "cannot be read"),
    Way(1, "diff --exit-code lists/direct.xml in/SiteList.xml", "From lists/direct.xml"),
    Way(1, "servers", "no management server", agent="serverless"),
    Way(1, "certs lists/empty.xml", "no certificates"),
    Way(1, "certs --expiring 0 lists/expired.xml", "(expired)"),
    Way(1, "certs --expiring 0 lists/certificates.xml", "cannot be read"),
    Way(1, "policies lists/empty.xml", "no policy settings"),
    Way(1, "doctor", "the agent has no list", agent="fresh"),
    Way(1, "validate lists/incomplete.xml", "server-name"),
    Way(1, "validate --strict broken/warnings.xml", "[warning]"),
    Way(1, "import lists/incomplete.xml", "the list was refused"),
    Way(1, "install lists/empty.xml", "the list has no site"),
    *same(1, "would add a fault", """
        edit enable --file lists/shared-order.xml b
        edit set Offices server=
        edit add http New
        edit remove --file lists/direct.xml depot
        edit move --file lists/shared-order.xml c 2
    """),
    Way(1, "history", "the history is empty", agent="serverless"),
    *same(1, "no file SiteList.xml", NO_LISTS),
]
USAGE = [
    Way(2, "help stranger", "unknown command"),
    *[Way(2, f"{command} --stranger", f"see `sitelist {command} --help`") for command, status in read_table() if status == 2],
]
DOCUMENT = [
    *on_file(3, "lists/broken.xml", "line 3", READS_FILE + TAKES_FILE),
    *on_file(3, "lists/other-root.xml", "not a site list", READS_FILE + TAKES_FILE),
    *on_file(3, "lists/no-markup.xml", "no markup", READS_FILE),
    *same(3, "not a site list", READS_OWN + USES_OWN, agent="strange"),
    *same(3, "not a site list", CHANGES_OWN, agent="strange", writes=True),  # make the directory etc/history
    Way(3, "merge --second lists/direct.xml --output new.xml", "not a site list", agent="strange"),
    Way(3, "diff --history 1", "not a site list", prepare=strange_list),
    *same(3, "not valid TOML", READS_OWN + CHANGES_OWN + REPLACES_OWN + USES_OWN + USES_KEY + HISTORY + WITHOUT_LOCK,
          agent="unset", stdin="canary\n"),
    Way(3, "validate lists/broken.xml", "not-well-formed"),
    Way(3, "summary lists/broken.xml", "not-well-formed"),
    *same(3, "1 failed", FLEET.replace("OTHER", "lists/broken.xml")),
    Way(3, "derive-server-list in", "line 3", prepare=derived_from("broken.xml")),
    Way(3, "derive-server-list in", "not a site list", prepare=derived_from("other-root.xml")),
    Way(3, "derive-server-list in", "elements of unknown kind", prepare=derived_from("many-unknown.xml")),
    *on_file(3, "lists/many-unknown.xml", "elements of unknown kind", """
        show FILE
        modify --servers FILE
        server-list --adjust-passwords FILE
        merge --first FILE
        validate FILE
    """),
]
FILE = [
    *on_file(4, "lists/none.xml", "exist", READS_FILE + TAKES_FILE),
    *on_file(4, "lists", "it is a directory", READS_ONE + TAKES_FILE),
    *same(4, "data directory does not exist",
          READS_OWN + CHANGES_OWN + REPLACES_OWN + USES_OWN + USES_KEY + HISTORY + WITHOUT_LOCK + PREVIEWS,
          agent="nowhere", stdin="canary\n"),
    *same(4, "locked by another process",
          READS_OWN + CHANGES_OWN + REPLACES_OWN + USES_OWN + HISTORY + "rewrite lists/direct.xml new.xml",
          agent="busy"),
    Way(4, "doctor", "data directory does not exist", agent="nowhere"),
    Way(4, "doctor --fix", "locked by another process", agent="busy"),
    Way(4, "derive-server-list busy/etc", "locked by another process", agent="busy"),
    Way(4, "validate lists/none.xml", "missing-file"),
    Way(4, "summary lists/none.xml", "missing-file"),
    *same(4, "1 failed", FLEET.replace("OTHER", "lists/none.xml")),
    Way(4, "derive-server-list lists", "the file does not exist"),
    Way(4, "init", "cannot be created", agent="lists/direct.xml/agent"),
    *same(4, "cannot write to standard output", READS_OWN + HISTORY + """
        help
        explain-rule
        doctor --wait 0
        diff --exit-code lists/direct.xml in/SiteList.xml
        certs --expiring 0 lists/expired.xml
        explain lists/idle.xml
        probe --file lists/no-disks.xml
        validate lists/incomplete.xml
        import --dry-run in/SiteList.xml
        edit disable --dry-run Offices
    """, closes=True),
]
CRYPTO = [
    Way(5, "init", "the password key cannot be created", agent="new", prepare=damaged_key),
    Way(5, "diff --exit-code lists/foreign.xml lists/foreign-too.xml", "cannot be compared"),
    *same(5, "passwords cannot be decrypted", """
        policies set A 1
        policies unset A
    """, prepare=foreign_list),
    *on_file(5, "lists/foreign.xml", "passwords cannot be decrypted", """
        import --allow-older FILE
        install --allow-older FILE
        merge --first FILE
        rewrite FILE new.xml
        from-buffer FILE
        server-list --adjust-passwords FILE
    """),
    Way(5, "modify --repositories lists/foreign-vendor.xml", "passwords cannot be decrypted", prepare=vendor_list),
    Way(5, "undo", "passwords cannot be decrypted", prepare=foreign_history),
    Way(5, "import --allow-older lists/keyless.xml", "key files", prepare=unmanaged),
    *on_file(5, "lists/keyless.xml", "key files", """
        install FILE
        modify --servers FILE
    """),
    *same(5, "no password key", """
        merge --output new.xml
        rewrite lists/direct.xml new.xml
    """, agent="serverless", prepare=without_key),
    *same(5, "the password cannot be encrypted", """
        protect
        edit set depot --password-stdin
        edit add http new server=new.example --password-stdin
    """, agent="bad-key", stdin="canary\n"),
]
CONFLICT = [
    Way(6, "init", "already an agent"),
    Way(6, f"init --owner {another_user()}", "is not empty", agent="new", prepare=others_directory),
    Way(6, "get server --site Twin", "several sites"),
    Way(6, "diff mine.xml lists/empty.xml", "changed while it was read", prepare=own_file,
        interposer=lambda _: {"REPLACED": "mine.xml", "REPLACEMENT": "lists/empty.xml"}),
    *on_file(6, "lists/older.xml", "older than the agent's own list", """
        import FILE
        import --dry-run FILE
        install FILE
        install --dry-run FILE
    """),
    *same(6, "several sites", ON_SITE.replace("SITE", "Twin")),
    Way(6, "edit add unc Offices server=new.example", "with other values"),
    Way(6, "edit rename Disk Offices", "already used"),
    *same(6, "another program changed the list", """
        edit enable --file mine.xml b
        edit disable --file mine.xml c
        edit set --file mine.xml c order=9
        edit remove --file mine.xml c
        edit rename --file mine.xml c d
        edit move --file mine.xml c first
        edit add --file mine.xml http new server=new.example
        merge --output mine.xml
        rewrite lists/direct.xml mine.xml
    """, prepare=own_file, interposer=lambda _: {"CHANGED_MEANWHILE": "mine.xml"}),
]
NOT_FOUND = [
    Way(7, "get server --site none", "there is no site"),
    Way(7, "get shareName --site Disk", "has no field"),
    Way(7, "get policy.none", "there is no policy setting"),
    Way(7, "get fipsMode", "no FIPS mode"),
    Way(7, "probe --file lists/disk.xml none", "no site matches"),
    Way(7, "diff --history 9", "no list with the number"),
    Way(7, "diff --history 1", "the history is empty", agent="serverless"),
    Way(7, "policies unset none", "there is no policy setting"),
    Way(7, "explain-rule none", "unknown rule"),
    *same(7, "there is no site", ON_SITE.replace("SITE", "none")),
    Way(7, "undo 9", "no list with the number"),
    Way(7, "undo", "the history is empty", agent="serverless", writes=True),  # makes the directory etc/history
]
WAYS = [*SUCCESS, *NEGATIVE, *USAGE, *DOCUMENT, *FILE, *CRYPTO, *CONFLICT, *NOT_FOUND]
