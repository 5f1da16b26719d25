"""RESTCONF from the client's socket to the switch and back."""

import concurrent.futures
import signal
import socket
import threading
import time
import xml.etree.ElementTree as ElementTree

import pytest

from harness import XML, Agent, StartFailed, beside_a_switch, errors_of, refused, run_agentd

JUMBO = "/restconf/data/lyn-openconfig-jumbo:jumbo"
CONFIG = JUMBO + "/config"
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
        ("PUT", CONFIG + "/enabled", {"lyn-openconfig-jumbo:enabled": True}),
        ("PUT", JUMBO, {"lyn-openconfig-jumbo:jumbo": {"config": {"enabled": True}}}),
        ("PATCH", "/restconf/data", {"ietf-restconf:data": {"lyn-openconfig-jumbo:jumbo": {"config": {"enabled": True}}}}),
    ])
    def test_every_way_to_write_sends_the_same(self, jumbo, method, path, body):
        for _ in range(2):  # nothing differs the second time
            assert jumbo.ask(method, path, body).status_code == 204
            assert sent(jumbo) == [(1, 1)]

    def test_xml_in_and_out(self, jumbo):
        body = f'<config xmlns="{NAMESPACE}"><enabled>true</enabled></config>'
        assert jumbo.put(CONFIG, body, Content_Type=XML).status_code == 204
        assert sent(jumbo) == [(1, 1)]
        root = ElementTree.fromstring(jumbo.get(JUMBO, Accept=XML).text)
        names = {"j": NAMESPACE, "r": "urn:ietf:params:xml:ns:yang:ietf-restconf"}
        assert root.findtext("j:config/j:enabled", namespaces=names) == "true"
        assert root.findtext("j:operation-state/j:enabled", namespaces=names) == "true"
        error = ElementTree.fromstring(jumbo.delete(CONFIG, Accept=XML).text)
        assert error.findtext("r:error/r:error-app-tag", namespaces=names) == "273"

    def test_deletion_is_refused_before_anything_is_sent(self, jumbo):
        answer = jumbo.delete(JUMBO)
        refused(answer, 405, 273)
        assert "DELETE" not in answer.headers["Allow"]
        assert errors_of(answer)[0]["error-tag"] == "operation-not-supported"
        assert sent(jumbo) == []
        assert jumbo.get(CONFIG).json() == config(False)

    @pytest.mark.parametrize("fault", [("refuse", "--ui-err", 7), ("null",)])
    def test_refusal_or_silence_of_the_switch(self, jumbo, fault):
        jumbo.switch("fault", "add", CALL, *fault, "--count", 1)
        before = jumbo.get(CONFIG).headers["ETag"]
        answer = jumbo.patch(CONFIG, config(True))
        refused(answer, 500, 4)
        assert errors_of(answer)[0]["error-path"] == "/lyn-openconfig-jumbo:jumbo/config"
        assert jumbo.get(CONFIG).json() == config(False)
        assert jumbo.get(CONFIG).headers["ETag"] == before
        assert jumbo.patch(CONFIG, config(True)).status_code == 204

    def test_requests_over_the_limits_and_bodies_that_say_it_twice(self, jumbo):
        for status, method, body, headers in (
                (413, "PUT", "x" * (5 << 20), {}), (431, "GET", None, {"X-Long": "x" * 20000}),
                (400, "PUT", '{"lyn-openconfig-jumbo:config": {"enabled": true, "enabled": false}}', {})):
            answer = jumbo.ask(method, CONFIG, body, **headers)
            assert answer.status_code == status, answer.text
            assert errors_of(answer)[0]["error-message"]
        assert sent(jumbo) == []


def test_discovery(agent):
    meta = agent.get("/.well-known/host-meta")
    link = ElementTree.fromstring(meta.text).find("{http://docs.oasis-open.org/ns/xri/xrd-1.0}Link")
    assert link.attrib == {"rel": "restconf", "href": "/restconf"}
    root = agent.get(link.attrib["href"]).json()["ietf-restconf:restconf"]
    assert set(root) == {"data", "operations", "yang-library-version"}
    library = agent.get("/restconf/data/ietf-yang-library:yang-library").json()["ietf-yang-library:yang-library"]
    modules = {module["name"] for module in library["module-set"][0]["module"]}
    assert {"lyn-openconfig-jumbo", "ietf-restconf-monitoring"} <= modules
    state = agent.get("/restconf/data/ietf-restconf-monitoring:restconf-state/capabilities").json()
    names = state["ietf-restconf-monitoring:capabilities"]["capability"]
    for name in ("depth:1.0", "fields:1.0", "with-defaults:1.0", "defaults:1.0?basic-mode=explicit"):
        assert f"urn:ietf:params:restconf:capability:{name}" in names


class TestUsers:
    def test_commands_count_at_once(self, make_agent):
        agent = make_agent()

        def status(password):
            with agent.new_session("op", password) as session:
                return session.get(agent.url + "/restconf").status_code

        def user(action, stdin=""):
            return run_agentd("user", action, "op", "--state", agent.state, stdin=stdin)

        assert user("add", "one\n") == (0, "", "")
        assert status("one") == 200
        assert user("passwd", "two\n") == (0, "", "")
        assert (status("one"), status("two")) == (401, 200)
        assert user("del") == (0, "", "")
        assert status("two") == 401
        code, _, errors = user("del")
        assert code == 1 and errors.count("\n") == 1

    def test_no_secret_in_any_log(self, make_agent):
        agent = make_agent(log=9)
        agent.put(CONFIG, config(True))
        for user, password in ("admin", "mistyped-secret"), ("password-as-name", "x"):
            with agent.new_session(user, password) as session:
                session.get(agent.url + "/restconf")
        agent.stop()
        text = agent.log + "\n".join(agent.audit())
        for secret in (agent.password, "mistyped-secret", "password-as-name"):
            assert secret not in text
        agent.audited("PUT " + CONFIG, 'outcome="204"')
        agent.audited('outcome="401"')


class TestStart:
    def test_second_start_is_quick_and_keeps_users_and_certificate(self, tmp_path):
        kept = ("admin-password", "users", "tls-key.pem", "tls-cert.pem")
        with Agent(state=tmp_path):
            before = {name: (tmp_path / name).read_bytes() for name in kept}
        times = []
        for _ in range(3):
            began = time.monotonic()
            with Agent(state=tmp_path) as agent:
                times.append(time.monotonic() - began)
                assert agent.get("/restconf").status_code == 200
                assert {name: (tmp_path / name).read_bytes() for name in kept} == before
        assert min(times) < 1

    @pytest.mark.parametrize("number", [signal.SIGTERM, signal.SIGINT])
    def test_stops_within_a_second(self, make_agent, number):
        agent = make_agent()
        with agent.raw():
            began = time.monotonic()
            assert agent.stop(number) == 0
            assert time.monotonic() - began < 1

    @pytest.mark.parametrize("started", [Agent, beside_a_switch])
    def test_stops_within_a_second_while_the_switch_is_silent(self, started):
        with started() as agent, concurrent.futures.ThreadPoolExecutor(1) as pool:
            agent.switch("fault", "add", CALL, "delay", "--ms", 20000)
            session = agent.new_session("admin", agent.password)
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
            threading.Timer(1, lambda: agent.process.terminate()).start()
            began = time.monotonic()
            with pytest.raises(StartFailed):
                agent.start()
            assert time.monotonic() - began < 3

    def test_says_in_one_line_why_not(self, agent, tmp_path):
        def why_not(state=tmp_path / "state", **options):
            one = Agent(state=state, **options)
            with pytest.raises(StartFailed) as failure:
                one.start()
            assert failure.value.status > 0 and failure.value.output == ""
            (line,) = failure.value.log.splitlines()
            return line

        (tmp_path / "file").write_text("")
        (tmp_path / "empty").mkdir()
        port = f"127.0.0.1:{agent.host_port[1]}"
        assert port in why_not(restconf=port)
        assert "in use" in why_not(agent.state)
        assert str(tmp_path / "file") in why_not(tmp_path / "file")
        assert "ietf-restconf" in why_not(modules=tmp_path / "empty")
        assert "none" in why_not(bundle="none")
        assert "--device" in why_not(device="unix:")
        assert "/nowhere/startup.json" in why_not(factory="/nowhere/startup.json")
        for name in "users", "tls-key.pem", "startup.json":
            with Agent(state=tmp_path / name):
                pass
            (tmp_path / name / name).write_text("{ damaged")
            assert name.split(".")[0] in why_not(tmp_path / name)
