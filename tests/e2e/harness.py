"""Starts agentd on free ports with a state folder of its own, talks to it, and ends it.

    with Agent() as agent:
        agent.patch("/restconf/data/lyn-openconfig-jumbo:jumbo/config", {"lyn-openconfig-jumbo:config": {"enabled": True}})
        agent.journal()

The programs are those of the folder in the environment variable BUILD, build/ of the checkout by default.
"""

import contextlib
import functools
import json
import os
import pathlib
import re
import shutil
import signal
import socket
import ssl
import subprocess
import tempfile
import threading
import time

import requests

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUILD = pathlib.Path(os.environ.get("BUILD", ROOT / "build")).resolve()
AGENTD = BUILD / "bin" / "agentd"
SWITCHCTL = BUILD / "bin" / "switchctl"
SWITCHSIM = BUILD / "bin" / "switchsim"

JSON = "application/yang-data+json"
XML = "application/yang-data+xml"

START_LIMIT = 20  # seconds; far above what a start takes, also under a sanitizer
STOP_LIMIT = 10


class StartFailed(Exception):
    """agentd ended before it served: its exit status and what it wrote."""

    def __init__(self, status, output, log):
        super().__init__(f"status {status}: {log}")
        self.status, self.output, self.log = status, output, log


class Agent:
    """One agentd. Options are given as keywords: log=3, device_timeout=500, platform=4. Its switch is the one inside,
    or the one at the socket that the option device names."""

    def __init__(self, state=None, args=(), **options):
        self._own = None if state else tempfile.mkdtemp(prefix="agentd-e2e-")
        self.state = pathlib.Path(state or self._own)
        options = {"restconf": "127.0.0.1:0", "netconf": "127.0.0.1:0", **options}
        self.command = [str(AGENTD), "--state", str(self.state), *args]
        for name, value in options.items():
            self.command += ["--" + name.replace("_", "-"), str(value)]
        device = str(options.get("device", ""))
        self.switch_at = ("--socket", device[5:]) if device.startswith("unix:") else ("--state", self.state)
        self.process = None
        self.ready = None
        self.log = ""
        self._sessions = {}

    # Life

    def start(self):
        """Returns when the ready line is there. Raises StartFailed."""
        self.process = subprocess.Popen(self.command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                        stderr=subprocess.PIPE, text=True, errors="replace")
        self._reader = threading.Thread(target=self._collect, daemon=True)
        self._reader.start()
        timer = threading.Timer(START_LIMIT, self.process.kill)
        timer.start()
        self.ready = self.process.stdout.readline()
        timer.cancel()
        match = re.fullmatch(r"ready restconf=(https://\S+) netconf=(\S+)\n", self.ready)
        if not match:
            output = self.ready + self.process.stdout.read()
            status = self.process.wait(STOP_LIMIT)
            self._reader.join(STOP_LIMIT)
            raise StartFailed(status, output, self.log)
        self.url, self.netconf = match.groups()
        return self

    def stop(self, number=signal.SIGTERM):
        """Ends it if it still runs. Returns its exit status."""
        if self.process is None:
            return None
        for session in self._sessions.values():
            session.close()
        self._sessions = {}
        if self.process.poll() is None:
            self.process.send_signal(number)
        try:
            status = self.process.wait(STOP_LIMIT)
        except subprocess.TimeoutExpired:
            self.process.kill()
            status = self.process.wait()
        self._reader.join(STOP_LIMIT)
        self.process.stdout.close()
        assert "Sanitizer" not in self.log and "runtime error:" not in self.log, self.log
        return status

    def __enter__(self):
        return self.start()

    def __exit__(self, *_):
        status = self.stop()
        self.remove()
        assert status == 0

    def remove(self):
        if self._own:
            shutil.rmtree(self._own, ignore_errors=True)

    def _collect(self):
        for line in self.process.stderr:
            self.log += line
        self.process.stderr.close()

    # Requests

    @property
    def password(self):
        return (self.state / "admin-password").read_text().strip()

    @property
    def host_port(self):
        host, port = self.url.removeprefix("https://").rsplit(":", 1)
        return host.strip("[]"), int(port)

    def session(self):
        """A keep-alive connection of this thread, logged in as admin and checking the certificate."""
        key = threading.get_ident()
        if key not in self._sessions:
            self._sessions[key] = self.new_session("admin", self.password)
        return self._sessions[key]

    def new_session(self, user, password):
        session = requests.Session()
        session.trust_env = False
        session.verify = str(self.state / "tls-cert.pem")
        session.auth = (user, password) if user else None
        session.headers.clear()
        return session

    def ask(self, method, path, body=None, **headers):
        """A request with the path as it stands. A body that is no text is sent as JSON; header names are
        given with "_" for "-"."""
        headers = {name.replace("_", "-"): value for name, value in headers.items()}
        if body is not None and not isinstance(body, (str, bytes)):
            body = json.dumps(body)
        if isinstance(body, str):
            body = body.encode()
        if body is not None:
            headers.setdefault("Content-Type", JSON)
        request = self.session().prepare_request(requests.Request(method, self.url, data=body, headers=headers))
        request.url = self.url + path  # as it stands: no normalisation of what is tested
        if headers.get("Content-Type") == "":
            del request.headers["Content-Type"]
        return self.session().send(request, timeout=30)

    get = functools.partialmethod(ask, "GET")
    put = functools.partialmethod(ask, "PUT")
    post = functools.partialmethod(ask, "POST")
    patch = functools.partialmethod(ask, "PATCH")
    delete = functools.partialmethod(ask, "DELETE")

    def raw(self):
        """A TLS connection for bytes of one's own."""
        context = ssl.create_default_context(cafile=str(self.state / "tls-cert.pem"))
        connection = socket.create_connection(self.host_port, timeout=30)
        connection.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        return context.wrap_socket(connection, server_hostname=self.host_port[0])

    # The switch

    def switch(self, *words):
        """Runs switchctl on this agentd's switch. Returns what it prints."""
        return switchctl(*self.switch_at, *words)

    def show(self, word):
        return json.loads(self.switch("show", word))

    def journal(self, since=0):
        """The journal's entries behind the given number."""
        text = self.switch("journal", "--json", "--since", since)
        return [json.loads(line) for line in text.splitlines()]

    @contextlib.contextmanager
    def sending(self, *expected):
        """What is done inside sends exactly these requests, each a call with its fields."""
        since = self.last_seq()
        yield
        assert [(entry["call"], entry["request"]) for entry in self.journal(since)] == list(expected)

    def last_seq(self):
        return max((entry["seq"] for entry in self.journal()), default=0)

    def audit(self):
        return (self.state / "audit.log").read_text().splitlines()

    def audited(self, *words, seconds=5):
        """The last line of the audit trail with all these words, which may be on its way."""
        return _last_line(self.audit, words, seconds)

    def logged(self, *words, seconds=5):
        """The last line of the log with all these words, which may be on its way."""
        return _last_line(lambda: self.log.splitlines(), words, seconds)


def _last_line(lines, words, seconds):
    deadline = time.monotonic() + seconds
    while True:
        found = [line for line in lines() if all(word in line for word in words)]
        if found:
            return found[-1]
        assert time.monotonic() < deadline, f"no line with {words}"
        time.sleep(0.02)


def switchctl(*words):
    """Runs switchctl, which has to succeed. Returns what it prints."""
    result = subprocess.run([str(SWITCHCTL), *map(str, words)], capture_output=True, text=True, timeout=30)
    assert result.returncode == 0, result.stderr
    return result.stdout


@contextlib.contextmanager
def running_switch(path):
    """A switchsim of its own on that socket."""
    process = subprocess.Popen([str(SWITCHSIM), "--socket", str(path)], stdout=subprocess.PIPE, text=True)
    try:
        assert process.stdout.readline().startswith("ready")
        yield process
    finally:
        process.terminate()
        process.wait(STOP_LIMIT)
        process.stdout.close()


@contextlib.contextmanager
def beside_a_switch(**options):
    """An agent with a switchsim of its own beside it; agent.switchsim is its process."""
    folder = pathlib.Path(tempfile.mkdtemp(prefix="sw-"))  # a socket's path is short; the folders of pytest are not
    try:
        with running_switch(folder / "s") as process:
            switchctl("--socket", folder / "s", "set", "platform-type", options.pop("platform", 1))
            with Agent(device=f"unix:{folder}/s", **options) as agent:
                agent.switchsim = process
                yield agent
    finally:
        shutil.rmtree(folder, ignore_errors=True)


def run_agentd(*args, stdin=""):
    """agentd as a command that ends by itself: status, standard output, standard error."""
    result = subprocess.run([str(AGENTD), *map(str, args)], input=stdin, capture_output=True, text=True, timeout=30)
    return result.returncode, result.stdout, result.stderr


def errors_of(response):
    """The entries of a JSON error document, whose form is checked on the way."""
    assert response.headers["Content-Type"] == JSON, response.text
    document = response.json()
    assert list(document) == ["ietf-restconf:errors"]
    entries = document["ietf-restconf:errors"]["error"]
    for entry in entries:
        assert {"error-type", "error-tag"} <= set(entry) <= {
            "error-type", "error-tag", "error-app-tag", "error-path", "error-message"}
    return entries


def refused(answer, status, app_tag, message=None):
    """Checks the one error of a refusal."""
    assert answer.status_code == status, answer.text
    (error,) = errors_of(answer)
    assert error.get("error-app-tag") == str(app_tag)
    assert message in (None, error["error-message"])


def wait_until(condition, limit=10.0):
    """Waits for the condition, with a limit. Returns its last value."""
    end = time.monotonic() + limit
    while not (value := condition()) and time.monotonic() < end:
        time.sleep(0.01)
    return value
