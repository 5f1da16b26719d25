"""The small features of a port and of the device, over RESTCONF and with both kinds of switch: what each request
sends, what is read back, what a refusal looks like, and what a dead switch does.
"""

import contextlib
import json
import pathlib
import shutil
import tempfile
import urllib.parse

import pytest

from harness import Agent, errors_of, running_switch, switchctl

DATA = "/restconf/data"
STORM, TRUST, POE = ("lyn-openconfig-stormcontrol", "lyn-openconfig-if-trust-dscp-aug", "lyn-openconfig-if-poe-aug")
PROTECTED, PROFILE = "lyn-openconfig-protectedport", "lyn-openconfig-forwarding-profile"
STORM_CALL, TRUST_CALL, POE_CALL = "sec_protobuf_fe_config_handler", "ui_fe_qos_port_oper", "ui_fe_poe_config_cmd_send"
PROTECTED_CALL, PROFILE_CALL = "protected_port_config_apply", "ui_forwarding_profile_config_apply"
INTERFACE_CALL = "ui_fe_interface_config_msg"
OURS = {STORM_CALL, TRUST_CALL, POE_CALL, PROTECTED_CALL, PROFILE_CALL, INTERFACE_CALL, "ui_fe_qos_jumbo"}


class Rig:
    """agentd with a switch inside, or with one beside it."""

    def __init__(self, kind, process=None, socket=None):
        self.process, self.socket = process, socket
        options = {"device": "inproc", "platform": 4} if kind == "inproc" else {"device": f"unix:{socket}"}
        self.agent = Agent(**options)

    def switch(self, *words):
        return switchctl("--socket", self.socket, *words) if self.socket else self.agent.switch(*words)

    def journal(self, since=0):
        lines = self.switch("journal", "--json", "--since", since).splitlines()
        return [entry for entry in map(json.loads, lines) if entry["call"] in OURS]

    def show(self, word):
        return json.loads(self.switch("show", word))

    @contextlib.contextmanager
    def sending(self, *expected):
        """What is done inside sends exactly these requests, each a call with its fields."""
        since = max((entry["seq"] for entry in self.journal()), default=0)
        yield
        assert [(entry["call"], entry["request"]) for entry in self.journal(since)] == list(expected)


@contextlib.contextmanager
def started(kind):
    # A socket's path is short; the folders of pytest are not.
    folder = pathlib.Path(tempfile.mkdtemp(prefix="sw-"))
    try:
        with contextlib.ExitStack() as stack:
            process = socket = None
            if kind == "unix":
                socket = folder / "s"
                process = stack.enter_context(running_switch(socket))
                switchctl("--socket", socket, "set", "platform-type", 4)
            rig = Rig(kind, process, socket)
            stack.enter_context(rig.agent)
            yield rig
    finally:
        shutil.rmtree(folder, ignore_errors=True)


@pytest.fixture(scope="module", params=["inproc", "unix"])
def module_rig(request):
    with started(request.param) as rig:
        yield rig


@pytest.fixture
def rig(module_rig):
    yield module_rig
    module_rig.switch("fault", "clear")


def name_of(port):
    return f"ethernet 1/1/{port}"


def interface(port):
    return f"{DATA}/openconfig-interfaces:interfaces/interface={urllib.parse.quote(name_of(port), safe='')}"


def storm(port, below=""):
    return f"{interface(port)}/config/{STORM}:storm_control_config{below}"


def trust(port, below="/config"):
    return f"{interface(port)}/openconfig-if-ethernet:ethernet/{TRUST}:trust-dscp{below}"


def poe(port, below="/config"):
    return f"{interface(port)}/openconfig-if-ethernet:ethernet/{POE}:poe{below}"


def protected(port, below=""):
    return f"{DATA}/{PROTECTED}:protectedport/interfaces/interface={urllib.parse.quote(name_of(port), safe='')}{below}"


def profile(below=""):
    return f"{DATA}/{PROFILE}:forwarding-profile{below}"


def sent_limit(port, op, limit, kbps, traffic_class=0):
    return (STORM_CALL, {"message": "bum_rate_limit_msg", "code": 0x99005D, "sub_type": 41, "msg_type": 41, "op": op,
                         "port_name": name_of(port), "limit": limit, "kbps": kbps, "traffic_class": traffic_class})


def sent_trust(port, opcode, mode=2):
    return (TRUST_CALL, {"opcode": opcode, "qos_mode": mode, "port": {"name": name_of(port)}})


def sent_power(port, enabled):
    return (POE_CALL, {"opcode": 2, "port": name_of(port), "port_config": {"enabled": enabled}})


def sent_poe(port, opcode, power_class=0, limit=0, priority=0, enabled=0, oper_type=1):
    return (POE_CALL, {"opcode": opcode, "port": name_of(port), "oper": {"oper_type": oper_type},
                       "ilp_config": {"power_class": power_class, "power_limit": limit, "priority": priority},
                       "port_config": {"enabled": enabled}})


def sent_protect(port, opcode):
    return (PROTECTED_CALL, {"opcode": opcode, "port_name": name_of(port)})


def sent_profile(opcode, name):
    return (PROFILE_CALL, {"opcode": opcode, "profile_name": name})


def asked_trust(port):
    return (INTERFACE_CALL, {"operation": 5, "name": name_of(port), "source": 3}), sent_trust(port, 5, 0)


def asked_poe(port):
    return (POE_CALL, {"opcode": 5, "port": name_of(port), "selection": {"selector": 12}})


def run(rig, steps):
    """Each step: method, path, body, status, and what it sends."""
    for method, path, body, status, *sent in steps:
        with rig.sending(*sent):
            answer = rig.agent.ask(method, path, body)
            assert answer.status_code == status, f"{method} {path}: {answer.text}"


def refused(answer, status, app_tag, message=None):
    assert answer.status_code == status, answer.text
    (error,) = errors_of(answer)
    assert error["error-app-tag"] == str(app_tag)
    if message is not None:
        assert error["error-message"] == message


class TestEachUnit:
    def test_storm_control(self, rig):
        def limits(**values):
            return {f"{STORM}:broadcast": values}

        run(rig, [
            ("POST", storm(1), limits(limit=100, kbps=True), 201, sent_limit(1, 1, 100, 1)),
            ("PATCH", storm(1, "/broadcast"), limits(limit=200), 204, sent_limit(1, 1, 200, 1)),
            ("PUT", storm(1, "/broadcast/kbps"), {f"{STORM}:kbps": False}, 204, sent_limit(1, 1, 200, 0)),
            ("PUT", storm(1, "/multicast"), {f"{STORM}:multicast": {"limit": 7}}, 204, sent_limit(1, 1, 7, 0, 1)),
            ("PUT", storm(1, "/unknown-unicast"), {f"{STORM}:unknown-unicast": {"kbps": True}}, 204),
        ])
        assert rig.agent.get(storm(1, "/broadcast")).json() == limits(limit=200, kbps=False)
        assert rig.show("storm-control")[name_of(1)] == {
            "broadcast": {"limit": 200, "kbps": False}, "multicast": {"limit": 7, "kbps": False}}
        run(rig, [
            ("PUT", storm(1, "/broadcast"), limits(kbps=True), 204, sent_limit(1, 1, 0, 1)),
            ("DELETE", storm(1), None, 204, sent_limit(1, 3, 7, 0, 1)),
        ])
        assert name_of(1) not in rig.show("storm-control")

    def test_one_leaf_of_storm_control_keeps_the_other(self, rig):
        run(rig, [("PUT", storm(2, "/broadcast"), {f"{STORM}:broadcast": {"limit": 100, "kbps": True}}, 204,
                   sent_limit(2, 1, 100, 1)),
                  ("PATCH", storm(2, "/broadcast"), {f"{STORM}:broadcast": {"limit": 300}}, 204,
                   sent_limit(2, 1, 300, 1))])
        assert rig.agent.get(storm(2, "/broadcast")).json() == {f"{STORM}:broadcast": {"limit": 300, "kbps": True}}
        assert rig.show("storm-control")[name_of(2)] == {"broadcast": {"limit": 300, "kbps": True}}

    def test_storm_control_does_not_see_a_refusal(self, rig):
        rig.switch("fault", "add", STORM_CALL, "refuse", "--message", "bum_rate_limit_msg", "--app-err", 2, "--text", "no")
        run(rig, [("PATCH", storm(3, "/broadcast"), {f"{STORM}:broadcast": {"limit": 5}}, 204, sent_limit(3, 1, 5, 0))])
        assert rig.journal()[-1]["answer"] == {"reply": {"ui_err": 0, "app_err": 2, "reply_buf": "no"}}

    def test_trust_dscp(self, rig):
        def enabled(value, node="config"):
            return {f"{TRUST}:{node}": {"enabled": value}}

        run(rig, [
            ("POST", trust(4, ""), enabled(True), 201, sent_trust(4, 1)),
            ("PATCH", trust(4), enabled(False), 204, sent_trust(4, 3)),
            ("PUT", trust(4), enabled(True), 204, sent_trust(4, 1)),
        ])
        assert rig.show("trust-dscp") == [name_of(4)]
        with rig.sending(*asked_trust(4)):
            assert rig.agent.get(trust(4, "/state")).json() == enabled(True, "state")
        for path in (trust(4), trust(4, "/config/enabled"), trust(4, "")):
            with rig.sending():
                refused(rig.agent.delete(path), 405, 273)
        assert rig.agent.get(trust(4)).json() == enabled(True)

    def test_trust_dscp_when_the_switch_refuses(self, rig):
        rig.switch("fault", "add", TRUST_CALL, "refuse", "--ui-err", 7, "--text", "told to nobody")
        with rig.sending(sent_trust(5, 1)):
            refused(rig.agent.patch(trust(5), {f"{TRUST}:config": {"enabled": True}}), 500, 4)
        refused(rig.agent.get(trust(5, "/state")), 500, 4)
        assert rig.agent.get(trust(5)).json() == {f"{TRUST}:config": {}}

    def test_protected_port(self, rig):
        def config(value):
            return {f"{PROTECTED}:config": {"protectedport": value}}

        entry = {f"{PROTECTED}:interface": [{"name": name_of(6), "config": {"name": name_of(6), "protectedport": True}}]}
        run(rig, [
            ("POST", f"{DATA}/{PROTECTED}:protectedport/interfaces", entry, 201, sent_protect(6, 1)),
            ("PATCH", protected(6, "/config"), config(False), 204, sent_protect(6, 3)),
            ("PUT", protected(6, "/config"), config(True), 204),  # a replace is passed over
        ])
        assert name_of(6) not in rig.show("protected-port")
        run(rig, [
            ("PATCH", protected(6, "/config"), config(False), 204, sent_protect(6, 3)),
            ("PATCH", protected(6, "/config"), config(True), 204, sent_protect(6, 1)),
            ("DELETE", protected(6, "/config/protectedport"), None, 204, sent_protect(6, 3)),
            ("PUT", protected(7), {f"{PROTECTED}:interface": [{"name": name_of(7), "config": {"protectedport": True}}]},
             201, sent_protect(7, 1)),
            ("DELETE", protected(7), None, 204, sent_protect(7, 3)),
        ])

    def test_a_protected_port_that_is_not_there(self, rig):
        with rig.sending(sent_protect(99, 1)):
            answer = rig.agent.put(protected(99), {
                f"{PROTECTED}:interface": [{"name": name_of(99), "config": {"protectedport": True}}]})
        refused(answer, 500, 1042, f"Error: port {name_of(99)} does not exist\n")
        assert rig.agent.get(protected(99)).status_code == 404

    def test_forwarding_profile(self, rig):
        def profiles(name):
            return {f"{PROFILE}:forwarding-profile": {"current-profile-name": name}}

        run(rig, [
            ("PUT", profile(), profiles("profile1"), 201, sent_profile(1, "profile1")),
            ("PATCH", profile(), profiles("profile2"), 204, sent_profile(1, "profile2")),
            ("PUT", profile(), profiles("profile3"), 204),  # a replace is passed over
            ("DELETE", profile(), None, 204, sent_profile(3, "profile3")),
            ("POST", DATA, profiles("profile4"), 201, sent_profile(1, "profile4")),
        ])
        assert rig.show("forwarding-profile") == {"current": "profile4"}
        refused(rig.agent.patch(profile(), profiles("two words")), 500, 1042, "Error: invalid forwarding profile name\n")
        assert rig.agent.get(profile()).json() == profiles("profile4")
        run(rig, [
            ("DELETE", profile("/current-profile-name"), None, 204, sent_profile(3, "profile4")),
            ("PATCH", profile(), profiles("profile5"), 204, sent_profile(1, "profile5")),
            ("DELETE", profile(), None, 204, sent_profile(3, "profile5")),
        ])

    def test_poe(self, rig):
        def config(**values):
            return {f"{POE}:config": {name.replace("_", "-"): value for name, value in values.items()}}

        walk = sent_power(8, 1), sent_poe(8, 1, priority=1, enabled=1)
        urgent = (sent_poe(8, 1, priority=2),)  # names no state, and leaves the port its power
        run(rig, [
            ("PATCH", poe(8), config(enabled=True, priority=1), 204, *walk, *walk, *walk, *walk),
            ("PUT", poe(8), config(enabled=True, priority=3, power_limit=20000), 204,
             sent_power(8, 1), sent_poe(8, 2, limit=20000, priority=3, enabled=1)),
            ("PATCH", poe(8), config(priority=2), 204, *urgent, *urgent, sent_power(8, 1),
             sent_poe(8, 1, limit=20000, priority=2, enabled=1), *urgent),
        ])
        rig.switch("set", "poe-draw", 6500)
        with rig.sending(asked_poe(8)):
            assert rig.agent.get(poe(8, "/state")).json() == {f"{POE}:state": {
                "enabled": True, "priority": 2, "power-class": 0, "power-used": "6500", "power-allocated": "20000"}}
        off = sent_power(8, 0), sent_poe(8, 3)
        run(rig, [
            ("PUT", poe(8, "/config/enabled"), {f"{POE}:enabled": False}, 204, *off, *off, sent_power(8, 0),
             sent_poe(8, 3, limit=20000, priority=2), *off),
            ("DELETE", poe(8), None, 204, sent_poe(8, 3, oper_type=3)),
            ("POST", poe(8, ""), config(power_by_class=4), 201, sent_poe(8, 1, power_class=4)),
        ])
        assert rig.show("poe")["ports"][name_of(8)]["class"] == 4

    @pytest.mark.parametrize("method", ["PATCH", "PUT"])
    @pytest.mark.parametrize("values, text", [
        ({"priority": 0}, "PoE Error: Please specify the priority in the range 1..3.\n"),
        ({"power-by-class": 4, "power-limit": 20000}, "Powerlimit and Power-class cannot be set together\n"),
        ({"priority": 1, "power-by-class": 4, "power-limit": 20000},
         "Powerlimit, Priority  and Power-class all cannot be set together\n"),
    ])
    def test_poe_refuses_in_its_own_words(self, rig, method, values, text):
        with rig.sending():
            refused(rig.agent.ask(method, poe(9), {f"{POE}:config": values}), 500, 4, text)
        assert rig.agent.get(poe(9)).json() == {f"{POE}:config": {}}


class TestTwoUnitsInOneEdit:
    def test_the_first_is_undone_when_the_second_is_refused(self, rig):
        run(rig, [("PUT", storm(10, "/broadcast"), {f"{STORM}:broadcast": {"limit": 100, "kbps": True}}, 204,
                   sent_limit(10, 1, 100, 1))])
        edit = {"ietf-restconf:data": {
            "openconfig-interfaces:interfaces": {"interface": [
                {"name": name_of(10), "config": {f"{STORM}:storm_control_config": {"broadcast": {"limit": 50}}}}]},
            f"{PROTECTED}:protectedport": {"interfaces": {"interface": [
                {"name": name_of(10), "config": {"protectedport": True}}]}}}}
        rig.switch("fault", "add", PROTECTED_CALL, "refuse", "--ui-err", 1, "--text", "not now")
        with rig.sending(sent_limit(10, 1, 50, 1), sent_protect(10, 1), sent_limit(10, 1, 100, 1)):
            refused(rig.agent.patch(DATA, edit), 500, 1042, "not now")
        assert rig.agent.get(storm(10, "/broadcast")).json()[f"{STORM}:broadcast"]["limit"] == 100
        assert rig.agent.get(protected(10)).status_code == 404
        assert rig.show("storm-control")[name_of(10)]["broadcast"] == {"limit": 100, "kbps": True}

    def test_a_profile_that_fails_in_commit_undoes_what_was_applied(self, rig):
        edit = {"ietf-restconf:data": {
            "openconfig-interfaces:interfaces": {"interface": [
                {"name": name_of(11), "config": {f"{STORM}:storm_control_config": {"broadcast": {"limit": 50}}}}]},
            f"{PROFILE}:forwarding-profile": {"current-profile-name": "wide"}}}
        rig.switch("fault", "add", PROFILE_CALL, "refuse", "--ui-err", 1, "--text", "no")
        with rig.sending(sent_limit(11, 1, 50, 0), sent_profile(1, "wide"), sent_limit(11, 1, 0, 0)):
            refused(rig.agent.patch(DATA, edit), 500, 1042, "no")
        assert name_of(11) not in rig.show("storm-control")


def edits(port):
    """An edit of each unit that sends, whatever was there before."""
    return [
        (storm(port, "/broadcast"), {f"{STORM}:broadcast": {"limit": 1}}),
        (trust(port), {f"{TRUST}:config": {"enabled": True}}),
        (poe(port), {f"{POE}:config": {"enabled": True, "priority": 1}}),
        (f"{DATA}/{PROTECTED}:protectedport", {f"{PROTECTED}:protectedport": {"interfaces": {"interface": [
            {"name": name_of(port), "config": {"protectedport": True}}]}}}),
        (DATA, {"ietf-restconf:data": {f"{PROFILE}:forwarding-profile": {"current-profile-name": f"profile{port}"}}}),
        (f"{DATA}/lyn-openconfig-jumbo:jumbo/config", {"lyn-openconfig-jumbo:config": {"enabled": True}}),
    ]


def assert_dead(agent, port):
    configuration = agent.get(f"{DATA}?content=config").json()
    for path, body in edits(port):
        refused(agent.patch(path, body), 500, 4)
    assert agent.get(f"{DATA}?content=config").json() == configuration
    refused(agent.get(trust(port, "/state")), 500, 4)
    refused(agent.get(poe(port, "/state")), 500, 4)
    state = agent.get(f"{DATA}/lyn-openconfig-jumbo:jumbo/operation-state")  # tells nothing, and no error
    assert (state.status_code, state.json()) == (200, {"lyn-openconfig-jumbo:operation-state": {}})


class TestDeadSwitch:
    def test_a_switch_that_does_not_answer(self, rig):
        calls = (STORM_CALL, TRUST_CALL, POE_CALL, PROTECTED_CALL, PROFILE_CALL, "ui_fe_qos_jumbo")
        for call in calls:
            rig.switch("fault", "add", call, "null")
        assert_dead(rig.agent, 12)
        rig.switch("fault", "clear")
        for path, body in edits(12):
            assert rig.agent.patch(path, body).status_code == 204, path

    @pytest.mark.parametrize("how", ["killed", "exit"])
    def test_a_switch_that_dies_and_comes_back(self, how):
        with started("unix") as rig:
            for path, body in edits(1)[:3]:
                assert rig.agent.patch(path, body).status_code == 204
            if how == "killed":
                rig.process.kill()
            else:
                rig.switch("fault", "add", TRUST_CALL, "exit")
                refused(rig.agent.patch(trust(2), {f"{TRUST}:config": {"enabled": True}}), 500, 4)
            rig.process.wait(10)
            assert_dead(rig.agent, 2)
            assert rig.agent.process.poll() is None
            with running_switch(rig.socket):
                switchctl("--socket", rig.socket, "set", "platform-type", 4)
                for path, body in edits(2):
                    assert rig.agent.patch(path, body).status_code == 204, path
                assert rig.show("trust-dscp") == [name_of(2)]


def test_only_some_platforms_have_forwarding_profiles(make_agent):
    agent = make_agent(platform=1)
    assert agent.put(profile(), {f"{PROFILE}:forwarding-profile": {"current-profile-name": "a"}}).status_code == 400
    modules = agent.get(f"{DATA}/ietf-yang-library:yang-library").text
    assert "lyn-openconfig-protectedport" in modules
    assert "lyn-openconfig-forwarding-profile" not in modules
