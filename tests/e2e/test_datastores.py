"""Both front ends on one set of datastores, and what is there after a restart."""

import os

import pytest
from ncclient.operations import RPCError

from harness import JSON, XML, Agent, errors_of, running_switch, switchctl, wait_until
from netconf_client import JUMBO, config, connect, jumbo, texts

CALL = "ui_fe_qos_jumbo"
DATA = "/restconf/data"
CONFIG = f"{DATA}/lyn-openconfig-jumbo:jumbo/config"
INTERFACES = "http://openconfig.net/yang/interfaces"
STORM = "urn:lyn:yang:lyn-openconfig-stormcontrol"
PROTECTED = "urn:lyn:yang:lyn-openconfig-protectedport"


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


# The same edit by both protocols: the path of what is edited, the elements around it, its own


def port(number, content):
    return (f'<interfaces xmlns="{INTERFACES}"><interface><name>ethernet 1/1/{number}</name>{content}</interface>'
            "</interfaces>")


PORT = "ethernet%201%2F1%2F2"
JUMBO_AT = (CONFIG, f'<jumbo xmlns="{JUMBO}">%s</jumbo>', f'config xmlns="{JUMBO}"')
STORM_AT = (f"{DATA}/openconfig-interfaces:interfaces/interface={PORT}/config/"
            "lyn-openconfig-stormcontrol:storm_control_config/broadcast",
            port(2, f'<config><storm_control_config xmlns="{STORM}">%s</storm_control_config></config>'),
            f'broadcast xmlns="{STORM}"')
PROTECTED_AT = (f"{DATA}/lyn-openconfig-protectedport:protectedport/interfaces/interface={PORT}",
                f'<protectedport xmlns="{PROTECTED}"><interfaces>%s</interfaces></protectedport>',
                f'interface xmlns="{PROTECTED}"')
NAME = "<name>ethernet 1/1/2</name>"

EDITS = [
    ("merge", JUMBO_AT, "<enabled>true</enabled>"),
    ("replace", JUMBO_AT, "<enabled>false</enabled>"),
    ("delete", JUMBO_AT, ""),
    ("replace", STORM_AT, "<limit>100</limit><kbps>true</kbps>"),
    ("merge", STORM_AT, "<limit>300</limit>"),
    ("replace", STORM_AT, "<limit>5</limit>"),
    ("delete", STORM_AT, ""),
    ("replace", PROTECTED_AT, NAME + "<config><protectedport>true</protectedport></config>"),
    ("merge", PROTECTED_AT, NAME + "<config><protectedport>false</protectedport></config>"),
    ("delete", PROTECTED_AT, NAME),
]


def edit_by_restconf(agent, operation, path, element, content):
    method = {"merge": "PATCH", "replace": "PUT", "delete": "DELETE"}[operation]
    text = f"<{element}>{content}</{element.split()[0]}>" if operation != "delete" else None
    answer = agent.ask(method, path, text, Content_Type=XML, Accept=JSON)
    if answer.status_code < 300:
        return None
    (error,) = errors_of(answer)
    return error["error-tag"], error.get("error-app-tag"), error["error-message"]


def edit_by_netconf(session, operation, around, element, content):
    text = around % f'<{element} nc:operation="{operation}">{content}</{element.split()[0]}>'
    try:
        session.edit_config(target="running", config=config(text), default_operation="merge")
    except RPCError as error:
        return error.tag, error.app_tag, error.message
    return None


def test_the_same_edit_by_both_protocols_sends_the_same():
    with Agent() as first, Agent() as second, connect(second) as session:
        for operation, (path, around, element), content in EDITS:
            marks = first.last_seq(), second.last_seq()
            refusals = (edit_by_restconf(first, operation, path, element, content),
                        edit_by_netconf(session, operation, around, element, content))
            where = f"{operation} of {path}"
            assert refusals[0] == refusals[1], where
            journals = [[(entry["call"], entry["request"], entry["answer"]) for entry in agent.journal(mark)]
                        for agent, mark in zip((first, second), marks)]
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


class TestConfirmedCommit:
    def test_that_times_out_is_taken_back_on_the_switch(self, agent, nc):
        nc.edit_config(target="candidate", config=jumbo(True))
        nc.commit(confirmed=True, timeout="1")
        assert sent(agent, agent.mark) == [1]
        assert wait_until(lambda: sent(agent, agent.mark) == [1, 0], 5)
        assert shown(nc) == "false"
        assert agent.get(CONFIG).json() == body(False)

    def test_whose_session_dies_is_taken_back(self, agent, nc):
        other = connect(agent)
        other.edit_config(target="candidate", config=jumbo(True))
        other.commit(confirmed=True, timeout="100")
        assert sent(agent, agent.mark) == [1]
        other._session.transport.sock.close()
        other._session.transport.close()
        assert wait_until(lambda: sent(agent, agent.mark) == [1, 0], 10)


class TestBothFrontEnds:
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


class TestRestart:
    def test_what_was_saved_is_there_and_the_rest_is_not(self, tmp_path):
        with Agent(state=tmp_path) as agent, connect(agent) as session:
            assert agent.put(CONFIG, body(True)).status_code in (201, 204)
            session.edit_config(target="running", config=config(
                f'<protectedport xmlns="{PROTECTED}"><interfaces><interface><name>ethernet 1/1/1</name><config>'
                "<protectedport>true</protectedport></config></interface></interfaces></protectedport>"))
            session.edit_config(target="candidate", config=jumbo(False))
        with Agent(state=tmp_path) as agent, connect(agent) as session:
            assert shown(session) == "true" and shown(session, "candidate") == "true"
            assert "protectedport" not in str(session.get_config("running"))
            assert sent(agent) == []  # what jumbo frames send at load: nothing
            session.edit_config(target="running", config=jumbo(False))
            session.copy_config(source="running", target="startup")
        with Agent(state=tmp_path) as agent, connect(agent) as session:
            assert shown(session) == "false"
            assert agent.log == ""

    def test_a_refused_load_is_logged_and_does_not_stop_the_start(self, tmp_path):
        with running_switch(tmp_path / "s"):
            switchctl("--socket", tmp_path / "s", "fault", "add", "ui_fe_interface_config_msg", "refuse", "--ui-err", 1,
                      "--text", "not this one", "--count", 1)
            with Agent(device=f"unix:{tmp_path}/s") as agent, connect(agent) as session:
                agent.logged("load of /openconfig-interfaces:interfaces/interface[name='ethernet 1/1/1']")
                agent.logged("not this one")
                assert "ethernet 1/1/1<" in str(session.get_config("running"))
                assert {"operation": 2, "name": "ethernet 1/1/24"} in [entry["request"] for entry in agent.journal()]

    def test_the_state_folder_keeps_it_private(self, tmp_path):
        with Agent(state=tmp_path) as agent, connect(agent) as session:
            agent.put(CONFIG, body(True))
            session.copy_config(source="running", target="startup")
            session.copy_config(source="running", target="startup")
        for name in ("startup.json", "startup.log", "startup.json.1", "startup.log.1", "ssh-host-key"):
            assert (tmp_path / name).stat().st_mode & 0o077 == 0, name
        assert not [name for name in os.listdir(tmp_path) if name.endswith(".new")]
