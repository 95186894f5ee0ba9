"""A directory with agents and lists, in which the tool is run."""

import fcntl
import os
import shutil
import subprocess
import tempfile
from pathlib import Path

import documents
import site_servers


class Output:
    def __init__(self, process):
        self.status = process.returncode
        self.out = process.stdout
        self.err = process.stderr


def environment():
    # Of the caller's settings, only PATH and those of the sanitizers remain.
    kept = {k: v for k, v in os.environ.items() if k.split("_")[0] in ("ASAN", "LSAN", "TSAN", "UBSAN")}
    return {**kept, "PATH": os.environ["PATH"], "TMPDIR": "tmp"}


class World:
    """The directories of a world:

    agent: a managed agent with a list and secrets
    fresh: an agent that only `init` has changed
    serverless: its list has no management server
    hostile: its list has hostile text
    keyless: it has no password key
    bad-key: its password key cannot be read
    unset: its settings cannot be read
    strange: its list is not a site list
    locked: another process holds the read lock of its list
    busy: another process holds the write lock of its list
    well: an agent without any fault
    ailing: an agent with many faults
    lists: documents
    in: the example list with its key files
    fleet: the lists of several endpoints, one of them broken
    """

    def __init__(self, tool, source):
        self.tool = str(tool)
        self.base = Path(tempfile.mkdtemp(prefix="sitelist-formats-")).resolve()
        self.dir = self.base / "world"
        for name in ("tmp", "lists", "keyless/etc", "unset/etc"):
            (self.dir / name).mkdir(parents=True)
        for name in ("agent", "fresh"):
            self.must("--agent-dir", name, "init", "--managed", "--mesh-command", "/bin/sh", "-c", ":")
        for name in ("serverless", "hostile", "bad-key", "strange", "locked", "busy", "well", "ailing"):
            shutil.copytree(self.dir / "fresh", self.dir / name)
        sealed = {name: self.protect(clear) for name, clear in documents.CANARIES.items()}
        for name, text in documents.lists(sealed).items():
            (self.dir / "lists" / name).write_bytes(text if isinstance(text, bytes) else text.encode())
        self.servers = site_servers.SiteServers()
        network = documents.network(sealed, self.servers.ports(), site_servers.AUTHORITY.read_text())
        (self.dir / "lists/network.xml").write_text(network)
        for agent in ("agent", "keyless"):
            (self.dir / agent / "etc/SiteList.xml").write_bytes(documents.own(sealed).encode())
        for agent in ("serverless", "locked", "busy"):
            shutil.copy(self.dir / "lists/direct.xml", self.dir / agent / "etc/SiteList.xml")
        for number, name in (("1-20260101T000000Z-import", "direct"), ("2-20260102T000000Z-edit_set", "hostile")):
            (self.dir / "agent/etc/history").mkdir(exist_ok=True)
            shutil.copy(self.dir / f"lists/{name}.xml", self.dir / f"agent/etc/history/{number}.xml")
        shutil.copy(self.dir / "lists/hostile.xml", self.dir / "hostile/etc/SiteList.xml")
        shutil.copy(self.dir / "lists/other-root.xml", self.dir / "strange/etc/SiteList.xml")
        (self.dir / "bad-key/keystore/password.key").write_text("too short")
        (self.dir / "keyless/agent.toml").write_text("managed = false\n")
        (self.dir / "unset/agent.toml").write_text("managed = maybe\n")
        shutil.copytree(source / "examples/incoming", self.dir / "in")
        shutil.copytree(source / "examples/broken", self.dir / "broken")
        shutil.copy(self.dir / "lists/hostile.xml", self.dir / "in")
        self.seal_example(sealed)
        for name, text in documents.fleet(sealed).items():
            (self.dir / "fleet" / name).mkdir(parents=True)
            (self.dir / "fleet" / name / "SiteList.xml").write_text(text)
        self.make_well(sealed)
        self.make_ailing(sealed)
        self.set_modes()
        self.unused = self.base / "unused"  # no run changes it, not even for a moment
        shutil.copytree(self.dir, self.unused)
        self.locks = [self.lock_list("locked", fcntl.LOCK_SH), self.lock_list("busy", fcntl.LOCK_EX)]

    def make_well(self, sealed):
        agent = self.dir / "well"
        shutil.copy(self.dir / "agent/keystore/password.key", agent / "keystore")
        for name in ("etc", "mesh"):
            (agent / name / "SiteList.xml").write_text(documents.healthy(sealed))
        for key in (self.dir / "in").glob("*.bin"):
            shutil.copy(key, agent / "etc")

    def make_ailing(self, sealed):
        agent = self.dir / "ailing"
        (agent / "agent.toml").write_text('managed = true\nmesh.load_command = ["program"]\n')
        (agent / "etc/SiteList.xml").write_text(documents.ailing(sealed))
        (agent / "mesh/SiteList.xml").write_text(documents.healthy(sealed))
        (agent / "etc/sr2048pubkey.bin").write_text("key")
        (agent / "etc/.sitehlp-0123456789abcdef.tmp").touch()
        (agent / "etc/.sitelist-0123456789abcdef").mkdir()
        (agent / "etc/history").mkdir()
        (agent / "etc/history/1-20260101T000000Z-import.xml").write_text("<broken")

    def set_modes(self):
        """Sets the modes that the tool would set, whatever the umask is, and wrong ones for an ailing agent."""
        for pattern, mode in (("*/etc/history", 0o750), ("*/etc/history/*", 0o640), ("*/*/SiteList.xml", 0o640),
                              ("*/agent.toml", 0o640), ("*/etc/*.bin", 0o600)):
            for path in self.dir.glob(pattern):
                path.chmod(mode)
        (self.dir / "ailing/etc/SiteList.xml").chmod(0o666)
        (self.dir / "ailing/keystore").chmod(0o755)

    def lock_list(self, agent, mode):
        lock = os.open(self.dir / agent / "locks/SiteListLock.lock", os.O_RDWR)
        fcntl.flock(lock, mode)
        return lock

    def seal_example(self, sealed):
        path = self.dir / "in/SiteList.xml"
        text = path.read_bytes().decode()
        for number, name in enumerate(("fresh", "share", "proxy", "proxy-b"), 1):
            text = text.replace(f"@PASSWORD_{number}@", sealed[name])
        path.write_bytes(text.encode())

    def run(self, arguments, stdin="", directory=None):
        return Output(
            subprocess.run(
                [self.tool, *(a.encode() if isinstance(a, str) else a for a in arguments)],
                input=stdin.encode(),
                capture_output=True,
                cwd=directory or self.dir,
                env=environment(),
                check=False,
            )
        )

    def must(self, *arguments, stdin=""):
        output = self.run(arguments, stdin)
        if output.status != 0:
            raise RuntimeError(f"{arguments}: {output.err.decode()}")
        return output.out.decode()

    def protect(self, clear):
        return self.must("--agent-dir", "agent", "protect", stdin=clear + "\n").strip()

    def copy(self, agent):
        """A world with this agent, for a run that changes it."""
        copy = Path(tempfile.mkdtemp(dir=self.base))
        (copy / "tmp").mkdir()
        (copy / "lists").symlink_to(self.dir / "lists")
        shutil.copytree(self.unused / "in", copy / "in")
        if (self.unused / agent).exists():
            shutil.copytree(self.unused / agent, copy / agent)
        return copy

    def snapshot(self):
        """The content of each file, and None for each directory."""
        return {str(path.relative_to(self.dir)): path.read_bytes() if path.is_file() else None
                for path in self.dir.rglob("*")}

    @staticmethod
    def files(directory):
        """The content of the files that a command may change, without locks and history."""
        files = (path for path in directory.rglob("*") if path.is_file())
        return {path: path.read_bytes() for path in files if path.parent.name not in ("locks", "history")}

    def remove(self):
        self.servers.stop()
        for lock in self.locks:
            os.close(lock)
        shutil.rmtree(self.base)
