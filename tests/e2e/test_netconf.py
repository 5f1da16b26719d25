"""NETCONF with the clients that people use, and with what nobody should send."""

import concurrent.futures
import contextlib
import os
import socket
import time

import paramiko
import pytest
from lxml import etree
from ncclient.transport.errors import AuthenticationError, SSHError

from harness import run_agentd, wait_until
from netconf_client import (BASE, END, JUMBO, Wire, chunked, config, connect, jumbo, refusal, rpc, session_id, texts)

CALL = "ui_fe_qos_jumbo"
INTERFACES = "http://openconfig.net/yang/interfaces"


@pytest.fixture
def nc(agent):
    """A session on the module's agent: jumbo frames off, candidate and startup as running, no faults."""
    agent.switch("fault", "clear")
    with connect(agent) as session:
        session.discard_changes()
        session.edit_config(target="running", config=jumbo(False))
        session.copy_config(source="running", target="startup")
        agent.mark = agent.last_seq()
        yield session


def sent(agent):
    """The requests since the session began."""
    return [entry["request"] for entry in agent.journal(agent.mark) if entry["call"] == CALL]


class TestCapabilities:
    def test_hello(self, nc):
        for name in ("candidate", "startup", "writable-running", "rollback-on-error", "validate:1.1", "xpath",
                     "confirmed-commit:1.1"):
            assert any(f"capability:{name}" in capability for capability in nc.server_capabilities), name
        assert ":base:1.1" in nc.server_capabilities and ":base" in nc.server_capabilities
        (defaults,) = [c for c in nc.server_capabilities if "with-defaults:1.0" in c]
        assert "basic-mode=explicit" in defaults and "also-supported=report-all,report-all-tagged,trim" in defaults

    def test_content_id_is_that_of_the_library(self, nc):
        (library,) = [c for c in nc.server_capabilities if "yang-library:1.1" in c]
        shown = nc.get(("subtree", '<yang-library xmlns="urn:ietf:params:xml:ns:yang:ietf-yang-library"><content-id/>'
                                   "</yang-library>"))
        assert library.endswith("content-id=" + texts(shown, "content-id")[0])

    def test_every_module_of_the_library_can_be_fetched(self, nc):
        shown = nc.get(("subtree", '<netconf-state xmlns="urn:ietf:params:xml:ns:yang:ietf-netconf-monitoring"><schemas>'
                                   "<schema><identifier/><version/></schema></schemas></netconf-state>"))
        names = list(zip(texts(shown, "identifier"), texts(shown, "version")))
        assert "lyn-openconfig-jumbo" in dict(names)
        for name, version in names[:10] + names[-10:]:
            assert f"module {name}" in str(nc.get_schema(name, version or None)), name
        assert refusal(lambda: nc.get_schema("../users")).tag == "invalid-value"

    def test_sessions_and_locks_are_shown(self, agent, nc):
        with nc.locked("startup"):
            shown = nc.get(("subtree", '<netconf-state xmlns="urn:ietf:params:xml:ns:yang:ietf-netconf-monitoring">'
                                       "<datastores/><sessions/></netconf-state>"))
        assert texts(shown, "locked-by-session") == [nc.session_id]
        assert nc.session_id in texts(shown, "session-id") and "admin" in texts(shown, "username")


def operation(text):
    """An operation for dispatch(), in the namespace of the base operations."""
    return etree.fromstring(text.replace(">", f' xmlns="{BASE}">', 1))


class TestReading:
    def names(self, reply):
        return [text for text in texts(reply, "name") if text.startswith("ethernet")]

    def test_subtree(self, nc):
        two = (f'<interfaces xmlns="{INTERFACES}"><interface><name>ethernet 1/1/2</name></interface>'
               "<interface><name>ethernet 1/1/5</name><config><name/></config></interface></interfaces>")
        assert self.names(nc.get_config("running", ("subtree", two))) == ["ethernet 1/1/2"] * 2 + ["ethernet 1/1/5"] * 2

    def test_xpath(self, nc):
        expression = "/i:interfaces/i:interface[i:name='ethernet 1/1/3']/i:config/i:type"
        filter_ = f"<filter type='xpath' xmlns:i='{INTERFACES}' select=\"{expression}\"/>"
        reply = nc.dispatch(operation(f"<get-config><source><running/></source>{filter_}</get-config>"))
        assert self.names(reply) == ["ethernet 1/1/3"]
        assert len(texts(reply, "type")) == 1

    def test_state_is_asked_for_only_where_it_is_wanted(self, agent, nc):
        nc.get_config("running")
        nc.get(("subtree", f'<jumbo xmlns="{JUMBO}"><config/></jumbo>'))
        assert sent(agent) == []
        reply = nc.get(("subtree", f'<jumbo xmlns="{JUMBO}"><operation-state/></jumbo>'))
        assert texts(reply, "enabled") == ["false"]
        assert [request["opcode"] for request in sent(agent)] == [10]

    def test_state_that_the_switch_does_not_give(self, agent, nc):
        agent.switch("fault", "add", CALL, "refuse", "--count", 1)
        error = refusal(lambda: nc.get(("subtree", f'<jumbo xmlns="{JUMBO}"><operation-state/></jumbo>')))
        assert (error.tag, error.app_tag) == ("operation-failed", "274")
        agent.switch("fault", "add", CALL, "refuse", "--count", 1)
        assert "ethernet 1/1/1" in str(nc.get())  # one refusal does not hide everything else

    @pytest.mark.parametrize("mode", ["explicit", "trim", "report-all", "report-all-tagged"])
    def test_defaults(self, nc, mode):
        assert "ethernet 1/1/1" in str(nc.get_config("running", with_defaults=mode))

    def test_unknown_filters(self, nc):
        assert refusal(lambda: nc.get(("xpath", "/nothing["))).tag == "invalid-value"


class TestEditing:
    @pytest.mark.parametrize("operation, request_", [
        ("merge", [{"opcode": 1, "value": 1}]), ("replace", [{"opcode": 1, "value": 1}])])
    def test_reaches_the_switch(self, agent, nc, operation, request_):
        nc.edit_config(target="running", config=jumbo(True, operation))
        assert sent(agent) == request_
        assert texts(nc.get_config("running", ("subtree", f'<jumbo xmlns="{JUMBO}"/>')), "enabled") == ["true"]
        nc.edit_config(target="running", config=jumbo(True))
        assert sent(agent) == request_  # nothing differs

    def test_what_a_callback_refuses(self, agent, nc):
        error = refusal(lambda: nc.edit_config(target="running", config=jumbo(True, "delete")))
        assert (error.type, error.tag, error.severity, error.app_tag) == (
            "application", "operation-not-supported", "error", "273")
        assert error.path.strip() == "/lyn-openconfig-jumbo:jumbo/config"
        assert sent(agent) == []

    def test_what_the_switch_refuses(self, agent, nc):
        agent.switch("fault", "add", CALL, "refuse", "--ui-err", 7, "--count", 1)
        error = refusal(lambda: nc.edit_config(target="running", config=jumbo(True), error_option="rollback-on-error"))
        assert (error.tag, error.app_tag) == ("operation-failed", "4")
        assert texts(nc.get_config("running", ("subtree", f'<jumbo xmlns="{JUMBO}"/>')), "enabled") == ["false"]

    def test_an_error_in_the_second_node_undoes_the_first(self, agent, nc):
        """Protected ports come behind jumbo frames; a port that does not exist is refused by the switch."""
        before = str(nc.get_config("running"))
        edit = config(f'<jumbo xmlns="{JUMBO}"><config><enabled>true</enabled></config></jumbo>'
                      '<protectedport xmlns="urn:lyn:yang:lyn-openconfig-protectedport"><interfaces><interface>'
                      "<name>ethernet 9/9/9</name><config><protectedport>true</protectedport></config></interface>"
                      "</interfaces></protectedport>")
        error = refusal(lambda: nc.edit_config(target="running", config=edit))
        assert error.message == "Error: port ethernet 9/9/9 does not exist\n" and error.app_tag == "1042"
        assert texts(nc.get_config("running", ("subtree", f'<jumbo xmlns="{JUMBO}"/>')), "enabled") == ["false"]
        assert "ethernet 9/9/9" not in str(nc.get_config("running"))
        assert str(nc.get_config("running"))[200:] == before[200:]  # but for the message-id

    @pytest.mark.parametrize("text, tag, path", [
        ('<nothing xmlns="urn:nothing"/>', "unknown-namespace", None),
        (f'<jumbo xmlns="{JUMBO}"><mode/></jumbo>', "unknown-element", "/lyn-openconfig-jumbo:jumbo"),
        (f'<jumbo xmlns="{JUMBO}"><config><enabled>perhaps</enabled></config></jumbo>', "invalid-value",
         "/lyn-openconfig-jumbo:jumbo/config/enabled"),
        (f'<jumbo xmlns="{JUMBO}"><config nc:operation="spoil"/></jumbo>', "bad-attribute",
         "/lyn-openconfig-jumbo:jumbo/config"),
        (f'<interfaces xmlns="{INTERFACES}"><interface nc:operation="create"><name>ethernet 1/1/1</name></interface>'
         "</interfaces>", "data-exists", "/openconfig-interfaces:interfaces/interface[name='ethernet 1/1/1']"),
        (f'<interfaces xmlns="{INTERFACES}"><interface nc:operation="delete"><name>lag 77</name></interface>'
         "</interfaces>", "data-missing", "/openconfig-interfaces:interfaces/interface[name='lag 77']"),
    ])
    def test_refusals(self, agent, nc, text, tag, path):
        error = refusal(lambda: nc.edit_config(target="running", config=config(text)))
        assert error.tag == tag
        assert (error.path and error.path.strip()) == path
        assert sent(agent) == []

    def test_test_only_sends_nothing(self, agent, nc):
        nc.edit_config(target="running", config=jumbo(True), test_option="test-only")
        assert refusal(lambda: nc.edit_config(target="running", config=jumbo(True, "delete"),
                                              test_option="test-only")).app_tag == "273"
        assert sent(agent) == []
        assert texts(nc.get_config("running", ("subtree", f'<jumbo xmlns="{JUMBO}"/>')), "enabled") == ["false"]

    def test_an_edit_that_the_switch_does_not_answer_holds_up_no_reader(self, agent, nc):
        agent.switch("fault", "add", CALL, "delay", "--ms", 2000, "--count", 1)
        with connect(agent) as reader, concurrent.futures.ThreadPoolExecutor(1) as pool:
            edit = pool.submit(lambda: nc.edit_config(target="running", config=jumbo(True)))
            time.sleep(0.3)
            began = time.monotonic()
            shown = reader.get_config("running", ("subtree", f'<jumbo xmlns="{JUMBO}"/>'))
            assert time.monotonic() - began < 1
            assert texts(shown, "enabled") == ["false"]
            with connect(agent):
                assert time.monotonic() - began < 1.5
            assert edit.result().ok


class TestSessions:
    def test_locks_of_two_sessions(self, agent, nc):
        with connect(agent) as other:
            with nc.locked("running"):
                error = refusal(lambda: other.lock("running"))
                assert error.tag == "lock-denied"
                assert f"<session-id>{nc.session_id}</session-id>" in error.info
                assert refusal(lambda: other.edit_config(target="running", config=jumbo(True))).tag == "in-use"
                assert refusal(lambda: other.unlock("running")).tag == "operation-failed"
                nc.edit_config(target="running", config=jumbo(True))
            other.edit_config(target="running", config=jumbo(False))

    def test_a_closed_session_gives_back_its_locks_at_once(self, agent, nc):
        for _ in range(20):
            other = connect(agent)
            other.lock("candidate")
            other.edit_config(target="candidate", config=jumbo(True))
            other.close_session()
            nc.lock("candidate")
            assert texts(nc.get_config("candidate", ("subtree", f'<jumbo xmlns="{JUMBO}"/>')), "enabled") == ["false"]
            nc.unlock("candidate")

    def test_a_session_that_is_cut_off_gives_back_its_locks(self, agent, nc):
        with Wire(agent) as wire:
            wire.hello("1.0")
            assert "<ok/>" in wire.ask("<lock><target><running/></target></lock>")
            wire.transport.sock.shutdown(socket.SHUT_RDWR)
            assert wait_until(lambda: lockable(nc), 10)

    def test_kill(self, agent, nc):
        with Wire(agent) as wire:
            wire.hello("1.0")
            assert "<ok/>" in wire.ask("<lock><target><running/></target></lock>")
            nc.kill_session(str(session_id(wire)))
            nc.lock("running")
            nc.unlock("running")
            assert wire.is_closed()
        assert refusal(lambda: nc.kill_session(str(session_id(wire)))).tag == "invalid-value"
        assert refusal(lambda: nc.kill_session(nc.session_id)).tag == "invalid-value"

    def test_kill_of_a_session_that_waits_for_the_switch(self, agent, nc):
        agent.switch("fault", "add", CALL, "delay", "--ms", 1500, "--count", 1)
        with Wire(agent) as wire:
            wire.hello("1.0")
            assert "<ok/>" in wire.ask("<lock><target><running/></target></lock>")
            wire.send(rpc(f"<edit-config><target><running/></target>{jumbo(True)}</edit-config>") + END)
            time.sleep(0.3)
            began = time.monotonic()
            nc.kill_session(str(session_id(wire)))
            assert time.monotonic() - began < 1
            assert wire.is_closed(1)
            nc.lock("running")  # waits for the callback
            assert 0.5 < time.monotonic() - began < 5
            nc.unlock("running")

    def test_audit(self, agent, nc):
        nc.edit_config(target="running", config=jumbo(True))
        refusal(lambda: nc.edit_config(target="running", config=jumbo(True, "delete")))
        trail = "\n".join(agent.audit())
        for outcome in ("ok", "operation-not-supported"):
            assert f'request="edit-config running" outcome="{outcome}"' in trail
        assert 'netconf user="admin"' in trail and agent.password not in trail


def lockable(session):
    try:
        session.lock("running")
        session.unlock("running")
        return True
    except Exception:  # somebody else has it
        return False


class TestUsers:
    def test_wrong_passwords_and_unknown_users(self, agent):
        for user, password in (("admin", "wrong"), ("nobody", agent.password)):
            with pytest.raises((AuthenticationError, SSHError)):
                connect(agent, user, password)
        # A name that is no user's may be a password at the wrong place.
        for user in ('user="admin"', "user=-"):
            agent.audited(user, 'request="login" outcome="refused"')
        assert "nobody" not in "".join(agent.audit())

    def test_a_user_who_is_added_may_come_at_once_and_one_who_is_deleted_not_again(self, make_agent):
        agent = make_agent()
        assert run_agentd("user", "add", "eve", "--state", agent.state, stdin="a long secret\n")[0] == 0
        with connect(agent, "eve", "a long secret") as session:
            assert session.connected
        assert run_agentd("user", "del", "eve", "--state", agent.state)[0] == 0
        with pytest.raises((AuthenticationError, SSHError)):
            connect(agent, "eve", "a long secret")

    def test_public_keys(self, make_agent, tmp_path):
        agent = make_agent()
        keys = {}
        for name in ("mine", "other"):
            os.system(f"ssh-keygen -q -t ed25519 -N '' -f {tmp_path}/{name}")
            keys[name] = str(tmp_path / name)
        (agent.state / "keys").mkdir(exist_ok=True)
        (agent.state / "keys" / "admin.pub").write_text("# comment\n\n" + (tmp_path / "mine.pub").read_text())
        with connect(agent, key_filename=keys["mine"]) as session:
            assert session.connected
        with pytest.raises((AuthenticationError, SSHError)):
            connect(agent, key_filename=keys["other"])
        (agent.state / "keys" / "nobody.pub").write_text((tmp_path / "mine.pub").read_text())
        with pytest.raises((AuthenticationError, SSHError)):
            connect(agent, "nobody", key_filename=keys["mine"])

    def test_failures_slow_down_their_address_on_both_front_ends(self, make_agent):
        agent = make_agent()
        for _ in range(5):
            with pytest.raises((AuthenticationError, SSHError)):
                connect(agent, "admin", "wrong")
        began = time.monotonic()
        with agent.new_session("admin", "wrong") as session:
            assert session.get(agent.url + "/restconf").status_code == 401
        assert time.monotonic() - began > 0.5

    def test_the_host_key_stays(self, make_agent, tmp_path):
        def fingerprint():
            agent = make_agent(state=tmp_path)
            with Wire(agent) as wire:
                key = wire.transport.get_remote_server_key()
            agent.stop()
            return key.get_name(), key.get_base64()

        first = fingerprint()
        assert first[0] == "ssh-ed25519" and first == fingerprint()
        assert first[1] in (tmp_path / "ssh-host-key.pub").read_text()
        assert (tmp_path / "ssh-host-key").stat().st_mode & 0o777 == 0o600


HUGE = b"\n#4294967295\n" + b"x" * 100000

BROKEN_FRAMES = {
    "no_header": b"hello",
    "not_a_size": b"\nX5\n<rpc/>\n##\n",
    "negative": b"\n#-5\n<rpc/>\n##\n",
    "zero": b"\n#0\n\n##\n",
    "huge": HUGE,
    "beyond_all_sizes": b"\n#99999999999\n",
    "a_gigabyte": b"\n#1000000000\n<rpc>",
    "chunk_behind_the_end": chunked(rpc("<discard-changes/>")) + b"\n##\n",
    "other_framing": rpc("<discard-changes/>") + END,
}

BAD_MESSAGES = {
    "not_xml": (b"nonsense", "malformed-message"),
    "cut": (b"<rpc><get>", "malformed-message"),
    "not_utf8": (b"<rpc>\xff\xfe</rpc>", "malformed-message"),
    "entity_bomb": (b'<!DOCTYPE a [<!ENTITY x "xxxxxxxxxx">' + b"".join(
        b'<!ENTITY x%d "&x;&x;&x;&x;&x;&x;&x;&x;">' % i for i in range(20)) + b"]><rpc>&x19;</rpc>", "malformed-message"),
    "external_entity": (b'<!DOCTYPE a [<!ENTITY x SYSTEM "file:///etc/passwd">]><rpc>&x;</rpc>', "malformed-message"),
    "deep": (b"<a>" * 5000 + b"</a>" * 5000, "malformed-message"),
    "wrong_namespace": (b'<rpc message-id="1" xmlns="urn:x"><get/></rpc>', "unknown-namespace"),
    "no_namespace": (b'<rpc message-id="1"><get/></rpc>', "unknown-namespace"),
    "no_message_id": (f'<rpc xmlns="{BASE}"><get/></rpc>'.encode(), "missing-attribute"),
    "unknown_operation": (rpc("<explode/>"), "operation-not-supported"),
    "unknown_module": (rpc('<explode xmlns="urn:x"/>'), "unknown-namespace"),
}


@pytest.fixture
def bystander(agent):
    """A session that must not notice anything."""
    with connect(agent) as session:
        yield session
        assert session.get_config("running").ok


class TestRawInput:
    @pytest.mark.parametrize("name", BROKEN_FRAMES)
    def test_broken_framing_ends_the_session(self, agent, bystander, name):
        with Wire(agent) as wire:
            wire.hello("1.1")
            with contextlib.suppress(OSError, EOFError):
                wire.send(BROKEN_FRAMES[name])
            assert wire.is_closed()

    @pytest.mark.parametrize("name", BAD_MESSAGES)
    def test_bad_messages_get_an_error(self, agent, bystander, name):
        message, tag = BAD_MESSAGES[name]
        with Wire(agent) as wire:
            wire.hello("1.1")
            wire.send(chunked(message))
            assert f"<error-tag>{tag}</error-tag>" in wire.until(b"\n##\n").decode()
            wire.send(chunked(rpc("<discard-changes/>")))
            assert "<ok/>" in wire.until(b"\n##\n").decode()

    @pytest.mark.parametrize("hello", [b"<hello/>", b"nonsense", b'<hello xmlns="urn:x"/>', rpc("<get/>")])
    def test_a_bad_hello_ends_the_session(self, agent, bystander, hello):
        with Wire(agent) as wire:
            wire.send(hello + END)
            assert wire.is_closed()

    def test_a_message_in_ten_thousand_pieces(self, agent, bystander):
        with Wire(agent) as wire:
            wire.hello("1.1")
            message = rpc("<!--" + "x" * 9900 + "--><discard-changes/>")
            pieces = b"".join(b"\n#1\n%c" % byte for byte in message) + b"\n##\n"
            for at in range(0, len(pieces), 7):
                wire.send(pieces[at:at + 7])
            assert "<ok/>" in wire.until(b"\n##\n").decode()

    def test_a_message_over_the_limit_ends_the_session(self, agent, bystander):
        with Wire(agent) as wire:
            wire.hello("1.0")
            with contextlib.suppress(OSError, EOFError):
                for _ in range(20):
                    wire.send(b"x" * (1 << 20))
            assert wire.is_closed()

    def test_a_large_message_below_it(self, agent, bystander):
        with Wire(agent) as wire:
            wire.hello("1.0")
            assert "<ok/>" in wire.ask("<!--" + "x" * (4 << 20) + "--><discard-changes/>")

    def test_many_requests_at_once_are_answered_in_order(self, agent, bystander):
        with Wire(agent) as wire:
            wire.hello("1.0")
            wire.send(b"".join(rpc("<get-config><source><running/></source></get-config>", str(i)) + END
                               for i in range(200)))
            for i in range(200):
                assert f'message-id="{i}"' in wire.until(END).decode()[:200]

    def test_a_client_that_reads_nothing_holds_up_nobody(self, agent, bystander):
        with Wire(agent) as wire:
            wire.hello("1.0")
            with contextlib.suppress(socket.timeout):
                wire.channel.settimeout(1)
                for i in range(3000):
                    wire.send(rpc("<get-config><source><running/></source></get-config>", str(i)) + END)
            began = time.monotonic()
            assert bystander.get_config("running").ok
            assert time.monotonic() - began < 2

    def test_silent_connections_hold_up_nobody(self, agent, bystander):
        host, port = agent.netconf.rsplit(":", 1)
        silent = [socket.create_connection((host, int(port))) for _ in range(50)]
        try:
            silent[0].sendall(b"GET / HTTP/1.0\r\n\r\n")
            silent[1].sendall(b"SSH-2.0-" + b"x" * 1000)
            silent[2].sendall(bytes(range(256)) * 100)
            silent[3].sendall(b"SSH-2.0-slow\r\n\x00\x00\xff\xff" + b"\x00" * 5000)
            began = time.monotonic()
            with connect(agent) as session:
                assert session.get_config("running").ok
            assert time.monotonic() - began < 3
        finally:
            for connection in silent:
                connection.close()

    def test_silent_connections_do_not_stay(self, make_agent):
        agent = make_agent()
        host, port = agent.netconf.rsplit(":", 1)
        with socket.create_connection((host, int(port))) as silent:
            silent.settimeout(20)
            began = time.monotonic()
            while silent.recv(1000):
                pass
            assert 8 < time.monotonic() - began < 15

    @pytest.mark.parametrize("ask", [
        lambda transport: transport.open_channel("direct-tcpip", ("127.0.0.1", 22), ("127.0.0.1", 1), timeout=10),
        lambda transport: transport.request_port_forward("127.0.0.1", 0),
        lambda transport: transport.open_session(timeout=10).invoke_shell(),
        lambda transport: transport.open_session(timeout=10).exec_command("id"),
        lambda transport: transport.open_session(timeout=10).invoke_subsystem("sftp"),
        lambda transport: [transport.open_session(timeout=10) for _ in range(2)],
    ], ids=["tunnel", "forward", "shell", "command", "sftp", "second_channel"])
    def test_everything_but_netconf_is_refused(self, agent, bystander, ask):
        host, port = agent.netconf.rsplit(":", 1)
        with contextlib.closing(paramiko.Transport(socket.create_connection((host, int(port)), timeout=30))) as transport:
            transport.start_client(timeout=30)
            transport.auth_password("admin", agent.password)
            with pytest.raises((paramiko.SSHException, EOFError)):
                ask(transport)

    def test_nothing_before_the_login(self, agent, bystander):
        host, port = agent.netconf.rsplit(":", 1)
        with contextlib.closing(paramiko.Transport(socket.create_connection((host, int(port)), timeout=30))) as transport:
            transport.start_client(timeout=30)
            with pytest.raises((paramiko.SSHException, EOFError)):
                transport.open_session(timeout=3)


def ticks(pid):
    fields = open(f"/proc/{pid}/stat").read().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def resident_mb(pid):
    for line in open(f"/proc/{pid}/status"):
        if line.startswith("VmRSS"):
            return int(line.split()[1]) / 1024
    return 0


class TestManySessions:
    def test_two_hundred_idle_sessions_cost_next_to_nothing(self, make_agent):
        agent = make_agent()
        pid = agent.process.pid
        wires = []
        try:
            with Wire(agent):
                pass  # the hash of the password is paid
            began = time.monotonic()
            for _ in range(200):
                wires.append(Wire(agent))
                wires[-1].hello("1.1")
            login = (time.monotonic() - began) / 200
            time.sleep(0.5)
            before = ticks(pid)
            time.sleep(5)
            share = (ticks(pid) - before) / 5
            memory = resident_mb(pid)
            print(f"200 sessions: {share:.2%} of a core, {memory:.1f} MB resident, {login * 1000:.1f} ms a login")
            assert share < 0.01
            assert memory < 60
            assert login < 0.1
            wires[-1].send(chunked(rpc("<discard-changes/>")))
            assert b"<ok/>" in wires[-1].until(b"\n##\n")
        finally:
            for wire in wires:
                wire.close()

    def test_more_than_the_limit_are_refused_and_places_come_back(self, make_agent):
        agent = make_agent()
        host, port = agent.netconf.rsplit(":", 1)
        strangers = [socket.create_connection((host, int(port))) for _ in range(200)]
        time.sleep(0.5)
        for stranger in strangers:
            stranger.close()
        assert wait_until(lambda: can_connect(agent), 5)


def can_connect(agent):
    try:
        with connect(agent, timeout=5):
            return True
    except Exception:  # too many
        return False
