"""Both front ends on one set of datastores, and what is there after a restart."""

import contextlib
import json
import os
import signal
import time
import urllib.parse
from concurrent.futures import ThreadPoolExecutor

import pytest
from ncclient.operations import RPCError

from harness import JSON, XML, Agent, errors_of, running_switch, switchctl, wait_until
from netconf_client import BASE, JUMBO, config, connect, jumbo, refusal, texts

CALL = "ui_fe_qos_jumbo"
DATA = "/restconf/data"
CONFIG = f"{DATA}/lyn-openconfig-jumbo:jumbo/config"
INTERFACES = "http://openconfig.net/yang/interfaces"
STORM = "urn:lyn:yang:lyn-openconfig-stormcontrol"
PROTECTED = "urn:lyn:yang:lyn-openconfig-protectedport"
MODULES = {
    JUMBO: "lyn-openconfig-jumbo", INTERFACES: "openconfig-interfaces", STORM: "lyn-openconfig-stormcontrol",
    PROTECTED: "lyn-openconfig-protectedport", "http://openconfig.net/yang/interfaces/ethernet": "openconfig-if-ethernet",
    "urn:lyn:yang:lyn-openconfig-if-trust-dscp-aug": "lyn-openconfig-if-trust-dscp-aug",
    "urn:lyn:yang:lyn-openconfig-if-poe-aug": "lyn-openconfig-if-poe-aug",
    "urn:lyn:yang:lyn-openconfig-forwarding-profile": "lyn-openconfig-forwarding-profile",
}


def body(enabled):
    return {"lyn-openconfig-jumbo:config": {"enabled": enabled}}


def shown(session, store="running"):
    """The value of jumbo frames in a datastore: "true", "false" or None."""
    values = texts(session.get_config(store, ("subtree", f'<jumbo xmlns="{JUMBO}"/>')), "enabled")
    return values[0] if values else None


def sent(agent, since=0):
    return [entry["request"]["value"] for entry in agent.journal(since)
            if entry["call"] == CALL and entry["request"]["opcode"] == 1]


@pytest.fixture
def nc(agent):
    """A session on the module's agent, jumbo frames off everywhere; the agent notes where its journal stands."""
    agent.switch("fault", "clear")
    with connect(agent) as session:
        session.discard_changes()
        session.edit_config(target="running", config=jumbo(False))
        session.copy_config(source="running", target="startup")
        agent.mark = agent.last_seq()
        yield session


# The same edit by both protocols


class Step:
    """One element on the way to what is edited: namespace, name, value of the key."""

    def __init__(self, namespace, name, key=None):
        self.namespace, self.name, self.key = namespace, name, key


def port(number, *below):
    return [Step(INTERFACES, "interfaces"), Step(INTERFACES, "interface", f"ethernet 1/1/{number}"), *below]


ETHERNET = Step("http://openconfig.net/yang/interfaces/ethernet", "ethernet")
TRUST = Step("urn:lyn:yang:lyn-openconfig-if-trust-dscp-aug", "trust-dscp")
POE = Step("urn:lyn:yang:lyn-openconfig-if-poe-aug", "poe")
PROFILE = Step("urn:lyn:yang:lyn-openconfig-forwarding-profile", "forwarding-profile")
JUMBO_CONFIG = [Step(JUMBO, "jumbo"), Step(JUMBO, "config")]


def broadcast(number):
    return port(number, Step(INTERFACES, "config"), Step(STORM, "storm_control_config"), Step(STORM, "broadcast"))


def protected(number, *below):
    return [Step(PROTECTED, "protectedport"), Step(PROTECTED, "interfaces"),
            Step(PROTECTED, "interface", f"ethernet 1/1/{number}"), *below]


PROTECTED_CONFIG = Step(PROTECTED, "config")


def uri(steps):
    path, module = DATA, None
    for step in steps:
        prefix = "" if step.namespace == module else MODULES[step.namespace] + ":"
        path += f"/{prefix}{step.name}" + (f"={urllib.parse.quote(step.key, safe='')}" if step.key else "")
        module = step.namespace
    return path


def element(step, inner, attribute=""):
    key = f"<name>{step.key}</name>" if step.key else ""
    return f'<{step.name} xmlns="{step.namespace}"{attribute}>{key}{inner}</{step.name}>'


def edit_by_restconf(agent, operation, steps, content):
    method = {"merge": "PATCH", "replace": "PUT", "delete": "DELETE"}[operation]
    text = element(steps[-1], content) if operation != "delete" else None
    answer = agent.ask(method, uri(steps), text, Content_Type=XML, Accept=JSON)
    if answer.status_code < 300:
        return None
    (error,) = errors_of(answer)
    return error["error-tag"], error.get("error-app-tag"), error["error-message"]


def edit_by_netconf(session, operation, steps, content):
    text = element(steps[-1], content if operation != "delete" else "", f' nc:operation="{operation}"')
    for step in reversed(steps[:-1]):
        text = element(step, text)
    try:
        session.edit_config(target="running", config=config(text), default_operation="merge")
    except RPCError as error:
        return error.tag, error.app_tag, error.message
    return None


EDITS = {
    "jumbo": [
        ("merge", JUMBO_CONFIG, "<enabled>true</enabled>"),
        ("merge", JUMBO_CONFIG, "<enabled>true</enabled>"),
        ("replace", JUMBO_CONFIG, "<enabled>false</enabled>"),
        ("delete", JUMBO_CONFIG, ""),
        ("delete", JUMBO_CONFIG[:1], ""),
        ("delete", [*JUMBO_CONFIG, Step(JUMBO, "enabled")], ""),
    ],
    "storm_control": [
        ("merge", broadcast(1), "<limit>100</limit><kbps>true</kbps>"),
        ("merge", broadcast(1), "<limit>200</limit>"),
        ("replace", broadcast(1), "<limit>300</limit>"),
        ("delete", broadcast(1), ""),
        ("replace", broadcast(1)[:-1], "<broadcast><limit>5</limit></broadcast>"
                                       "<multicast><limit>7</limit></multicast>"),
        ("delete", broadcast(1)[:-1], ""),
    ],
    "protected_port": [
        ("replace", protected(2), "<config><name>ethernet 1/1/2</name><protectedport>true</protectedport></config>"),
        ("merge", protected(2, PROTECTED_CONFIG), "<protectedport>false</protectedport>"),
        ("merge", protected(2, PROTECTED_CONFIG), "<protectedport>true</protectedport>"),
        ("delete", protected(2, PROTECTED_CONFIG, Step(PROTECTED, "protectedport")), ""),
        ("delete", protected(2), ""),
        ("replace", protected(99), "<config><protectedport>true</protectedport></config>"),
    ],
    "trust_dscp": [
        ("merge", port(3, ETHERNET, TRUST, Step(TRUST.namespace, "config")), "<enabled>true</enabled>"),
        ("replace", port(3, ETHERNET, TRUST, Step(TRUST.namespace, "config")), "<enabled>false</enabled>"),
        ("delete", port(3, ETHERNET, TRUST), ""),
    ],
    "poe": [
        ("merge", port(4, ETHERNET, POE, Step(POE.namespace, "config")),
         "<enabled>true</enabled><priority>1</priority>"),
        ("replace", port(4, ETHERNET, POE, Step(POE.namespace, "config")), "<enabled>true</enabled>"),
        ("merge", port(4, ETHERNET, POE, Step(POE.namespace, "config")), "<priority>0</priority>"),
        ("delete", port(4, ETHERNET, POE), ""),
    ],
    "forwarding_profile": [
        ("replace", [PROFILE], "<current-profile-name>profile1</current-profile-name>"),
        ("merge", [PROFILE], "<current-profile-name>profile3</current-profile-name>"),
        ("replace", [PROFILE], "<current-profile-name>profile2</current-profile-name>"),
        ("delete", [PROFILE], ""),
    ],
}


@pytest.fixture(scope="module")
def pair():
    """Two agents with a switch each: one to be asked by RESTCONF, the other one by NETCONF."""
    with Agent(platform=4) as first, Agent(platform=4) as second:
        yield first, second


@pytest.mark.parametrize("feature", EDITS)
def test_the_same_edit_by_both_protocols_sends_the_same(pair, feature):
    first, second = pair
    with connect(second) as session:
        for operation, steps, content in EDITS[feature]:
            marks = first.last_seq(), second.last_seq()
            refusals = (edit_by_restconf(first, operation, steps, content),
                        edit_by_netconf(session, operation, steps, content))
            where = f"{operation} of {uri(steps)}"
            assert refusals[0] == refusals[1], where
            journals = [[(entry["call"], entry["request"], entry["answer"]) for entry in agent.journal(mark)]
                        for agent, mark in zip(pair, marks)]
            assert journals[0] == journals[1], where


# Candidate and commit


class TestCandidate:
    def test_reaches_the_switch_at_commit_only(self, agent, nc):
        nc.edit_config(target="candidate", config=jumbo(True))
        assert shown(nc, "candidate") == "true" and shown(nc) == "false"
        assert agent.get(CONFIG).json() == body(False)
        nc.validate("candidate")
        assert sent(agent, agent.mark) == []
        nc.commit()
        assert sent(agent, agent.mark) == [1]
        assert agent.get(CONFIG).json() == body(True)

    def test_discard(self, agent, nc):
        nc.edit_config(target="candidate", config=jumbo(True))
        nc.discard_changes()
        assert shown(nc, "candidate") == "false"
        nc.commit()
        assert sent(agent, agent.mark) == []

    def test_what_a_callback_refuses_is_found_by_validate_and_by_commit(self, agent, nc):
        """Power over Ethernet does not take both limits at once."""
        nc.edit_config(target="candidate", config=jumbo(True))
        poe = "<config><power-by-class>4</power-by-class><power-limit>20000</power-limit></config>"
        for step in reversed(port(9, ETHERNET, POE)):
            poe = element(step, poe)
        nc.edit_config(target="candidate", config=config(poe))
        for action in (lambda: nc.validate("candidate"), nc.commit):
            assert refusal(action).message == "Powerlimit and Power-class cannot be set together\n"
        assert shown(nc) == "false" and shown(nc, "candidate") == "true" and sent(agent, agent.mark) == []

    def test_a_commit_that_the_switch_refuses(self, agent, nc):
        nc.edit_config(target="candidate", config=jumbo(True))
        agent.switch("fault", "add", CALL, "refuse", "--count", 1)
        assert refusal(nc.commit).app_tag == "4"
        assert shown(nc) == "false" and shown(nc, "candidate") == "true"
        nc.commit()
        assert shown(nc) == "true"

    def test_copies(self, agent, nc):
        nc.edit_config(target="candidate", config=jumbo(True))
        nc.copy_config(source="candidate", target="startup")
        assert shown(nc, "startup") == "true" and shown(nc) == "false"
        nc.copy_config(source="startup", target="running")
        assert sent(agent, agent.mark) == [1]
        nc.delete_config("startup")
        assert shown(nc, "startup") is None


class TestConfirmedCommit:
    def test_that_times_out_is_taken_back_on_the_switch(self, agent, nc):
        nc.edit_config(target="candidate", config=jumbo(True))
        nc.commit(confirmed=True, timeout="1")
        assert sent(agent, agent.mark) == [1]
        assert wait_until(lambda: sent(agent, agent.mark) == [1, 0], 5)
        assert shown(nc) == "false"
        assert agent.get(CONFIG).json() == body(False)

    def test_that_is_confirmed_stays(self, agent, nc):
        nc.edit_config(target="candidate", config=jumbo(True))
        nc.commit(confirmed=True, timeout="1")
        nc.commit()
        time.sleep(1.5)
        assert sent(agent, agent.mark) == [1] and shown(nc) == "true"

    def test_that_is_prolonged(self, agent, nc):
        nc.edit_config(target="candidate", config=jumbo(True))
        nc.commit(confirmed=True, timeout="1")
        nc.commit(confirmed=True, timeout="30")
        time.sleep(1.5)
        assert sent(agent, agent.mark) == [1]
        nc.cancel_commit()
        assert sent(agent, agent.mark) == [1, 0]

    def test_whose_session_dies_is_taken_back(self, agent, nc):
        other = connect(agent)
        other.edit_config(target="candidate", config=jumbo(True))
        other.commit(confirmed=True, timeout="100")
        assert sent(agent, agent.mark) == [1]
        other._session.transport.sock.close()
        other._session.transport.close()
        assert wait_until(lambda: sent(agent, agent.mark) == [1, 0], 10)

    def test_that_persists_outlives_its_session(self, agent, nc):
        other = connect(agent)
        other.edit_config(target="candidate", config=jumbo(True))
        other.commit(confirmed=True, timeout="100", persist="mine")
        other.close_session()
        assert shown(nc) == "true"
        assert refusal(nc.commit).tag == "invalid-value"
        nc.commit(persist_id="mine")
        assert shown(nc) == "true" and sent(agent, agent.mark) == [1]


class TestBothFrontEnds:
    def test_a_lock_refuses_restconf(self, agent, nc):
        with nc.locked("running"):
            for answer in (agent.patch(CONFIG, body(True)), agent.delete(CONFIG)):
                assert answer.status_code == 409
                assert errors_of(answer)[0]["error-tag"] == "in-use"
            assert agent.get(CONFIG).json() == body(False)
        assert agent.patch(CONFIG, body(True)).status_code == 204
        assert sent(agent, agent.mark) == [1]

    def test_each_sees_what_the_other_did(self, agent, nc):
        version = agent.get(CONFIG).headers["ETag"]
        nc.edit_config(target="running", config=jumbo(True))
        answer = agent.get(CONFIG)
        assert answer.json() == body(True) and answer.headers["ETag"] != version
        assert agent.put(CONFIG, body(False), If_Match=version).status_code == 412
        agent.put(CONFIG, body(False))
        assert shown(nc) == "false" and shown(nc, "candidate") == "false"

    def test_netconf_operations_are_none_of_restconf(self, agent):
        answer = agent.post("/restconf/operations/ietf-netconf:kill-session", {"ietf-netconf:input": {"session-id": 1}})
        assert 400 <= answer.status_code < 500


# Restarts


@contextlib.contextmanager
def crashing(agent):
    """An agent that is killed in the end."""
    agent.start()
    try:
        yield agent
    finally:
        agent.stop(signal.SIGKILL)


class TestRestart:
    def test_what_was_saved_is_there_and_the_rest_is_not(self, tmp_path):
        with Agent(state=tmp_path) as agent, connect(agent) as session:
            assert agent.put(CONFIG, body(True)).status_code in (201, 204)
            session.edit_config(target="running", config=config(
                f'<protectedport xmlns="{PROTECTED}"><interfaces><interface><name>ethernet 1/1/1</name><config>'
                "<protectedport>true</protectedport></config></interface></interfaces></protectedport>"))
            session.edit_config(target="candidate", config=jumbo(False))
            assert "1/1/1" in json.dumps(agent.get(f"{DATA}/lyn-openconfig-protectedport:protectedport").json())
        with Agent(state=tmp_path) as agent, connect(agent) as session:
            assert shown(session) == "true" and shown(session, "candidate") == "true"
            assert "protectedport" not in str(session.get_config("running"))
            assert sent(agent) == []  # what jumbo frames send at load: nothing
            session.edit_config(target="running", config=jumbo(False))
            session.copy_config(source="running", target="startup")
        with Agent(state=tmp_path) as agent, connect(agent) as session:
            assert shown(session) == "false"
            assert agent.log == ""

    def test_acknowledged_edits_survive_a_crash(self, tmp_path):
        with crashing(Agent(state=tmp_path)) as agent:
            for number in range(1, 9):
                answer = agent.put(f"{DATA}/lyn-openconfig-protectedport:protectedport/interfaces/interface="
                                   f"ethernet%201%2F1%2F{number}",
                                   {"lyn-openconfig-protectedport:interface": [
                                       {"name": f"ethernet 1/1/{number}", "config": {"protectedport": True}}]})
                assert answer.status_code == 201
        with Agent(state=tmp_path) as agent:
            entries = agent.get(f"{DATA}/lyn-openconfig-protectedport:protectedport").json()
            assert len(entries["lyn-openconfig-protectedport:protectedport"]["interfaces"]["interface"]) == 8

    def test_edits_of_many_clients_at_once_are_all_saved(self, tmp_path):
        def protect(number):
            session = agent.new_session("admin", agent.password)
            return session.put(f"{agent.url}{DATA}/lyn-openconfig-protectedport:protectedport/interfaces/interface="
                               f"ethernet%201%2F1%2F{number}",
                               json={"lyn-openconfig-protectedport:interface": [
                                   {"name": f"ethernet 1/1/{number}", "config": {"protectedport": True}}]},
                               headers={"Content-Type": "application/yang-data+json"}).status_code

        with crashing(Agent(state=tmp_path)) as agent, ThreadPoolExecutor(8) as pool:
            assert set(pool.map(protect, range(1, 25))) == {201}
        with Agent(state=tmp_path) as agent:
            entries = agent.get(f"{DATA}/lyn-openconfig-protectedport:protectedport").json()
            assert len(entries["lyn-openconfig-protectedport:protectedport"]["interfaces"]["interface"]) == 24

    @pytest.mark.parametrize("name, word, value", [
        ("startup.log", "startup.log: record", False), ("startup.json", "startup.json is not what was written", None)])
    def test_a_damaged_file_is_told_and_the_state_before_is_used(self, tmp_path, name, word, value):
        with Agent(state=tmp_path) as agent, connect(agent) as session:
            session.copy_config(source="running", target="startup")
            agent.put(CONFIG, body(False))
            agent.put(CONFIG, body(True))
        data = bytearray((tmp_path / name).read_bytes())
        data[-20] ^= 1
        (tmp_path / name).write_bytes(data)
        with Agent(state=tmp_path) as agent:
            agent.logged(f"agentd: {word}")
            assert agent.log.startswith(f"agentd: {word}")
            assert agent.get(CONFIG).json() == ({"lyn-openconfig-jumbo:config": {}} if value is None else body(value))

    def test_a_refused_load_is_logged_and_does_not_stop_the_start(self, tmp_path):
        call = "ui_fe_interface_config_msg"
        with running_switch(tmp_path / "s"):
            switchctl("--socket", tmp_path / "s", "fault", "add", call, "refuse", "--ui-err", 1, "--text", "not this one",
                      "--count", 1)
            with Agent(device=f"unix:{tmp_path}/s") as agent, connect(agent) as session:
                agent.logged("load of /openconfig-interfaces:interfaces/interface[name='ethernet 1/1/1']")
                agent.logged("not this one")
                assert "ethernet 1/1/1<" in str(session.get_config("running"))
                asked = [json.loads(line)["request"] for line in
                         switchctl("--socket", tmp_path / "s", "journal", "--json").splitlines()]
                assert {"operation": 2, "name": "ethernet 1/1/24"} in asked

    def test_the_state_folder_keeps_it_private(self, tmp_path):
        with Agent(state=tmp_path) as agent, connect(agent) as session:
            agent.put(CONFIG, body(True))
            session.copy_config(source="running", target="startup")
            session.copy_config(source="running", target="startup")
        for name in ("startup.json", "startup.log", "startup.json.1", "startup.log.1", "ssh-host-key"):
            assert (tmp_path / name).stat().st_mode & 0o077 == 0, name
        assert not [name for name in os.listdir(tmp_path) if name.endswith(".new")]
