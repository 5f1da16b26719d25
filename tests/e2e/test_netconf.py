"""NETCONF with the clients that people use, and with what nobody should send."""

import concurrent.futures
import contextlib
import os
import socket
import time

import paramiko
import pytest
from ncclient.transport.errors import AuthenticationError, SSHError

from harness import wait_until
from netconf_client import (END, JUMBO, Wire, address, chunked, config, connect, jumbo, refusal, rpc, texts)

CALL = "ui_fe_qos_jumbo"
MONITORING = "urn:ietf:params:xml:ns:yang:ietf-netconf-monitoring"


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


STATE = ("subtree", f'<jumbo xmlns="{JUMBO}"><operation-state/></jumbo>')


def enabled(session, store="running"):
    return texts(session.get_config(store, ("subtree", f'<jumbo xmlns="{JUMBO}"/>')), "enabled")


def works(action):
    try:
        action()
        return True
    except Exception:  # somebody else has the lock, or all places are taken
        return False


def sent(agent):
    """The requests since the session began."""
    return [entry["request"] for entry in agent.journal(agent.mark) if entry["call"] == CALL]


class TestCapabilities:
    def test_content_id_is_that_of_the_library(self, nc):
        (library,) = [c for c in nc.server_capabilities if "yang-library:1.1" in c]
        shown = nc.get(("subtree", '<yang-library xmlns="urn:ietf:params:xml:ns:yang:ietf-yang-library"><content-id/>'
                                   "</yang-library>"))
        assert library.endswith("content-id=" + texts(shown, "content-id")[0])

    def test_modules_can_be_fetched(self, nc):
        shown = nc.get(("subtree", f'<netconf-state xmlns="{MONITORING}"><schemas><schema><identifier/><version/></schema>'
                                   "</schemas></netconf-state>"))
        names = list(zip(texts(shown, "identifier"), texts(shown, "version")))
        assert "lyn-openconfig-jumbo" in dict(names)
        for name, version in names[:5] + names[-5:]:
            assert f"module {name}" in str(nc.get_schema(name, version or None)), name

    def test_sessions_and_locks_are_shown(self, nc):
        with nc.locked("startup"):
            shown = nc.get(("subtree", f'<netconf-state xmlns="{MONITORING}"><datastores/><sessions/></netconf-state>'))
        assert texts(shown, "locked-by-session") == [nc.session_id]
        assert nc.session_id in texts(shown, "session-id") and "admin" in texts(shown, "username")


class TestReading:
    def test_state_is_asked_for_only_where_it_is_wanted(self, agent, nc):
        nc.get_config("running")
        nc.get(("subtree", f'<jumbo xmlns="{JUMBO}"><config/></jumbo>'))
        assert sent(agent) == []
        reply = nc.get(STATE)
        assert texts(reply, "enabled") == ["false"]
        assert [request["opcode"] for request in sent(agent)] == [10]


class TestEditing:
    def test_reaches_the_switch_once(self, agent, nc):
        for operation in "merge", "replace":
            nc.edit_config(target="running", config=jumbo(True, operation))
            assert sent(agent) == [{"opcode": 1, "value": 1}]
            assert enabled(nc) == ["true"]

    def test_an_error_in_the_second_node_undoes_the_first(self, agent, nc):
        """Protected ports come behind jumbo frames; a port that does not exist is refused by the switch."""
        before = str(nc.get_config("running"))
        edit = config(f'<jumbo xmlns="{JUMBO}"><config><enabled>true</enabled></config></jumbo>'
                      '<protectedport xmlns="urn:lyn:yang:lyn-openconfig-protectedport"><interfaces><interface>'
                      "<name>ethernet 9/9/9</name><config><protectedport>true</protectedport></config></interface>"
                      "</interfaces></protectedport>")
        error = refusal(lambda: nc.edit_config(target="running", config=edit))
        assert error.message == "Error: port ethernet 9/9/9 does not exist\n" and error.app_tag == "1042"
        assert enabled(nc) == ["false"]
        assert "ethernet 9/9/9" not in str(nc.get_config("running"))
        assert str(nc.get_config("running"))[200:] == before[200:]  # but for the message-id

    def test_an_edit_that_the_switch_does_not_answer_holds_up_no_reader(self, agent, nc):
        agent.switch("fault", "add", CALL, "delay", "--ms", 2000, "--count", 1)
        with connect(agent) as reader, concurrent.futures.ThreadPoolExecutor(1) as pool:
            edit = pool.submit(lambda: nc.edit_config(target="running", config=jumbo(True)))
            time.sleep(0.3)
            began = time.monotonic()
            assert enabled(reader) == ["false"]
            assert time.monotonic() - began < 1
            with connect(agent):
                assert time.monotonic() - began < 1.5
            assert edit.result().ok


class TestSessions:
    def test_a_closed_session_gives_back_its_locks_at_once(self, agent, nc):
        for _ in range(20):
            other = connect(agent)
            other.lock("candidate")
            other.edit_config(target="candidate", config=jumbo(True))
            other.close_session()
            nc.lock("candidate")
            assert enabled(nc, "candidate") == ["false"]
            nc.unlock("candidate")

    def test_a_session_that_is_cut_off_gives_back_its_locks(self, agent, nc):
        with Wire(agent) as wire:
            wire.hello("1.0")
            assert "<ok/>" in wire.ask("<lock><target><running/></target></lock>")
            wire.transport.sock.shutdown(socket.SHUT_RDWR)
            assert wait_until(lambda: works(lambda: nc.lock("running")), 10)
            nc.unlock("running")


class TestUsers:
    def test_wrong_passwords_and_unknown_users(self, agent):
        for user, password in (("admin", "wrong"), ("nobody", agent.password)):
            with pytest.raises((AuthenticationError, SSHError)):
                connect(agent, user, password)
        # A name that is no user's may be a password at the wrong place.
        for user in ('user="admin"', "user=-"):
            agent.audited(user, 'request="login" outcome="refused"')
        assert "nobody" not in "".join(agent.audit())

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


@pytest.fixture
def bystander(agent):
    """A session that must not notice anything."""
    with connect(agent) as session:
        yield session
        assert session.get_config("running").ok


class TestRawInput:
    def test_messages_around_the_limit(self, agent, bystander):
        with Wire(agent) as wire:
            wire.hello("1.0")
            assert "<ok/>" in wire.ask("<!--" + "x" * (4 << 20) + "--><discard-changes/>")
            with contextlib.suppress(OSError, EOFError):
                for _ in range(20):
                    wire.send(b"x" * (1 << 20))
            assert wire.is_closed()

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

    @pytest.mark.parametrize("ask", [
        lambda transport: transport.open_channel("direct-tcpip", ("127.0.0.1", 22), ("127.0.0.1", 1), timeout=10),
        lambda transport: transport.request_port_forward("127.0.0.1", 0),
        lambda transport: transport.open_session(timeout=10).invoke_shell(),
        lambda transport: transport.open_session(timeout=10).exec_command("id"),
        lambda transport: transport.open_session(timeout=10).invoke_subsystem("sftp"),
        lambda transport: [transport.open_session(timeout=10) for _ in range(2)],
        None,  # a channel before the login
    ], ids=["tunnel", "forward", "shell", "command", "sftp", "second_channel", "stranger"])
    def test_everything_but_netconf_is_refused(self, agent, bystander, ask):
        with contextlib.closing(paramiko.Transport(socket.create_connection(address(agent), timeout=30))) as transport:
            transport.start_client(timeout=30)
            if ask:
                transport.auth_password("admin", agent.password)
            with pytest.raises((paramiko.SSHException, EOFError)):
                ask(transport) if ask else transport.open_session(timeout=3)


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
        with contextlib.ExitStack() as stack:
            with Wire(agent):
                pass  # the hash of the password is paid
            began = time.monotonic()
            wires = [stack.enter_context(Wire(agent)) for _ in range(200)]
            for wire in wires:
                wire.hello("1.1")
            login = (time.monotonic() - began) / 200
            time.sleep(0.5)
            before = ticks(pid)
            time.sleep(5)
            share = (ticks(pid) - before) / 5
            memory = resident_mb(pid)
            print(f"200 sessions: {share:.2%} of a core, {memory:.1f} MB resident, {login * 1000:.1f} ms a login")
            assert share < 0.01 and memory < 60 and login < 0.1
            wires[-1].send(chunked(rpc("<discard-changes/>")))
            assert b"<ok/>" in wires[-1].until(b"\n##\n")
