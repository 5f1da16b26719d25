"""Nothing that was acknowledged is lost: kills at random moments, a full disk, a folder that cannot be written.

KILLS=200 makes more of the kills than the few of `make test`, SEED=N repeats a run.
"""

import contextlib
import os
import random
import shutil
import signal
import subprocess
import threading
import time
import urllib.parse

import pytest
import requests

from harness import Agent, StartFailed, errors_of, wait_until
from netconf_client import Wire, config, connect, refusal

KILLS = int(os.environ.get("KILLS", 20))
SEED = int(os.environ.get("SEED", random.randrange(1 << 30)))
DATA = "/restconf/data"
INTERFACES = "http://openconfig.net/yang/interfaces"
PROTECTED = f"{DATA}/lyn-openconfig-protectedport:protectedport"


def port(number):
    return f"ethernet 1/1/{number}"


def entry_uri(container, number):
    return f"{container}/interface={urllib.parse.quote(port(number), safe='')}"


def description_uri(number):
    return entry_uri(f"{DATA}/openconfig-interfaces:interfaces", number) + "/config/description"


def described(number, text):
    """A <config> that describes a port."""
    return config(f'<interfaces xmlns="{INTERFACES}"><interface><name>{port(number)}</name><config><description>{text}'
                  "</description></config></interface></interfaces>")


# Kills


class Ledger:
    """What startup must hold, by resource: the value that was acknowledged last, or one that is under way."""

    def __init__(self):
        self._lock = threading.Lock()
        self.acknowledged, self.pending = {}, {}
        self.count = 0
        self.surprises = []

    def begin(self, resource, value):
        with self._lock:
            self.pending[resource] = value

    def end(self, *resources):
        with self._lock:
            for resource in resources:
                self.acknowledged[resource] = self.pending.pop(resource)
                self.count += 1

    def compare(self, found):
        """Checks what is there after a restart, which is where the next round begins."""
        for resource in self.acknowledged.keys() | self.pending.keys() | found.keys():
            allowed = {self.acknowledged.get(resource), self.pending.get(resource, self.acknowledged.get(resource))}
            assert found.get(resource) in allowed, f"{resource}: {found.get(resource)}, not one of {allowed}"
        self.acknowledged, self.pending = dict(found), {}


class Client(threading.Thread):
    """Edits until the server is gone. It alone changes its resources."""

    def __init__(self, agent, ledger, seed):
        super().__init__(daemon=True)
        self.agent, self.ledger, self.random = agent, ledger, random.Random(seed)
        self.is_ready = threading.Event()

    def run(self):
        try:
            self.converse()
        except (OSError, EOFError, requests.RequestException):
            pass  # killed
        except Exception as surprise:
            self.ledger.surprises.append(surprise)
        finally:
            self.is_ready.set()


class Restconf(Client):
    """Numbers in the description of a port, and an entry of the protected ports that comes and goes."""

    def __init__(self, agent, ledger, seed, number):
        super().__init__(agent, ledger, seed)
        self.number = number

    def converse(self):
        with self.agent.new_session("admin", self.agent.password) as self.session:
            self.send("GET", "/restconf")
            self.is_ready.set()
            while True:
                (self.describe if self.random.random() < 0.6 else self.protect)()

    def send(self, method, uri, body=None):
        answer = self.session.request(method, self.agent.url + uri, json=body, timeout=10,
                                      headers={"Content-Type": "application/yang-data+json"} if body else {})
        assert answer.ok, f"{method} {uri}: {answer.status_code} {answer.text}"

    def describe(self):
        resource = ("description", self.number)
        value = str(int(self.ledger.acknowledged.get(resource) or 0) + 1)
        self.ledger.begin(resource, value)
        self.send("PUT", description_uri(self.number), {"openconfig-interfaces:description": value})
        self.ledger.end(resource)

    def protect(self):
        resource, uri = ("protected", self.number), entry_uri(PROTECTED + "/interfaces", self.number)
        value = self.random.choice([v for v in (None, False, True) if v != self.ledger.acknowledged.get(resource)])
        self.ledger.begin(resource, value)
        if value is None:
            self.send("DELETE", uri)
        else:
            self.send("PUT", uri, {"lyn-openconfig-protectedport:interface": [
                {"name": port(self.number), "config": {"protectedport": value}}]})
        self.ledger.end(resource)


class Netconf(Client):
    """Edits running a few times and then copies it to startup: only what was copied counts."""

    NUMBERS = (20, 21)

    def converse(self):
        with Wire(self.agent) as self.wire:
            self.wire.hello("1.0")
            self.is_ready.set()
            last = max(int(self.ledger.acknowledged.get(("description", number)) or 0) for number in self.NUMBERS)
            while True:
                last += 1
                for number in self.NUMBERS:
                    self.ask(f"<edit-config><target><running/></target>{described(number, last)}</edit-config>")
                for number in self.NUMBERS:
                    self.ledger.begin(("description", number), str(last))
                self.ask("<copy-config><target><startup/></target><source><running/></source></copy-config>")
                self.ledger.end(*(("description", number) for number in self.NUMBERS))

    def ask(self, operation):
        reply = self.wire.ask(operation)
        assert "<ok/>" in reply, reply


def values_in(agent):
    """The resources that the clients change, as they are in running."""
    found = {}
    ports = agent.get(f"{DATA}/openconfig-interfaces:interfaces?content=config").json()
    for entry in ports["openconfig-interfaces:interfaces"]["interface"]:
        if "description" in entry.get("config", {}):
            found["description", int(entry["name"].rsplit("/", 1)[1])] = entry["config"]["description"]
    answer = agent.get(f"{PROTECTED}?content=config").json()
    for entry in answer["lyn-openconfig-protectedport:protectedport"].get("interfaces", {}).get("interface", []):
        found["protected", int(entry["name"].rsplit("/", 1)[1])] = entry["config"]["protectedport"]
    return found


def test_what_was_acknowledged_survives_kills(tmp_path):
    print(f"seed {SEED}, {KILLS} kills")
    chance, ledger = random.Random(SEED), Ledger()
    for number in range(KILLS):
        agent = Agent(state=tmp_path).start()
        try:
            # A record that was being written may be cut off; nothing else may have gone wrong.
            assert all("is incomplete" in line or "is kept in" in line for line in agent.log.splitlines()), agent.log
            ledger.compare(values_in(agent))
            clients = [Restconf(agent, ledger, chance.random(), n) for n in (1, 2, 3)]
            clients.append(Netconf(agent, ledger, chance.random()))
            for client in clients:
                client.start()
            if chance.random() < 0.9:  # else it may die while they log in
                for client in clients:
                    client.is_ready.wait(10)
            time.sleep(chance.uniform(0, 0.25))
        finally:
            agent.stop(signal.SIGKILL)
        for client in clients:
            client.join(15)
            assert not client.is_alive()
        assert not ledger.surprises
    with Agent(state=tmp_path) as agent:
        ledger.compare(values_in(agent))
    print(f"{ledger.count} acknowledged changes")
    assert ledger.count > 10 * KILLS


# Disks


@contextlib.contextmanager
def small_disk(folder, size="1m"):
    """A file system of its own of that size."""
    folder.mkdir()
    result = subprocess.run(["mount", "-t", "tmpfs", "-o", f"size={size},mode=700", "tmpfs", str(folder)],
                            capture_output=True, text=True)
    if result.returncode:
        pytest.skip(f"no file system can be mounted here: {result.stderr.strip()}")
    try:
        yield folder
    finally:
        subprocess.run(["umount", str(folder)], check=True)


def fill(folder):
    with open(folder / "filler", "wb", buffering=0) as filler, contextlib.suppress(OSError):
        for size in (65536, 512, 1):
            with contextlib.suppress(OSError):
                while filler.write(b"x" * size):
                    pass


def describe(agent, number, text):
    return agent.put(description_uri(number), {"openconfig-interfaces:description": text})


def until_refused(agent):
    """Edits until one is refused. Returns the last text that was taken and the refusal."""
    taken = None
    for number in range(500):
        answer = describe(agent, 1, f"{number} {'x' * 100}")
        if not answer.ok:
            return taken, answer
        taken = f"{number} {'x' * 100}"
    raise AssertionError("the disk is not full")


class TestFullDisk:
    def test_an_edit_that_cannot_be_written_is_refused_before_the_switch_hears_of_it(self, tmp_path):
        with small_disk(tmp_path / "state") as folder:
            agent = Agent(state=folder).start()
            try:
                assert describe(agent, 1, "first").ok
                fill(folder)
                taken, answer = until_refused(agent)
                mark = agent.last_seq()
                assert answer.status_code == 500
                (error,) = errors_of(answer)
                assert error["error-message"] == (
                    f"Startup cannot be written: {folder}/startup.log: No space left on device")
                assert not any(describe(agent, 2, "x" * 200).ok for _ in range(60))
                assert agent.journal(mark) == []
                assert wait_until(lambda: "no audit trail: " in agent.log)  # which has no space either
                assert agent.get(description_uri(1)).json() == {"openconfig-interfaces:description": taken or "first"}
                (folder / "filler").unlink()
                assert describe(agent, 2, "last").ok
            finally:
                agent.stop(signal.SIGKILL)
            with Agent(state=folder) as agent:
                assert agent.log == ""
                assert values_in(agent) == {("description", 1): taken or "first", ("description", 2): "last"}

    def test_a_copy_that_cannot_be_written_leaves_startup_as_it_is(self, tmp_path):
        with small_disk(tmp_path / "state") as folder:
            with Agent(state=folder) as agent, connect(agent) as session:
                assert describe(agent, 1, "first").ok
                session.edit_config(target="running", config=described(2, "y" * 200))
                fill(folder)
                error = refusal(lambda: session.copy_config(source="running", target="startup"))
                assert error.tag == "operation-failed" and "No space left on device" in error.message
                (folder / "filler").unlink()
                assert "y" * 200 not in str(session.get_config("startup"))
                assert describe(agent, 3, "third").ok
            with Agent(state=folder) as agent:
                assert values_in(agent) == {("description", 1): "first", ("description", 3): "third"}

    def test_a_first_start_says_so(self, tmp_path):
        with small_disk(tmp_path / "state") as folder:
            fill(folder)
            with pytest.raises(StartFailed) as failure:
                Agent(state=folder).start()
            assert failure.value.status > 0
            (line,) = failure.value.log.splitlines()
            assert str(folder) in line and "No space left on device" in line

    def test_a_later_start_serves_what_was_saved(self, tmp_path):
        with small_disk(tmp_path / "state") as folder:
            with Agent(state=folder) as agent:
                assert describe(agent, 1, "first").ok
            fill(folder)
            with Agent(state=folder) as agent:
                assert values_in(agent) == {("description", 1): "first"}


class Stranger(Agent):
    """An agentd that is not root, for whom modes of folders count."""

    def __init__(self, state):
        super().__init__(state=state)
        if os.getuid() == 0:
            if not shutil.which("setpriv"):
                pytest.skip("agentd cannot be run as somebody else here: no setpriv")
            for path in [state, *state.iterdir()]:
                os.chown(path, 65534, 65534)
            self.command = ["setpriv", "--reuid", "65534", "--regid", "65534", "--clear-groups", *self.command]


@pytest.fixture
def reachable(tmp_path_factory):
    """A folder that somebody else can get at."""
    folder = tmp_path_factory.mktemp("reachable")
    for path in (folder, *folder.parents):
        if path.stat().st_uid == os.getuid() and path.stat().st_mode & 0o777 == 0o700:
            path.chmod(0o711)
    (folder / "state").mkdir(mode=0o700)
    return folder / "state"


class TestReadOnlyFolder:
    def test_what_needs_a_new_file_is_refused_and_startup_stays(self, reachable):
        agent = Stranger(reachable).start()
        try:
            with connect(agent) as session:
                assert describe(agent, 1, "first").ok
                session.edit_config(target="running", config=described(2, "second"))
                reachable.chmod(0o500)
                error = refusal(lambda: session.copy_config(source="running", target="startup"))
                assert error.tag == "operation-failed"
                assert "Startup cannot be written: " in error.message and "Permission denied" in error.message
                assert describe(agent, 3, "third").ok  # the log is open
        finally:
            agent.stop(signal.SIGKILL)
            reachable.chmod(0o700)
        agent = Stranger(reachable).start()
        found = values_in(agent)
        assert agent.stop() == 0
        assert found == {("description", 1): "first", ("description", 3): "third"}

    def test_a_first_start_says_so(self, reachable):
        agent = Stranger(reachable)
        reachable.chmod(0o500)
        with pytest.raises(StartFailed) as failure:
            agent.start()
        reachable.chmod(0o700)
        assert failure.value.status > 0
        (line,) = failure.value.log.splitlines()
        assert str(reachable) in line and "Permission denied" in line
