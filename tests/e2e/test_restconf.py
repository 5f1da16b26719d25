"""RESTCONF from the client's socket to the switch and back."""

import concurrent.futures
import contextlib
import os
import re
import signal
import socket
import ssl
import stat
import threading
import time
import xml.etree.ElementTree as ElementTree

import pytest
import requests

from harness import JSON, XML, Agent, StartFailed, errors_of, run_agentd, running_switch, switchctl, wait_until

JUMBO = "/restconf/data/lyn-openconfig-jumbo:jumbo"
CONFIG = JUMBO + "/config"
ENABLED = CONFIG + "/enabled"
STATE = JUMBO + "/operation-state"
NAMESPACE = "urn:lyn:yang:lyn-openconfig-jumbo"
CALL = "ui_fe_qos_jumbo"


def config(enabled):
    return {"lyn-openconfig-jumbo:config": {"enabled": enabled}}


@pytest.fixture
def jumbo(agent):
    """The agent with jumbo frames off, no faults, and a mark in the journal."""
    agent.switch("fault", "clear")
    assert agent.put(CONFIG, config(False)).status_code == 204
    agent.mark = agent.last_seq()
    return agent


def sent(agent):
    """The requests of the jumbo client function since the mark, as (opcode, value)."""
    return [(entry["request"]["opcode"], entry["request"]["value"])
            for entry in agent.journal(agent.mark) if entry["call"] == CALL]


class TestFromEditToSwitch:
    """A write reaches the switch once, is read back, and is refused where the switch refuses."""

    def test_first_line_of_the_readme(self, jumbo):
        assert jumbo.patch(CONFIG, config(True)).status_code == 204
        assert sent(jumbo) == [(1, 1)]
        state = jumbo.get(STATE)
        assert (state.status_code, state.json()) == (200, {"lyn-openconfig-jumbo:operation-state": {"enabled": True}})
        assert sent(jumbo) == [(1, 1), (10, 0)]
        assert jumbo.get(CONFIG).json() == config(True)

    @pytest.mark.parametrize("method, path, body", [
        ("PUT", CONFIG, config(True)),
        ("PATCH", CONFIG, config(True)),
        ("PUT", ENABLED, {"lyn-openconfig-jumbo:enabled": True}),
        ("PATCH", JUMBO, {"lyn-openconfig-jumbo:jumbo": {"config": {"enabled": True}}}),
        ("PUT", JUMBO, {"lyn-openconfig-jumbo:jumbo": {"config": {"enabled": True}}}),
        ("PATCH", "/restconf/data", {"ietf-restconf:data": {"lyn-openconfig-jumbo:jumbo": {"config": {"enabled": True}}}}),
    ])
    def test_every_way_to_write_sends_the_same(self, jumbo, method, path, body):
        assert jumbo.ask(method, path, body).status_code == 204
        assert sent(jumbo) == [(1, 1)]
        assert jumbo.ask(method, path, body).status_code == 204
        assert sent(jumbo) == [(1, 1)], "nothing differs the second time"

    def test_xml_in_and_out(self, jumbo):
        body = f'<config xmlns="{NAMESPACE}"><enabled>true</enabled></config>'
        assert jumbo.put(CONFIG, body, Content_Type=XML).status_code == 204
        assert sent(jumbo) == [(1, 1)]
        answer = jumbo.get(JUMBO, Accept=XML)
        assert answer.headers["Content-Type"] == XML
        root = ElementTree.fromstring(answer.text)
        names = {"j": NAMESPACE}
        assert root.tag == f"{{{NAMESPACE}}}jumbo"
        assert root.findtext("j:config/j:enabled", namespaces=names) == "true"
        assert root.findtext("j:operation-state/j:enabled", namespaces=names) == "true"

    @pytest.mark.parametrize("path", [CONFIG, JUMBO])
    def test_deletion_is_refused_before_anything_is_sent(self, jumbo, path):
        answer = jumbo.delete(path)
        assert answer.status_code == 405
        assert "DELETE" not in answer.headers["Allow"]
        (error,) = errors_of(answer)
        assert (error["error-tag"], error["error-app-tag"]) == ("operation-not-supported", "273")
        assert error["error-path"].startswith("/lyn-openconfig-jumbo:jumbo")
        assert sent(jumbo) == []
        assert jumbo.get(CONFIG).json() == config(False)

    def test_refusal_of_the_switch(self, jumbo):
        jumbo.switch("fault", "add", CALL, "refuse", "--ui-err", 7, "--count", 1)
        before = jumbo.get(CONFIG).headers["ETag"]
        answer = jumbo.patch(CONFIG, config(True))
        assert answer.status_code == 500
        (error,) = errors_of(answer)
        assert (error["error-tag"], error["error-app-tag"]) == ("operation-failed", "4")
        assert error["error-path"] == "/lyn-openconfig-jumbo:jumbo/config"
        assert error["error-message"]
        assert jumbo.get(CONFIG).json() == config(False)
        assert jumbo.get(CONFIG).headers["ETag"] == before
        assert jumbo.patch(CONFIG, config(True)).status_code == 204

    def test_no_answer_of_the_switch(self, jumbo):
        jumbo.switch("fault", "add", CALL, "null", "--count", 1)
        answer = jumbo.put(CONFIG, config(True))
        assert answer.status_code == 500
        assert errors_of(answer)[0]["error-app-tag"] == "4"
        assert jumbo.get(CONFIG).json() == config(False)


class TestRefusals:
    """Each malformed request gets its own status and a document that says why, and changes nothing."""

    GOOD = '{"lyn-openconfig-jumbo:config": {"enabled": true}}'

    @pytest.mark.parametrize("status, tag, method, path, body, headers", [
        (404, "invalid-value", "GET", "/", None, {}),
        (404, "invalid-value", "GET", "/restconf/none", None, {}),
        (400, "unknown-element", "GET", "/restconf/data/none:jumbo", None, {}),
        (400, "unknown-element", "GET", JUMBO + "/none", None, {}),
        (400, "invalid-value", "GET", JUMBO + "/%zz", None, {}),
        (400, "invalid-value", "GET", "/restconf/data/jumbo", None, {}),
        (400, "invalid-value", "GET", CONFIG + "=1", None, {}),
        (400, "invalid-value", "GET", CONFIG + "?depth=x", None, {}),
        (400, "invalid-value", "GET", CONFIG + "?depth=1&depth=1", None, {}),
        (400, "invalid-value", "GET", CONFIG + "?none", None, {}),
        (400, "invalid-value", "GET", CONFIG + "?fields=enabled(", None, {}),
        (406, "invalid-value", "GET", CONFIG, None, {"Accept": "text/html"}),
        (405, "operation-not-supported", "POST", ENABLED, GOOD, {}),
        (405, "operation-not-supported", "PUT", STATE, GOOD, {}),
        (405, "operation-not-supported", "DELETE", "/restconf/data", None, {}),
        (415, "invalid-value", "PUT", CONFIG, GOOD, {"Content-Type": ""}),
        (415, "invalid-value", "PUT", CONFIG, GOOD, {"Content-Type": "text/plain"}),
        (400, "malformed-message", "PUT", CONFIG, "", {}),
        (400, "malformed-message", "PUT", CONFIG, "{", {}),
        (400, "malformed-message", "PUT", CONFIG, "[" * 5000, {}),
        (400, "malformed-message", "PUT", CONFIG, b"\xff\xfe\x00", {}),
        (400, None, "PUT", CONFIG, '{"lyn-openconfig-jumbo:config": {"enabled": "yes"}}', {}),
        (400, None, "PUT", CONFIG, '{"lyn-openconfig-jumbo:config": {"none": 1}}', {}),
        (400, None, "PUT", CONFIG, '{"lyn-openconfig-jumbo:jumbo": {}}', {}),
        (400, None, "POST", JUMBO, '{"lyn-openconfig-jumbo:operation-state": {}}', {}),
        (412, "operation-failed", "PUT", CONFIG, GOOD, {"If-Match": '"none"'}),
        (400, "malformed-message", "PUT", CONFIG, GOOD, {"If-Match": "none"}),
        (404, "invalid-value", "POST", "/restconf/operations/lyn-openconfig-jumbo:jumbo", None, {}),
    ])
    def test_status_and_tag(self, jumbo, status, tag, method, path, body, headers):
        answer = jumbo.ask(method, path, body, **headers)
        assert answer.status_code == status, answer.text
        (error,) = errors_of(answer)
        assert error["error-tag"] == (tag or error["error-tag"])
        assert error["error-message"]
        assert ("Allow" in answer.headers) == (status == 405)
        assert sent(jumbo) == []
        assert jumbo.get(CONFIG).json() == config(False)

    @pytest.mark.parametrize("body, encoding", [
        ('{"lyn-openconfig-jumbo:config": {"enabled": true, "enabled": false}}', JSON),
        (f'<config xmlns="{NAMESPACE}"><enabled>true</enabled><enabled>false</enabled></config>', XML)])
    def test_doubled_members_are_no_silent_choice(self, jumbo, body, encoding):
        answer = jumbo.put(CONFIG, body, Content_Type=encoding, Accept=JSON)
        assert 400 <= answer.status_code < 500
        assert errors_of(answer)[0]["error-message"]
        assert sent(jumbo) == []

    def test_metadata_that_could_delete_is_refused(self, jumbo):
        netconf = "urn:ietf:params:xml:ns:netconf:base:1.0"
        xml = f'<config xmlns="{NAMESPACE}" xmlns:nc="{netconf}" nc:operation="delete"/>'
        assert 400 <= jumbo.patch(CONFIG, xml, Content_Type=XML).status_code < 500
        json = '{"lyn-openconfig-jumbo:config": {"@": {"ietf-netconf:operation": "delete"}}}'
        assert 400 <= jumbo.patch(CONFIG, json).status_code < 500
        assert sent(jumbo) == []
        assert jumbo.get(CONFIG).json() == config(False)

    def test_errors_in_xml(self, jumbo):
        answer = jumbo.delete(CONFIG, Accept=XML)
        assert answer.headers["Content-Type"] == XML
        root = ElementTree.fromstring(answer.text)
        names = {"r": "urn:ietf:params:xml:ns:yang:ietf-restconf"}
        assert root.tag == "{%s}errors" % names["r"]
        error = root.find("r:error", names)
        assert error.findtext("r:error-app-tag", namespaces=names) == "273"
        assert f'xmlns:lyn-openconfig-jumbo="{NAMESPACE}"' in answer.text


class TestReading:
    def test_query_parameters(self, jumbo):
        assert jumbo.get(JUMBO + "?content=config").json() == {"lyn-openconfig-jumbo:jumbo": {"config": {"enabled": False}}}
        assert sent(jumbo) == [], "configuration alone asks nobody"
        assert jumbo.get(JUMBO + "?content=nonconfig").json() == {
            "lyn-openconfig-jumbo:jumbo": {"operation-state": {"enabled": False}}}
        assert jumbo.get(JUMBO + "?fields=config/enabled").json() == {
            "lyn-openconfig-jumbo:jumbo": {"config": {"enabled": False}}}
        shallow = jumbo.get(JUMBO + "?depth=2&content=config").json()["lyn-openconfig-jumbo:jumbo"]
        assert shallow in ({}, {"config": {}})

    def test_head_is_get_without_body(self, jumbo):
        whole, head = jumbo.get(CONFIG), jumbo.head(CONFIG)
        assert head.status_code == 200 and head.content == b""
        for name in ("Content-Type", "Content-Length", "ETag", "Last-Modified", "Cache-Control"):
            assert head.headers[name] == whole.headers[name], name

    def test_discovery(self, agent):
        meta = agent.get("/.well-known/host-meta")
        link = ElementTree.fromstring(meta.text).find("{http://docs.oasis-open.org/ns/xri/xrd-1.0}Link")
        assert link.attrib == {"rel": "restconf", "href": "/restconf"}
        root = agent.get(link.attrib["href"]).json()["ietf-restconf:restconf"]
        assert root["yang-library-version"] == "2019-01-04"
        assert set(root) == {"data", "operations", "yang-library-version"}
        library = agent.get("/restconf/data/ietf-yang-library:yang-library").json()["ietf-yang-library:yang-library"]
        modules = {module["name"] for module in library["module-set"][0]["module"]}
        assert {"lyn-openconfig-jumbo", "ietf-restconf-monitoring"} <= modules
        assert agent.get("/restconf/operations").status_code == 200

    def test_capabilities(self, agent):
        state = agent.get("/restconf/data/ietf-restconf-monitoring:restconf-state/capabilities").json()
        names = state["ietf-restconf-monitoring:capabilities"]["capability"]
        for name in ("depth:1.0", "fields:1.0", "with-defaults:1.0", "defaults:1.0?basic-mode=explicit"):
            assert f"urn:ietf:params:restconf:capability:{name}" in names


class TestConditions:
    def test_version_follows_the_edits(self, jumbo):
        first = jumbo.get(CONFIG)
        assert jumbo.get(CONFIG, If_None_Match=first.headers["ETag"]).status_code == 304
        written = jumbo.put(CONFIG, config(True), If_Match=first.headers["ETag"])
        assert written.status_code == 204
        assert jumbo.put(CONFIG, config(False), If_Match=first.headers["ETag"]).status_code == 412
        assert jumbo.get(CONFIG, If_None_Match=first.headers["ETag"]).status_code == 200
        assert jumbo.put(CONFIG, config(False), If_Match=written.headers["ETag"]).status_code == 204
        assert sent(jumbo) == [(1, 1), (1, 0)]

    def test_dates(self, jumbo):
        last = jumbo.get(ENABLED).headers["Last-Modified"]
        assert jumbo.get(ENABLED, If_Modified_Since=last).status_code == 304
        assert jumbo.put(CONFIG, config(True), If_Unmodified_Since="Sun, 06 Nov 1994 08:49:37 GMT").status_code == 412
        assert jumbo.put(CONFIG, config(True), If_Unmodified_Since=last).status_code == 204

    def test_state_that_changed_is_sent(self, jumbo):
        """The switch may change by itself: no tag of the configuration may hide that."""
        first = jumbo.get(JUMBO)
        jumbo.switch("fault", "add", CALL, "refuse", "--count", 1)
        later = jumbo.get(JUMBO, If_None_Match=first.headers["ETag"])
        assert later.status_code != 304


class TestUsers:
    def test_nothing_without_a_user(self, agent):
        for auth in (None, ("admin", "wrong"), ("nobody", agent.password), ("admin", "")):
            with agent.new_session(None, None) as session:
                answer = session.get(agent.url + "/.well-known/host-meta", auth=auth)
                assert answer.status_code == 401
                assert answer.headers["WWW-Authenticate"].startswith("Basic ")
                assert errors_of(answer)[0]["error-tag"] == "access-denied"

    def test_commands_count_at_once(self, make_agent):
        agent = make_agent()

        def status(password):
            with agent.new_session("op", password) as session:
                return session.get(agent.url + "/restconf").status_code

        state = ("--state", agent.state)
        assert status("one") == 401
        assert run_agentd("user", "add", "op", *state, stdin="one\n") == (0, "", "")
        assert status("one") == 200
        assert run_agentd("user", "passwd", "op", *state, stdin="two\n") == (0, "", "")
        assert (status("one"), status("two")) == (401, 200)
        assert run_agentd("user", "del", "op", *state) == (0, "", "")
        assert status("two") == 401
        code, _, errors = run_agentd("user", "del", "op", *state)
        assert code == 1 and errors.count("\n") == 1

    def test_repeated_failures_are_slowed_but_others_are_not(self, make_agent):
        agent = make_agent()
        assert agent.get("/restconf").status_code == 200
        with agent.new_session("admin", "wrong") as session:
            began = time.monotonic()
            for _ in range(6):
                assert session.get(agent.url + "/restconf").status_code == 401
            slow = time.monotonic() - began
        assert slow > 1
        began = time.monotonic()
        for _ in range(20):
            assert agent.get("/restconf").status_code == 200
        assert time.monotonic() - began < 1

    def test_no_secret_in_any_log(self, make_agent):
        agent = make_agent(log=9)
        agent.put(CONFIG, config(True))
        with agent.new_session("admin", "mistyped-secret") as session:
            session.get(agent.url + "/restconf")
        with agent.new_session("password-as-name", "x") as session:
            session.get(agent.url + "/restconf")
        agent.stop()
        text = agent.log + "\n".join(agent.audit())
        for secret in (agent.password, "mistyped-secret", "password-as-name"):
            assert secret not in text
        assert any("PUT " + CONFIG in line and 'outcome="204"' in line for line in agent.audit())
        assert any('outcome="401"' in line for line in agent.audit())


class TestConnections:
    def test_pipelined_requests_are_answered_in_order(self, jumbo):
        token = requests.auth._basic_auth_str("admin", jumbo.password)
        head = f"Host: x\r\nAuthorization: {token}\r\n"
        put = "{\"lyn-openconfig-jumbo:config\": {\"enabled\": %s}}"
        pieces = []
        for value in ("true", "false", "true"):
            body = put % value
            pieces.append(f"PUT {CONFIG} HTTP/1.1\r\n{head}Content-Type: {JSON}\r\nContent-Length: {len(body)}\r\n\r\n{body}")
            pieces.append(f"GET {ENABLED} HTTP/1.1\r\n{head}\r\n")
        pieces.append(f"GET /restconf HTTP/1.1\r\n{head}Connection: close\r\n\r\n")
        with jumbo.raw() as connection:
            connection.sendall("".join(pieces).encode())
            text = b""
            while chunk := connection.recv(65536):
                text += chunk
        text = text.decode()
        assert re.findall(r"HTTP/1.1 (\d+)", text) == ["204", "200", "204", "200", "204", "200", "200"]
        assert re.findall(r'"lyn-openconfig-jumbo:enabled": ?(\w+)', text) == ["true", "false", "true"]
        assert sent(jumbo) == [(1, 1), (1, 0), (1, 1)]

    def test_a_body_over_the_limit(self, jumbo):
        answer = jumbo.put(CONFIG, "x" * (5 << 20))
        assert answer.status_code == 413
        assert errors_of(answer)[0]["error-tag"] == "too-big"

    def test_a_header_over_the_limit(self, jumbo):
        assert jumbo.get("/restconf", X_Long="x" * 20000).status_code == 431

    def test_idle_silent_and_rude_clients_hold_up_nobody(self, jumbo):
        idle = [jumbo.raw() for _ in range(60)]
        silent = [socket.create_connection(jumbo.host_port) for _ in range(60)]
        for connection in silent[:20]:
            connection.sendall(b"\x16\x03\x01\x00\xff rubbish")
        for connection in idle[:20]:
            connection.sendall(b"GET /restconf HTTP/1.1\r\nHos")
        threads = len(os.listdir(f"/proc/{jumbo.process.pid}/task"))
        began = time.monotonic()
        for _ in range(20):
            assert jumbo.get(CONFIG).status_code == 200
        assert time.monotonic() - began < 5
        assert threads < 12, "no thread a connection"
        for connection in idle + silent:
            connection.close()
        assert jumbo.get(CONFIG).status_code == 200

    def test_many_clients_at_once_keep_one_order(self, jumbo):
        def work(number):
            statuses = set()
            for turn in range(10):
                statuses.add(jumbo.put(CONFIG, config(bool((number + turn) % 2))).status_code)
                statuses.add(jumbo.get(JUMBO).status_code)
            return statuses

        with concurrent.futures.ThreadPoolExecutor(8) as pool:
            assert set().union(*pool.map(work, range(8))) == {200, 204}
        values = [value for opcode, value in sent(jumbo) if opcode == 1]
        assert all(a != b for a, b in zip(values, values[1:])), "a value is sent only when it differs"
        assert jumbo.get(CONFIG).json() == config(bool(values[-1]))

    def test_configuration_is_read_while_the_switch_is_slow(self, jumbo):
        jumbo.switch("fault", "add", CALL, "delay", "--ms", 1500, "--count", 1)
        with concurrent.futures.ThreadPoolExecutor(1) as pool:
            began = time.monotonic()
            edit = pool.submit(jumbo.put, CONFIG, config(True))
            wait_until(lambda: not edit.done() and time.monotonic() - began > 0.3)
            assert jumbo.get(CONFIG + "?content=config").json() == config(False)
            assert time.monotonic() - began < 1.2
            assert not edit.done()
            assert edit.result().status_code == 204
        assert jumbo.get(CONFIG + "?content=config").json() == config(True)

    @pytest.mark.filterwarnings("ignore::DeprecationWarning")
    def test_old_tls_is_refused(self, agent):
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_CLIENT)
        context.check_hostname, context.verify_mode = False, ssl.CERT_NONE
        context.set_ciphers("ALL:@SECLEVEL=0")
        context.minimum_version = ssl.TLSVersion.TLSv1
        context.maximum_version = ssl.TLSVersion.TLSv1_1
        with socket.create_connection(agent.host_port) as connection, pytest.raises(ssl.SSLError):
            context.wrap_socket(connection)

    def test_absolute_targets_and_missing_host(self, agent):
        token = requests.auth._basic_auth_str("admin", agent.password)
        for request, status in ((f"GET https://x/restconf HTTP/1.1\r\nHost: x\r\nAuthorization: {token}\r\n\r\n", 200),
                                (f"GET /restconf HTTP/1.1\r\nAuthorization: {token}\r\n\r\n", 400),
                                ("rubbish\r\n\r\n", 400)):
            with agent.raw() as connection:
                connection.sendall(request.encode())
                assert connection.recv(65536).startswith(b"HTTP/1.1 %d " % status)


class TestStart:
    def test_first_start_makes_what_it_needs(self, make_agent):
        agent = make_agent()
        modes = {path.name: stat.S_IMODE(path.stat().st_mode) for path in agent.state.iterdir()}
        for name in ("admin-password", "users", "tls-key.pem", "audit.log"):
            assert modes[name] == 0o600, name
        assert agent.password not in (agent.state / "users").read_text()

    def test_new_state_folder_is_private(self, tmp_path):
        with Agent(state=tmp_path / "deep" / "state") as agent:
            assert stat.S_IMODE(agent.state.stat().st_mode) == 0o700

    def test_second_start_keeps_users_and_certificate(self, tmp_path):
        kept = ("admin-password", "users", "tls-key.pem", "tls-cert.pem")
        with Agent(state=tmp_path):
            before = {name: (tmp_path / name).read_bytes() for name in kept}
        with Agent(state=tmp_path) as agent:
            assert agent.get("/restconf").status_code == 200
            assert {name: (tmp_path / name).read_bytes() for name in kept} == before

    def test_starts_in_under_a_second(self, tmp_path):
        with Agent(state=tmp_path):
            pass
        times = []
        for _ in range(3):
            began = time.monotonic()
            with Agent(state=tmp_path):
                times.append(time.monotonic() - began)
        assert min(times) < 1

    @pytest.mark.parametrize("number", [signal.SIGTERM, signal.SIGINT])
    def test_stops_within_a_second(self, make_agent, number):
        agent = make_agent()
        agent.get("/restconf")
        idle = agent.raw()
        began = time.monotonic()
        assert agent.stop(number) == 0
        assert time.monotonic() - began < 1
        idle.close()

    @pytest.mark.parametrize("place", ["inproc", "unix"])
    def test_stops_within_a_second_while_the_switch_is_silent(self, make_agent, tmp_path, place):
        with contextlib.ExitStack() as stack:
            if place == "unix":
                path = tmp_path / "switch"
                stack.enter_context(running_switch(path))
                agent = make_agent(device=f"unix:{path}")
                switchctl("--socket", path, "fault", "add", CALL, "delay", "--ms", 20000)
            else:
                agent = make_agent()
                agent.switch("fault", "add", CALL, "delay", "--ms", 20000)
            session = agent.new_session("admin", agent.password)
            pool = stack.enter_context(concurrent.futures.ThreadPoolExecutor(1))
            edit = pool.submit(session.patch, agent.url + CONFIG, json=config(True), timeout=15)
            time.sleep(0.5)
            began = time.monotonic()
            assert agent.stop() == 0
            assert time.monotonic() - began < 1
            assert edit.exception() is not None or edit.result().status_code >= 400

    def test_can_be_ended_while_it_starts(self, tmp_path):
        """The start asks the switch what it is; one that never answers must not make it deaf to signals."""
        with socket.socket(socket.AF_UNIX) as listener:
            listener.bind(str(tmp_path / "switch"))
            listener.listen(5)
            agent = Agent(state=tmp_path / "state", device=f"unix:{tmp_path}/switch")
            killer = threading.Timer(1, lambda: agent.process.terminate())
            killer.start()
            began = time.monotonic()
            with pytest.raises(StartFailed):
                agent.start()
            assert time.monotonic() - began < 3

    def test_an_answer_at_hand_is_still_sent(self, make_agent):
        agent = make_agent()
        agent.switch("fault", "add", CALL, "delay", "--ms", 200)
        with concurrent.futures.ThreadPoolExecutor(1) as pool:
            session = agent.new_session("admin", agent.password)
            assert session.get(agent.url + "/restconf").status_code == 200
            edit = pool.submit(lambda: session.patch(agent.url + CONFIG, json=config(True), timeout=15))
            time.sleep(0.1)
            assert agent.stop() == 0
            assert edit.result().status_code == 204

    def why_not(self, state, **options):
        agent = Agent(state=state, **options)
        with pytest.raises(StartFailed) as failure:
            agent.start()
        agent.stop()
        assert failure.value.status not in (0, None) and failure.value.status > 0
        assert failure.value.output == ""
        lines = failure.value.log.splitlines()
        assert len(lines) == 1, failure.value.log
        return lines[0]

    def test_says_that_the_port_is_taken(self, agent, tmp_path):
        port = agent.host_port[1]
        assert f"127.0.0.1:{port}" in self.why_not(tmp_path, restconf=f"127.0.0.1:{port}")

    def test_says_that_the_folder_is_in_use(self, agent):
        assert "in use" in self.why_not(agent.state)

    def test_says_that_the_folder_is_none(self, tmp_path):
        (tmp_path / "file").write_text("")
        assert str(tmp_path / "file") in self.why_not(tmp_path / "file")

    @pytest.mark.parametrize("name, content", [
        ("users", "damaged"), ("tls-key.pem", "damaged"), ("startup.json", "{ damaged")])
    def test_says_which_file_is_damaged(self, tmp_path, name, content):
        with Agent(state=tmp_path):
            pass
        (tmp_path / name).write_text(content)
        line = self.why_not(tmp_path)
        assert name.split(".")[0] in line or "startup" in line

    def test_says_which_module_is_missing(self, tmp_path):
        (tmp_path / "empty").mkdir()
        assert "ietf-restconf" in self.why_not(tmp_path / "state", modules=tmp_path / "empty")

    @pytest.mark.parametrize("options, word", [
        ({"bundle": "none"}, "none"), ({"device": "none"}, "--device"), ({"device": "unix:"}, "--device"),
        ({"factory": "/nowhere/startup.json"}, "/nowhere/startup.json")])
    def test_says_what_is_wrong_with_an_option(self, tmp_path, options, word):
        assert word in self.why_not(tmp_path, **options)

    def test_help_and_wrong_usage(self):
        status, output, _ = run_agentd("--help")
        assert status == 0 and "--restconf" in output
        status, _, errors = run_agentd()
        assert status != 0 and "--state" in errors

    def test_loads_the_startup_data_and_sends_nothing(self, tmp_path):
        (tmp_path / "startup.json").write_text('{"lyn-openconfig-jumbo:jumbo": {"config": {"enabled": true}}}')
        with Agent(state=tmp_path) as agent:
            assert agent.get(CONFIG).json() == config(True)
            assert agent.journal() == []

    def test_other_bundle(self, make_agent):
        agent = make_agent(bundle="app_yang_agent_aaa")
        assert agent.get("/restconf").status_code == 200
