"""The small features of a port and of the device, over RESTCONF and with both kinds of switch: what an edit sends,
what is read back, a refusal of each, and what a dead switch does.
"""

import urllib.parse

import pytest

from harness import Agent, beside_a_switch, refused, running_switch, switchctl

DATA = "/restconf/data"
STORM, TRUST, POE = ("lyn-openconfig-stormcontrol", "lyn-openconfig-if-trust-dscp-aug", "lyn-openconfig-if-poe-aug")
PROTECTED, PROFILE = "lyn-openconfig-protectedport", "lyn-openconfig-forwarding-profile"
STORM_CALL, TRUST_CALL, POE_CALL = "sec_protobuf_fe_config_handler", "ui_fe_qos_port_oper", "ui_fe_poe_config_cmd_send"
PROTECTED_CALL, PROFILE_CALL = "protected_port_config_apply", "ui_forwarding_profile_config_apply"


def started(kind):
    return Agent(platform=4) if kind == "inproc" else beside_a_switch(platform=4)


@pytest.fixture(scope="module", params=["inproc", "unix"])
def module_rig(request):
    with started(request.param) as agent:
        yield agent


@pytest.fixture
def rig(module_rig):
    yield module_rig
    module_rig.switch("fault", "clear")


def name_of(port):
    return f"ethernet 1/1/{port}"


def key_of(port):
    return urllib.parse.quote(name_of(port), safe="")


def storm(port, below="/broadcast"):
    return f"{DATA}/openconfig-interfaces:interfaces/interface={key_of(port)}/config/{STORM}:storm_control_config{below}"


def ethernet(port, below):
    return f"{DATA}/openconfig-interfaces:interfaces/interface={key_of(port)}/openconfig-if-ethernet:ethernet/{below}"


def trust(port, below="/config"):
    return ethernet(port, f"{TRUST}:trust-dscp{below}")


def poe(port, below="/config"):
    return ethernet(port, f"{POE}:poe{below}")


PORTS, PROFILES = f"{DATA}/{PROTECTED}:protectedport/interfaces", f"{DATA}/{PROFILE}:forwarding-profile"


def limits(**values):
    return {f"{STORM}:broadcast": values}


def trusted(value, node="config"):
    return {f"{TRUST}:{node}": {"enabled": value}}


def protect(port, value=True):
    return {f"{PROTECTED}:interface": [{"name": name_of(port), "config": {"protectedport": value}}]}


def powered(**values):
    return {f"{POE}:config": {name.replace("_", "-"): value for name, value in values.items()}}


def profiles(name):
    return {f"{PROFILE}:forwarding-profile": {"current-profile-name": name}}


def sent_limit(port, op, limit, kbps):
    return (STORM_CALL, {"message": "bum_rate_limit_msg", "code": 0x99005D, "sub_type": 41, "msg_type": 41, "op": op,
                         "port_name": name_of(port), "limit": limit, "kbps": kbps, "traffic_class": 0})


def sent_trust(port, opcode, mode=2):
    return (TRUST_CALL, {"opcode": opcode, "qos_mode": mode, "port": {"name": name_of(port)}})


def sent_poe(port, opcode, power_class=0, oper_type=1):
    return (POE_CALL, {"opcode": opcode, "port": name_of(port), "oper": {"oper_type": oper_type},
                       "ilp_config": {"power_class": power_class, "power_limit": 0, "priority": 0},
                       "port_config": {"enabled": 0}})


def sent_protect(port, opcode):
    return (PROTECTED_CALL, {"opcode": opcode, "port_name": name_of(port)})


def sent_profile(opcode, name):
    return (PROFILE_CALL, {"opcode": opcode, "profile_name": name})


def run(rig, *steps):
    """Each step: method, path, body, status, and what it sends."""
    for method, path, body, status, *sent in steps:
        with rig.sending(*sent):
            answer = rig.ask(method, path, body)
            assert answer.status_code == status, f"{method} {path}: {answer.text}"


class TestEachUnit:
    def test_storm_control(self, rig):
        run(rig, ("POST", storm(1, ""), limits(limit=100, kbps=True), 201, sent_limit(1, 1, 100, 1)),
            ("PATCH", storm(1), limits(limit=200), 204, sent_limit(1, 1, 200, 1)))
        assert rig.get(storm(1)).json() == limits(limit=200, kbps=True)
        assert rig.show("storm-control")[name_of(1)] == {"broadcast": {"limit": 200, "kbps": True}}
        # What the switch answers to this message, nobody sees.
        rig.switch("fault", "add", STORM_CALL, "refuse", "--message", "bum_rate_limit_msg", "--app-err", 2, "--text", "no")
        run(rig, ("PATCH", storm(1), limits(limit=5), 204, sent_limit(1, 1, 5, 1)))
        rig.switch("fault", "clear")
        run(rig, ("DELETE", storm(1, ""), None, 204, sent_limit(1, 3, 5, 1)))
        assert name_of(1) not in rig.show("storm-control")

    def test_trust_dscp(self, rig):
        run(rig, ("POST", trust(4, ""), trusted(True), 201, sent_trust(4, 1)))
        assert rig.show("trust-dscp") == [name_of(4)]
        with rig.sending(("ui_fe_interface_config_msg", {"operation": 5, "name": name_of(4), "source": 3}),
                         sent_trust(4, 5, 0)):
            assert rig.get(trust(4, "/state")).json() == trusted(True, "state")
        with rig.sending():
            refused(rig.delete(trust(4)), 405, 273)
        rig.switch("fault", "add", TRUST_CALL, "refuse", "--ui-err", 7, "--text", "told to nobody")
        with rig.sending(sent_trust(4, 3)):
            refused(rig.patch(trust(4), trusted(False)), 500, 4)
        assert rig.get(trust(4)).json() == trusted(True)

    def test_protected_port(self, rig):
        port = f"{PORTS}/interface={key_of(6)}"
        run(rig, ("POST", PORTS, protect(6), 201, sent_protect(6, 1)),
            ("PATCH", port, protect(6, False), 204, sent_protect(6, 3)),
            ("PUT", f"{port}/config", {f"{PROTECTED}:config": {"protectedport": True}}, 204))  # a replace is passed over
        assert name_of(6) not in rig.show("protected-port")
        run(rig, ("DELETE", port, None, 204, sent_protect(6, 3)))
        with rig.sending(sent_protect(99, 1)):
            refused(rig.post(PORTS, protect(99)), 500, 1042, f"Error: port {name_of(99)} does not exist\n")
        assert rig.get(f"{PORTS}/interface={key_of(99)}").status_code == 404

    def test_forwarding_profile(self, rig):
        run(rig, ("PUT", PROFILES, profiles("profile1"), 201, sent_profile(1, "profile1")),
            ("PATCH", PROFILES, profiles("profile2"), 204, sent_profile(1, "profile2")))
        assert rig.show("forwarding-profile") == {"current": "profile2"}
        refused(rig.patch(PROFILES, profiles("two words")), 500, 1042, "Error: invalid forwarding profile name\n")
        assert rig.get(PROFILES).json() == profiles("profile2")
        run(rig, ("DELETE", PROFILES, None, 204, sent_profile(3, "profile2")))

    def test_poe(self, rig):
        run(rig, ("POST", poe(8, ""), powered(power_by_class=4), 201, sent_poe(8, 1, power_class=4)),
            ("DELETE", poe(8), None, 204, sent_poe(8, 3, oper_type=3)))
        assert rig.patch(poe(8), powered(enabled=True, priority=1)).status_code == 204
        rig.switch("set", "poe-draw", 6500)
        with rig.sending((POE_CALL, {"opcode": 5, "port": name_of(8), "selection": {"selector": 12}})):
            state = rig.get(poe(8, "/state")).json()[f"{POE}:state"]
        assert (state["enabled"], state["priority"], state["power-used"]) == (True, 1, "6500")
        with rig.sending():
            refused(rig.put(poe(9), powered(power_by_class=4, power_limit=20000)), 500, 4,
                    "Powerlimit and Power-class cannot be set together\n")
        assert rig.get(poe(9)).json() == powered()


@pytest.mark.parametrize("other, sent", [
    ({f"{PROTECTED}:protectedport": {"interfaces": {"interface": [
        {"name": name_of(10), "config": {"protectedport": True}}]}}}, sent_protect(10, 1)),
    (profiles("wide"), sent_profile(1, "wide"))], ids=["in_apply", "in_commit"])
def test_the_first_unit_is_undone_when_the_second_is_refused(rig, other, sent):
    assert rig.put(storm(10), limits(limit=100, kbps=True)).status_code in (201, 204)
    edit = {"ietf-restconf:data": {"openconfig-interfaces:interfaces": {"interface": [
        {"name": name_of(10), "config": {f"{STORM}:storm_control_config": {"broadcast": {"limit": 50}}}}]}, **other}}
    rig.switch("fault", "add", sent[0], "refuse", "--ui-err", 1, "--text", "not now")
    with rig.sending(sent_limit(10, 1, 50, 1), sent, sent_limit(10, 1, 100, 1)):
        refused(rig.patch(DATA, edit), 500, 1042, "not now")
    assert rig.get(storm(10)).json() == limits(limit=100, kbps=True)
    assert rig.show("storm-control")[name_of(10)]["broadcast"] == {"limit": 100, "kbps": True}


def edits(port):
    """An edit of each unit that sends, whatever was there before."""
    return [
        (storm(port), limits(limit=1)), (trust(port), trusted(True)), (poe(port), powered(enabled=True, priority=1)),
        (f"{DATA}/{PROTECTED}:protectedport", {f"{PROTECTED}:protectedport": {"interfaces": {
            "interface": [{"name": name_of(port), "config": {"protectedport": True}}]}}}),
        (DATA, {"ietf-restconf:data": profiles(f"profile{port}")}),
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
        for call in (STORM_CALL, TRUST_CALL, POE_CALL, PROTECTED_CALL, PROFILE_CALL, "ui_fe_qos_jumbo"):
            rig.switch("fault", "add", call, "null")
        assert_dead(rig, 12)
        rig.switch("fault", "clear")
        for path, body in edits(12):
            assert rig.patch(path, body).status_code == 204, path

    @pytest.mark.parametrize("how", ["killed", "exit"])
    def test_a_switch_that_dies_and_comes_back(self, how):
        with started("unix") as rig:
            assert rig.patch(trust(1), trusted(True)).status_code == 204
            if how == "killed":
                rig.switchsim.kill()
            else:
                rig.switch("fault", "add", TRUST_CALL, "exit")
                refused(rig.patch(trust(2), trusted(True)), 500, 4)
            rig.switchsim.wait(10)
            assert_dead(rig, 2)
            with running_switch(rig.switch_at[1]):
                switchctl(*rig.switch_at, "set", "platform-type", 4)
                for path, body in edits(2):
                    assert rig.patch(path, body).status_code == 204, path
                assert rig.show("trust-dscp") == [name_of(2)]


def test_only_some_platforms_have_forwarding_profiles(make_agent):
    agent = make_agent(platform=1)
    assert agent.put(PROFILES, profiles("a")).status_code == 400
    modules = agent.get(f"{DATA}/ietf-yang-library:yang-library").text
    assert PROTECTED in modules and PROFILE not in modules
