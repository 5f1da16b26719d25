"""What should bring neither front end down, nor let anybody in, nor keep others waiting."""

import concurrent.futures
import contextlib
import os
import socket
import ssl
import struct
import subprocess
import time

import paramiko
import pytest
import requests

from harness import JSON, XML, errors_of, run_agentd, wait_until
from netconf_client import END, Wire, connect, jumbo, refusal, rpc

CALL = "ui_fe_qos_jumbo"
DATA = "/restconf/data"
JUMBO = f"{DATA}/lyn-openconfig-jumbo:jumbo"
CONFIG = f"{JUMBO}/config"
INTERFACES = f"{DATA}/openconfig-interfaces:interfaces"
NAMESPACE = "urn:lyn:yang:lyn-openconfig-jumbo"


def body(enabled):
    return {"lyn-openconfig-jumbo:config": {"enabled": enabled}}


def netconf_address(agent):
    host, port = agent.netconf.rsplit(":", 1)
    return host, int(port)


@pytest.fixture
def bystander(agent):
    """The agent, on which both front ends serve as ever afterwards."""
    yield agent
    check_that_it_serves(agent)


def check_that_it_serves(agent):
    began = time.monotonic()
    assert agent.get(CONFIG).status_code == 200
    with Wire(agent) as wire:
        wire.hello("1.0")
        assert "<ok/>" in wire.ask("<discard-changes/>")
    assert time.monotonic() - began < 3


def token(agent):
    return requests.auth._basic_auth_str("admin", agent.password)


def until_closed(connection, limit=5):
    """What comes until the other side ends the connection, which it has to within the limit."""
    connection.settimeout(limit)
    received = b""
    with contextlib.suppress(ConnectionError, ssl.SSLError):
        while piece := connection.recv(65536):
            received += piece
    return received


# Connections


class TestManyConnections:
    @pytest.mark.parametrize("front_end", ["restconf", "netconf"])
    def test_five_hundred_that_say_nothing(self, make_agent, front_end):
        """Who is logged in stays, and who comes later gets in."""
        agent = make_agent()
        known = agent.session()
        assert agent.get(CONFIG).status_code == 200
        address = agent.host_port if front_end == "restconf" else netconf_address(agent)
        with Wire(agent) as wire, contextlib.ExitStack() as silent:
            wire.hello("1.0")
            for _ in range(500):
                silent.enter_context(socket.create_connection(address, timeout=10))
            assert known.get(agent.url + CONFIG, timeout=5).status_code == 200
            assert "<ok/>" in wire.ask("<discard-changes/>")
            check_that_it_serves(agent)
            with agent.new_session("admin", agent.password) as newcomer:
                assert newcomer.get(agent.url + CONFIG, timeout=5).status_code == 200

    def test_five_hundred_that_are_logged_in(self, make_agent):
        """As many as there is room for are served; the others are turned away at once."""
        agent = make_agent()
        request = f"GET {CONFIG} HTTP/1.1\r\nHost: x\r\nAuthorization: {token(agent)}\r\n\r\n".encode()
        served = 0
        with Wire(agent) as wire, contextlib.ExitStack() as open_ones:
            wire.hello("1.0")
            began = time.monotonic()
            for _ in range(500):
                with contextlib.suppress(OSError):
                    connection = open_ones.enter_context(agent.raw())
                    connection.sendall(request)
                    served += connection.recv(4096).startswith(b"HTTP/1.1 200")
            assert served == 400
            assert time.monotonic() - began < 15
            assert "<ok/>" in wire.ask("<discard-changes/>")
            assert len(os.listdir(f"/proc/{agent.process.pid}/task")) < 12
        assert wait_until(lambda: agent.get(CONFIG).status_code == 200)

    def test_slow_senders_are_cut_off(self, bystander):
        """A byte now and then is not enough to keep a connection."""
        agent = bystander
        starts = {
            "handshake": (agent.host_port, b"", b"\x16\x03\x01\x02\x00\x01\x00\x01\xfc\x03\x03" + b"\0" * 400),
            "banner": (netconf_address(agent), b"", b"SSH-2.0-" + b"x" * 200),
            "key exchange": (netconf_address(agent), b"SSH-2.0-slow\r\n", b"\0\0\x7f\xf0\4" + b"\0" * 400),
        }
        slow = {}
        for name, (address, first, rest) in starts.items():
            connection = socket.create_connection(address)
            connection.sendall(first)
            slow[name] = (connection, rest)
        header = agent.raw()
        header.sendall(b"GET /restconf HTTP/1.1\r\n")
        slow["header"] = (header, b"X-Slow: " + b"x" * 400)
        began, ended = time.monotonic(), {}
        while len(ended) < len(slow) and time.monotonic() - began < 16:
            for name, (connection, rest) in slow.items():
                if name not in ended and not dribble(connection, rest, int((time.monotonic() - began) * 4)):
                    ended[name] = time.monotonic() - began
            assert agent.get(CONFIG).status_code == 200
            time.sleep(0.25)
        for connection, _ in slow.values():
            connection.close()
        assert set(ended) == set(slow), ended
        assert min(ended.values()) > 5, ended


def dribble(connection, data, at):
    """Sends a byte. False: the other side has ended the connection."""
    try:
        connection.sendall(data[at:at + 1])
        connection.settimeout(0.01)
        while connection.recv(4096):
            pass
        return False
    except (socket.timeout, ssl.SSLWantReadError):
        return True
    except OSError:
        return False


# Bytes that are no protocol

BAD_TLS = {
    "plain_http": b"GET /restconf HTTP/1.1\r\nHost: x\r\n\r\n",
    "old_hello": bytes.fromhex("802e0100020015000000100100800200800600400700c0") + b"\0" * 25,
    "longest_record": b"\x16\x03\x01\xff\xff" + b"\0" * 65535,
    "empty_records": b"\x16\x03\x01\x00\x00" * 1000,
    "alerts": b"\x15\x03\x01\x00\x02\x01\x00" * 100,
    "data_first": b"\x17\x03\x03\x00\x20" + b"x" * 32,
    "huge_hello": b"\x16\x03\x01\x40\x00\x01\xff\xff\xff" + b"\0" * 16380,
    "hello_with_lengths_beyond_it": b"\x16\x03\x01\x00\x2f\x01\x00\x00\x2b\x03\x03" + b"\xff" * 41,
    "noise": bytes((i * 197 + 31) % 256 for i in range(20000)),
}

BANNER = b"SSH-2.0-client\r\n"


def packet(payload, length=None):
    padding = 8 - (len(payload) + 5) % 8 + 4
    return struct.pack(">IB", len(payload) + padding + 1 if length is None else length, padding) + payload + b"\0" * padding


BAD_SSH = {
    "http": b"GET / HTTP/1.1\r\nHost: x\r\n\r\n",
    "first_version": b"SSH-1.5-client\r\n",
    "long_banner": b"SSH-2.0-" + b"x" * 100000,
    "many_lines": b"hello\r\n" * 20000,
    "zeros_in_banner": b"SSH-2.0-\0\0\0\r\n" + b"\0" * 1000,
    "longest_packet": BANNER + packet(b"\x14" + b"\0" * 100, 0xffffffff) + b"\0" * 100000,
    "empty_packet": BANNER + packet(b"", 0) + b"\0" * 1000,
    "no_padding": BANNER + struct.pack(">IB", 2, 0) + b"\x14" + b"\0" * 1000,
    "padding_beyond_the_packet": BANNER + struct.pack(">IB", 12, 255) + b"\x14" + b"\0" * 1000,
    "lists_beyond_the_packet": BANNER + packet(b"\x14" + b"\0" * 16 + b"\xff\xff\xff\xff" * 10) + b"\0" * 1000,
    "unknown_algorithms": BANNER + packet(b"\x14" + b"\0" * 16 + (struct.pack(">I", 4) + b"none") * 10 + b"\0" * 5),
    "login_before_keys": BANNER + packet(b"\x32" + struct.pack(">I", 5) + b"admin") * 10,
    "noise": BANNER + bytes((i * 197 + 31) % 256 for i in range(20000)),
}


class TestOtherProtocols:
    @pytest.mark.parametrize("name", BAD_TLS)
    def test_no_tls(self, bystander, name):
        assert b"HTTP/1.1 200" not in self.answer(bystander.host_port, BAD_TLS[name])

    @pytest.mark.parametrize("name", BAD_SSH)
    def test_no_ssh(self, bystander, name):
        self.answer(netconf_address(bystander), BAD_SSH[name])

    def answer(self, address, data):
        with socket.create_connection(address, timeout=5) as connection:
            with contextlib.suppress(OSError):
                connection.sendall(data)
                connection.shutdown(socket.SHUT_WR)
            return until_closed(connection)


def head(agent, *lines, method="PUT", path=CONFIG, with_login=True):
    login = [f"Authorization: {token(agent)}"] if with_login else []
    return "\r\n".join([f"{method} {path} HTTP/1.1", "Host: x", *login, *lines, "", ""]).encode()


GOOD = b'{"lyn-openconfig-jumbo:config": {"enabled": true}}'


class TestRequests:
    @pytest.mark.parametrize("lines, after, statuses", [
        ([f"Content-Length: {10 ** 20}"], b"x", [400, 413]),
        (["Content-Length: 1000000000"], b"x", [413]),
        (["Content-Length: -1"], b"x", [400]),
        (["Content-Length: 5", "Content-Length: 6"], b"xxxxxx", [400]),
        (["Content-Length: 4", "Transfer-Encoding: chunked"], b"0\r\n\r\nGET / HTTP/1.1\r\n\r\n", [400]),
        (["Transfer-Encoding: gzip"], b"x", [400, 415, 501]),
        (["Transfer-Encoding: chunked"], b"fffffffffffffffff\r\nx", [400, 413]),
        (["Transfer-Encoding: chunked"], b"zz\r\nx\r\n", [400]),
        (["Transfer-Encoding: chunked"], b"100000\r\n" + b"x" * 0x100000 + b"\r\n" + b"400000\r\n" + b"x" * 0x400000, [413]),
        (["X-A: b"] * 3000, b"", [431]),
        (["X-" + "a" * 20000 + ": b"], b"", [431]),
        ([" folded: value"], b"", [400]),
        (["Bad Name: value"], b"", [400]),
        (["X: \x00"], b"", [400]),
    ], ids=["beyond_numbers", "long", "negative", "two_lengths", "length_and_chunks", "unknown_coding", "huge_chunk", "bad_chunk",
            "many_chunks", "many_headers", "long_name", "folded", "bad_name", "zero"])
    def test_lengths_and_headers(self, bystander, lines, after, statuses):
        with bystander.raw() as connection:
            with contextlib.suppress(OSError):
                connection.sendall(head(bystander, f"Content-Type: {JSON}", *lines) + after)
            connection.settimeout(5)
            answer = connection.recv(65536)
            assert int(answer.split()[1]) in statuses, answer

    @pytest.mark.parametrize("path, status", [
        ("/restconf/data/" + "a" * 15000, 400), ("/restconf/data/toy:" + "a/" * 7000, 400), ("/" * 15000, 404),
        ("/restconf/data/openconfig-interfaces:interfaces/interface=" + "%41" * 5000, 404),
        (CONFIG + "?" + "&".join(["depth=1"] * 1500), 400),
        (CONFIG + "?fields=" + "(" * 14000, 400),
        (CONFIG + "?fields=" + "a/" * 7000 + "a", 400),
        (CONFIG + "?fields=" + "a(" * 5000 + "a" + ")" * 5000, 400),
    ], ids=["name", "steps", "slashes", "key", "parameters", "brackets", "fields", "nested_fields"])
    def test_long_paths(self, bystander, path, status):
        began = time.monotonic()
        assert bystander.get(path).status_code == status
        assert time.monotonic() - began < 1

    def test_a_stranger_cannot_send_a_body(self, bystander):
        """The refusal comes before the body is read."""
        with bystander.raw() as connection:
            connection.sendall(head(bystander, f"Content-Type: {JSON}", "Content-Length: 4000000", with_login=False))
            assert connection.recv(65536).startswith(b"HTTP/1.1 401")


def members(count):
    return "{" + ",".join(f'"m{i}":1' for i in range(count)) + "}"


ENTITIES = ('<!DOCTYPE a [<!ENTITY x "xxxxxxxxxx">' +
            "".join(f'<!ENTITY x{i} "{"&x;" * 8}">' for i in range(20)) + "]>")

BOMBS = {
    "json_deep_objects": ('{"a":' * 300000, JSON),
    "json_deep_arrays": ("[" * 3000000, JSON),
    "json_wide_object": (members(200000), JSON),
    "json_wide_array": ('{"lyn-openconfig-jumbo:config":[' + "{}," * 1000000 + "{}]}", JSON),
    "json_long_number": ('{"lyn-openconfig-jumbo:config":{"enabled":' + "1" * 3000000 + "}}", JSON),
    "json_long_exponent": ('{"lyn-openconfig-jumbo:config":{"enabled":1e' + "9" * 300000 + "}}", JSON),
    "json_long_name": ('{"' + "a" * 3000000 + '":1}', JSON),
    "json_escapes": ('{"lyn-openconfig-jumbo:config":{"enabled":"' + "\\u0000" * 500000 + '"}}', JSON),
    "json_same_entries": ('{"lyn-openconfig-jumbo:config":{"enabled":true' + ',"enabled":true' * 200000 + "}}", JSON),
    "xml_entities": (ENTITIES + f'<config xmlns="{NAMESPACE}"><enabled>&x19;</enabled></config>', XML),
    "xml_external_entity": (f'<!DOCTYPE a [<!ENTITY x SYSTEM "file:///etc/passwd">]><config xmlns="{NAMESPACE}">'
                            "<enabled>&x;</enabled></config>", XML),
    "xml_deep": ("<a>" * 300000, XML),
    "xml_wide": (f'<config xmlns="{NAMESPACE}">' + "<a/>" * 500000 + "</config>", XML),
    "xml_attributes": (f'<config xmlns="{NAMESPACE}" ' + " ".join(f'a{i}="1"' for i in range(100000)) + "/>", XML),
    "xml_namespaces": ("".join(f'<a xmlns:n{i}="u{i}">' for i in range(60)) + f'<config xmlns="{NAMESPACE}" ' +
                       " ".join(f'xmlns:n{i}="u"' for i in range(50000)) + "/>" + "</a>" * 60, XML),
    "xml_namespaces_in_scope": (f'<config xmlns="{NAMESPACE}" ' + " ".join(f'xmlns:n{i}="u"' for i in range(20000)) + ">" +
                                "<enabled>true</enabled>" * 100000 + "</config>", XML),
    "xml_same_leaves": (f'<config xmlns="{NAMESPACE}">' + "<enabled>true</enabled>" * 120000 + "</config>", XML),
    "xml_comments": ("<!-- -->" * 400000, XML),
}


class TestBombs:
    @pytest.mark.parametrize("name", BOMBS)
    def test_a_body_that_grows(self, bystander, name):
        text, encoding = BOMBS[name]
        mark, began = bystander.last_seq(), time.monotonic()
        answer = bystander.put(CONFIG, text, Content_Type=encoding, Accept=JSON)
        assert answer.status_code == 400, answer.text
        assert time.monotonic() - began < 2
        assert len(answer.content) < 10000
        assert errors_of(answer) and bystander.journal(mark) == []

    @pytest.mark.parametrize("encoding", [JSON, XML])
    def test_a_list_of_many_entries_that_are_one(self, bystander, encoding):
        body = ('{"openconfig-interfaces:interfaces":{"interface":[' + ",".join(['{"name":"ethernet 1/1/1"}'] * 100000) + "]}}"
                if encoding == JSON else '<interfaces xmlns="http://openconfig.net/yang/interfaces">' +
                "<interface><name>ethernet 1/1/1</name></interface>" * 60000 + "</interfaces>")
        began = time.monotonic()
        answer = bystander.patch(INTERFACES, body, Content_Type=encoding, Accept=JSON)
        assert (answer.status_code, errors_of(answer)[0]["error-path"]) == (
            400, "/openconfig-interfaces:interfaces/interface[name='ethernet 1/1/1']")
        assert time.monotonic() - began < 2

    @pytest.mark.parametrize("expression", [
        "//*[count(//*[count(//*[count(//*)>0])>0])>0]",
        "//*[//*[//*[//*[. = 'x']]]]",
        "//*[. = 'x']",
        "/" + "/*" * 4000,
        "(" * 3000 + "1" + ")" * 3000,
        "1" + "+1" * 3500,
        "//*[re-match(., '(a*)*(a*)*(a*)*b')]",
        "//*" + "|//*" * 1000,
    ], ids=["counts", "nested", "everything", "steps", "brackets", "sums", "pattern", "unions"])
    def test_an_expression_that_takes_forever(self, bystander, expression):
        """It may be refused or not, and it may take a moment; nobody else has to wait for it."""
        with Wire(bystander) as wire:
            wire.hello("1.0")
            wire.send(rpc(f'<get-config><source><running/></source><filter type="xpath" select="{expression}"/>'
                          "</get-config>") + END)
            time.sleep(0.1)
            began = time.monotonic()
            assert bystander.get(CONFIG).status_code == 200
            assert time.monotonic() - began < 1
            wire.channel.settimeout(10)
            assert b"message-id" in wire.until(END)


# Names that are paths

OUTSIDE = ["../users", "../../etc/passwd", "/etc/passwd", "..%2fusers", "lyn-openconfig-jumbo/../../users", "a\\..\\b", ".", "..",
           "", "*", "lyn-openconfig-jumbo.yang", "lyn-openconfig-jumbo@2000-01-01", "%s%n", "x" * 5000]


class TestNames:
    def test_schemas(self, bystander):
        asked = [(name, version) for name in OUTSIDE for version in ("", "../..", "2018-01-01/../..")]
        asked += [("lyn-openconfig-jumbo", "../../users"), ("lyn-openconfig-jumbo", "2000-01-01")]
        with Wire(bystander) as wire:
            wire.hello("1.0")
            for name, version in asked:
                reply = wire.ask(f'<get-schema xmlns="urn:ietf:params:xml:ns:yang:ietf-netconf-monitoring"><identifier>{name}'
                                 f"</identifier><version>{version}</version></get-schema>")
                assert "<error-tag>invalid-value</error-tag>" in reply, (name, version, reply)

    @pytest.mark.parametrize("name", ["../users", "..", "%2e%2e/users", "%2e%2e%2fusers", "..%00:x", "/etc/passwd:x",
                                      "..%5cusers:x"])
    def test_modules_in_paths(self, bystander, name):
        for path in (f"{DATA}/{name}", f"/restconf/operations/{name}", f"/{name}", f"/restconf/{name}"):
            answer = bystander.get(path)
            assert answer.status_code in (400, 404), path
            assert errors_of(answer)

    @pytest.mark.parametrize("name", ["../eve", "a/b", "..", ".", "", "a b", "a\nb", "a:b", "x" * 1000, "é"])
    def test_names_of_users(self, bystander, name):
        before = sorted(os.listdir(bystander.state))
        status, _, errors = run_agentd("user", "add", name, "--state", bystander.state, stdin="a long secret\n")
        assert status != 0 and len(errors.splitlines()) == 1
        assert sorted(os.listdir(bystander.state)) == before and not (bystander.state.parent / "eve").exists()

    def test_keys_elsewhere_let_nobody_in(self, make_agent, tmp_path):
        agent = make_agent()
        subprocess.run(["ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f", tmp_path / "key"], check=True)
        (agent.state / "keys").mkdir()
        for place in (agent.state / "admin.pub", agent.state / "keys" / "ghost.pub"):
            place.write_text((tmp_path / "key.pub").read_text())
        key = paramiko.Ed25519Key.from_private_key_file(str(tmp_path / "key"))
        for name in ("../admin", "keys/../../admin", "ghost", "admin\0", "admin"):
            with contextlib.closing(paramiko.Transport(socket.create_connection(netconf_address(agent), 10))) as transport:
                transport.start_client(timeout=10)
                transport.auth_timeout = 2
                with pytest.raises((paramiko.SSHException, EOFError)):
                    transport.auth_publickey(name, key)
                assert not transport.is_authenticated()
        check_that_it_serves(agent)


# A daemon that takes its time


@contextlib.contextmanager
def slow_switch(agent, milliseconds):
    """The next edit of jumbo frames is under way and takes that long."""
    agent.switch("fault", "clear")
    assert agent.put(CONFIG, body(False)).ok
    agent.switch("fault", "add", CALL, "delay", "--ms", milliseconds, "--count", 1)
    with concurrent.futures.ThreadPoolExecutor(1) as pool:
        edit = pool.submit(agent.put, CONFIG, body(True))
        time.sleep(0.3)
        assert not edit.done()
        yield edit


class TestSlowSwitch:
    def test_what_asks_it_nothing_is_answered(self, make_agent):
        agent = make_agent()
        asked = [
            ("GET", CONFIG, None, 200), ("GET", f"{JUMBO}?content=config", None, 200),
            ("GET", f"{DATA}?content=config", None, 200),
            ("HEAD", CONFIG, None, 200), ("OPTIONS", CONFIG, None, 200), ("GET", "/restconf", None, 200),
            ("GET", f"{DATA}/none:none", None, 400), ("DELETE", DATA, None, 405), ("PUT", CONFIG, "", 400),
            ("PUT", CONFIG, "[" * 100, 400),
            ("PUT", CONFIG, '{"lyn-openconfig-jumbo:config":', 400), ("PATCH", CONFIG, "{]}", 400), ("PUT", f"{CONFIG}?depth=1", body(True), 400),
            ("PUT", f"{JUMBO}/operation-state", body(True), 405), ("GET", "/restconf/none", None, 404),
        ]
        with connect(agent) as session, slow_switch(agent, 4000) as edit:
            began = time.monotonic()
            for method, path, content, status in asked:
                assert agent.ask(method, path, content).status_code == status, (method, path)
            with agent.new_session("admin", agent.password) as newcomer:
                assert newcomer.get(agent.url + CONFIG).json() == body(False)
            with agent.new_session("admin", "wrong") as stranger:
                assert stranger.get(agent.url + CONFIG).status_code == 401
            assert "false</enabled>" in str(session.get_config("running"))
            assert "module lyn-openconfig-jumbo" in str(session.get_schema("lyn-openconfig-jumbo"))
            assert refusal(lambda: session.kill_session("4711")).tag == "invalid-value"
            with Wire(agent) as wire:
                wire.hello("1.0")
                assert "operation-not-supported" in wire.ask("<explode/>")
                assert "unknown-namespace" in wire.ask("<explode xmlns='urn:x'/>")
            assert time.monotonic() - began < 3 and not edit.done()
            assert edit.result().status_code == 204
        assert agent.get(CONFIG).json() == body(True)

    def test_edits_wait_in_a_line_that_ends(self, make_agent):
        """Those who find it full are told so at once; all others are carried out in turn."""
        agent = make_agent()

        def put(number):
            with agent.new_session("admin", agent.password) as session:
                return session.put(agent.url + CONFIG, json=body(number % 2 == 0), timeout=20, headers={"Content-Type": JSON})

        with connect(agent) as session, concurrent.futures.ThreadPoolExecutor(100) as pool:
            with slow_switch(agent, 4000) as edit:
                puts = [pool.submit(put, number) for number in range(100)]
                refused = wait_until(lambda: len([one for one in puts if one.done()]) >= 36 and
                                     [one.result() for one in puts if one.done()], 3.5)
                assert refused and not edit.done()
                for answer in refused:
                    assert answer.status_code == 409
                    (error,) = errors_of(answer)
                    assert (error["error-tag"], error["error-message"]) == (
                        "resource-denied", "too many requests wait for the switch")
                full = refusal(lambda: session.edit_config(target="running", config=jumbo(True)))
                assert (full.tag, full.message) == ("resource-denied", "too many requests wait for the switch")
                assert agent.get(CONFIG).json() == body(False)
                assert not edit.done()
            statuses = [one.result().status_code for one in puts]
            assert statuses.count(204) == 64 and statuses.count(409) == 36
            session.edit_config(target="running", config=jumbo(True))
        assert agent.get(CONFIG).json() == body(True)


# Orders hidden in a body


@pytest.mark.parametrize("content", [
    '{"@enabled":{"ietf-netconf:operation":"delete"}}',
    '{"lyn-openconfig-jumbo:config":{"@enabled":{"ietf-netconf:operation":"delete"}}}',
    '{"lyn-openconfig-jumbo:config":{"@enabled":{"ietf-netconf:operation":"delete"},"enabled":[7]}}',
    '{"lyn-openconfig-jumbo:config":{"enabled":true,"@enabled":{"ietf-netconf:operation":"delete"}}}',
    '{"@plain":{"ietf-netconf:operation":"delete"};{"x":{"plain":"l"}}',
])
def test_metadata_in_a_body_is_refused(make_agent, content):
    agent = make_agent()
    for method in ("PUT", "PATCH", "POST"):
        for path in (CONFIG, JUMBO, DATA):
            assert 400 <= agent.ask(method, path, content).status_code < 500, (method, path)
    assert "enabled" not in agent.get(CONFIG).text
